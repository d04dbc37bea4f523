#include "MapViewPrivates.h"
#include "MapViewTools.h"

#include <corvane/map/MapCanvas.h>

#include <QAction>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMainWindow>
#include <QMenu>
#include <QTimer>

using Corvane::Map::Layer;
using Corvane::Map::MapView;

namespace {

class OpenView : public MapView
{
public:
    using MapView::contextMenu;
    using MapView::keyPressEvent;
};

/// A shown view with one layer "a", both of which write into one journal.
struct JournalView
{
    explicit JournalView(Motion motion) : view(makeView<OpenView>(motion))
    {
        layer = new JournalLayer("a", &journal);
        view->addLayer(layer);
        showAgain(0.0, 100.0, 100.0, 0.0);
        record(*view, &journal);
    }

    /// Shows these extents and forgets what has happened.
    void showAgain(double tlx, double tly, double brx, double bry)
    {
        view->setBounds(tlx, tly, brx, bry);
        QCoreApplication::processEvents();
        journal.clear();
    }

    QString extents() { return text(view->getBounds()); }
    bool isAnimating() { return animationOf(*view).state() == QAbstractAnimation::Running; }

    /// Puts the animation's clock forward; 200 is its end.
    void runTo(int milliseconds) { animationOf(*view).setCurrentTime(milliseconds); }

    QStringList steps() const { return withoutRepeatedSteps(journal); }

    QStringList journal;
    std::unique_ptr<OpenView> view;
    JournalLayer* layer = nullptr; // owned by the view
};

/// One setBounds with a rectangle of the widget's shape.
QStringList set(const QString& extents)
{
    return {QStringLiteral("a setView 101x101 ") + extents, QStringLiteral("extents ") + extents,
            QStringLiteral("extents ") + extents};
}

/// Sends the key to the view alone. The event comes back as the view leaves it; comesAs is what it
/// is before.
bool sendKey(OpenView& view, int key, bool comesAs)
{
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
    event.setAccepted(comesAs);
    view.keyPressEvent(&event);
    return event.isAccepted();
}

void mapControls()
{
    QTest::addColumn<int>("action");
    QTest::addColumn<QString>("target");
    QTest::newRow("up goes half a view north") << int(MapView::MapPanUp) << "0 150 100 50";
    QTest::newRow("down goes half a view south") << int(MapView::MapPanDown) << "0 50 100 -50";
    QTest::newRow("left goes half a view west") << int(MapView::MapPanLeft) << "-50 100 50 0";
    QTest::newRow("right goes half a view east") << int(MapView::MapPanRight) << "50 100 150 0";
    QTest::newRow("in halves the view") << int(MapView::MapZoomIn) << "25 75 75 25";
    QTest::newRow("out doubles the view") << int(MapView::MapZoomOut) << "-50 150 150 -50";
}

/// A main window with the two actions that the view asks for, which count.
struct Actions
{
    Actions()
    {
        for (const char* name : {"actionSnapshot", "actionFullScreenMap"}) {
            auto* action = new QAction(&window);
            action->setObjectName(name);
            QObject::connect(action, &QAction::triggered,
                             [this, name] { triggered << QString(name); });
        }
    }

    QMainWindow window;
    QStringList triggered;
};

} // namespace

class MapViewCommandsTest : public QObject
{
    Q_OBJECT
private slots:
    void aCommandWithoutAnimationEndsOnTheOldExtents_data();
    void aCommandWithoutAnimationEndsOnTheOldExtents();
    void aCommandWithAnimationRunsToItsTarget_data();
    void aCommandWithAnimationRunsToItsTarget();
    void commandsEndSlowlyAndLeaveTheirCurveBehind();
    void aCommandDuringAnAnimationStartsWhereItStands();
    void aCommandDuringATurnOfTheWheelDoesNotJump();
    void zoomToAllAsACommand();
    void animatedZoomToAllAsACommand();
    void anUnknownCommandMovesNothing();
    void anUnknownAnimatedCommandHasANullTarget();

