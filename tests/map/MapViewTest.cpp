#include "MapViewPrivates.h"
#include "MapViewTools.h"

#include <corvane/core/LogMessageHandler.h>
#include <corvane/map/MapCanvas.h>
#include <corvane/map/ViewManager.h>

#include <QMetaMethod>
#include <QPointer>

#include <thread>

using Corvane::Application;
using Corvane::LogLevel;
using Corvane::Map::IClient;
using Corvane::Map::MapCanvas;
using Corvane::Map::MapView;

namespace {

QSettings& settings()
{
    return *Application::instance()->getSettings();
}

class RecordingLog : public Corvane::LogMessageHandler
{
public:
    RecordingLog() { Application::installLogMessageHandler(this); }
    virtual ~RecordingLog() { Application::installLogMessageHandler(nullptr); }

    void logMessage(const QString& message, LogLevel level, const QDateTime&) override
    {
        lines << QStringLiteral("%1 %2").arg(Application::getLogLevelStr(level), message);
    }
    void setLogLevel(LogLevel) override {}
    LogLevel getLogLevel() override { return Corvane::Debug; }

    QStringList lines;
};

/// Counts the frames.
class CountingView : public MapView
{
public:
    int paints = 0;

    /// Lets everything happen that has been asked for, and forgets how often it painted.
    void settle()
    {
        QCoreApplication::processEvents();
        paints = 0;
    }

protected:
    void paintEvent(QPaintEvent* event) override
    {
        ++paints;
        MapView::paintEvent(event);
    }
};

/// Stands in the way of every update that is asked for by name.
class UpdateWatchingView : public CountingView
{
    Q_OBJECT
public:
    using MapView::update;

    QVector<std::thread::id> threads; ///< where update() ran

public slots:
    void update()
    {
        threads << std::this_thread::get_id();
        QWidget::update();
    }
};

} // namespace

class MapViewTest : public QObject
{
    Q_OBJECT
private slots:
    void cleanup();

    void startsAsAnEmptyMapInRoamMode();
    void hasTheWidgetAttributesOfAnOpaquePicture();
    void fitsTheFirstExtentsToItsSize();
    void offersItsPropertiesInOrder();
    void declaresItsSignalsAndSlotsInOrder();
    void declaresItsCommandsInOrder();
    void namesTheMapControls();
    void readsItsSettings();
    void aSettingThatIsNoColourGivesAnInvalidColour_data();
    void aSettingThatIsNoColourGivesAnInvalidColour();
    void readsItsSettingsOnlyOnce();
    void isAnimatedUnlessTheSettingsForbidIt();
    void storesPlainValues();
    void theAnimationTakesAFifthOfASecondAndStartsSlowly();

    void takesItsLayersWithIt();
    void anotherCanvasIsOnlyStored();

    void aPointerModeSetsTheCursor_data();
    void aPointerModeSetsTheCursor();
    void anUnknownPointerModeLeavesTheCursor();

    void anExtentChangeReachesTheCanvasBeforeTheSignal();
    void whoHearsOfExtentsFindsThemInTheView();
    void anExtentChangeAsksForARepaint();
    void setBoundsTellsTheFittedAndThenTheGivenRectangle();
    void setBoundsTakesARectangleOrItsCorners();
    void setBoundsWithANullRectangleOnlyTells();
    void theBoundsPropertySetsTheExtents();
    void passesUpdateBracketsToTheCanvas();

    void aResizeKeepsTheScaleAndTellsTwice();
    void showingTellsTwice();
    void aResizeLeavesTheAnimationRunning();
    void aViewOnePixelWideKeepsItsExtents();

    void settersOfFlagsAskForNoRepaint();
    void rotationAndSelectionAskForARepaint();
    void forgetsASelectedLayerThatIsDeleted();

    void aRendererUpdateRepaintsTheWholeWidget();
    void aRendererUpdateOnTheWidgetsThreadIsNotQueued();
    void aDerivedViewTakesRendererUpdatesItself();
    void aRendererUpdateFromAnotherThreadIsQueued();
    void aLayerRefreshFromAnotherThreadRepaints();
    void updatesFromAnotherThreadAreMergedIntoOneFrame();
    void aRendererErrorIsLogged();

