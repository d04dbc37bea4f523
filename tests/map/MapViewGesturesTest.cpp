#include "MapViewPrivates.h"
#include "MapViewTools.h"

#include <corvane/map/MapCanvas.h>
#include <corvane/map/ViewManager.h>

#include <QEvent>

#include <cmath>

using Corvane::Map::IClient;
using Corvane::Map::MapView;

namespace {

/// A shown view with one layer, both of which write into one journal.
struct JournalView
{
    explicit JournalView(Motion motion) : view(makeView(motion))
    {
        view->addLayer(new JournalLayer("a", &journal));
        view->setBounds(0.0, 100.0, 100.0, 0.0);
        QCoreApplication::processEvents();
        record(*view, &journal);
        journal.clear();
    }

    IClient::PointerMode mode() { return view->getViewManager()->getPointerMode(); }
    Qt::CursorShape cursor() { return view->cursor().shape(); }
    QString extents() { return text(view->getBounds()); }

    /// Puts the animation's clock forward; 200 is its end.
    void runTo(int milliseconds) { animationOf(*view).setCurrentTime(milliseconds); }

    QStringList journal;
    std::unique_ptr<MapView> view;
};

/// One change of the extents by the manager.
QStringList fired(const QString& extents)
{
    return {QStringLiteral("a setView 101x101 ") + extents, QStringLiteral("extents ") + extents};
}

/// One setBounds with a rectangle of the widget's shape.
QStringList set(const QString& extents)
{
    return fired(extents) + QStringList{QStringLiteral("extents ") + extents};
}

QString zoomed(QPoint anchor, double factor)
{
    const double x = anchor.x();
    const double y = 100.0 - anchor.y();
    return text((0.0 - x) * factor + x, (100.0 - y) * factor + y, (100.0 - x) * factor + x,
                (0.0 - y) * factor + y);
}

double zoomIn(int pixels)
{
    return std::pow(1.015, -pixels);
}

class OpenView : public MapView
{
public:
    using MapView::enterEvent;
    using MapView::keyReleaseEvent;
    using MapView::leaveEvent;
};

/// Counts what its child does not take.
class Parent : public QWidget
{
public:
    int wheels = 0;

protected:
    void wheelEvent(QWheelEvent* event) override
    {
        ++wheels;
        event->accept();
    }
};

} // namespace

class MapViewGesturesTest : public QObject
{
    Q_OBJECT
private slots:
    void aPressChoosesTheDrag_data();
    void aPressChoosesTheDrag();
    void theButtonsDownDecideAndNotTheLastOne();
    void aReleaseRestoresTheModeAndItsCursor_data();
    void aReleaseRestoresTheModeAndItsCursor();
    void aSecondPressKeepsTheModeOfTheDrag();
    void outsideRoamAPressKeepsTheMode_data();
    void outsideRoamAPressKeepsTheMode();
    void everyGestureEventIsAccepted_data();
    void everyGestureEventIsAccepted();

    void aDragRoams_data();
    void aDragRoams();
    void aRightDragZoomsAboutThePress();
    void aShiftDragZoomsAboutThePress();
    void aControlDragZoomsToTheBox();
    void aBoxTakesTheShapeOfTheWidget();
    void aClickInBoxModeOnlyClosesTheBracket();
    void aMoveWithoutAButtonMovesNothing();
    void aBoxMoveAsksForARepaint();

    void pointModeReadsCoordinates();
    void pointModeFollowsATrackedPointer();

    void aPressStopsTheAnimation();

    void aDoubleClickZoomsInAboutThePoint_data();
    void aDoubleClickZoomsInAboutThePoint();
    void twoDoubleClicksZoomByFour();
    void aDoubleClickIsAnimated();