    void keysRunCommands_data();
    void keysRunCommands();
    void keysRunAnimatedCommands_data();
    void keysRunAnimatedCommands();
    void aKeyDuringAnAnimationStartsWhereItStands();
    void homeShowsAllLayers();
    void homeIsAnimatedFromWholeUnits();
    void endShowsTheFirstLayerOneToOne();
    void endIsAnimated();
    void endOnAnEmptyMapDoesNothing();
    void otherKeysAreIgnored_data();
    void otherKeysAreIgnored();
    void aTypedKeyReachesTheView();
    void f9TakesASnapshot();
    void f9WithoutTheActionIsIgnored();
    void escapeLeavesFullScreen_data();
    void escapeLeavesFullScreen();
    void escapeOutsideFullScreenDoesNothing_data();
    void escapeOutsideFullScreenDoesNothing();
    void escapeInFullScreenWithoutTheActionIsIgnored();

    void zoomToAllLayersShowsTheUnion();
    void zoomToAllLayersIsAnimatedFromWholeUnits();
    void zoomToAllLayersKeepsTheCurve();
    void zoomToAllLayersIsNotAnimatedUnlessWanted();
    void zoomToAllLayersLeavesAnEmptyMap_data();
    void zoomToAllLayersLeavesAnEmptyMap();

    void zoomToALayerShowsIt_data();
    void zoomToALayerShowsIt();
    void zoomToALayerWithoutBoundsOnlyTells_data();
    void zoomToALayerWithoutBoundsOnlyTells();
    void zoomToNoLayerFails();
    void theTwoWaysToZoomToALayerDifferInStartAndBracket();

    void oneToOneGivesAPixelToACell();
    void oneToOneTakesTheSignOfTheCell();
    void oneToOneIsAnimated();
    void oneToOneOfWhatIsNoRasterDoesNothing();

    void thereIsNoContextMenuUnlessOneIsBuilt();
    void theContextMenuOpensWhereThePressWas_data();
    void theContextMenuOpensWhereThePressWas();
    void inPointModeTheContextMenuOpensWhereThePointerIs_data();
    void inPointModeTheContextMenuOpensWhereThePointerIs();
    void theContextMenuHasItsEntries();
    void theViewTakesTheContextMenuWithIt();
};

void MapViewCommandsTest::aCommandWithoutAnimationEndsOnTheOldExtents_data()
{
    mapControls();
}

void MapViewCommandsTest::aCommandWithoutAnimationEndsOnTheOldExtents()
{
    QFETCH(int, action);
    QFETCH(QString, target);
    JournalView j(Motion::Direct);

    j.view->onMapAction(MapView::MapControl(action));

    QCOMPARE(j.journal, QStringList({"a beginUpdate zoom"}) + set(target) +
                            QStringList({"a endUpdate", "extents 0 100 100 0"}));
    QCOMPARE(j.extents(), target);
}

void MapViewCommandsTest::aCommandWithAnimationRunsToItsTarget_data()
{
    mapControls();
}

void MapViewCommandsTest::aCommandWithAnimationRunsToItsTarget()
{
    QFETCH(int, action);
    QFETCH(QString, target);
    JournalView j(Motion::Animated);

    j.view->onMapAction(MapView::MapControl(action));
    QVERIFY(j.isAnimating());
    QCOMPARE(j.steps(), QStringList({"a beginUpdate roam"}) + set("0 100 100 0"));
    j.journal.clear();

    j.runTo(200);
    QCOMPARE(j.journal,
             set(target) + QStringList({"a endUpdate", QStringLiteral("extents ") + target}));
}

void MapViewCommandsTest::commandsEndSlowlyAndLeaveTheirCurveBehind()
{
    JournalView j(Motion::Animated);
    QCOMPARE(animationOf(*j.view).easingCurve().type(), QEasingCurve::InQuad);

    j.view->onMapAction(MapView::MapPanRight);
    j.runTo(100); // half the time is three quarters of the way
    QCOMPARE(j.extents(), QStringLiteral("37.5 100 137.5 0"));
    j.runTo(200);

    j.showAgain(0.0, 100.0, 100.0, 0.0);
    wheel(*j.view, QPointF(50, 50), 120);
    j.runTo(100);
    QCOMPARE(j.extents(), QStringLiteral("18.75 81.25 81.25 18.75"));
}

