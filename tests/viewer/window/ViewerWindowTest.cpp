#include <tests/viewer/support/StallingServer.h>
#include <tests/viewer/window/WindowStage.h>

#include <viewer/maps/MapWindow.h>
#include <viewer/batch/Startup.h>

#include <corvane/core/Application.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>
#include <corvane/map/ViewManager.h>
#include <tests/support/EachInItsProcess.h>

#include <QAction>
#include <QDockWidget>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QLabel>
#include <QMdiArea>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPointer>
#include <QProcess>
#include <QPushButton>
#include <QScreen>
#include <QSettings>
#include <QToolBar>
#include <QWindow>
#include <QtTest>

using namespace Corvane;
using namespace Corvane::Viewer;

/// The window of the program: what opens in it and how, and what it keeps between runs.
class ViewerWindowTest : public WindowStage
{
    Q_OBJECT
private slots:
    void eachFileOpensInAWindowOfItsOwn();
    void theFirstFilesStandSideBySide();
    void aSingleFileFillsTheArea();
    void theOpenActionOpensWhatIsChosen();
    void theAddLayerActionAddsToTheActiveMap();
    void aPluginsActionAddsToAMapThatIsMadeForIt();
    void aDropOntoAMapAddsALayer();
    void aDropOntoTheEmptyAreaOpensAWindow();
    void theEmptyAreaSaysHowToOpenUntilAMapIsThere();
    void aDropWithShiftAddsToTheActiveMap();
    void filesThatFailAreListedInOneBox();
    void aSlowSourceLeavesTheWindowAlive();
    void aWindowThatIsClosedGivesUpItsSource();

    void theWindowMenuNamesTheMaps();
    void closingTheLastWindowLeavesTheProgram();
    void theFirstWindowFitsTheScreen();
    void theLayoutIsKeptBetweenRuns();

private:
    static int runAgain(const QString& test);
    bool drop(const QPoint& position, const QStringList& files, Qt::KeyboardModifiers modifiers);
};

/// The exit code of one test in a process of its own, which finds the settings as they are.
int ViewerWindowTest::runAgain(const QString& test)
{
    QProcess next;
    QProcessEnvironment surroundings = QProcessEnvironment::systemEnvironment();
    surroundings.insert("SECOND_RUN", "1");
    next.setProcessEnvironment(surroundings);
    next.setProcessChannelMode(QProcess::ForwardedChannels);
    next.start(QCoreApplication::applicationFilePath(), {test});
    return next.waitForFinished(-1) ? next.exitCode() : -1;
}

/// Drags and drops as the window system does; whether the drag was accepted.
bool ViewerWindowTest::drop(const QPoint& position, const QStringList& files,
                            Qt::KeyboardModifiers modifiers)
{
    QMimeData data;
    QList<QUrl> urls;
    for (const QString& file : files) {
        urls << QUrl::fromLocalFile(file);
    }
    data.setUrls(urls);
    QDragEnterEvent enter(position, Qt::CopyAction, &data, Qt::LeftButton, modifiers);
    QCoreApplication::sendEvent(window->windowHandle(), &enter);
    QDropEvent event(position, Qt::CopyAction, &data, Qt::LeftButton, modifiers);
    QCoreApplication::sendEvent(window->windowHandle(), &event);
    return enter.isAccepted();
}

void ViewerWindowTest::eachFileOpensInAWindowOfItsOwn()
{
    window->openFiles({path("metres.tif"), path("degrees.tif")});
    QCOMPARE(mapWindows().size(), 2);
    for (MapWindow* map : mapWindows()) {
        QTRY_COMPARE(map->getView()->getNumberOfLayers(), 1);
        QVERIFY(map->getView()->getLayerAt(0)->isValid());
    }
    QCOMPARE(mapWindows()[0]->windowTitle(), QString("metres.tif"));
    QCOMPARE(mapWindows()[1]->windowTitle(), QString("degrees.tif"));
    QCOMPARE(window->getActiveMapWindow(), mapWindows()[1]);

    // the whole image is in view
    const QRectF bounds = mapWindows()[0]->getView()->getBounds();
    QVERIFY(bounds.left() <= 500000.0 && bounds.right() >= 502048.0);
    QVERIFY(bounds.top() >= 4650000.0 && bounds.bottom() <= 4648464.0);
}