    void theWheelWithAButtonHeldIsLeftToTheParent_data();
    void theWheelWithAButtonHeldIsLeftToTheParent();
    void theWheelTakesTheMiddleButton();
    void theWheelIsAnimatedByTwo_data();
    void theWheelIsAnimatedByTwo();
    void theAnimatedWheelFollowsTheCurveAndClosesTheBracket();
    void aWheelStepDuringAnAnimationAddsUp();
    void withoutAnimationTheWheelIsAZoomDrag_data();
    void withoutAnimationTheWheelIsAZoomDrag();
    void withoutAnimationTheWheelKeepsModeAndCursor();
    void theWheelPositionLosesItsFraction();

    void enterLeaveAndKeyReleaseAreIgnored();
};

void MapViewGesturesTest::aPressChoosesTheDrag_data()
{
    QTest::addColumn<int>("button");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<int>("mode");
    QTest::addColumn<Qt::CursorShape>("cursor");
    const int none = Qt::NoModifier;
    const int shift = Qt::ShiftModifier;
    const int control = Qt::ControlModifier;
    QTest::newRow("left roams") << int(Qt::LeftButton) << none << int(IClient::Roam)
                                << Qt::ClosedHandCursor;
    QTest::newRow("middle roams") << int(Qt::MiddleButton) << none << int(IClient::Roam)
                                  << Qt::ClosedHandCursor;
    QTest::newRow("right zooms") << int(Qt::RightButton) << none << int(IClient::Zoom)
                                 << Qt::CrossCursor;
    QTest::newRow("a further button changes nothing")
        << int(Qt::BackButton) << none << int(IClient::Roam) << Qt::OpenHandCursor;
    QTest::newRow("shift zooms") << int(Qt::LeftButton) << shift << int(IClient::Zoom)
                                 << Qt::CrossCursor;
    QTest::newRow("shift zooms with the right button too")
        << int(Qt::RightButton) << shift << int(IClient::Zoom) << Qt::CrossCursor;
    QTest::newRow("control draws a box")
        << int(Qt::LeftButton) << control << int(IClient::ZoomBox) << Qt::CrossCursor;
    QTest::newRow("control draws a box with the right button too")
        << int(Qt::RightButton) << control << int(IClient::ZoomBox) << Qt::CrossCursor;
    QTest::newRow("shift goes before control")
        << int(Qt::LeftButton) << (shift | control) << int(IClient::Zoom) << Qt::CrossCursor;
    QTest::newRow("alt means nothing") << int(Qt::LeftButton) << int(Qt::AltModifier)
                                       << int(IClient::Roam) << Qt::ClosedHandCursor;
}

void MapViewGesturesTest::aPressChoosesTheDrag()
{
    QFETCH(int, button);
    QFETCH(int, modifiers);
    QFETCH(int, mode);
    QFETCH(Qt::CursorShape, cursor);
    JournalView j(Motion::Direct);

    press(*j.view, QPoint(40, 40), Qt::MouseButton(button), Qt::KeyboardModifiers(modifiers));

    QCOMPARE(j.mode(), IClient::PointerMode(mode));
    QCOMPARE(j.cursor(), cursor);
    QCOMPARE(j.journal,
             QStringList({mode == IClient::Roam ? "a beginUpdate roam" : "a beginUpdate zoom"}));
}

void MapViewGesturesTest::theButtonsDownDecideAndNotTheLastOne()
{
    JournalView j(Motion::Direct);
    press(*j.view, QPoint(40, 40), Qt::LeftButton);
    sendMouse(*j.view, QEvent::MouseButtonPress, QPoint(40, 40), Qt::RightButton,
              Qt::LeftButton | Qt::RightButton);

    QCOMPARE(j.mode(), IClient::Roam);
    QCOMPARE(j.cursor(), Qt::ClosedHandCursor);
}

void MapViewGesturesTest::aReleaseRestoresTheModeAndItsCursor_data()
{
    aPressChoosesTheDrag_data();
}