    void theFinishedAnimationClosesTheBracketAndTellsTheBounds();
    void anAnimationEndsOnItsTargetByItself();
};

void MapViewTest::cleanup()
{
    settings().clear();
}

void MapViewTest::startsAsAnEmptyMapInRoamMode()
{
    MapView view;

    QCOMPARE(view.getViewManager()->getPointerMode(), IClient::Roam);
    QCOMPARE(view.getViewManager()->getMasterClient(), static_cast<IClient*>(&view));
    QCOMPARE(view.cursor().shape(), Qt::OpenHandCursor);
    QCOMPARE(view.getMapCanvas()->parent(), &view);
    QCOMPARE(view.getMapCanvas()->getClient(), static_cast<Corvane::Map::IRendererClient*>(&view));
    QCOMPARE(view.getNumberOfLayers(), 0);
    QCOMPARE(view.getLayerSelection(), static_cast<Corvane::Map::Layer*>(nullptr));
    QCOMPARE(view.getShowLayerSelection(), false);
    QCOMPARE(view.getHighQualityRendering(), false);
    QCOMPARE(view.getDrawCrosshair(), false);
    QCOMPARE(view.getDocumentName(), QString());
    QCOMPARE(view.getGeolinkMode(), IClient::GeolinkNone);
    QCOMPARE(view.getBackgroundColor(), QColor(255, 255, 255, 255));
}

void MapViewTest::hasTheWidgetAttributesOfAnOpaquePicture()
{
    QWidget parent;
    MapView view(&parent, Qt::Tool);

    QCOMPARE(view.parentWidget(), &parent);
    QCOMPARE(view.windowFlags() & Qt::WindowType_Mask, Qt::WindowFlags(Qt::Tool));
    QVERIFY(!view.autoFillBackground());
    QVERIFY(view.testAttribute(Qt::WA_DeleteOnClose));
    QVERIFY(view.testAttribute(Qt::WA_OpaquePaintEvent));
    QCOMPARE(view.focusPolicy(), Qt::WheelFocus);
    QVERIFY(!view.hasMouseTracking());
    QCOMPARE(view.sizeHint(), QSize(400, 400));
    QCOMPARE(view.minimumSizeHint(), QSize(100, 100));

    parent.setBackgroundRole(QPalette::Highlight);
    QCOMPARE(MapView(&parent).backgroundRole(), QPalette::Highlight); // none of its own
}

void MapViewTest::fitsTheFirstExtentsToItsSize()
{
    MapView view;
    QCOMPARE(text(view.getBounds()), QStringLiteral("-180 180 180 -180"));

    view.resize(201, 101);
    view.show();

    // one pixel keeps its 3.6 degrees
    QCOMPARE(text(view.getBounds()), QStringLiteral("-180 180 540 -180"));
}

void MapViewTest::offersItsPropertiesInOrder()
{
    const QMetaObject& meta = MapView::staticMetaObject;
    QStringList properties;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        properties << QStringLiteral("%1 %2%3").arg(
            QLatin1String(property.typeName()), QLatin1String(property.name()),
            property.isWritable() ? QStringLiteral(" writable") : QString());
    }
    QCOMPARE(properties,
             QStringList({"bool ShowLayerSelection writable", "bool HighQualityRendering writable",
                          "bool DrawCrosshair writable", "QRectF Bounds writable"}));
}

namespace {

QStringList methodsOf(const QMetaObject& meta, bool invokable)
{
    QStringList methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        if ((method.methodType() == QMetaMethod::Method) == invokable) {
            methods << QStringLiteral("%1 %2").arg(
                QString::fromLatin1(method.methodSignature()),
                QString::fromLatin1(method.parameterNames().join(' ')));
        }
    }
    return methods;
}

} // namespace