void MapViewCommandsTest::aCommandDuringAnAnimationStartsWhereItStands()
{
    JournalView j(Motion::Animated);
    j.view->onMapAction(MapView::MapPanRight);
    j.runTo(100);
    j.journal.clear();

    j.view->onMapAction(MapView::MapPanRight);
    j.runTo(200);

    // the first bracket stays open: it is closed once for both
    QCOMPARE(j.steps(), QStringList({"a beginUpdate roam"}) + set("37.5 100 137.5 0") +
                            set("87.5 100 187.5 0") +
                            QStringList({"a endUpdate", "extents 87.5 100 187.5 0"}));
}

void MapViewCommandsTest::aCommandDuringATurnOfTheWheelDoesNotJump()
{
    JournalView j(Motion::Animated);
    wheel(*j.view, QPointF(50, 50), 120);
    j.runTo(100); // half the time is a quarter of the way
    QCOMPARE(j.extents(), QStringLiteral("6.25 93.75 93.75 6.25"));
    j.journal.clear();

    j.view->onMapAction(MapView::MapPanRight);
    QCOMPARE(j.steps(), QStringList({"a beginUpdate roam"}) + set("6.25 93.75 93.75 6.25"));
    j.journal.clear();

    j.runTo(200);
    QCOMPARE(j.journal, set("50 93.75 137.5 6.25") +
                            QStringList({"a endUpdate", "extents 50 93.75 137.5 6.25"}));
}

void MapViewCommandsTest::zoomToAllAsACommand()
{
    JournalView j(Motion::Direct);
    j.layer->bounds = world(10.0, 60.0, 60.0, 10.0);

    j.view->onMapAction(MapView::MapZoomToAll);

    QCOMPARE(j.journal,
             QStringList({"a beginUpdate zoom"}) + set("10 60 60 10") +
                 QStringList({"extents 10 60 60 10", "a endUpdate", "extents 0 100 100 0"}));
}

void MapViewCommandsTest::animatedZoomToAllAsACommand()
{
    JournalView j(Motion::Animated);
    j.layer->bounds = world(10.0, 60.0, 60.0, 10.0);
    j.showAgain(0.5, 100.5, 100.5, 0.5);

    j.view->onMapAction(MapView::MapZoomToAll);
    QCOMPARE(j.steps(), QStringList({"a beginUpdate roam"}) + set("0.5 100.5 100.5 0.5"));
    j.journal.clear();

    j.runTo(200);
    QCOMPARE(j.journal, set("10 60 60 10") + QStringList({"a endUpdate", "extents 10 60 60 10"}));
}

void MapViewCommandsTest::anUnknownCommandMovesNothing()
{
    JournalView j(Motion::Direct);
    j.view->onMapAction(MapView::MapControl(7));
    j.view->onMapAction(MapView::MapControl(-1));
    const QStringList nothing = {"a beginUpdate zoom", "a endUpdate", "extents 0 100 100 0"};
    QCOMPARE(j.journal, nothing + nothing);
}

void MapViewCommandsTest::anUnknownAnimatedCommandHasANullTarget()
{
    JournalView j(Motion::Animated);

    j.view->onMapAction(MapView::MapControl(7));
    QCOMPARE(animationOf(*j.view).endValue().toRectF(), QRectF());
    j.runTo(100);
    QCOMPARE(j.extents(), QStringLiteral("0 25 25 0"));
    j.journal.clear();

    j.runTo(200); // the null rectangle itself is refused
    QCOMPARE(j.journal, QStringList({"extents 0 0 0 0", "a endUpdate", "extents 0 25 25 0"}));
}