void MapViewGesturesTest::aReleaseRestoresTheModeAndItsCursor()
{
    QFETCH(int, button);
    QFETCH(int, modifiers);
    JournalView j(Motion::Direct);

    press(*j.view, QPoint(40, 40), Qt::MouseButton(button), Qt::KeyboardModifiers(modifiers));
    release(*j.view, QPoint(40, 40), Qt::MouseButton(button));

    QCOMPARE(j.mode(), IClient::Roam);
    QCOMPARE(j.cursor(), Qt::OpenHandCursor);
    QCOMPARE(j.journal.last(), QStringLiteral("a endUpdate"));
    QCOMPARE(j.extents(), QStringLiteral("0 100 100 0"));
}

// Each press keeps the mode that it finds, that of a drag under way too.
void MapViewGesturesTest::aSecondPressKeepsTheModeOfTheDrag()
{
    JournalView j(Motion::Direct);
    press(*j.view, QPoint(40, 40), Qt::LeftButton, Qt::ShiftModifier);
    sendMouse(*j.view, QEvent::MouseButtonPress, QPoint(40, 40), Qt::RightButton,
              Qt::LeftButton | Qt::RightButton);
    release(*j.view, QPoint(40, 40), Qt::RightButton);
    release(*j.view, QPoint(40, 40), Qt::LeftButton);

    QCOMPARE(j.mode(), IClient::Zoom);
    QCOMPARE(j.cursor(), Qt::CrossCursor);
}

void MapViewGesturesTest::outsideRoamAPressKeepsTheMode_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("button");
    QTest::addColumn<int>("modifiers");
    QTest::newRow("zooming with control")
        << int(IClient::Zoom) << int(Qt::LeftButton) << int(Qt::ControlModifier);
    QTest::newRow("a box with shift")
        << int(IClient::ZoomBox) << int(Qt::LeftButton) << int(Qt::ShiftModifier);
    QTest::newRow("a box with the right button")
        << int(IClient::ZoomBox) << int(Qt::RightButton) << int(Qt::NoModifier);
    QTest::newRow("pointing with the right button")
        << int(IClient::Point) << int(Qt::RightButton) << int(Qt::NoModifier);
    QTest::newRow("pointing with shift")
        << int(IClient::Point) << int(Qt::LeftButton) << int(Qt::ShiftModifier);
}

void MapViewGesturesTest::outsideRoamAPressKeepsTheMode()
{
    QFETCH(int, mode);
    QFETCH(int, button);
    QFETCH(int, modifiers);
    JournalView j(Motion::Direct);
    j.view->setPointerMode(IClient::PointerMode(mode));
    const Qt::CursorShape cursor = j.cursor();

    press(*j.view, QPoint(40, 40), Qt::MouseButton(button), Qt::KeyboardModifiers(modifiers));
    QCOMPARE(j.mode(), IClient::PointerMode(mode));
    QCOMPARE(j.cursor(), cursor);

    release(*j.view, QPoint(40, 40), Qt::MouseButton(button));
    QCOMPARE(j.mode(), IClient::PointerMode(mode));
    QCOMPARE(j.cursor(), cursor);
}

void MapViewGesturesTest::everyGestureEventIsAccepted_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("roaming") << int(IClient::Roam);
    QTest::newRow("zooming") << int(IClient::Zoom);
    QTest::newRow("drawing a box") << int(IClient::ZoomBox);
    QTest::newRow("pointing") << int(IClient::Point);
}

void MapViewGesturesTest::everyGestureEventIsAccepted()
{
    QFETCH(int, mode);
    JournalView j(Motion::Direct);
    j.view->setPointerMode(IClient::PointerMode(mode));
    QVERIFY(press(*j.view, QPoint(40, 40)));
    QVERIFY(move(*j.view, QPoint(50, 50)));
    QVERIFY(release(*j.view, QPoint(50, 50)));
    QVERIFY(doubleClick(*j.view, QPoint(50, 50)));
    QVERIFY(wheel(*j.view, QPointF(50, 50), 120));
}

void MapViewGesturesTest::aDragRoams_data()
{
    QTest::addColumn<int>("button");
    QTest::newRow("with the left button") << int(Qt::LeftButton);
    QTest::newRow("with the middle button") << int(Qt::MiddleButton);
}

