#include <tests/viewer/support/TestImages.h>

#include <viewer/maps/CrosshairMark.h>
#include <viewer/access/KeyboardCursor.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/maps/PointerTracker.h>
#include <viewer/batch/Startup.h>
#include <viewer/window/ViewerWindow.h>

#include <corvane/core/Application.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>
#include <corvane/map/ViewManager.h>
#include <tests/support/EachInItsProcess.h>

#include <QAction>
#include <QMdiArea>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using namespace Corvane;
using namespace Corvane::Viewer;

namespace {

double centerOf(Map::MapView* view)
{
    return view->getBounds().center().x();
}

double widthOf(Map::MapView* view)
{
    return view->getBounds().width();
}

} // namespace

/// The tools of the map without a mouse.
class KeyboardCursorTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

    void needsAMap();
    void beginsInTheMiddleAndMovesByTheKeys();
    void tellsTheProgramLikeAMouse();
    void atTheEdgeTheMapMovesOn();
    void returnClicks();
    void controlAndReturnClickTwice();
    void aBoxIsDrawnBetweenTwoSpaces();
    void escapeEndsItAndLetsGo();
    void anotherMapHasNone();
    void theMapMayGoUnderIt();

private:
    Map::MapView* openMap();
    void turnOn() { action()->trigger(); }
    QAction* action() const { return window->findChild<QAction*>("actionKeyboardCursor"); }
    KeyboardCursor* cursor() const { return window->findChild<KeyboardCursor*>(); }

    QTemporaryDir folder;
    std::unique_ptr<ViewerWindow> window;
};

void KeyboardCursorTest::initTestCase()
{
    QVERIFY(folder.isValid());
    TestImages::writeRgb(folder.filePath("image.tif"), {});
}

void KeyboardCursorTest::init()
{
    Application::instance()->getSettings()->setValue("Gui/MapView/UseAnimation", false);
    window = std::make_unique<ViewerWindow>();
    window->resize(900, 700);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
}

void KeyboardCursorTest::cleanup()
{
    window.reset();
}

Map::MapView* KeyboardCursorTest::openMap()
{
    window->openFiles({folder.filePath("image.tif")});
    Map::MapView* const view = window->getActiveMapWindow()->getView();
    const auto isThere = [view] {
        return view->getNumberOfLayers() == 1 && view->getLayerAt(0)->getPercentComplete() == 100;
    };
    if (!QTest::qWaitFor(isThere)) {
        qWarning("the image does not open");
    }
    QCoreApplication::processEvents();
    return view;
}

void KeyboardCursorTest::needsAMap()
{
    QVERIFY(!action()->isEnabled());
    openMap();
    QVERIFY(action()->isEnabled());
    window->findChild<QAction*>("actionClose")->trigger();
    QTRY_VERIFY(!action()->isEnabled());
}

void KeyboardCursorTest::beginsInTheMiddleAndMovesByTheKeys()
{
    Map::MapView* const view = openMap();
    turnOn();
    QVERIFY(action()->isChecked());
    QVERIFY(view->hasFocus());
    const QPoint middle = view->rect().center();
    QCOMPARE(cursor()->getPosition(), middle);
    const auto mark = view->findChild<CrosshairMark*>();
    QCOMPARE(mark->geometry().center(), middle);
    const double before = centerOf(view);
    QTest::keyClick(view, Qt::Key_Right);
    QCOMPARE(cursor()->getPosition(), middle + QPoint(10, 0));
    QTest::keyClick(view, Qt::Key_Down, Qt::ControlModifier);
    QCOMPARE(cursor()->getPosition(), middle + QPoint(10, 1));
    QTest::keyClick(view, Qt::Key_Left, Qt::ShiftModifier);
    QCOMPARE(cursor()->getPosition(), middle + QPoint(-40, 1));
    QTest::keyClick(view, Qt::Key_Up);
    QCOMPARE(cursor()->getPosition(), middle + QPoint(-40, -9));
    QCOMPARE(mark->geometry().center(), cursor()->getPosition());
    QCOMPARE(centerOf(view), before);
}

void KeyboardCursorTest::tellsTheProgramLikeAMouse()
{
    Map::MapView* const view = openMap();
    const QSignalSpy moves(window->getActiveMapWindow()->getTracker(), &PointerTracker::moved);
    turnOn();
    QCOMPARE(moves.count(), 1);
    QTest::keyClick(view, Qt::Key_Right);
    double x = 0.0;
    double y = 0.0;
    const QPoint place = view->rect().center() + QPoint(10, 0);
    view->getViewManager()->convertDeviceToWorld(place.x(), place.y(), &x, &y);
    QCOMPARE(moves.last().first().toPointF(), QPointF(x, y));
}

