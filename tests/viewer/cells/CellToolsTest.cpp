#include <tests/viewer/cells/CellStage.h>

#include <viewer/maps/MapWindow.h>
#include <viewer/batch/Startup.h>
#include <viewer/window/ViewerWindow.h>

#include <corvane/core/Application.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>
#include <tests/gui/PanelPictures.h>
#include <tests/plugins/SlowServer.h>
#include <tests/support/EachInItsProcess.h>

#include <QAction>
#include <QDockWidget>
#include <QFile>
#include <QLabel>
#include <QThreadPool>
#include <QtTest>

#include <thread>

using namespace Corvane;
using namespace Corvane::Tests;
using namespace Corvane::Viewer;

/// The two panels that name the values of cells together: their commands, servers that keep them
/// waiting, and what goes while they look.
class CellToolsTest : public CellStage
{
    Q_OBJECT
private slots:
    void theCommandsShowAndHideThePanels();

    void aServerThatKeepsOneWaitingIsToldOf();
    void aServerWithoutAnAnswerIsToldOf();
    void layersAndMapsMayGoWhileThePanelsLook();
    void theWindowMayGoWhileAServerKeepsThePanelsWaiting();
    void picturesOfThePanels();

private:
    bool openFrom(SlowServer& server);
    QByteArray largeFile();
};

/// Of which the view of all of it reads an overview.
QByteArray CellToolsTest::largeFile()
{
    RasterRecipe recipe = numbers();
    recipe.size = QSize(2400, 2000);
    recipe.bands = 1;
    recipe.finish = nullptr;
    QFile file(path("large.tif"));
    return makeRaster(file.fileName(), recipe) && file.open(QIODevice::ReadOnly) ? file.readAll()
                                                                                 : QByteArray();
}

bool CellToolsTest::openFrom(SlowServer& server)
{
    window->openFiles({server.url("far.tif")});
    view = window->getActiveMapWindow()->getView();
    return QTest::qWaitFor([this] { return view->getNumberOfLayers() == 1; }, patience) &&
           QTest::qWaitFor([this] { return view->getLayerAt(0)->getPercentComplete() == 100; },
                           patience) &&
           QThreadPool::globalInstance()->waitForDone(patience);
}

void CellToolsTest::theCommandsShowAndHideThePanels()
{
    QCOMPARE(action("actionIdentify")->shortcut(), QKeySequence("Ctrl+Shift+I"));
    for (const auto& [command, name] :
         {std::pair("actionIdentify", "identifyDock"), std::pair("actionCellGrid", "cellGridDock")})
    {
        auto* const dock = part<QDockWidget>(name);
        QVERIFY(dock && !dock->isVisible());
        QVERIFY(!action(command)->isChecked());
        action(command)->trigger();
        QVERIFY(dock->isVisible());
        QVERIFY(action(command)->isChecked());
        dock->close();
        QVERIFY(!action(command)->isChecked());
        action(command)->trigger();
        action(command)->trigger();
        QVERIFY(!dock->isVisible());
    }
    action("actionIdentify")->trigger();
    QCOMPARE(part<QLabel>("identifyHint")->text(), QString("There is no map."));
}

void CellToolsTest::aServerThatKeepsOneWaitingIsToldOf()
{
    SlowServer server(largeFile(), true);
    QVERIFY(openFrom(server));
    action("actionIdentify")->trigger();
    action("actionCellGrid")->trigger();
    server.setOpen(false);
    view->setBounds(1200.0, 1200.0, 1300.0, 1140.0); // far from all that has been read
    pointAt(105, 1905);
    QTRY_COMPARE_WITH_TIMEOUT(identified().join(" | "), QString("far.tif: waiting..."), patience);
    QTRY_COMPARE_WITH_TIMEOUT(part<QLabel>("cellGridState")->text(), QString("waiting..."),
                              patience);
    QCOMPARE(gridRow(2), QStringList({"", "", "", "", ""}));
    for (int column = 106; column < 140; ++column) {
        pointAt(column, 1905); // of all of these only the last is asked for
    }
    server.setOpen(true);
    QTRY_COMPARE_WITH_TIMEOUT(identified().value(0), QString("far.tif: column 139, row 1905"),
                              patience);
    QTRY_COMPARE_WITH_TIMEOUT(gridRow(2).value(2), QString("2905139"), patience);
    QVERIFY(part<QLabel>("cellGridState")->isHidden());
}