void MapViewGesturesTest::aDragRoams()
{
    QFETCH(int, button);
    JournalView j(Motion::Direct);

    press(*j.view, QPoint(50, 50), Qt::MouseButton(button));
    move(*j.view, QPoint(60, 45), Qt::MouseButton(button));
    move(*j.view, QPoint(55, 45), Qt::MouseButton(button));
    release(*j.view, QPoint(55, 45), Qt::MouseButton(button));

    QCOMPARE(j.journal, QStringList({"a beginUpdate roam"}) + fired("-10 95 90 -5") +
                            fired("-5 95 95 -5") + QStringList({"a endUpdate"}));
    QCOMPARE(j.extents(), QStringLiteral("-5 95 95 -5"));
}

void MapViewGesturesTest::aRightDragZoomsAboutThePress()
{
    JournalView j(Motion::Direct);

    press(*j.view, QPoint(20, 30), Qt::RightButton);
    move(*j.view, QPoint(20, 40), Qt::RightButton);
    release(*j.view, QPoint(20, 40), Qt::RightButton);

    QCOMPARE(j.journal, QStringList({"a beginUpdate zoom"}) +
                            fired(zoomed(QPoint(20, 30), zoomIn(10))) +
                            QStringList({"a endUpdate"}));
}

void MapViewGesturesTest::aShiftDragZoomsAboutThePress()
{
    JournalView j(Motion::Direct);

    press(*j.view, QPoint(20, 30), Qt::LeftButton, Qt::ShiftModifier);
    move(*j.view, QPoint(20, 27));
    release(*j.view, QPoint(20, 27));

    QCOMPARE(j.journal, QStringList({"a beginUpdate zoom"}) +
                            fired(zoomed(QPoint(20, 30), zoomIn(-3))) +
                            QStringList({"a endUpdate"}));
}

void MapViewGesturesTest::aControlDragZoomsToTheBox()
{
    JournalView j(Motion::Direct);

    press(*j.view, QPoint(70, 60), Qt::LeftButton, Qt::ControlModifier);
    move(*j.view, QPoint(50, 30));
    move(*j.view, QPoint(30, 20));
    release(*j.view, QPoint(30, 20));

    QCOMPARE(j.journal, QStringList({"a beginUpdate zoom"}) + fired("30 80 70 40") +
                            QStringList({"a endUpdate"}));
    QCOMPARE(j.mode(), IClient::Roam);
    QCOMPARE(j.cursor(), Qt::OpenHandCursor);
}

void MapViewGesturesTest::aBoxTakesTheShapeOfTheWidget()
{
    JournalView j(Motion::Direct);
    j.view->resize(201, 101);
    j.view->setBounds(0.0, 100.0, 200.0, 0.0);

    press(*j.view, QPoint(100, 30), Qt::LeftButton, Qt::ControlModifier);
    release(*j.view, QPoint(110, 50));

    const QRectF bounds = j.view->getBounds();
    QCOMPARE(bounds.width(), 40.0);
    QCOMPARE(bounds.height(), -20.0);
}

void MapViewGesturesTest::aClickInBoxModeOnlyClosesTheBracket()
{
    JournalView j(Motion::Direct);

    press(*j.view, QPoint(40, 40), Qt::LeftButton, Qt::ControlModifier);
    release(*j.view, QPoint(40, 40));

    QCOMPARE(j.journal, QStringList({"a beginUpdate zoom", "a endUpdate"}));
}

void MapViewGesturesTest::aMoveWithoutAButtonMovesNothing()
{
    JournalView j(Motion::Direct);
    j.view->setMouseTracking(true);
    QVERIFY(move(*j.view, QPoint(40, 40), Qt::NoButton));
    QVERIFY(move(*j.view, QPoint(70, 20), Qt::NoButton));
    QVERIFY(move(*j.view, QPoint(10, 20), Qt::BackButton));
    QCOMPARE(j.journal, QStringList());
}