void MapViewTest::declaresItsSignalsAndSlotsInOrder()
{
    QCOMPARE(methodsOf(MapView::staticMetaObject, false),
             QStringList({"layerAdded(Layer*) player", "layerDeleted(Layer*) player",
                          "layerMoved(Layer*) player",
                          "layerPropertyChanged(Layer*,QMetaProperty*,QVariant&) "
                          "player propery value",
                          "mapExtentsChanged(double,double,double,double) tlx tly brx bry",
                          "mapPropertyChanged(QMetaProperty*,QVariant&) propery value",
                          "pointerCoordChanged(QPointF) worldPoint", "setBounds(QRectF) rect",
                          "setBounds(double,double,double,double) tlx tly brx bry",
                          "setRotation(double) val", "setLayerSelection(Map::Layer*) pLayer",
                          "onExtentAnimFinish() ", "onMapAction(MapControl) action"}));
}

void MapViewTest::declaresItsCommandsInOrder()
{
    QCOMPARE(methodsOf(MapView::staticMetaObject, true),
             QStringList({"addLayer(QString,QString,QString,QString,int) "
                          "className dataSource description paramList index",
                          "addLayer(QString,QString,QString,QString) "
                          "className dataSource description paramList",
                          "addLayer(QString,QString,QString) className dataSource description",
                          "addLayer(QString,QString) className dataSource",
                          "addLayer(Layer*,int) layer index",
                          "addLayer(Layer*) layer",
                          "deleteLayerAt(int) index",
                          "deleteLayer(QString&) uid",
                          "deleteLayer(Layer*) pLayer",
                          "deleteAllLayers() ",
                          "deleteAllOverlayLayers() ",
                          "deleteAllBackgroundLayers() ",
                          "moveLayer(int,int) from to",
                          "zoomToLayer(int) index",
                          "zoomToLayer(Layer*) pLayer",
                          "zoomOneToOne(int) index",
                          "zoomToAllLayers(bool) bAnimate",
                          "zoomToAllLayers() ",
                          "getLayerAt(int) index",
                          "findLayer(QString) uid",
                          "getLayerIndex(QString&) uid",
                          "getNumberOfLayers() ",
                          "getRotation() ",
                          "getDescription() ",
                          "setDescription(QString) desc",
                          "getLayers() ",
                          "loadMapXML(QDomDocument&,QDir&,QString*) theDoc baseDir pErrorMessage",
                          "loadMapXML(QDomDocument&,QDir&) theDoc baseDir",
                          "saveMapXML() "}));
}

void MapViewTest::namesTheMapControls()
{
    const QMetaEnum controls = QMetaEnum::fromType<MapView::MapControl>();
    QStringList names;
    for (int i = 0; i < controls.keyCount(); ++i) {
        names << QStringLiteral("%1 %2").arg(controls.value(i)).arg(controls.key(i));
    }
    QCOMPARE(names, QStringList({"0 MapPanUp", "1 MapPanDown", "2 MapPanLeft", "3 MapPanRight",
                                 "4 MapZoomIn", "5 MapZoomOut", "6 MapZoomToAll"}));
}

void MapViewTest::readsItsSettings()
{
    settings().setValue("Gui/MapView/BackgroundColor", QColor(10, 20, 30, 40));
    settings().setValue("Gui/MapView/UseAnimation", false);
    settings().setValue("Gui/MapView/DrawZoomCrosshair", true);

    MapView view;

    QCOMPARE(view.getBackgroundColor(), QColor(10, 20, 30, 40));
    QCOMPARE(view.getDrawCrosshair(), true);
    view.onMapAction(MapView::MapZoomIn);
    QCOMPARE(animationOf(view).state(), QAbstractAnimation::Stopped);
}

void MapViewTest::aSettingThatIsNoColourGivesAnInvalidColour_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::newRow("a text that names no colour") << QVariant(QStringLiteral("no colour"));
    QTest::newRow("a rectangle") << QVariant(QRect(0, 0, 10, 10));
}

void MapViewTest::aSettingThatIsNoColourGivesAnInvalidColour()
{
    QFETCH(QVariant, value);
    settings().setValue("Gui/MapView/BackgroundColor", value);
    QVERIFY(!MapView().getBackgroundColor().isValid());
}