void MapViewCommandsTest::keysRunCommands_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<QString>("target");
    QTest::newRow("up") << int(Qt::Key_Up) << "0 150 100 50";
    QTest::newRow("down") << int(Qt::Key_Down) << "0 50 100 -50";
    QTest::newRow("left") << int(Qt::Key_Left) << "-50 100 50 0";
    QTest::newRow("right") << int(Qt::Key_Right) << "50 100 150 0";
    QTest::newRow("plus zooms in") << int(Qt::Key_Plus) << "25 75 75 25";
    QTest::newRow("minus zooms out") << int(Qt::Key_Minus) << "-50 150 150 -50";
}

void MapViewCommandsTest::keysRunCommands()
{
    QFETCH(int, key);
    QFETCH(QString, target);
    JournalView j(Motion::Direct);

    QVERIFY(sendKey(*j.view, key, false));

    QCOMPARE(j.journal, QStringList({"a beginUpdate zoom"}) + set(target) +
                            QStringList({"a endUpdate", "extents 0 100 100 0"}));
}

void MapViewCommandsTest::keysRunAnimatedCommands_data()
{
    keysRunCommands_data();
}

void MapViewCommandsTest::keysRunAnimatedCommands()
{
    QFETCH(int, key);
    QFETCH(QString, target);
    JournalView j(Motion::Animated);

    QVERIFY(sendKey(*j.view, key, false));
    QCOMPARE(j.steps(), QStringList({"a beginUpdate roam"}) + set("0 100 100 0"));
    QCOMPARE(animationOf(*j.view).easingCurve().type(), QEasingCurve::OutQuad);
    j.journal.clear();

    j.runTo(200);
    QCOMPARE(j.journal,
             set(target) + QStringList({"a endUpdate", QStringLiteral("extents ") + target}));
}

void MapViewCommandsTest::aKeyDuringAnAnimationStartsWhereItStands()
{
    JournalView j(Motion::Animated);
    sendKey(*j.view, Qt::Key_Plus, false);
    j.runTo(100);
    j.journal.clear();

    QVERIFY(sendKey(*j.view, Qt::Key_Minus, false));
    j.runTo(200);

    QCOMPARE(j.steps(), QStringList({"a beginUpdate roam"}) + set("18.75 81.25 81.25 18.75") +
                            set("-12.5 112.5 112.5 -12.5") +
                            QStringList({"a endUpdate", "extents -12.5 112.5 112.5 -12.5"}));
}

void MapViewCommandsTest::homeShowsAllLayers()
{
    JournalView j(Motion::Direct);
    j.layer->bounds = world(10.0, 60.0, 60.0, 10.0);
    QVERIFY(sendKey(*j.view, Qt::Key_Home, false));
    QCOMPARE(j.journal, set("10 60 60 10") + QStringList({"extents 10 60 60 10"}));
}

void MapViewCommandsTest::homeIsAnimatedFromWholeUnits()
{
    JournalView j(Motion::Animated);
    j.layer->bounds = world(10.0, 60.0, 60.0, 10.0);
    j.showAgain(0.5, 100.5, 100.5, 0.5);

    QVERIFY(sendKey(*j.view, Qt::Key_Home, false));
    QCOMPARE(j.steps(), set("0 100 100 0"));
    j.journal.clear();

    j.runTo(200);
    QCOMPARE(j.journal, set("10 60 60 10") + QStringList({"a endUpdate", "extents 10 60 60 10"}));
}

void MapViewCommandsTest::endShowsTheFirstLayerOneToOne()
{
    for (const bool comesAs : {true, false}) {
        JournalView j(Motion::Direct);
        auto* raster = new TestRasterLayer;
        raster->cellSizeX = 0.5;
        raster->cellSizeY = -0.5;
        j.view->addLayer(raster, 0);
        j.journal.clear();

        QCOMPARE(sendKey(*j.view, Qt::Key_End, comesAs), comesAs);

        QCOMPARE(j.extents(), QStringLiteral("24.75 75.25 75.25 24.75"));
    }
}