void MapViewGesturesTest::aBoxMoveAsksForARepaint()
{
    JournalView j(Motion::Direct);
    press(*j.view, QPoint(40, 40), Qt::LeftButton, Qt::ControlModifier);
    QCoreApplication::processEvents();
    j.journal.clear();

    move(*j.view, QPoint(60, 60));

    QTRY_COMPARE(j.journal, QStringList({"a paint"}));
}

void MapViewGesturesTest::pointModeReadsCoordinates()
{
    JournalView j(Motion::Direct);
    j.view->setPointerMode(IClient::Point);

    press(*j.view, QPoint(10, 20));
    move(*j.view, QPoint(30, 25));
    release(*j.view, QPoint(30, 25));

    QCOMPARE(j.journal, QStringList({"pointer 10 80", "pointer 30 75"}));
    QCOMPARE(j.mode(), IClient::Point);
    QCOMPARE(j.cursor(), Qt::ArrowCursor);
}

void MapViewGesturesTest::pointModeFollowsATrackedPointer()
{
    JournalView j(Motion::Direct);
    j.view->setPointerMode(IClient::Point);
    move(*j.view, QPoint(10, 25), Qt::NoButton);
    QCOMPARE(j.journal, QStringList());

    j.view->setMouseTracking(true);
    move(*j.view, QPoint(30, 25), Qt::NoButton);
    QCOMPARE(j.journal, QStringList({"pointer 30 75"}));
}

void MapViewGesturesTest::aPressStopsTheAnimation()
{
    JournalView j(Motion::Animated);
    wheel(*j.view, QPointF(50, 50), 120);
    j.runTo(100);
    const QString standing = j.extents();
    j.journal.clear();

    press(*j.view, QPoint(40, 40));

    QCOMPARE(animationOf(*j.view).state(), QAbstractAnimation::Stopped);
    QCOMPARE(j.extents(), standing);
    QCOMPARE(j.journal, QStringList({"a beginUpdate roam"})); // and no end of the other bracket
}

void MapViewGesturesTest::aDoubleClickZoomsInAboutThePoint_data()
{
    QTest::addColumn<QPoint>("point");
    QTest::addColumn<int>("button");
    QTest::addColumn<QString>("extents");
    QTest::newRow("in the centre") << QPoint(50, 50) << int(Qt::LeftButton) << "25 75 75 25";
    QTest::newRow("off the centre") << QPoint(20, 30) << int(Qt::LeftButton) << "10 85 60 35";
    QTest::newRow("in a corner") << QPoint(0, 0) << int(Qt::LeftButton) << "0 100 50 50";
    QTest::newRow("with the right button")
        << QPoint(20, 30) << int(Qt::RightButton) << "10 85 60 35";
    QTest::newRow("with the middle button")
        << QPoint(20, 30) << int(Qt::MiddleButton) << "10 85 60 35";
}

void MapViewGesturesTest::aDoubleClickZoomsInAboutThePoint()
{
    QFETCH(QPoint, point);
    QFETCH(int, button);
    QFETCH(QString, extents);
    JournalView j(Motion::Direct);
    double before[2];
    j.view->getViewManager()->convertDeviceToWorld(point.x(), point.y(), &before[0], &before[1]);

    doubleClick(*j.view, point, Qt::MouseButton(button));

    // one more bracket is closed than opened
    const QString begin = button == Qt::RightButton ? QStringLiteral("a beginUpdate zoom")
                                                    : QStringLiteral("a beginUpdate roam");
    QCOMPARE(j.journal,
             QStringList({begin, "a endUpdate"}) + set(extents) + QStringList({"a endUpdate"}));
    double after[2];
    j.view->getViewManager()->convertDeviceToWorld(point.x(), point.y(), &after[0], &after[1]);
    QCOMPARE(after[0], before[0]);
    QCOMPARE(after[1], before[1]);
}