void MapViewTest::readsItsSettingsOnlyOnce()
{
    MapView view;
    settings().setValue("Gui/MapView/BackgroundColor", QColor(Qt::red));
    settings().setValue("Gui/MapView/DrawZoomCrosshair", true);

    view.show();

    QCOMPARE(view.getBackgroundColor(), QColor(255, 255, 255, 255));
    QCOMPARE(view.getDrawCrosshair(), false);
}

void MapViewTest::isAnimatedUnlessTheSettingsForbidIt()
{
    QVERIFY(!settings().contains("Gui/MapView/UseAnimation"));
    MapView view;
    view.onMapAction(MapView::MapZoomIn);
    QCOMPARE(animationOf(view).state(), QAbstractAnimation::Running);
}

void MapViewTest::storesPlainValues()
{
    MapView view;
    QColor colour(1, 2, 3);

    view.setBackgroundColor(colour);
    view.setDocumentName(QStringLiteral("harbour.xml"));
    view.setGeolinkMode(IClient::GeolinkScreen);
    view.setDescription(QStringLiteral("Harbour"));
    QVERIFY(view.setProperty("ShowLayerSelection", true));
    QVERIFY(view.setProperty("HighQualityRendering", true));
    QVERIFY(view.setProperty("DrawCrosshair", true));

    QCOMPARE(view.getBackgroundColor(), colour);
    QCOMPARE(view.getDocumentName(), QStringLiteral("harbour.xml"));
    QCOMPARE(view.getGeolinkMode(), IClient::GeolinkScreen);
    QCOMPARE(view.getDescription(), QStringLiteral("Harbour"));
    QCOMPARE(view.getMapCanvas()->getDescription(), QStringLiteral("Harbour"));
    QVERIFY(view.getShowLayerSelection());
    QVERIFY(view.getHighQualityRendering());
    QVERIFY(view.getDrawCrosshair());
}

void MapViewTest::theAnimationTakesAFifthOfASecondAndStartsSlowly()
{
    MapView view;
    QCOMPARE(animationOf(view).targetObject(), &view);
    QCOMPARE(animationOf(view).propertyName(), QByteArray("Bounds"));
    QCOMPARE(animationOf(view).duration(), 200);
    QCOMPARE(animationOf(view).easingCurve().type(), QEasingCurve::InQuad);
    QVERIFY(!animationOf(view).parent());
}

void MapViewTest::takesItsLayersWithIt()
{
    QStringList journal;
    {
        MapView view;
        view.addLayer(new JournalLayer("a", &journal));
        view.addLayer(new JournalLayer("b", &journal));
        record(view, &journal);
        journal.clear();
    }
    QCOMPARE(journal, QStringList({"b gone", "a gone"}));
}

void MapViewTest::anotherCanvasIsOnlyStored()
{
    QPointer<MapCanvas> other = new MapCanvas(nullptr);
    QPointer<MapCanvas> first;
    {
        MapView view;
        first = view.getMapCanvas();

        view.setMapCanvas(other);

        QCOMPARE(view.getMapCanvas(), other.data());
        QVERIFY(!other->getClient());
        QVERIFY(first);
    }
    QVERIFY(!other);
    QVERIFY(!first); // a child of the view still
}

void MapViewTest::aPointerModeSetsTheCursor_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<Qt::CursorShape>("cursor");
    QTest::newRow("roam: an open hand") << int(IClient::Roam) << Qt::OpenHandCursor;
    QTest::newRow("zoom: a cross") << int(IClient::Zoom) << Qt::CrossCursor;
    QTest::newRow("zoom box: a cross") << int(IClient::ZoomBox) << Qt::CrossCursor;
    QTest::newRow("point: an arrow") << int(IClient::Point) << Qt::ArrowCursor;
}

void MapViewTest::aPointerModeSetsTheCursor()
{
    QFETCH(int, mode);
    QFETCH(Qt::CursorShape, cursor);
    MapView view;
    view.setCursor(Qt::WaitCursor);

    view.setPointerMode(IClient::PointerMode(mode));

    QCOMPARE(view.getViewManager()->getPointerMode(), IClient::PointerMode(mode));
    QCOMPARE(view.cursor().shape(), cursor);
}