void MapViewCommandsTest::endIsAnimated()
{
    JournalView j(Motion::Animated);
    auto* raster = new TestRasterLayer;
    raster->cellSizeX = 0.5;
    raster->cellSizeY = -0.5;
    j.view->addLayer(raster, 0);
    j.journal.clear();

    QVERIFY(!sendKey(*j.view, Qt::Key_End, false));
    QCOMPARE(j.steps(), QStringList({"a beginUpdate zoom"}) + set("0 100 100 0"));
    j.journal.clear();

    j.runTo(200);
    QCOMPARE(j.journal, set("24.75 75.25 75.25 24.75") +
                            QStringList({"a endUpdate", "extents 24.75 75.25 75.25 24.75"}));
}

void MapViewCommandsTest::endOnAnEmptyMapDoesNothing()
{
    JournalView j(Motion::Direct);
    j.view->deleteAllLayers();
    j.journal.clear();

    QCOMPARE(sendKey(*j.view, Qt::Key_End, true), true);
    QCOMPARE(sendKey(*j.view, Qt::Key_End, false), false);

    QCOMPARE(j.journal, QStringList());
}

void MapViewCommandsTest::otherKeysAreIgnored_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("a letter") << int(Qt::Key_A);
    QTest::newRow("return") << int(Qt::Key_Return);
    QTest::newRow("page up") << int(Qt::Key_PageUp);
    QTest::newRow("F11") << int(Qt::Key_F11);
}

void MapViewCommandsTest::otherKeysAreIgnored()
{
    QFETCH(int, key);
    JournalView j(Motion::Direct);
    QVERIFY(!sendKey(*j.view, key, true));
    QCOMPARE(j.journal, QStringList());
}

void MapViewCommandsTest::aTypedKeyReachesTheView()
{
    JournalView j(Motion::Direct);
    QTest::keyClick(j.view.get(), Qt::Key_Right);
    QCOMPARE(j.extents(), QStringLiteral("50 100 150 0"));
}

void MapViewCommandsTest::f9TakesASnapshot()
{
    Actions actions;
    JournalView j(Motion::Direct);
    QVERIFY(sendKey(*j.view, Qt::Key_F9, false));
    QCOMPARE(actions.triggered, QStringList({"actionSnapshot"}));
}

void MapViewCommandsTest::f9WithoutTheActionIsIgnored()
{
    JournalView j(Motion::Direct);
    QVERIFY(!sendKey(*j.view, Qt::Key_F9, true)); // no main window

    QMainWindow window;
    QVERIFY(!sendKey(*j.view, Qt::Key_F9, true));
}

void MapViewCommandsTest::escapeLeavesFullScreen_data()
{
    QTest::addColumn<int>("key");
    QTest::newRow("escape") << int(Qt::Key_Escape);
    QTest::newRow("F12") << int(Qt::Key_F12);
}

void MapViewCommandsTest::escapeLeavesFullScreen()
{
    QFETCH(int, key);
    Actions actions;
    JournalView j(Motion::Direct);
    connect(actions.window.findChild<QAction*>("actionFullScreenMap"), &QAction::triggered,
            j.view.get(), &QWidget::showNormal);
    j.view->showFullScreen();

    QVERIFY(sendKey(*j.view, key, false));

    QCOMPARE(actions.triggered, QStringList({"actionFullScreenMap"}));
    QVERIFY(!j.view->isFullScreen());
}

void MapViewCommandsTest::escapeOutsideFullScreenDoesNothing_data()
{
    escapeLeavesFullScreen_data();
}

void MapViewCommandsTest::escapeOutsideFullScreenDoesNothing()
{
    QFETCH(int, key);
    Actions actions;
    JournalView j(Motion::Direct);

    QCOMPARE(sendKey(*j.view, key, true), true);
    QCOMPARE(sendKey(*j.view, key, false), false);

    QCOMPARE(actions.triggered, QStringList());
    QCOMPARE(j.journal, QStringList());
}

void MapViewCommandsTest::escapeInFullScreenWithoutTheActionIsIgnored()
{
    JournalView j(Motion::Direct);
    j.view->showFullScreen();
    QVERIFY(!sendKey(*j.view, Qt::Key_Escape, true));
    QVERIFY(j.view->isFullScreen());
}