void MapViewGesturesTest::twoDoubleClicksZoomByFour()
{
    JournalView j(Motion::Direct);
    doubleClick(*j.view, QPoint(20, 30));
    doubleClick(*j.view, QPoint(20, 30));
    QCOMPARE(j.extents(), QStringLiteral("15 77.5 40 52.5"));
}

void MapViewGesturesTest::aDoubleClickIsAnimated()
{
    JournalView j(Motion::Animated);
    sendMouse(*j.view, QEvent::MouseButtonDblClick, QPoint(20, 30), Qt::LeftButton, Qt::LeftButton);
    QCOMPARE(withoutRepeatedSteps(j.journal),
             QStringList({"a beginUpdate zoom"}) + set("0 100 100 0"));
    j.journal.clear();

    j.runTo(100); // half the time is a quarter of the way
    j.runTo(200);

    QCOMPARE(j.journal, set("2.5 96.25 90 8.75") + set("10 85 60 35") +
                            QStringList({"a endUpdate", "extents 10 85 60 35"}));
}

void MapViewGesturesTest::theWheelWithAButtonHeldIsLeftToTheParent_data()
{
    QTest::addColumn<int>("button");
    QTest::newRow("the left button") << int(Qt::LeftButton);
    QTest::newRow("the right button") << int(Qt::RightButton);
}

void MapViewGesturesTest::theWheelWithAButtonHeldIsLeftToTheParent()
{
    QFETCH(int, button);
    Parent parent;
    MapView view(&parent);
    view.resize(101, 101);
    parent.show();
    const QString before = text(view.getBounds());

    wheel(view, QPointF(50, 50), 120, Qt::MouseButtons(button));
    QCOMPARE(parent.wheels, 1);
    QCOMPARE(animationOf(view).state(), QAbstractAnimation::Stopped);
    QCOMPARE(text(view.getBounds()), before);

    wheel(view, QPointF(50, 50), 120);
    QCOMPARE(parent.wheels, 1);
}

void MapViewGesturesTest::theWheelTakesTheMiddleButton()
{
    JournalView j(Motion::Animated);
    QVERIFY(wheel(*j.view, QPointF(50, 50), 120, Qt::MiddleButton));
    QCOMPARE(animationOf(*j.view).state(), QAbstractAnimation::Running);
}

void MapViewGesturesTest::theWheelIsAnimatedByTwo_data()
{
    QTest::addColumn<QPointF>("point");
    QTest::addColumn<int>("delta");
    QTest::addColumn<QString>("target");
    QTest::newRow("forward zooms in") << QPointF(50, 50) << 120 << "25 75 75 25";
    QTest::newRow("forward keeps the point") << QPointF(20, 30) << 120 << "10 85 60 35";
    QTest::newRow("back zooms out") << QPointF(50, 50) << -120 << "-50 150 150 -50";
    QTest::newRow("back keeps the point") << QPointF(20, 30) << -120 << "-20 130 180 -70";
    QTest::newRow("the size of the delta does not matter") << QPointF(50, 50) << 1 << "25 75 75 25";
    QTest::newRow("nor that of a large one back") << QPointF(50, 50) << -960 << "-50 150 150 -50";
    QTest::newRow("a delta of nothing zooms in") << QPointF(50, 50) << 0 << "25 75 75 25";
}

void MapViewGesturesTest::theWheelIsAnimatedByTwo()
{
    QFETCH(QPointF, point);
    QFETCH(int, delta);
    QFETCH(QString, target);
    JournalView j(Motion::Animated);

    QVERIFY(wheel(*j.view, point, delta));
    QCOMPARE(withoutRepeatedSteps(j.journal),
             QStringList({"a beginUpdate zoom"}) + set("0 100 100 0"));

    j.runTo(200);
    QCOMPARE(j.extents(), target);
    QCOMPARE(j.mode(), IClient::Roam);
}