void MapViewTest::anUnknownPointerModeLeavesTheCursor()
{
    MapView view;
    view.setPointerMode(IClient::PointerMode(7));
    QCOMPARE(view.getViewManager()->getPointerMode(), IClient::PointerMode(7));
    QCOMPARE(view.cursor().shape(), Qt::OpenHandCursor);
}

void MapViewTest::anExtentChangeReachesTheCanvasBeforeTheSignal()
{
    QStringList journal;
    auto view = makeView(Motion::Direct);
    view->addLayer(new JournalLayer("a", &journal));
    record(*view, &journal);
    journal.clear();

    view->onExtentChange(1.5, 20.5, 30.5, -4.5, true);

    QCOMPARE(journal,
             QStringList({"a setView 101x101 1.5 20.5 30.5 -4.5", "extents 1.5 20.5 30.5 -4.5"}));
    QCOMPARE(view->getBounds(), QRectF(1.5, 20.5, 29.0, -25.0));
}

void MapViewTest::whoHearsOfExtentsFindsThemInTheView()
{
    auto view = makeView(Motion::Direct);
    QStringList found;
    connect(view.get(), &MapView::mapExtentsChanged,
            [&] { found << text(view->getBounds()) << text(view->getMapCanvas()->getBounds()); });

    view->onExtentChange(1.0, 20.0, 30.0, -4.0, false);

    QCOMPARE(found, QStringList({"1 20 30 -4", "1 20 30 -4"}));
}

void MapViewTest::anExtentChangeAsksForARepaint()
{
    auto view = makeView<CountingView>(Motion::Direct);
    view->settle();

    view->getViewManager()->fireExtentChange();

    QTRY_COMPARE(view->paints, 1);
}

void MapViewTest::setBoundsTellsTheFittedAndThenTheGivenRectangle()
{
    QStringList journal;
    auto view = makeView(Motion::Direct);
    view->addLayer(new JournalLayer("a", &journal));
    record(*view, &journal);
    journal.clear();

    view->setBounds(QRectF(0.0, 20.0, 40.0, -20.0)); // twice as wide as high

    QCOMPARE(journal, QStringList({"a setView 101x101 0 30 40 -10", "extents 0 30 40 -10",
                                   "extents 0 20 40 0"}));
    QCOMPARE(text(view->getBounds()), QStringLiteral("0 30 40 -10"));
}

void MapViewTest::setBoundsTakesARectangleOrItsCorners()
{
    QStringList journal;
    auto view = makeView(Motion::Direct);
    record(*view, &journal);

    view->setBounds(0.0, 20.0, 40.0, 0.0);

    QCOMPARE(journal, QStringList({"extents 0 30 40 -10", "extents 0 20 40 0"}));
}

void MapViewTest::setBoundsWithANullRectangleOnlyTells()
{
    QStringList journal;
    auto view = makeView(Motion::Direct);
    record(*view, &journal);

    view->setBounds(QRectF());
    view->setBounds(5.0, 6.0, 5.0, 6.0);

    QCOMPARE(journal, QStringList({"extents 0 0 0 0", "extents 5 6 5 6"}));
    QCOMPARE(text(view->getBounds()), QStringLiteral("0 100 100 0"));
}

void MapViewTest::theBoundsPropertySetsTheExtents()
{
    auto view = makeView(Motion::Direct);
    QVERIFY(view->setProperty("Bounds", world(10.0, 60.0, 60.0, 10.0)));
    QCOMPARE(text(view->property("Bounds").toRectF()), QStringLiteral("10 60 60 10"));
    double tlx = 0.0, tly = 0.0, brx = 0.0, bry = 0.0;
    view->getViewManager()->getWorldExtents(&tlx, &tly, &brx, &bry);
    QCOMPARE(text(tlx, tly, brx, bry), QStringLiteral("10 60 60 10"));
}

