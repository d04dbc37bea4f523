#include <tests/viewer/window/WindowStage.h>

#include <viewer/output/MapPicture.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/batch/Startup.h>

#include <corvane/core/Application.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>
#include <corvane/map/ViewManager.h>
#include <tests/support/EachInItsProcess.h>

#include <QAction>
#include <QFile>
#include <QImage>
#include <QMdiArea>
#include <QMessageBox>
#include <QPointer>
#include <QWindow>
#include <QtTest>

#include <cmath>

using namespace Corvane;
using namespace Corvane::Viewer;

/// The commands of maps, given to the one that is active.
class MapCommandsTest : public WindowStage
{
    Q_OBJECT
private slots:
    void modeActionsWorkOnTheActiveWindow();
    void modeActionsFollowTheActiveWindow();
    void mapActionsNeedAMap();
    void zoomActionsMoveTheActiveMap();
    void aBoxIsNotDrawnBetweenTwoDrags();
    void aDragRoams();

    void theSnapshotActionSavesTheView();
    void fullScreenTakesTheMapAndGivesItBack();
    void aFullScreenMapThatIsClosedTakesItsWindowAlong();
    void shortcutsReachTheirActions();
};

void MapCommandsTest::modeActionsWorkOnTheActiveWindow()
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

void MapCommandsTest::modeActionsFollowTheActiveWindow()
{
    MapWindow* first = openMap("metres.tif");
    action("actionZoomBox")->trigger();
    openMap("degrees.tif");
    QVERIFY(action("actionRoam")->isChecked());
    window->getMdiArea()->setActiveSubWindow(first);
    QVERIFY(action("actionZoomBox")->isChecked());
    QVERIFY(!action("actionRoam")->isChecked());
}

void MapCommandsTest::mapActionsNeedAMap()
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

void MapCommandsTest::zoomActionsMoveTheActiveMap()
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

void MapCommandsTest::aBoxIsNotDrawnBetweenTwoDrags()
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

void MapCommandsTest::aDragRoams()
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

void MapCommandsTest::theSnapshotActionSavesTheView()
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

void MapCommandsTest::fullScreenTakesTheMapAndGivesItBack()
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

void MapCommandsTest::aFullScreenMapThatIsClosedTakesItsWindowAlong()
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

void MapCommandsTest::shortcutsReachTheirActions()
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

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Map Commands Test");
    MapCommandsTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}
#include "MapCommandsTest.moc"