void ViewerWindowTest::theFirstFilesStandSideBySide()
{
    window->openFiles({path("metres.tif"), path("degrees.tif")});
    const QRect first = mapWindows()[0]->geometry();
    const QRect second = mapWindows()[1]->geometry();
    QVERIFY(!first.intersects(second));
    openMap("metres.tif"); // a later one leaves them where they are
    QCOMPARE(mapWindows()[0]->geometry(), first);
    QCOMPARE(mapWindows()[1]->geometry(), second);
}

void ViewerWindowTest::aSingleFileFillsTheArea()
{
    QVERIFY(openMap("metres.tif")->isMaximized());
}

void ViewerWindowTest::theOpenActionOpensWhatIsChosen()
{
    action("actionOpen")->trigger();
    chooseIn("openDialog", {path("metres.tif"), path("degrees.tif")});
    QTRY_COMPARE(mapWindows().size(), 2);
    for (MapWindow* map : mapWindows()) {
        QTRY_COMPARE(map->getView()->getNumberOfLayers(), 1);
    }
}

void ViewerWindowTest::theAddLayerActionAddsToTheActiveMap()
{
    QVERIFY(!action("actionAddLayer")->isEnabled());
    MapWindow* map = openMap("metres.tif");
    const QRectF bounds = map->getView()->getBounds();
    action("actionAddLayer")->trigger();
    chooseIn("openDialog", {path("degrees.tif")});
    QTRY_COMPARE(map->getView()->getNumberOfLayers(), 2);
    QCOMPARE(mapWindows().size(), 1);
    QCOMPARE(map->windowTitle(), QString("metres.tif *")); // it is worth saving now
    QCOMPARE(map->getView()->getBounds(), bounds);
    QCOMPARE(map->getView()->getLayerAt(1)->getDescription(), QString("degrees.tif"));
}

void ViewerWindowTest::aPluginsActionAddsToAMapThatIsMadeForIt()
{
    QStringList entries;
    for (const QAction* title : window->menuBar()->actions()) {
        for (const QAction* entry : title->menu()->actions()) {
            entries << entry->text();
        }
    }
    QVERIFY(entries.contains("Add raster..."));

    bool answered = false;
    QTimer::singleShot(0, window.get(), [&] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        dialog->findChild<QLineEdit*>("fileNameEdit")->setText(path("metres.tif"));
        QTest::keyClick(dialog->findChild<QLineEdit*>("fileNameEdit"), Qt::Key_Return);
        answered = true;
    });
    action("actionAddRaster")->trigger();
    QVERIFY(answered);
    QCOMPARE(mapWindows().size(), 1);
    QTRY_COMPARE(mapWindows().first()->getView()->getNumberOfLayers(), 1);
}

void ViewerWindowTest::aDropOntoAMapAddsALayer()
{
    MapWindow* map = openMap("metres.tif");
    const QPoint middle = map->getView()->mapTo(window.get(), map->getView()->rect().center());
    QVERIFY(drop(middle, {path("degrees.tif")}, Qt::NoModifier));
    QTRY_COMPARE(map->getView()->getNumberOfLayers(), 2);
    QCOMPARE(mapWindows().size(), 1);
}

void ViewerWindowTest::aDropOntoTheEmptyAreaOpensAWindow()
{
    QVERIFY(drop(QPoint(450, 400), {path("metres.tif"), path("degrees.tif")}, Qt::NoModifier));
    QTRY_COMPARE(mapWindows().size(), 2);
    QTRY_COMPARE(mapWindows()[1]->getView()->getNumberOfLayers(), 1);
}