void MapViewTest::passesUpdateBracketsToTheCanvas()
{
    QStringList journal;
    auto view = makeView(Motion::Direct);
    view->addLayer(new JournalLayer("a", &journal));
    journal.clear();

    view->beginClientUpdate(true);
    view->beginClientUpdate(false);
    view->endClientUpdate();

    QCOMPARE(journal, QStringList({"a beginUpdate zoom", "a beginUpdate roam", "a endUpdate"}));
}

void MapViewTest::aResizeKeepsTheScaleAndTellsTwice()
{
    QStringList journal;
    auto view = makeView(Motion::Direct);
    view->addLayer(new JournalLayer("a", &journal));
    view->setBounds(0.0, 100.0, 100.0, 0.0);
    record(*view, &journal);
    journal.clear();

    view->resize(201, 151);

    QCOMPARE(journal, QStringList({"a setView 201x151 0 100 200 -50", "extents 0 100 200 -50",
                                   "a setView 201x151 0 100 200 -50", "extents 0 100 200 -50"}));
}

void MapViewTest::showingTellsTwice()
{
    QStringList journal;
    auto view = makeView(Motion::Direct);
    view->hide();
    record(*view, &journal);

    view->show();

    QCOMPARE(journal, QStringList({"extents 0 100 100 0", "extents 0 100 100 0"}));
}

void MapViewTest::aResizeLeavesTheAnimationRunning()
{
    auto view = makeView(Motion::Animated);
    view->onMapAction(MapView::MapZoomIn);
    view->resize(121, 121);
    QCOMPARE(animationOf(*view).state(), QAbstractAnimation::Running);
}

void MapViewTest::aViewOnePixelWideKeepsItsExtents()
{
    QStringList journal;
    auto view = makeView(Motion::Direct);
    record(*view, &journal);

    view->resize(1, 101);

    QCOMPARE(journal, QStringList());
    QCOMPARE(text(view->getBounds()), QStringLiteral("0 100 100 0"));
}

void MapViewTest::settersOfFlagsAskForNoRepaint()
{
    auto view = makeView<CountingView>(Motion::Direct);
    view->settle();
    QColor colour(Qt::red);

    view->setShowLayerSelection(true);
    view->setHighQualityRendering(true);
    view->setDrawCrosshair(true);
    view->setBackgroundColor(colour);
    QCoreApplication::processEvents();

    QCOMPARE(view->paints, 0);
}

void MapViewTest::rotationAndSelectionAskForARepaint()
{
    auto view = makeView<CountingView>(Motion::Direct);
    TestLayer layer;
    view->settle();

    view->setRotation(30.0);
    QTRY_COMPARE(view->paints, 1);
    QCOMPARE(view->getRotation(), 30.0);
    QCOMPARE(view->getMapCanvas()->getRotation(), 30.0);

    view->setLayerSelection(&layer);
    QTRY_COMPARE(view->paints, 2);
    QCOMPARE(view->getLayerSelection(), &layer);
}

void MapViewTest::forgetsASelectedLayerThatIsDeleted()
{
    auto view = makeView(Motion::Direct);
    auto* layer = new TestLayer;
    view->addLayer(layer);
    view->setLayerSelection(layer);
    view->setShowLayerSelection(true);

    view->getMapCanvas()->deleteAllLayers();

    QVERIFY(!view->getLayerSelection());
    view->grab();
}

void MapViewTest::aRendererUpdateRepaintsTheWholeWidget()
{
    auto view = makeView<CountingView>(Motion::Direct);
    view->settle();

    view->onRendererUpdate(1.0, 2.0, 2.0, 1.0);

    QTRY_COMPARE(view->paints, 1);
}

void MapViewTest::aRendererUpdateOnTheWidgetsThreadIsNotQueued()
{
    auto view = makeView<UpdateWatchingView>(Motion::Direct);
    view->settle();

    view->onRendererUpdate(1.0, 2.0, 2.0, 1.0);

    QTRY_COMPARE(view->paints, 1);
    QVERIFY(view->threads.isEmpty()); // nothing was called by its name
}

