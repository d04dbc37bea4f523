#include <tests/viewer/support/OpenViewer.h>

#include <viewer/batch/Startup.h>

#include <corvane/map/ViewManager.h>
#include <tests/support/EachInItsProcess.h>

#include <QFileDialog>
#include <QLineEdit>
#include <QMdiArea>
#include <QMenuBar>
#include <QScreen>
#include <QTreeWidget>
#include <QWindow>

using namespace Corvane;
using namespace Corvane::Viewer;

class FullScreenTest : public QObject
{
    Q_OBJECT
private slots:
    void init() { viewer = std::make_unique<OpenViewer>(); }
    void cleanup() { viewer.reset(); }

    void f11FillsTheScreenWithTheProgramAndGivesItBack();
    void aMaximizedWindowIsMaximizedAfterwards();
    void escapeLeavesFromTheMapAndFromThePanels();
    void aToolHasTheFirstUseOfEscape();
    void escapeInATextFieldIsTheFields();

    void f12FillsTheScreenWithTheMap();
    void keysLeaveTheMapsFullScreen_data();
    void keysLeaveTheMapsFullScreen();
    void theMapIsAsBeforeRightAfterLeaving();
    void theMapFillsTheScreenOfItsWindow();
    void aMaximizedMapIsMaximizedAfterwards();
    void aMapOfTabsComesBackToItsTab();
    void toolKeysWorkInTheMapsFullScreen();
    void aDialogOverTheProgramGivesTheMapBack();
    void anotherActiveMapGivesTheMapBack();

private:
    /// Without the release: the window may be gone by then.
    void press(QWidget* window, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyPress(window->windowHandle(), Qt::Key(key), modifiers);
    }
    MapWindow* openMapOnScreen();

    std::unique_ptr<OpenViewer> viewer;
};

MapWindow* FullScreenTest::openMapOnScreen()
{
    MapWindow* const map = viewer->openMap({"one.tif"});
    viewer->action("actionFullScreenMap")->trigger();
    if (!QTest::qWaitForWindowActive(map->getView())) {
        qFatal("the map does not come");
    }
    return map;
}

void FullScreenTest::f11FillsTheScreenWithTheProgramAndGivesItBack()
{
    ViewerWindow* const window = viewer->window.get();
    const QRect before = window->geometry();
    press(window, Qt::Key_F11);
    QVERIFY(window->isFullScreen());
    QCOMPARE(window->geometry(), window->screen()->geometry());
    QVERIFY(window->menuBar()->isVisible());
    QVERIFY(viewer->action("actionFullScreen")->isChecked());
    press(window, Qt::Key_F11);
    QVERIFY(!window->isFullScreen());
    QCOMPARE(window->geometry(), before);
    QVERIFY(!viewer->action("actionFullScreen")->isChecked());
}

void FullScreenTest::aMaximizedWindowIsMaximizedAfterwards()
{
    ViewerWindow* const window = viewer->window.get();
    window->showMaximized();
    viewer->action("actionFullScreen")->trigger();
    QVERIFY(window->isFullScreen());
    viewer->action("actionFullScreen")->trigger();
    QVERIFY(!window->isFullScreen());
    QVERIFY(window->isMaximized());
}

void FullScreenTest::escapeLeavesFromTheMapAndFromThePanels()
{
    ViewerWindow* const window = viewer->window.get();
    MapWindow* const map = viewer->openMap({"one.tif"});
    press(window, Qt::Key_Escape);
    QVERIFY(!window->isFullScreen());

    viewer->action("actionFullScreen")->trigger();
    map->getView()->setFocus();
    press(window, Qt::Key_Escape);
    QVERIFY(!window->isFullScreen());
    QVERIFY(!viewer->action("actionFullScreen")->isChecked());

    viewer->action("actionFullScreen")->trigger();
    window->findChild<QTreeWidget*>()->setFocus();
    press(window, Qt::Key_Escape);
    QVERIFY(!window->isFullScreen());
}

void FullScreenTest::aToolHasTheFirstUseOfEscape()
{
    struct Tool : QObject
    {
        bool eventFilter(QObject*, QEvent* event) override
        {
            const bool uses = event->type() == QEvent::KeyPress;
            count += uses ? 1 : 0;
            return uses;
        }
        int count = 0;
    } tool;
    MapWindow* const map = viewer->openMap({"one.tif"});
    viewer->action("actionFullScreen")->trigger();
    map->getView()->setFocus();
    map->getView()->installEventFilter(&tool);
    press(viewer->window.get(), Qt::Key_Escape);
    QCOMPARE(tool.count, 1);
    QVERIFY(viewer->window->isFullScreen());
    map->getView()->removeEventFilter(&tool);
}

void FullScreenTest::escapeInATextFieldIsTheFields()
{
    viewer->openMap({"one.tif"});
    viewer->action("actionFullScreen")->trigger();
    auto* const tree = viewer->window->findChild<QTreeWidget*>();
    QTRY_VERIFY(tree->topLevelItem(0) && tree->topLevelItem(0)->child(0));
    tree->setFocus();
    tree->editItem(tree->topLevelItem(0)->child(0));
    QVERIFY(tree->findChild<QLineEdit*>());
    press(viewer->window.get(), Qt::Key_Escape);
    QTRY_VERIFY(!tree->viewport()->findChild<QLineEdit*>());
    QVERIFY(viewer->window->isFullScreen());
}

void FullScreenTest::f12FillsTheScreenWithTheMap()
{
    MapWindow* const map = viewer->openMap({"one.tif"});
    press(viewer->window.get(), Qt::Key_F12);
    QVERIFY(map->isMapFullScreen());
    QVERIFY(map->getView()->isFullScreen());
    QVERIFY(viewer->action("actionFullScreenMap")->isChecked());
    QVERIFY(!viewer->window->isFullScreen());
}