void MapViewCommandsTest::zoomToAllLayersShowsTheUnion()
{
    JournalView j(Motion::Direct);
    auto* other = new TestLayer;
    other->bounds = world(100.0, 100.0, 200.0, 50.0);
    j.view->addLayer(other);
    j.journal.clear();

    QVERIFY(j.view->zoomToAllLayers());

    QCOMPARE(j.journal, QStringList({"a setView 101x101 0 150 200 -50", "extents 0 150 200 -50",
                                     "extents 0 100 200 0", "extents 0 100 200 0"}));
}

void MapViewCommandsTest::zoomToAllLayersIsAnimatedFromWholeUnits()
{
    JournalView j(Motion::Animated);
    j.layer->bounds = world(10.0, 60.0, 60.0, 10.0);
    j.showAgain(0.5, 100.5, 100.5, 0.5);

    QVERIFY(j.view->zoomToAllLayers());
    QCOMPARE(j.steps(), set("0 100 100 0")); // no bracket is opened
    j.journal.clear();

    j.runTo(200);
    QCOMPARE(j.journal, set("10 60 60 10") + QStringList({"a endUpdate", "extents 10 60 60 10"}));
}

void MapViewCommandsTest::zoomToAllLayersKeepsTheCurve()
{
    JournalView j(Motion::Animated);
    j.layer->bounds = world(40.0, 140.0, 140.0, 40.0);
    QVERIFY(j.view->zoomToAllLayers());
    j.runTo(100); // half the time is a quarter of the way, as at first
    QCOMPARE(j.extents(), QStringLiteral("10 110 110 10"));
}

void MapViewCommandsTest::zoomToAllLayersIsNotAnimatedUnlessWanted()
{
    JournalView j(Motion::Animated);
    j.layer->bounds = world(10.0, 60.0, 60.0, 10.0);

    QVERIFY(j.view->zoomToAllLayers(false));

    QVERIFY(!j.isAnimating());
    QCOMPARE(j.journal, set("10 60 60 10") + QStringList({"extents 10 60 60 10"}));
}

void MapViewCommandsTest::zoomToAllLayersLeavesAnEmptyMap_data()
{
    QTest::addColumn<bool>("animated");
    QTest::newRow("with animation") << true;
    QTest::newRow("without animation") << false;
}

void MapViewCommandsTest::zoomToAllLayersLeavesAnEmptyMap()
{
    QFETCH(bool, animated);
    JournalView j(animated ? Motion::Animated : Motion::Direct);
    j.view->deleteAllLayers();
    j.journal.clear();

    QVERIFY(j.view->zoomToAllLayers());

    QVERIFY(!j.isAnimating());
    QCOMPARE(j.extents(), QStringLiteral("0 100 100 0"));
    QCOMPARE(j.journal, QStringList({"extents 0 0 0 0", "extents 0 0 0 0"}));
}

namespace {

void waysToZoomToALayer()
{
    QTest::addColumn<bool>("byIndex");
    QTest::newRow("by its index") << true;
    QTest::newRow("by its pointer") << false;
}

bool zoomTo(MapView& view, bool byIndex)
{
    return byIndex ? view.zoomToLayer(0) : view.zoomToLayer(view.getLayerAt(0));
}

} // namespace

void MapViewCommandsTest::zoomToALayerShowsIt_data()
{
    waysToZoomToALayer();
}

void MapViewCommandsTest::zoomToALayerShowsIt()
{
    QFETCH(bool, byIndex);
    JournalView j(Motion::Direct);
    j.layer->bounds = world(0.0, 20.0, 40.0, 0.0);

    QVERIFY(zoomTo(*j.view, byIndex));

    QCOMPARE(j.journal, QStringList({"a setView 101x101 0 30 40 -10", "extents 0 30 40 -10",
                                     "extents 0 20 40 0", "extents 0 20 40 0"}));
}

void MapViewCommandsTest::zoomToALayerWithoutBoundsOnlyTells_data()
{
    waysToZoomToALayer();
}