void MapViewTest::aDerivedViewTakesRendererUpdatesItself()
{
    class OwnView : public MapView
    {
    public:
        using MapView::update;
        void update(double left, double top, double right, double bottom) override
        {
            updates << text(left, top, right, bottom);
        }
        QStringList updates;
    };
    OwnView view;
    view.onRendererUpdate(1.0, 4.0, 3.0, 2.0);
    QCOMPARE(view.updates, QStringList({"1 4 3 2"}));
}

void MapViewTest::aRendererUpdateFromAnotherThreadIsQueued()
{
    auto view = makeView<UpdateWatchingView>(Motion::Direct);
    view->settle();

    std::thread worker([&view] { view->onRendererUpdate(1.0, 2.0, 2.0, 1.0); });
    worker.join();
    QVERIFY(view->threads.isEmpty());
    QCOMPARE(view->paints, 0);

    QTRY_COMPARE(view->paints, 1);
    QCOMPARE(view->threads, QVector<std::thread::id>({std::this_thread::get_id()}));
}

void MapViewTest::aLayerRefreshFromAnotherThreadRepaints()
{
    auto view = makeView<CountingView>(Motion::Direct);
    auto* layer = new TestLayer;
    view->addLayer(layer);
    view->settle();

    std::thread worker([layer] { layer->refresh(1.0, 2.0, 2.0, 1.0); });
    worker.join();

    QTRY_COMPARE(view->paints, 1);
}

void MapViewTest::updatesFromAnotherThreadAreMergedIntoOneFrame()
{
    auto view = makeView<UpdateWatchingView>(Motion::Direct);
    view->settle();
    constexpr int updates = 50;

    std::thread worker([&view] {
        for (int i = 0; i < updates; ++i) {
            view->onRendererUpdate(1.0, 2.0, 2.0, 1.0);
        }
    });
    worker.join();

    QTRY_COMPARE(view->threads.size(), updates);
    QTRY_COMPARE(view->paints, 1);
}

void MapViewTest::aRendererErrorIsLogged()
{
    RecordingLog log;
    MapView view;
    view.onRendererError(QStringLiteral("the server is gone"));
    QCOMPARE(log.lines, QStringList({"Error the server is gone"}));
}

void MapViewTest::theFinishedAnimationClosesTheBracketAndTellsTheBounds()
{
    QStringList journal;
    auto view = makeView<CountingView>(Motion::Direct);
    view->addLayer(new JournalLayer("a", &journal));
    view->setBounds(10.0, 60.0, 60.0, 10.0);
    record(*view, &journal);
    view->settle();
    journal.clear();

    view->onExtentAnimFinish();

    QCOMPARE(journal, QStringList({"a endUpdate", "extents 10 60 60 10"}));
    QTRY_COMPARE(view->paints, 1);
}

void MapViewTest::anAnimationEndsOnItsTargetByItself()
{
    QStringList journal;
    auto view = makeView(Motion::Animated);
    view->addLayer(new JournalLayer("a", &journal));
    view->setBounds(0.0, 100.0, 100.0, 0.0);
    journal.clear();
    QStringList extents;
    record(*view, &extents);

    view->onMapAction(MapView::MapZoomIn);
    QTRY_VERIFY(journal.contains(QStringLiteral("a endUpdate")));

    QCOMPARE(text(view->getBounds()), QStringLiteral("25 75 75 25"));
    // two signals for each step, and one for the end
    QCOMPARE(extents.size() % 2, 1);
    for (int i = 0; i + 1 < extents.size(); i += 2) {
        QCOMPARE(extents.at(i), extents.at(i + 1));
    }
    QCOMPARE(extents.first(), QStringLiteral("extents 0 100 100 0"));
    QCOMPARE(extents.last(), QStringLiteral("extents 25 75 75 25"));
    QCOMPARE(journal.count(QStringLiteral("a beginUpdate roam")), 1);
    QCOMPARE(journal.count(QStringLiteral("a endUpdate")), 1);
}

MAP_TEST_MAIN(MapViewTest)
#include "MapViewTest.moc"
