#include <tests/viewer/support/StallingServer.h>
#include <tests/viewer/support/TestImages.h>

#include <viewer/output/MapPicture.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/batch/Startup.h>
#include <viewer/window/ViewerWindow.h>

#include <corvane/core/Application.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>
#include <corvane/map/ViewManager.h>
#include <tests/support/EachInItsProcess.h>

#include <QAction>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDockWidget>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QProgressBar>
#include <QProcess>
#include <QPushButton>
#include <QSettings>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QToolBar>
#include <QWindow>
#include <QtTest>

#include <memory>

using namespace Corvane;
using namespace Corvane::Viewer;

class ViewerWindowTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

    void eachFileOpensInAWindowOfItsOwn();
    void theFirstFilesStandSideBySide();
    void aSingleFileFillsTheArea();
    void theOpenActionOpensWhatIsChosen();
    void theAddLayerActionAddsToTheActiveMap();
    void aPluginsActionAddsToAMapThatIsMadeForIt();
    void aDropOntoAMapAddsALayer();
    void aDropOntoTheEmptyAreaOpensAWindow();
    void aDropWithShiftAddsToTheActiveMap();
    void filesThatFailAreListedInOneBox();
    void aSlowSourceLeavesTheWindowAlive();
    void aWindowThatIsClosedGivesUpItsSource();

    void modeActionsWorkOnTheActiveWindow();
    void modeActionsFollowTheActiveWindow();
    void mapActionsNeedAMap();
    void zoomActionsMoveTheActiveMap();
    void aBoxIsNotDrawnBetweenTwoDrags();
    void aDragRoams();

    void theStatusBarShowsWhereThePointerIs();
    void theStatusBarFollowsTheMapUnderThePointer();
    void theStatusBarTellsOfTheActiveWindow();
    void theProgressBarHidesWhenTheMapIsComplete();
    void theStatusBarKeepsItsWidths();

    void theSnapshotActionSavesTheView();
    void fullScreenTakesTheMapAndGivesItBack();
    void aFullScreenMapThatIsClosedTakesItsWindowAlong();
    void theWindowMenuNamesTheMaps();
    void closingTheLastWindowLeavesTheProgram();
    void shortcutsReachTheirActions();
    void theLayoutIsKeptBetweenRuns();

private:
    QString path(const QString& name) const { return folder.filePath(name); }
    QList<MapWindow*> mapWindows() const;
    MapWindow* openMap(const QString& name);
    QAction* action(const QString& name) const { return window->findChild<QAction*>(name); }
    QString statusText(const QString& label) const
    {
        return window->statusBar()->findChild<QLabel*>(label)->text();
    }
    QString shownScale() const
    {
        return window->statusBar()->findChild<QComboBox*>("scale")->currentText();
    }
    /// The mouse as the window system reports it: positions in the view, buttons as they are held.
    void press(QWidget* view, const QPoint& position) const
    {
        QTest::mousePress(view->window()->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                          view->mapTo(view->window(), position));
    }
    void move(QWidget* view, const QPoint& position) const
    {
        QTest::mouseMove(view->window()->windowHandle(), view->mapTo(view->window(), position));
    }
    void release(QWidget* view, const QPoint& position) const
    {
        QTest::mouseRelease(view->window()->windowHandle(), Qt::LeftButton, Qt::NoModifier,
                            view->mapTo(view->window(), position));
    }
    void chooseIn(const QString& dialogName, const QStringList& files);
    bool drop(const QPoint& position, const QStringList& files, Qt::KeyboardModifiers modifiers);

    QTemporaryDir folder;
    std::unique_ptr<ViewerWindow> window;
};

void ViewerWindowTest::initTestCase()
{
    QVERIFY(folder.isValid());
    QLocale::setDefault(QLocale("en_US"));
    Application::instance()->getSettings()->setValue("Gui/MapView/UseAnimation", false);
    TestImages::Layout layout;
    TestImages::writeRgb(path("metres.tif"), layout);
    layout.epsg = 4326;
    layout.origin = QPointF(10.0, 50.0);
    layout.cell = 0.001;
    layout.noise = true;
    TestImages::writeRgb(path("degrees.tif"), layout);
}

void ViewerWindowTest::init()
{
    const bool isFirstRun = !qEnvironmentVariableIsSet("SECOND_RUN");
    if (isFirstRun) {
        Application::instance()->getSettings()->remove("Viewer");
        Application::instance()->getSettings()->remove("Gui/MainWindow");
    }
    window = std::make_unique<ViewerWindow>();
    if (isFirstRun) {
        window->resize(900, 700);
    }
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
}