void MapViewCommandsTest::zoomToALayerWithoutBoundsOnlyTells()
{
    QFETCH(bool, byIndex);
    JournalView j(Motion::Direct);
    j.layer->bounds = QRectF();

    QVERIFY(zoomTo(*j.view, byIndex));

    QCOMPARE(j.journal, QStringList({"extents 0 0 0 0"}));
    QCOMPARE(j.extents(), QStringLiteral("0 100 100 0"));
}

void MapViewCommandsTest::zoomToNoLayerFails()
{
    JournalView j(Motion::Direct);
    QVERIFY(!j.view->zoomToLayer(-1));
    QVERIFY(!j.view->zoomToLayer(1));
    QVERIFY(!j.view->zoomToLayer(static_cast<Layer*>(nullptr)));
    QCOMPARE(j.journal, QStringList());
}

void MapViewCommandsTest::theTwoWaysToZoomToALayerDifferInStartAndBracket()
{
    JournalView j(Motion::Animated);
    j.layer->bounds = world(10.0, 60.0, 60.0, 10.0);
    const QStringList end =
        set("10 60 60 10") + QStringList({"a endUpdate", "extents 10 60 60 10"});

    j.showAgain(0.5, 100.5, 100.5, 0.5);
    QVERIFY(j.view->zoomToLayer(0));
    QCOMPARE(j.steps(), QStringList({"a beginUpdate zoom"}) + set("0.5 100.5 100.5 0.5"));
    j.journal.clear();
    j.runTo(200);
    QCOMPARE(j.journal, end);

    j.showAgain(0.5, 100.5, 100.5, 0.5);
    QVERIFY(j.view->zoomToLayer(j.layer));
    QCOMPARE(j.steps(), set("0 100 100 0"));
    j.journal.clear();
    j.runTo(200);
    QCOMPARE(j.journal, end);
}

void MapViewCommandsTest::oneToOneGivesAPixelToACell()
{
    JournalView j(Motion::Direct);
    auto* raster = new TestRasterLayer;
    raster->cellSizeX = 2.0;
    raster->cellSizeY = -2.0;
    j.view->addLayer(raster);
    j.journal.clear();

    QVERIFY(j.view->zoomOneToOne(1));

    // the centre (50, 50) stays; 101 pixels of 2 units
    QCOMPARE(j.journal, set("-51 151 151 -51") + QStringList({"extents -51 151 151 -51"}));
}

void MapViewCommandsTest::oneToOneTakesTheSignOfTheCell()
{
    JournalView j(Motion::Direct);
    auto* raster = new TestRasterLayer;
    raster->cellSizeX = 2.0;
    raster->cellSizeY = 2.0;
    j.view->addLayer(raster);

    QVERIFY(j.view->zoomOneToOne(1));

    QCOMPARE(j.extents(), QStringLiteral("-51 -51 151 151"));
}

void MapViewCommandsTest::oneToOneIsAnimated()
{
    JournalView j(Motion::Animated);
    auto* raster = new TestRasterLayer;
    raster->cellSizeX = 2.0;
    raster->cellSizeY = -2.0;
    j.view->addLayer(raster);
    j.journal.clear();

    QVERIFY(j.view->zoomOneToOne(1));
    QCOMPARE(j.steps(), QStringList({"a beginUpdate zoom"}) + set("0 100 100 0"));
    j.journal.clear();

    j.runTo(200);
    QCOMPARE(j.journal,
             set("-51 151 151 -51") + QStringList({"a endUpdate", "extents -51 151 151 -51"}));
}

void MapViewCommandsTest::oneToOneOfWhatIsNoRasterDoesNothing()
{
    JournalView j(Motion::Direct);
    j.view->addLayer(new TestVectorLayer);
    j.journal.clear();

    QVERIFY(j.view->zoomOneToOne(1));
    QVERIFY(j.view->zoomOneToOne(2));   // no layer there
    QVERIFY(!j.view->zoomOneToOne(-1)); // no index at all

    QCOMPARE(j.journal, QStringList());
}

void MapViewCommandsTest::thereIsNoContextMenuUnlessOneIsBuilt()
{
    JournalView j(Motion::Direct);
    QVERIFY(!j.view->contextMenu);
    press(*j.view, QPoint(40, 40), Qt::RightButton);
    QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(40, 40));
    QApplication::sendEvent(j.view.get(), &event);
    QVERIFY(!QApplication::activePopupWidget());
}