void FullScreenTest::keysLeaveTheMapsFullScreen_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("the key that led there") << int(Qt::Key_F12);
    QTest::newRow("the key of the program's full screen") << int(Qt::Key_F11);
    QTest::newRow("Escape") << int(Qt::Key_Escape);
}

void FullScreenTest::keysLeaveTheMapsFullScreen()
{
    QFETCH(int, key);
    MapWindow* const map = openMapOnScreen();
    press(map->getView(), key);
    QVERIFY(!map->isMapFullScreen());
    QVERIFY(!map->getView()->isWindow());
    QVERIFY(!viewer->action("actionFullScreenMap")->isChecked());
    QVERIFY(!viewer->action("actionFullScreen")->isChecked());
    QVERIFY(!viewer->window->isFullScreen());
}

void FullScreenTest::theMapIsAsBeforeRightAfterLeaving()
{
    MapWindow* const map = viewer->openMap({"one.tif"});
    viewer->openMap({"two.tif"});
    viewer->action("actionTile")->trigger();
    viewer->window->getMdiArea()->setActiveSubWindow(map);
    Map::MapView* const view = map->getView();
    view->setPointerMode(Map::IClient::ZoomBox);
    const QRect frame = map->geometry();
    const QSize size = view->size();
    const QRectF bounds = view->getBounds();

    viewer->action("actionFullScreenMap")->trigger();
    QVERIFY(QTest::qWaitForWindowActive(view));
    QCOMPARE(view->size(), view->screen()->size());
    press(view, Qt::Key_F12);
    QCOMPARE(map->widget(), view);
    QVERIFY(view->isVisible());
    QVERIFY(!view->isFullScreen());
    QCOMPARE(view->windowState(), Qt::WindowStates(Qt::WindowNoState));
    QCOMPARE(viewer->window->getActiveMapWindow(), map);
    QCOMPARE(map->geometry(), frame);
    QTRY_COMPARE(view->size(), size);
    QCOMPARE(view->getBounds(), bounds);
    QCOMPARE(view->getViewManager()->getPointerMode(), Map::IClient::ZoomBox);
    QVERIFY(QTest::qWaitForWindowActive(viewer->window.get()));
    QTRY_COMPARE(QApplication::focusWidget(), view);
    QVERIFY(viewer->action("actionFullScreenMap")->isEnabled());
    press(viewer->window.get(), Qt::Key_F12); // and there again
    QVERIFY(map->isMapFullScreen());
}

void FullScreenTest::theMapFillsTheScreenOfItsWindow()
{
    MapWindow* const map = openMapOnScreen();
    QCOMPARE(map->getView()->screen(), viewer->window->screen());
    QCOMPARE(map->getView()->geometry(), viewer->window->screen()->geometry());
}

void FullScreenTest::aMaximizedMapIsMaximizedAfterwards()
{
    MapWindow* const map = viewer->openMap({"one.tif"}); // the first
    QVERIFY(map->isMaximized());
    const QSize size = map->getView()->size();
    viewer->action("actionFullScreenMap")->trigger();
    QVERIFY(QTest::qWaitForWindowActive(map->getView()));
    press(map->getView(), Qt::Key_Escape);
    QVERIFY(map->isMaximized());
    QTRY_COMPARE(map->getView()->size(), size);
}

void FullScreenTest::aMapOfTabsComesBackToItsTab()
{
    viewer->action("actionTabs")->trigger();
    viewer->openMap({"two.tif"});
    MapWindow* const map = openMapOnScreen();
    const QSize before = map->size();
    press(map->getView(), Qt::Key_F12);
    QCOMPARE(viewer->window->getActiveMapWindow(), map);
    QCOMPARE(map->size(), before);
    QVERIFY(map->getView()->isVisible());
    QCOMPARE(viewer->window->getMdiArea()->viewMode(), QMdiArea::TabbedView);
}

void FullScreenTest::toolKeysWorkInTheMapsFullScreen()
{
    MapWindow* const map = openMapOnScreen();
    const double width = map->getView()->getBounds().width();
    press(map->getView(), Qt::Key_Plus, Qt::ControlModifier);
    QCOMPARE(map->getView()->getBounds().width(), width / 2.0);
    QVERIFY(map->isMapFullScreen());
    press(map->getView(), Qt::Key_S, Qt::ControlModifier); // over the map, which stays
    auto* const dialog = map->getView()->findChild<QFileDialog*>("saveMapDialog");
    QVERIFY(dialog && QTest::qWaitForWindowActive(dialog));
    QVERIFY(map->isMapFullScreen());
}

void FullScreenTest::aDialogOverTheProgramGivesTheMapBack()
{
    MapWindow* const map = openMapOnScreen();
    press(map->getView(), Qt::Key_O, Qt::ControlModifier);
    QTRY_VERIFY(!map->isMapFullScreen());
    auto* const dialog = viewer->window->findChild<QFileDialog*>();
    QVERIFY(dialog && dialog->isVisible());
    QVERIFY(!viewer->action("actionFullScreenMap")->isChecked());
}

void FullScreenTest::anotherActiveMapGivesTheMapBack()
{
    MapWindow* const map = openMapOnScreen();
    press(map->getView(), Qt::Key_N, Qt::ControlModifier);
    QVERIFY(!map->isMapFullScreen());
    QVERIFY(viewer->window->getActiveMapWindow() != map);
    QVERIFY(!viewer->action("actionFullScreenMap")->isChecked());
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Full Screen Test");
    FullScreenTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}
#include "FullScreenTest.moc"