void CellToolsTest::aServerWithoutAnAnswerIsToldOf()
{
    SlowServer server(largeFile(), true);
    QVERIFY(openFrom(server));
    server.breakDown();
    action("actionIdentify")->trigger();
    action("actionCellGrid")->trigger();
    view->setBounds(1200.0, 1200.0, 1300.0, 1140.0);
    pointAt(105, 1905);
    QTRY_VERIFY_WITH_TIMEOUT(identified().value(0).startsWith("far.tif: no answer: "), patience);
    QCOMPARE(identified().size(), 1);
    QTRY_VERIFY_WITH_TIMEOUT(part<QLabel>("cellGridState")->text().startsWith("no answer: "),
                             patience);
}

void CellToolsTest::layersAndMapsMayGoWhileThePanelsLook()
{
    MapWindow* const map = openMap("numbers.tif");
    window->addFiles({path("plain.tif")}, map);
    QTRY_COMPARE_WITH_TIMEOUT(view->getNumberOfLayers(), 2, patience);
    action("actionIdentify")->trigger();
    action("actionCellGrid")->trigger();
    click(deviceOf(60, 45));
    QTRY_COMPARE_WITH_TIMEOUT(identified().size(), 6, patience);
    view->deleteLayerAt(1);
    QTRY_COMPARE_WITH_TIMEOUT(identified().size(), 4, patience);
    QTRY_COMPARE_WITH_TIMEOUT(part<QLabel>("cellGridLayer")->text(), QString("numbers.tif"),
                              patience);
    pointAt(61, 45);
    view->deleteAllLayers();
    QTRY_COMPARE_WITH_TIMEOUT(identified(), QStringList(), patience);
    map->close();
    QTRY_COMPARE_WITH_TIMEOUT(part<QLabel>("identifyHint")->text(), QString("There is no map."),
                              patience);
    QTRY_COMPARE_WITH_TIMEOUT(part<QLabel>("cellGridState")->text(), QString("There is no map."),
                              patience);
    openMap("numbers.tif");
    QTRY_COMPARE_WITH_TIMEOUT(identified().size(), 4, patience);
}

void CellToolsTest::theWindowMayGoWhileAServerKeepsThePanelsWaiting()
{
    SlowServer server(largeFile(), true);
    QVERIFY(openFrom(server));
    server.setOpen(false);
    action("actionIdentify")->trigger();
    action("actionCellGrid")->trigger();
    view->setBounds(1200.0, 1200.0, 1300.0, 1140.0);
    pointAt(105, 1905);
    QTRY_COMPARE_WITH_TIMEOUT(identified(), QStringList("far.tif: waiting..."), patience);
    view->deleteLayerAt(0);
    QTRY_COMPARE_WITH_TIMEOUT(identified(), QStringList(), patience);
    std::thread opener([&server] { // the plugin waits for what its threads have begun
        QThread::yieldCurrentThread();
        server.setOpen(true);
    });
    window.reset();
    opener.join();
}

void CellToolsTest::picturesOfThePanels()
{
    MapWindow* const map = openMap("numbers.tif");
    window->addFiles({path("plain.tif")}, map);
    QTRY_COMPARE_WITH_TIMEOUT(view->getNumberOfLayers(), 2, patience);
    window->resize(1300, 900);
    action("actionIdentify")->trigger();
    action("actionCellGrid")->trigger();
    QCoreApplication::processEvents();
    view->setBounds(1060.0, 4950.0, 1200.0, 4870.0);
    click(deviceOf(50, 40));
    QTRY_COMPARE_WITH_TIMEOUT(identified().size(), 6, patience);
    QTRY_COMPARE_WITH_TIMEOUT(gridRow(2).value(2), QString("45"), patience);
    QTRY_COMPARE_WITH_TIMEOUT(int(view->getLayerAt(1)->getPercentComplete()), 100, patience);
    QCOMPARE(takePictures(*window, "CellTools").join("; "), QString());
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Cell Tools Test");
    CellToolsTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}

#include "CellToolsTest.moc"