void ViewerWindowTest::cleanup()
{
    window.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QList<MapWindow*> ViewerWindowTest::mapWindows() const
{
    QList<MapWindow*> windows;
    for (QMdiSubWindow* subWindow : window->getMdiArea()->subWindowList()) {
        windows << qobject_cast<MapWindow*>(subWindow);
    }
    return windows;
}

/// The window of a map that is open, complete and painted.
MapWindow* ViewerWindowTest::openMap(const QString& name)
{
    window->openFiles({path(name)});
    MapWindow* map = mapWindows().last();
    const auto isComplete = [map] {
        return map->getView()->getNumberOfLayers() == 1 &&
               map->getView()->getLayerAt(0)->getPercentComplete() == 100;
    };
    if (!QTest::qWaitFor(isComplete)) {
        qWarning("%s does not open", qPrintable(name));
    }
    QCoreApplication::processEvents();
    return map;
}

void ViewerWindowTest::chooseIn(const QString& dialogName, const QStringList& files)
{
    const auto dialog = window->findChild<QFileDialog*>(dialogName);
    QVERIFY(dialog);
    QVERIFY(QTest::qWaitForWindowExposed(dialog));
    QStringList quoted;
    for (const QString& file : files) {
        quoted << '"' + file + '"';
    }
    const auto edit = dialog->findChild<QLineEdit*>("fileNameEdit");
    edit->selectAll();
    QTest::keyClicks(edit, files.size() == 1 ? files.first() : quoted.join(' '));
    const auto buttons = dialog->findChild<QDialogButtonBox*>("buttonBox");
    const auto accepting = dialog->acceptMode() == QFileDialog::AcceptSave ? QDialogButtonBox::Save
                                                                           : QDialogButtonBox::Open;
    QTest::mouseClick(buttons->button(accepting), Qt::LeftButton);
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

void ViewerWindowTest::modeActionsWorkOnTheActiveWindow()
{
    MapWindow* map = openMap("metres.tif");
    const auto mode = [map] { return map->getView()->getViewManager()->getPointerMode(); };
    QCOMPARE(mode(), Map::IClient::Roam);
    QVERIFY(action("actionRoam")->isChecked());

    action("actionZoom")->trigger();
    QCOMPARE(mode(), Map::IClient::Zoom);
    QVERIFY(!action("actionRoam")->isChecked());
    action("actionZoomBox")->trigger();
    QCOMPARE(mode(), Map::IClient::ZoomBox);
    action("actionPoint")->trigger();
    QCOMPARE(mode(), Map::IClient::Point);
    QCOMPARE(map->getView()->cursor().shape(), Qt::ArrowCursor);
    action("actionRoam")->trigger();
    QCOMPARE(mode(), Map::IClient::Roam);
}

void ViewerWindowTest::modeActionsFollowTheActiveWindow()
{
    MapWindow* first = openMap("metres.tif");
    action("actionZoomBox")->trigger();
    openMap("degrees.tif");
    QVERIFY(action("actionRoam")->isChecked());
    window->getMdiArea()->setActiveSubWindow(first);
    QVERIFY(action("actionZoomBox")->isChecked());
    QVERIFY(!action("actionRoam")->isChecked());
}

void ViewerWindowTest::mapActionsNeedAMap()
{
    const QStringList names{"actionRoam",      "actionZoom",         "actionZoomBox",
                            "actionPoint",     "actionZoomIn",       "actionZoomOut",
                            "actionZoomToAll", "actionClose",        "actionZoomOneToOne",
                            "actionSnapshot",  "actionFullScreenMap"};
    for (const QString& name : names) {
        QVERIFY2(!action(name)->isEnabled(), qPrintable(name));
    }
    openMap("metres.tif");
    for (const QString& name : names) {
        QVERIFY2(action(name)->isEnabled(), qPrintable(name));
    }
    QVERIFY(action("actionOpen")->isEnabled());
}

void ViewerWindowTest::zoomActionsMoveTheActiveMap()
{
    MapWindow* other = openMap("degrees.tif");
    MapWindow* map = openMap("metres.tif");
    const QRectF otherBounds = other->getView()->getBounds();
    const QRectF all = map->getView()->getBounds();
    const auto width = [map] { return map->getView()->getBounds().width(); };

    action("actionZoomIn")->trigger();
    QCOMPARE(width(), all.width() / 2.0);
    action("actionZoomOut")->trigger();
    action("actionZoomOut")->trigger();
    QCOMPARE(width(), all.width() * 2.0);
    action("actionZoomToAll")->trigger();
    QCOMPARE(map->getView()->getBounds(), all);
    action("actionZoomOneToOne")->trigger();
    const double cells = width() / 2.0;
    QVERIFY(std::abs(cells - map->getView()->width()) < 2.0);
    QCOMPARE(other->getView()->getBounds(), otherBounds);
}

void ViewerWindowTest::aBoxIsNotDrawnBetweenTwoDrags()
{
    Map::MapView* view = openMap("metres.tif")->getView();
    action("actionZoomBox")->trigger();
    press(view, QPoint(100, 100));
    move(view, QPoint(200, 200));
    release(view, QPoint(200, 200));
    QTRY_COMPARE(view->getLayerAt(0)->getPercentComplete(), qint8(100));
    const QImage before = view->grab().toImage();
    move(view, QPoint(300, 250));
    QCOMPARE(view->grab().toImage(), before);
}

void ViewerWindowTest::aDragRoams()
{
    Map::MapView* view = openMap("metres.tif")->getView();
    const QRectF before = view->getBounds();
    const double perPixel = before.width() / (view->width() - 1);
    press(view, QPoint(100, 100));
    move(view, QPoint(150, 120));
    release(view, QPoint(150, 120));
    QVERIFY(std::abs(view->getBounds().left() - (before.left() - 50 * perPixel)) < 1e-6);
    QVERIFY(std::abs(view->getBounds().top() - (before.top() + 20 * perPixel)) < 1e-6);
}

void ViewerWindowTest::theStatusBarShowsWhereThePointerIs()
{
    Map::MapView* view = openMap("metres.tif")->getView();
    view->setBounds(500000.0, 4650000.0, 500000.0 + view->width() - 1,
                    4650000.0 - view->height() + 1);
    for (const char* mode : {"actionRoam", "actionZoom", "actionZoomBox", "actionPoint"}) {
        action(mode)->trigger();
        move(view, QPoint(10, 20));
        QTRY_COMPARE(statusText("coordinates"), QString("X: 500010  Y: 4649980"));
        move(view, QPoint(11, 20));
        QTRY_COMPARE(statusText("coordinates"), QString("X: 500011  Y: 4649980"));
    }
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(view, &leave);
    QCOMPARE(statusText("coordinates"), QString());
}

void ViewerWindowTest::theStatusBarFollowsTheMapUnderThePointer()
{
    Map::MapView* view = openMap("metres.tif")->getView();
    move(view, QPoint(0, 0));
    view->setBounds(500000.0, 4650000.0, 500000.0 + view->width() - 1,
                    4650000.0 - view->height() + 1);
    QTRY_COMPARE(statusText("coordinates"), QString("X: 500000  Y: 4650000"));
    action("actionZoomOut")->trigger();
    QVERIFY(statusText("coordinates") != QString("X: 500000  Y: 4650000"));
}

void ViewerWindowTest::theStatusBarTellsOfTheActiveWindow()
{
    MapWindow* metres = openMap("metres.tif");
    const QString ofMetres = shownScale();
    QVERIFY2(ofMetres.startsWith("1:"), qPrintable(ofMetres));
    MapWindow* degrees = openMap("degrees.tif");
    QVERIFY2(shownScale().startsWith("1:") && shownScale() != ofMetres, qPrintable(shownScale()));
    move(degrees->getView(), QPoint(50, 50));
    move(degrees->getView(), QPoint(5, 5));
    QTRY_VERIFY(statusText("coordinates").contains(QChar(0xb0)));

    window->getMdiArea()->setActiveSubWindow(metres);
    QCOMPARE(statusText("coordinates"), QString());
    QCOMPARE(shownScale(), ofMetres);
    action("actionZoomIn")->trigger();
    QVERIFY(shownScale() != ofMetres);
}

void ViewerWindowTest::theProgressBarHidesWhenTheMapIsComplete()
{
    openMap("metres.tif");
    const auto bar = window->statusBar()->findChild<QProgressBar*>("progress");
    QTRY_VERIFY(!bar->isVisible());

    TestImages::Layout layout;
    layout.size = QSize(1024, 1024);
    layout.noise = true;
    layout.options = QStringList{"TILED=YES"};
    TestImages::writeRgb(path("remote.tif"), layout);
    QFile file(path("remote.tif"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    StallingServer server(file.readAll(), 16384); // its tiles never come
    window->openFiles({server.addressOf("remote.tif")});
    QTRY_VERIFY(bar->isVisible());
    QVERIFY(bar->value() < 100);
    action("actionClose")->trigger();
    QTRY_VERIFY(!bar->isVisible());
}

void ViewerWindowTest::theStatusBarKeepsItsWidths()
{
    const auto edges = [this] {
        QList<int> x;
        for (const char* name : {"coordinateForm", "coordinates", "scale", "zoom", "progress"}) {
            const auto part = window->statusBar()->findChild<QWidget*>(name);
            x << part->x() << part->width();
        }
        return x;
    };
    const QList<int> empty = edges();
    Map::MapView* view = openMap("degrees.tif")->getView();
    move(view, QPoint(50, 50));
    move(view, QPoint(5, 5));
    QTRY_VERIFY(!statusText("coordinates").isEmpty());
    QCoreApplication::processEvents();
    QCOMPARE(edges(), empty);
    window->statusBar()->findChild<QProgressBar*>("progress")->show();
    QCoreApplication::processEvents();
    QCOMPARE(edges(), empty);
}

void ViewerWindowTest::theSnapshotActionSavesTheView()
{
    Map::MapView* view = openMap("metres.tif")->getView();
    view->setFocus();
    QTest::keyClick(view, Qt::Key_F9);
    const QImage shown = paintMapPicture(*view, 1.0);
    chooseIn("pictureDialog", {path("saved.png")});
    QTRY_VERIFY(QFile::exists(path("saved.png")));
    const QImage saved = QImage(path("saved.png")).convertToFormat(QImage::Format_RGB32);
    QCOMPARE(saved.size(), view->size());
    QCOMPARE(saved, shown);
    QCOMPARE(saved, view->grab().toImage().convertToFormat(QImage::Format_RGB32));

    action("actionSnapshot")->trigger();
    chooseIn("pictureDialog", {path("saved.gif")});
    QTRY_VERIFY(window->findChild<QMessageBox*>("saveFailure"));
    QVERIFY(!QFile::exists(path("saved.gif")));
}

void ViewerWindowTest::fullScreenTakesTheMapAndGivesItBack()
{
    MapWindow* map = openMap("metres.tif");
    Map::MapView* view = map->getView();
    QTest::keyClick(view, Qt::Key_F12);
    QVERIFY(view->isFullScreen());
    QVERIFY(view->isWindow());
    QVERIFY(map->isMapFullScreen());
    QVERIFY(action("actionFullScreenMap")->isChecked());
    QCOMPARE(window->getActiveMapWindow(), map);
    QVERIFY(action("actionZoomIn")->isEnabled());

    QVERIFY(QTest::qWaitForWindowExposed(view));
    QTest::keyClick(view, Qt::Key_Escape);
    QVERIFY(!view->isWindow());
    QVERIFY(!map->isMapFullScreen());
    QVERIFY(!action("actionFullScreenMap")->isChecked());
    QCOMPARE(map->widget(), view);
    QVERIFY(view->isVisible());
    QCOMPARE(view->getNumberOfLayers(), 1);
}

void ViewerWindowTest::aFullScreenMapThatIsClosedTakesItsWindowAlong()
{
    QPointer<MapWindow> map = openMap("metres.tif");
    action("actionFullScreenMap")->trigger();
    map->getView()->close();
    QTRY_VERIFY(!map);
    QVERIFY(mapWindows().isEmpty());
    QVERIFY(!action("actionZoomIn")->isEnabled());

    QPointer<Map::MapView> view = openMap("degrees.tif")->getView();
    action("actionFullScreenMap")->trigger();
    mapWindows().first()->close();
    QTRY_VERIFY(!view);
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

void ViewerWindowTest::shortcutsReachTheirActions()
{
    MapWindow* first = openMap("metres.tif");
    MapWindow* second = openMap("degrees.tif");
    QWindow* handle = window->windowHandle();
    const auto width = [](MapWindow* map) { return map->getView()->getBounds().width(); };
    const double all = width(second);
    QTest::keyClick(handle, Qt::Key_Plus, Qt::ControlModifier);
    QCOMPARE(width(second), all / 2.0);
    QTest::keyClick(handle, Qt::Key_Minus, Qt::ControlModifier);
    QCOMPARE(width(second), all);
    QTest::keyClick(handle, Qt::Key_Tab, Qt::ControlModifier);
    QCOMPARE(window->getActiveMapWindow(), first);

    // the sub windows have a shortcut of their own to close them
    QTest::keyClick(handle, Qt::Key_W, Qt::ControlModifier);
    QTRY_COMPARE(mapWindows(), QList<MapWindow*>{second});
    QTest::keyClick(handle, Qt::Key_W, Qt::ControlModifier);
    QTRY_VERIFY(mapWindows().isEmpty());
    QTest::keyClick(handle, Qt::Key_Q, Qt::ControlModifier);
    QVERIFY(!window->isVisible());
}

// The second run is a process of its own, which leaves out the preparation.
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

    QProcess next;
    QProcessEnvironment surroundings = QProcessEnvironment::systemEnvironment();
    surroundings.insert("SECOND_RUN", "1");
    next.setProcessEnvironment(surroundings);
    next.setProcessChannelMode(QProcess::ForwardedChannels);
    next.start(QCoreApplication::applicationFilePath(), {"theLayoutIsKeptBetweenRuns"});
    QVERIFY(next.waitForFinished(-1));
    QCOMPARE(next.exitCode(), 0);
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Viewer Test");
    ViewerWindowTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}
#include "ViewerWindowTest.moc"