void ViewerWindowTest::aDropWithShiftAddsToTheActiveMap()
{
    MapWindow* map = openMap("metres.tif");
    map->showNormal();
    map->setGeometry(0, 0, 300, 300);
    const QPoint corner = window->getMdiArea()->geometry().bottomRight() - QPoint(20, 20);
    QVERIFY(drop(corner, {path("degrees.tif")}, Qt::ShiftModifier));
    QTRY_COMPARE(map->getView()->getNumberOfLayers(), 2);
    QVERIFY(drop(corner, {path("degrees.tif")}, Qt::NoModifier));
    QTRY_COMPARE(mapWindows().size(), 2);
}

void ViewerWindowTest::theEmptyAreaSaysHowToOpenUntilAMapIsThere()
{
    const auto* const hint = window->findChild<QLabel*>("openHint");
    QTRY_VERIFY(hint->isVisible());
    QVERIFY2(hint->text().contains("Ctrl+O"), qPrintable(hint->text()));

    window->openFiles({path("metres.tif")});
    QTRY_VERIFY(!hint->isVisible());
}

void ViewerWindowTest::filesThatFailAreListedInOneBox()
{
    QFile damaged(path("damaged.tif"));
    QVERIFY(damaged.open(QIODevice::WriteOnly));
    damaged.write("nothing");
    damaged.close();
    window->openFiles({path("missing.tif"), path("metres.tif"), path("damaged.tif")});

    QTRY_VERIFY(window->findChild<QMessageBox*>("openFailures"));
    QCOMPARE(window->findChildren<QMessageBox*>().size(), 1);
    const auto box = window->findChild<QMessageBox*>("openFailures");
    QTRY_VERIFY(box->informativeText().contains(path("missing.tif") + ": "));
    QTRY_VERIFY(box->informativeText().contains(path("damaged.tif") + ": "));
    QVERIFY(!box->informativeText().contains("metres.tif"));
    QCOMPARE(box->informativeText().split('\n').size(), 2);
    QCOMPARE(box->informativeText().count(path("damaged.tif")), 1); // not again in the reason
    QCOMPARE(box->text(), QString("These could not be opened:"));
    QTRY_COMPARE(mapWindows().size(), 1); // the windows of the two are gone again

    QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
    QTRY_VERIFY(!window->findChild<QMessageBox*>("openFailures"));
    window->openFiles({path("missing.tif")});
    QTRY_VERIFY(window->findChild<QMessageBox*>("openFailures"));
    QCOMPARE(window->findChild<QMessageBox*>("openFailures")->informativeText().split('\n').size(),
             1);
}

void ViewerWindowTest::aSlowSourceLeavesTheWindowAlive()
{
    StallingServer server(QByteArray(1000, ' '), 0);
    window->openFiles({server.addressOf("silent.tif"), path("metres.tif")});
    MapWindow* slow = mapWindows().first();
    MapWindow* quick = mapWindows().last();
    QTRY_COMPARE(quick->getView()->getNumberOfLayers(), 1);
    QVERIFY(slow->isOpening());
    QVERIFY(slow->windowTitle().contains("opening"));

    action("actionZoomBox")->trigger();
    QCOMPARE(quick->getView()->getViewManager()->getPointerMode(), Map::IClient::ZoomBox);
    const QRectF before = quick->getView()->getBounds();
    action("actionZoomIn")->trigger();
    QVERIFY(quick->getView()->getBounds().width() < before.width());
    QVERIFY(slow->isOpening());
}