void MapViewGesturesTest::theAnimatedWheelFollowsTheCurveAndClosesTheBracket()
{
    JournalView j(Motion::Animated);
    wheel(*j.view, QPointF(50, 50), 120);
    j.journal.clear();

    j.runTo(100); // half the time is a quarter of the way
    j.runTo(200);

    QCOMPARE(j.journal, set("6.25 93.75 93.75 6.25") + set("25 75 75 25") +
                            QStringList({"a endUpdate", "extents 25 75 75 25"}));
    QCOMPARE(animationOf(*j.view).state(), QAbstractAnimation::Stopped);
}

void MapViewGesturesTest::aWheelStepDuringAnAnimationAddsUp()
{
    JournalView j(Motion::Animated);
    wheel(*j.view, QPointF(50, 50), 120);
    j.runTo(100);
    QCOMPARE(j.extents(), QStringLiteral("6.25 93.75 93.75 6.25"));
    j.journal.clear();

    wheel(*j.view, QPointF(50, 50), 120);
    QCOMPARE(withoutRepeatedSteps(j.journal),
             QStringList({"a beginUpdate zoom"}) + set("6.25 93.75 93.75 6.25"));
    j.journal.clear();

    j.runTo(200);
    QCOMPARE(j.journal, set("28.125 71.875 71.875 28.125") +
                            QStringList({"a endUpdate", "extents 28.125 71.875 71.875 28.125"}));
}

void MapViewGesturesTest::withoutAnimationTheWheelIsAZoomDrag_data()
{
    QTest::addColumn<int>("delta");
    QTest::addColumn<double>("factor");
    QTest::newRow("a notch forward is twelve pixels in") << 120 << zoomIn(12);
    QTest::newRow("a notch back is twelve pixels out") << -120 << zoomIn(-12);
    QTest::newRow("9 is no pixel") << 9 << 1.0;
    QTest::newRow("-9 is no pixel") << -9 << 1.0;
    QTest::newRow("-19 is one pixel") << -19 << 1.015;
}

void MapViewGesturesTest::withoutAnimationTheWheelIsAZoomDrag()
{
    QFETCH(int, delta);
    QFETCH(double, factor);
    JournalView j(Motion::Direct);

    QVERIFY(wheel(*j.view, QPointF(20, 30), delta));

    QCOMPARE(j.journal, QStringList({"a beginUpdate zoom"}) +
                            fired(zoomed(QPoint(20, 30), factor)) + QStringList({"a endUpdate"}));
}

void MapViewGesturesTest::withoutAnimationTheWheelKeepsModeAndCursor()
{
    JournalView j(Motion::Direct);
    j.view->setPointerMode(IClient::Point);
    j.view->setCursor(Qt::WaitCursor);

    wheel(*j.view, QPointF(20, 30), 120);

    QCOMPARE(j.mode(), IClient::Point);
    QCOMPARE(j.cursor(), Qt::WaitCursor);
    QVERIFY(j.journal.filter("pointer").isEmpty());
}

void MapViewGesturesTest::theWheelPositionLosesItsFraction()
{
    JournalView j(Motion::Direct);
    // sent straight to the view: on its way through the program Qt rounds the position
    QWheelEvent event(QPointF(20.9, 30.9), QPointF(), QPoint(), QPoint(0, 120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(j.view.get(), &event);
    QCOMPARE(j.extents(), zoomed(QPoint(20, 30), zoomIn(12)));
}

void MapViewGesturesTest::enterLeaveAndKeyReleaseAreIgnored()
{
    OpenView view;
    QEvent enter(QEvent::Enter);
    QEvent leave(QEvent::Leave);
    QKeyEvent key(QEvent::KeyRelease, Qt::Key_Home, Qt::NoModifier);

    view.enterEvent(&enter);
    view.leaveEvent(&leave);
    view.keyReleaseEvent(&key);

    QVERIFY(!enter.isAccepted());
    QVERIFY(!leave.isAccepted());
    QVERIFY(!key.isAccepted());
}

MAP_TEST_MAIN(MapViewGesturesTest)
#include "MapViewGesturesTest.moc"