void KeyboardCursorTest::atTheEdgeTheMapMovesOn()
{
    Map::MapView* const view = openMap();
    turnOn();
    const double before = centerOf(view);
    for (int i = 0; i < view->width() / 2 / 50 + 1; ++i) {
        QTest::keyClick(view, Qt::Key_Right, Qt::ShiftModifier);
    }
    QCOMPARE(cursor()->getPosition().x(), view->rect().right());
    QCOMPARE(centerOf(view), before);
    QTest::keyClick(view, Qt::Key_Right);
    QVERIFY(centerOf(view) > before);
    QCOMPARE(cursor()->getPosition().x(), view->rect().right());
}

void KeyboardCursorTest::returnClicks()
{
    Map::MapView* const view = openMap();
    view->setPointerMode(Map::IClient::Point);
    turnOn();
    const QSignalSpy points(view, &Map::MapView::pointerCoordChanged);
    QTest::keyClick(view, Qt::Key_Return);
    QVERIFY(!points.isEmpty());
    double x = 0.0;
    double y = 0.0;
    const QPoint place = cursor()->getPosition();
    view->getViewManager()->convertDeviceToWorld(place.x(), place.y(), &x, &y);
    QCOMPARE(points.last().first().toPointF(), QPointF(x, y));
}

void KeyboardCursorTest::controlAndReturnClickTwice()
{
    Map::MapView* const view = openMap();
    turnOn();
    const double before = widthOf(view);
    QTest::keyClick(view, Qt::Key_Return, Qt::ControlModifier);
    QCOMPARE(widthOf(view), before / 2.0);
}

void KeyboardCursorTest::aBoxIsDrawnBetweenTwoSpaces()
{
    Map::MapView* const view = openMap();
    view->setPointerMode(Map::IClient::ZoomBox);
    turnOn();
    const QPoint first = cursor()->getPosition();
    double left = 0.0;
    double top = 0.0;
    view->getViewManager()->convertDeviceToWorld(first.x(), first.y(), &left, &top);
    const double before = widthOf(view);
    QTest::keyClick(view, Qt::Key_Space);
    QTest::keyClick(view, Qt::Key_Right, Qt::ShiftModifier);
    QTest::keyClick(view, Qt::Key_Right, Qt::ShiftModifier);
    QTest::keyClick(view, Qt::Key_Down, Qt::ShiftModifier);
    QCOMPARE(widthOf(view), before);
    QTest::keyClick(view, Qt::Key_Space);
    QTRY_VERIFY(widthOf(view) < before / 2.0);
    const QRectF shown = view->getBounds();
    QVERIFY(shown.left() <= left && left < shown.left() + shown.width() / 2.0);
}

void KeyboardCursorTest::escapeEndsItAndLetsGo()
{
    Map::MapView* const view = openMap();
    turnOn();
    QTest::keyClick(view, Qt::Key_Space);
    QTest::keyClick(view, Qt::Key_Right, Qt::ShiftModifier);
    QTest::keyClick(view, Qt::Key_Escape);
    QVERIFY(!action()->isChecked());
    QVERIFY(!view->findChild<CrosshairMark*>());
    const double before = centerOf(view);
    QTest::mouseMove(view, view->rect().center());
    QTest::mouseMove(view, view->rect().center() + QPoint(30, 0));
    QCOMPARE(centerOf(view), before); // no drag goes on
    QTest::keyClick(view, Qt::Key_Right);
    QVERIFY(centerOf(view) != before);
}

void KeyboardCursorTest::anotherMapHasNone()
{
    Map::MapView* const first = openMap();
    turnOn();
    Map::MapView* const second = openMap();
    QVERIFY(!action()->isChecked());
    QVERIFY(!first->findChild<CrosshairMark*>());
    turnOn();
    QVERIFY(second->findChild<CrosshairMark*>());
}

void KeyboardCursorTest::theMapMayGoUnderIt()
{
    Map::MapView* const view = openMap();
    turnOn();
    QTest::keyClick(view, Qt::Key_Space);
    window->findChild<QAction*>("actionClose")->trigger();
    QTRY_VERIFY(window->getMapWindows().isEmpty());
    QVERIFY(!action()->isChecked());
    openMap();
    turnOn();
    QVERIFY(action()->isChecked());
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Keyboard Cursor Test");
    KeyboardCursorTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}
#include "KeyboardCursorTest.moc"