void MapViewCommandsTest::theContextMenuOpensWhereThePressWas_data()
{
    QTest::addColumn<QPoint>("position");
    QTest::addColumn<bool>("opens");
    QTest::newRow("on a click that did not move") << QPoint(40, 40) << true;
    QTest::newRow("not after a drag to the side") << QPoint(41, 40) << false;
    QTest::newRow("not after a drag down") << QPoint(40, 41) << false;
}

namespace {

/// Whether a right click at the position, whose press and moves have come, opens the menu there.
bool opensMenu(OpenView& view, QPoint position)
{
    view.move(150, 120); // so that the position is another one on the screen
    view.contextMenu = new QMenu(&view);
    view.contextMenu->addAction(QStringLiteral("an entry"));
    QPoint place;
    QObject::connect(view.contextMenu, &QMenu::aboutToShow, [&] {
        QTimer::singleShot(0, view.contextMenu, [&] {
            place = view.contextMenu->pos();
            view.contextMenu->close();
        });
    });
    QContextMenuEvent event(QContextMenuEvent::Mouse, position, view.mapToGlobal(position));
    QApplication::sendEvent(&view, &event);
    return place == view.mapToGlobal(position) && place != position;
}

} // namespace

void MapViewCommandsTest::theContextMenuOpensWhereThePressWas()
{
    QFETCH(QPoint, position);
    QFETCH(bool, opens);
    JournalView j(Motion::Direct);

    press(*j.view, QPoint(40, 40), Qt::RightButton);
    release(*j.view, position, Qt::RightButton);

    QCOMPARE(opensMenu(*j.view, position), opens);
}

void MapViewCommandsTest::inPointModeTheContextMenuOpensWhereThePointerIs_data()
{
    QTest::addColumn<QPoint>("position");
    QTest::addColumn<bool>("opens");
    QTest::newRow("where it was moved to") << QPoint(60, 50) << true;
    QTest::newRow("not where it was pressed") << QPoint(40, 40) << false;
}

void MapViewCommandsTest::inPointModeTheContextMenuOpensWhereThePointerIs()
{
    QFETCH(QPoint, position);
    QFETCH(bool, opens);
    JournalView j(Motion::Direct);
    j.view->setPointerMode(MapView::Point);

    press(*j.view, QPoint(40, 40), Qt::RightButton);
    move(*j.view, QPoint(60, 50), Qt::RightButton);
    release(*j.view, QPoint(60, 50), Qt::RightButton);

    QCOMPARE(opensMenu(*j.view, position), opens);
}

void MapViewCommandsTest::theContextMenuHasItsEntries()
{
    OpenView view;

    buildContextMenuOf(view);

    QVERIFY(view.contextMenu);
    QCOMPARE(view.contextMenu->parent(), &view);
    QCOMPARE(view.contextMenu->title(), QStringLiteral("Map View"));
    QStringList entries;
    for (QAction* action : view.contextMenu->actions()) {
        entries << (action->isSeparator() ? QStringLiteral("-")
                    : action->menu()      ? QStringLiteral("%1, %2 entries")
                                           .arg(action->text())
                                           .arg(action->menu()->actions().size())
                                     : action->text());
    }
    QCOMPARE(entries, QStringList({"Zoom, 0 entries", "View, 0 entries", "-", "Properties"}));
}

void MapViewCommandsTest::theViewTakesTheContextMenuWithIt()
{
    QStringList gone;
    {
        OpenView view;
        view.contextMenu = new QMenu;
        connect(view.contextMenu, &QObject::destroyed, [&gone] { gone << "menu"; });
        connect(view.getMapCanvas(), &QObject::destroyed, [&gone] { gone << "canvas"; });
    }
    QCOMPARE(gone, QStringList({"menu", "canvas"}));
}

MAP_TEST_MAIN(MapViewCommandsTest)
#include "MapViewCommandsTest.moc"