void ViewerWindowTest::aWindowThatIsClosedGivesUpItsSource()
{
    StallingServer server(QByteArray(1000, ' '), 0);
    window->openFiles({server.addressOf("silent.tif")});
    QPointer<MapWindow> slow = mapWindows().first();
    QTRY_VERIFY(slow->getView()->isVisible());
    QVERIFY(slow->isOpening());
    action("actionClose")->trigger();
    QTRY_VERIFY(!slow);
    QVERIFY(mapWindows().isEmpty());
    QVERIFY(!window->findChild<QMessageBox*>());
}

void ViewerWindowTest::theWindowMenuNamesTheMaps()
{
    MapWindow* first = openMap("metres.tif");
    MapWindow* second = openMap("degrees.tif");
    const auto menu = window->findChild<QMenu*>("windowMenu");
    QVERIFY(menu);
    emit menu->aboutToShow();
    emit menu->aboutToShow(); // a second time adds nothing
    const QList<QAction*> entries = menu->actions().mid(menu->actions().size() - 2);
    QCOMPARE(entries[0]->text(), QString("&1 metres.tif"));
    QCOMPARE(entries[1]->text(), QString("&2 degrees.tif"));
    QVERIFY(!entries[0]->isChecked());
    QVERIFY(entries[1]->isChecked());
    entries[0]->trigger();
    QCOMPARE(window->getActiveMapWindow(), first);
    action("actionNextWindow")->trigger();
    QCOMPARE(window->getActiveMapWindow(), second);

    action("actionTile")->trigger();
    QVERIFY(!first->geometry().intersects(second->geometry().adjusted(1, 1, -1, -1)));
}

void ViewerWindowTest::closingTheLastWindowLeavesTheProgram()
{
    openMap("metres.tif");
    openMap("degrees.tif");
    action("actionClose")->trigger();
    QTRY_COMPARE(mapWindows().size(), 1);
    QTRY_VERIFY(shownScale().startsWith("1:"));
    action("actionClose")->trigger();
    QTRY_COMPARE(mapWindows().size(), 0);
    QVERIFY(!action("actionZoomIn")->isEnabled());
    QCOMPARE(shownScale(), QString());
    QVERIFY(window->isVisible());
}

// The second run is a process of its own, which leaves out the preparation.
void ViewerWindowTest::theFirstWindowFitsTheScreen()
{
    if (qEnvironmentVariableIsSet("SECOND_RUN")) {
        const QSize screen = QGuiApplication::primaryScreen()->availableSize();
        QVERIFY(screen.width() < 1280); // else there is nothing to see
        QVERIFY(window->width() <= screen.width());
        QVERIFY(window->height() < screen.height());
        return;
    }
    Application::instance()->getSettings()->sync(); // without a layout
    QCOMPARE(runAgain("theFirstWindowFitsTheScreen"), 0);
}

void ViewerWindowTest::theLayoutIsKeptBetweenRuns()
{
    if (qEnvironmentVariableIsSet("SECOND_RUN")) {
        QCOMPARE(window->size(), QSize(1111, 666));
        QCOMPARE(window->toolBarArea(window->findChild<QToolBar*>("Tool Bar")),
                 Qt::LeftToolBarArea);
        QCOMPARE(window->dockWidgetArea(window->findChild<QDockWidget*>("layersDock")),
                 Qt::RightDockWidgetArea);
        QVERIFY(window->findChild<QDockWidget*>("histogramDock")->isVisible());
        return;
    }
    window->resize(1111, 666);
    window->addToolBar(Qt::LeftToolBarArea, window->findChild<QToolBar*>("Tool Bar"));
    window->addDockWidget(Qt::RightDockWidgetArea, window->findChild<QDockWidget*>("layersDock"));
    window->findChild<QDockWidget*>("histogramDock")->show();
    action("actionQuit")->trigger();
    QVERIFY(!window->isVisible());
    Application::instance()->getSettings()->sync();

    QCOMPARE(runAgain("theLayoutIsKeptBetweenRuns"), 0);
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Viewer Test");
    ViewerWindowTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}
#include "ViewerWindowTest.moc"
