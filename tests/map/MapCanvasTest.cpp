#include "MapViewTools.h"

#include <corvane/map/IRendererClient.h>
#include <corvane/map/MapCanvas.h>

#include <QMetaMethod>
#include <QPointer>
#include <QUuid>

#include <cmath>
#include <functional>
#include <limits>

using Corvane::GeoPainter;
using Corvane::Map::IRendererClient;
using Corvane::Map::Layer;
using Corvane::Map::MapCanvas;
using Corvane::Map::SpatialReference;

namespace {

class RecordingClient : public IRendererClient
{
public:
    void onRendererUpdate(double tlx, double tly, double brx, double bry) override
    {
        log << text(tlx, tly, brx, bry);
    }
    void onRendererError(QString message) override { log << message; }

    QStringList log;
};

/// A frame of 100 by 100 pixels, white at first. GeoPainter spans 99 pixels there, so a world of
/// 99 units has one unit per pixel.
QImage paintFrame(MapCanvas& canvas, QRectF worldRect = world(0.0, 99.0, 99.0, 0.0))
{
    QImage frame(100, 100, QImage::Format_RGB32);
    frame.fill(Qt::white);
    QRect device(0, 0, 100, 100);
    GeoPainter painter(&frame, worldRect, device);
    canvas.paint(painter, &worldRect, &device);
    return frame;
}

/// The canvas's measure of a frame of paintFrame, by the same steps.
double scaleOf(const QRectF& worldRect)
{
    return (worldRect.bottomRight().x() - worldRect.topLeft().x()) * 9600.0 / (100 * 2.54) + 0.5;
}

} // namespace

Q_DECLARE_METATYPE(std::function<void(MapCanvas&)>)

class MapCanvasTest : public QObject
{
    Q_OBJECT
private slots:
    void startsAsAnEmptyMap();
    void offersItsPropertiesInOrder();
    void offersItsOperationsToScriptsInOrder();
    void storesPlainValues();
    void writesRotationAndDescriptionAsProperties();

    void aLayerIsPutWhereTheIndexSays_data();
    void aLayerIsPutWhereTheIndexSays();
    void aNullLayerIsNotAdded();
    void anAddedLayerAsksTheClientForRepaints();
    void aNewClientIsNotHandedToLayersInTheStack();
    void aClassThatNoPluginServesGivesNoLayer();
    void aClassOfAPluginGivesALayerWithItsSourceAndDescription();
    void anEmptyDescriptionKeepsTheLayersOwn();
    void theOperationsCanBeCalledByName();

    void deletesTheLayerAtAnIndex();
    void deletesNothingOutsideTheStackOrWhereALayerIsMissing();
    void deletesALayerByUidAndByPointer();
    void deletesTheWholeStackFromTheTop();
    void aDeletedLayerHasLeftTheStackBefore();
    void anEmptySideListDeletesNothing();
    void aFilledSideListDeletesFromTheStack();
    void takesTheStackWithItAndLeavesTheSideLists();

    void movesALayer_data();
    void movesALayer();
    void leavesAMissingLayerInPlace();
    void givesNoLayerOutsideTheStack();
    void findsALayerByItsUidText();

    void boundsAreTheViewInWholeUnits_data();
    void boundsAreTheViewInWholeUnits();
    void maxBoundsAreTheUnionOfWhatIsShown();
    void maxBoundsAreNullWithoutAShownLayer();

    void tellsShownLayersTheView();
    void hasTheViewBeforeItsLayersAreTold();
    void aLayerHiddenDuringAChangeOfViewGetsTheNextOne();
    void passesEachUpdateCallOn();
    void aLayerMayTakeOthersAwayWhileItIsCalled_data();
    void aLayerMayTakeOthersAwayWhileItIsCalled();
    void aSideLayerMayLeaveItsListWhileItIsPainted();

    void paintsFromTheBottomUpBetweenTheSideLists();
    void passesOverLayersThatAreHiddenInvalidOrMissing();
    void bothLimitsOfAScaleRangeAreExclusive_data();
    void bothLimitsOfAScaleRangeAreExclusive();
    void theScaleRangeOfASideLayerDoesNotCount();
    void aMirroredWorldShowsNoLayerOfTheStack();
    void drawsABoxAroundEachLayerInItsScaleRange();
    void drawsABoxAroundTheMap();
    void theBoxesLieBetweenTheStackAndTheOverlay();
    void theBoxesAreFilledWithThePaintersBrush();
    void leavesThePainterAsItWas();

    void handsItsReferenceToAllLayers();
    void theReferenceIsThatOfTheBottomLayer();
};

void MapCanvasTest::startsAsAnEmptyMap()
{
    QObject parent;
    auto* canvas = new MapCanvas(&parent);

    QCOMPARE(canvas->parent(), &parent);
    QVERIFY(canvas->getLayers().isEmpty());
    QVERIFY(canvas->getOverlayLayers().isEmpty());
    QVERIFY(canvas->getBackgroundLayers().isEmpty());
    QCOMPARE(canvas->getClient(), static_cast<IRendererClient*>(nullptr));
    QCOMPARE(canvas->getRotation(), 0.0);
    QCOMPARE(canvas->getDescription(), QStringLiteral("Map"));
    QCOMPARE(canvas->getComments(), QString());
    QCOMPARE(canvas->getMapBBoxColor(), QColor(255, 0, 0, 255));
    QCOMPARE(canvas->getLayerBBoxColor(), QColor(0, 255, 255, 255));
    QCOMPARE(canvas->getQuickDraw(), false);
    QCOMPARE(canvas->getDrawMapBBox(), false);
    QCOMPARE(canvas->getDrawLayerBBox(), false);
    QCOMPARE(canvas->getSrs().epsg, 0);
}

void MapCanvasTest::offersItsPropertiesInOrder()
{
    const QMetaObject& meta = MapCanvas::staticMetaObject;
    QStringList properties;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        properties << QStringLiteral("%1 %2%3").arg(
            QLatin1String(property.typeName()), QLatin1String(property.name()),
            property.isWritable() ? QStringLiteral(" writable") : QString());
    }
    QCOMPARE(properties, QStringList({"QRectF bounds", "double rotation writable",
                                      "QString description writable", "int layerCount"}));
}

void MapCanvasTest::offersItsOperationsToScriptsInOrder()
{
    const QMetaObject& meta = MapCanvas::staticMetaObject;
    QStringList methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        methods << QStringLiteral("%1 %2").arg(
            QString::fromLatin1(method.methodSignature()),
            QString::fromLatin1(method.parameterNames().join(' ')));
    }
    QCOMPARE(methods,
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
                          "getLayerAt(int) index",
                          "findLayer(QString) uid",
                          "getLayerIndex(QString&) uid",
                          "getNumberOfLayers() ",
                          "getComments() ",
                          "setComments(QString) value",
                          "getRotation() ",
                          "setRotation(double) dRotation",
                          "getDescription() ",
                          "setDescription(QString) desc",
                          "setSrs(SpatialReference) ref",
                          "getSrs() ",
                          "setQuickDraw(bool) bValue",
                          "getQuickDraw() ",
                          "setDrawMapBBox(bool) value",
                          "getDrawMapBBox() ",
                          "setDrawLayerBBox(bool) value",
                          "getDrawLayerBBox() ",
                          "setMapBBoxColor(QColor) color",
                          "getMapBBoxColor() ",
                          "setLayerBBoxColor(QColor) color",
                          "getLayerBBoxColor() "}));
}

void MapCanvasTest::storesPlainValues()
{
    MapCanvas canvas(nullptr);
    RecordingClient client;

    canvas.setClient(&client);
    canvas.setComments(QStringLiteral("a comment"));
    canvas.setRotation(12.5);
    canvas.setDescription(QStringLiteral("Harbour"));
    canvas.setQuickDraw(true);
    canvas.setDrawMapBBox(true);
    canvas.setDrawLayerBBox(true);
    canvas.setMapBBoxColor(Qt::green);
    canvas.setLayerBBoxColor(Qt::blue);

    QCOMPARE(canvas.getClient(), &client);
    QCOMPARE(canvas.getComments(), QStringLiteral("a comment"));
    QCOMPARE(canvas.getRotation(), 12.5);
    QCOMPARE(canvas.getDescription(), QStringLiteral("Harbour"));
    QCOMPARE(canvas.getQuickDraw(), true);
    QCOMPARE(canvas.getDrawMapBBox(), true);
    QCOMPARE(canvas.getDrawLayerBBox(), true);
    QCOMPARE(canvas.getMapBBoxColor(), QColor(Qt::green));
    QCOMPARE(canvas.getLayerBBoxColor(), QColor(Qt::blue));
}

void MapCanvasTest::writesRotationAndDescriptionAsProperties()
{
    MapCanvas canvas(nullptr);
    canvas.addLayer(new TestLayer);
    canvas.setView(100, 100, 1.5, 99.5, 99.5, 1.5);

    QVERIFY(canvas.setProperty("rotation", 45.0));
    QVERIFY(canvas.setProperty("description", QStringLiteral("Coast")));

    QCOMPARE(canvas.getRotation(), 45.0);
    QCOMPARE(canvas.getDescription(), QStringLiteral("Coast"));
    QCOMPARE(canvas.property("bounds").toRectF(), world(1.0, 99.0, 99.0, 1.0));
    QCOMPARE(canvas.property("layerCount").toInt(), 1);
}

void MapCanvasTest::aLayerIsPutWhereTheIndexSays_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("place");
    QTest::newRow("-1 puts it on top") << -1 << 2;
    QTest::newRow("0 puts it at the bottom") << 0 << 0;
    QTest::newRow("an index puts it before that layer") << 1 << 1;
    QTest::newRow("the size puts it on top") << 2 << 2;
    QTest::newRow("an index above the stack puts it on top") << 9 << 2;
    QTest::newRow("an index below -1 puts it on top") << -7 << 2;
}

void MapCanvasTest::aLayerIsPutWhereTheIndexSays()
{
    QFETCH(int, index);
    QFETCH(int, place);
    MapCanvas canvas(nullptr);
    QCOMPARE(canvas.addLayer(new TestLayer), 0);
    QCOMPARE(canvas.addLayer(new TestLayer), 1);
    auto* layer = new TestLayer;

    QCOMPARE(canvas.addLayer(layer, index), place);

    QCOMPARE(canvas.getNumberOfLayers(), 3);
    QCOMPARE(canvas.getLayerAt(place), layer);
}

void MapCanvasTest::aNullLayerIsNotAdded()
{
    MapCanvas canvas(nullptr);
    QCOMPARE(canvas.addLayer(static_cast<Layer*>(nullptr)), -1);
    QCOMPARE(canvas.getNumberOfLayers(), 0);
}

void MapCanvasTest::anAddedLayerAsksTheClientForRepaints()
{
    MapCanvas canvas(nullptr);
    RecordingClient client;
    canvas.setClient(&client);
    auto* layer = new TestLayer;
    canvas.addLayer(layer);

    layer->refresh(1.0, 4.0, 3.0, 2.0);

    QCOMPARE(client.log, QStringList({"1 4 3 2"}));
}

void MapCanvasTest::aNewClientIsNotHandedToLayersInTheStack()
{
    MapCanvas canvas(nullptr);
    RecordingClient first;
    RecordingClient second;
    canvas.setClient(&first);
    auto* layer = new TestLayer;
    canvas.addLayer(layer);

    canvas.setClient(&second);
    layer->refresh(1.0, 4.0, 3.0, 2.0);

    QCOMPARE(first.log, QStringList({"1 4 3 2"}));
    QCOMPARE(second.log, QStringList());
}

void MapCanvasTest::aClassThatNoPluginServesGivesNoLayer()
{
    MapCanvas canvas(nullptr);
    QCOMPARE(canvas.addLayer(QStringLiteral("Corvane::Map::NoSuchLayer"), QStringLiteral("a.tif")),
             -1);
    QCOMPARE(canvas.getNumberOfLayers(), 0);
}

void MapCanvasTest::aClassOfAPluginGivesALayerWithItsSourceAndDescription()
{
    MapCanvas canvas(nullptr);
    RecordingClient client;
    canvas.setClient(&client);
    canvas.addLayer(new TestLayer);

    const int index = canvas.addLayer(QStringLiteral("testpluginlayer"), QStringLiteral("a.tif"),
                                      QStringLiteral("Harbour"), QStringLiteral("ignored"), 0);

    QCOMPARE(index, 0);
    QCOMPARE(canvas.getNumberOfLayers(), 2);
    QCOMPARE(canvas.getLayerAt(0)->getDataSource(), QStringLiteral("a.tif"));
    QCOMPARE(canvas.getLayerAt(0)->getDescription(), QStringLiteral("Harbour"));
    // the description comes last: it stands over one that the source has brought
    const auto* made = dynamic_cast<PlainLayer<Layer>*>(canvas.getLayerAt(0));
    QVERIFY(made);
    QCOMPARE(made->log, QStringList({"setDataSource(a.tif)", "setDescription(Harbour)"}));
    canvas.getLayerAt(0)->refresh(1.0, 4.0, 3.0, 2.0);
    QCOMPARE(client.log, QStringList({"1 4 3 2"}));
}

void MapCanvasTest::anEmptyDescriptionKeepsTheLayersOwn()
{
    MapCanvas canvas(nullptr);
    canvas.addLayer(QStringLiteral("TestPluginLayer"), QStringLiteral("a.tif"));
    canvas.addLayer(QStringLiteral("TestPluginLayer"), QStringLiteral("b.tif"), QStringLiteral(""));

    QCOMPARE(canvas.getLayerAt(0)->getDescription(), QStringLiteral("made by the plugin"));
    QCOMPARE(canvas.getLayerAt(1)->getDescription(), QStringLiteral("made by the plugin"));
}

void MapCanvasTest::theOperationsCanBeCalledByName()
{
    MapCanvas canvas(nullptr);
    int index = -2;
    QVERIFY(QMetaObject::invokeMethod(&canvas, "addLayer", Q_RETURN_ARG(int, index),
                                      Q_ARG(QString, QStringLiteral("TestPluginLayer")),
                                      Q_ARG(QString, QStringLiteral("a.tif"))));
    QCOMPARE(index, 0);

    bool deleted = false;
    QVERIFY(QMetaObject::invokeMethod(&canvas, "deleteLayerAt", Q_RETURN_ARG(bool, deleted),
                                      Q_ARG(int, 0)));
    QVERIFY(deleted);
    QCOMPARE(canvas.getNumberOfLayers(), 0);
}

void MapCanvasTest::deletesTheLayerAtAnIndex()
{
    QStringList journal;
    MapCanvas canvas(nullptr);
    canvas.addLayer(new JournalLayer("a", &journal));
    canvas.addLayer(new JournalLayer("b", &journal));

    QVERIFY(canvas.deleteLayerAt(1));

    QCOMPARE(journal, QStringList({"b gone"}));
    QCOMPARE(canvas.getNumberOfLayers(), 1);
}

void MapCanvasTest::deletesNothingOutsideTheStackOrWhereALayerIsMissing()
{
    QStringList journal;
    MapCanvas canvas(nullptr);
    canvas.addLayer(new JournalLayer("a", &journal));
    canvas.getLayers().append(nullptr);
    QString unknown = QUuid::createUuid().toString();
    QString nonsense = QStringLiteral("no uid");
    TestLayer stranger;

    QVERIFY(!canvas.deleteLayerAt(-1));
    QVERIFY(!canvas.deleteLayerAt(1));
    QVERIFY(!canvas.deleteLayerAt(2));
    QVERIFY(!canvas.deleteLayer(unknown));
    QVERIFY(!canvas.deleteLayer(nonsense));
    QVERIFY(!canvas.deleteLayer(&stranger));
    QVERIFY(!canvas.deleteLayer(static_cast<Layer*>(nullptr)));

    QCOMPARE(journal, QStringList());
    QCOMPARE(canvas.getNumberOfLayers(), 2);
}

void MapCanvasTest::deletesALayerByUidAndByPointer()
{
    QStringList journal;
    MapCanvas canvas(nullptr);
    auto* a = new JournalLayer("a", &journal);
    auto* b = new JournalLayer("b", &journal);
    canvas.addLayer(a);
    canvas.addLayer(b);
    canvas.addLayer(new JournalLayer("c", &journal));
    QString uid = a->getUid().toString();

    QVERIFY(canvas.deleteLayer(uid));
    QVERIFY(canvas.deleteLayer(b));

    QCOMPARE(journal, QStringList({"a gone", "b gone"}));
    QCOMPARE(canvas.getNumberOfLayers(), 1);
}

void MapCanvasTest::deletesTheWholeStackFromTheTop()
{
    QStringList journal;
    MapCanvas canvas(nullptr);
    canvas.addLayer(new JournalLayer("a", &journal));
    canvas.addLayer(new JournalLayer("b", &journal));
    canvas.getLayers().append(nullptr);

    QVERIFY(canvas.deleteAllLayers());

    QCOMPARE(journal, QStringList({"b gone", "a gone"}));
    QCOMPARE(canvas.getNumberOfLayers(), 0);
}

void MapCanvasTest::aDeletedLayerHasLeftTheStackBefore()
{
    class LeavingLayer : public TestLayer
    {
    public:
        LeavingLayer(MapCanvas* newCanvas, QList<int>* newLeft) : canvas(newCanvas), left(newLeft)
        {
        }
        ~LeavingLayer() override { *left << canvas->getNumberOfLayers(); }

    private:
        MapCanvas* canvas;
        QList<int>* left;
    };
    QList<int> left;
    MapCanvas canvas(nullptr);
    for (int i = 0; i < 5; ++i) {
        canvas.addLayer(new LeavingLayer(&canvas, &left));
    }
    QString uid = canvas.getLayerAt(0)->getUid().toString();

    canvas.deleteLayerAt(4);
    canvas.deleteLayer(uid);
    canvas.deleteLayer(canvas.getLayerAt(0));
    canvas.deleteAllLayers();

    QCOMPARE(left, QList<int>({4, 3, 2, 1, 0}));
}

void MapCanvasTest::anEmptySideListDeletesNothing()
{
    QStringList journal;
    MapCanvas canvas(nullptr);
    canvas.addLayer(new JournalLayer("a", &journal));

    QVERIFY(canvas.deleteAllOverlayLayers());
    QVERIFY(canvas.deleteAllBackgroundLayers());

    QCOMPARE(journal, QStringList());
}

void MapCanvasTest::aFilledSideListDeletesFromTheStack()
{
    QStringList journal;
    TestLayer side;
    MapCanvas canvas(nullptr);
    for (const char* name : {"a", "b", "c"}) {
        canvas.addLayer(new JournalLayer(name, &journal));
    }

    canvas.getOverlayLayers() = {&side, &side};
    QVERIFY(!canvas.deleteAllOverlayLayers());
    QCOMPARE(journal, QStringList({"b gone", "c gone"}));
    QCOMPARE(canvas.getOverlayLayers().size(), 2);
    canvas.getOverlayLayers().clear();

    canvas.getBackgroundLayers() = {&side};
    QVERIFY(!canvas.deleteAllBackgroundLayers());
    QCOMPARE(journal, QStringList({"b gone", "c gone", "a gone"}));
    canvas.getBackgroundLayers().clear();
}

void MapCanvasTest::takesTheStackWithItAndLeavesTheSideLists()
{
    QStringList journal;
    JournalLayer overlay("overlay", &journal);
    {
        MapCanvas canvas(nullptr);
        canvas.addLayer(new JournalLayer("a", &journal));
        canvas.addLayer(new JournalLayer("b", &journal));
        canvas.getOverlayLayers().append(&overlay);
        canvas.getOverlayLayers().clear();
    }
    QCOMPARE(journal, QStringList({"b gone", "a gone"}));
}

void MapCanvasTest::movesALayer_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<QString>("order");
    QTest::newRow("from the bottom to the top") << 0 << 2 << "bca";
    QTest::newRow("from the top to the bottom") << 2 << 0 << "cab";
    QTest::newRow("the target counts after the removal") << 0 << 1 << "bac";
    QTest::newRow("onto itself") << 1 << 1 << "abc";
    QTest::newRow("to the size does nothing") << 0 << 3 << "abc";
    QTest::newRow("to below the stack does nothing") << 0 << -1 << "abc";
    QTest::newRow("from above the stack does nothing") << 3 << 0 << "abc";
    QTest::newRow("from below the stack does nothing") << -1 << 0 << "abc";
}

void MapCanvasTest::movesALayer()
{
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(QString, order);
    QStringList journal;
    MapCanvas canvas(nullptr);
    for (const char* name : {"a", "b", "c"}) {
        canvas.addLayer(new JournalLayer(name, &journal));
    }

    canvas.moveLayer(from, to);

    QString names;
    for (Layer* layer : qAsConst(canvas.getLayers())) {
        names += static_cast<JournalLayer*>(layer)->name;
    }
    QCOMPARE(names, order);
}

void MapCanvasTest::leavesAMissingLayerInPlace()
{
    MapCanvas canvas(nullptr);
    auto* layer = new TestLayer;
    canvas.addLayer(layer);
    canvas.getLayers().append(nullptr);

    canvas.moveLayer(1, 0);
    QCOMPARE(canvas.getLayers(), QVector<Layer*>({layer, nullptr}));

    canvas.moveLayer(0, 1);
    QCOMPARE(canvas.getLayers(), QVector<Layer*>({nullptr, layer}));
}

void MapCanvasTest::givesNoLayerOutsideTheStack()
{
    MapCanvas canvas(nullptr);
    auto* layer = new TestLayer;
    canvas.addLayer(layer);

    QCOMPARE(canvas.getLayerAt(0), layer);
    QCOMPARE(canvas.getLayerAt(1), static_cast<Layer*>(nullptr));
    QCOMPARE(canvas.getLayerAt(-1), static_cast<Layer*>(nullptr));
}

void MapCanvasTest::findsALayerByItsUidText()
{
    MapCanvas canvas(nullptr);
    canvas.getLayers().append(nullptr);
    canvas.addLayer(new TestLayer);
    auto* layer = new TestLayer;
    canvas.addLayer(layer);
    QString uid = layer->getUid().toString();
    // a uid without letters would read the same in capitals
    while (uid.toUpper() == uid) {
        layer = new TestLayer;
        canvas.addLayer(layer, 2);
        uid = layer->getUid().toString();
    }
    QString capitals = uid.toUpper();

    QCOMPARE(canvas.findLayer(uid), layer);
    QCOMPARE(canvas.getLayerIndex(uid), 2);
    // the text is compared letter by letter, the uid by value
    QCOMPARE(canvas.findLayer(capitals), static_cast<Layer*>(nullptr));
    QCOMPARE(canvas.getLayerIndex(capitals), 2);

    QString unknown = QUuid::createUuid().toString();
    QCOMPARE(canvas.findLayer(unknown), static_cast<Layer*>(nullptr));
    QCOMPARE(canvas.getLayerIndex(unknown), -1);
}

void MapCanvasTest::boundsAreTheViewInWholeUnits_data()
{
    QTest::addColumn<double>("tlx");
    QTest::addColumn<double>("whole");
    QTest::newRow("0.9 becomes 0") << 0.9 << 0.0;
    QTest::newRow("-0.9 becomes 0") << -0.9 << 0.0;
    QTest::newRow("10.5 becomes 10") << 10.5 << 10.0;
    QTest::newRow("-10.5 becomes -10") << -10.5 << -10.0;
    QTest::newRow("what fits no int loses its fraction as well") << 6e9 + 0.5 << 6e9;
}

void MapCanvasTest::boundsAreTheViewInWholeUnits()
{
    QFETCH(double, tlx);
    QFETCH(double, whole);
    MapCanvas canvas(nullptr);

    canvas.setView(100, 100, tlx, 20.7, 7e9 + 0.7, -20.7);
    QCOMPARE(canvas.getBounds(), world(whole, 20.0, 7e9, -20.0));

    canvas.setView(100, 100, 20.7, tlx, 30.2, tlx);
    QCOMPARE(canvas.getBounds(), world(20.0, whole, 30.0, whole));
    QCOMPARE(std::signbit(canvas.getBounds().top()), whole < 0.0); // a zero has no sign
}

void MapCanvasTest::maxBoundsAreTheUnionOfWhatIsShown()
{
    MapCanvas canvas(nullptr);
    const auto add = [&canvas](QRectF bounds) {
        auto* layer = new TestLayer;
        layer->bounds = bounds;
        canvas.addLayer(layer);
        return layer;
    };
    add(QRectF());
    add(world(0.0, 10.0, 20.0, -5.0));
    QCOMPARE(canvas.getMaxBounds(), world(0.0, 10.0, 20.0, -5.0));

    add(world(-30.0, 40.0, 5.0, 30.0));
    add(QRectF());
    canvas.getLayers().append(nullptr);
    QCOMPARE(canvas.getMaxBounds(), world(-30.0, 40.0, 20.0, -5.0));

    add(world(-1000.0, 1000.0, 1000.0, -1000.0))->visible = false;
    add(world(-1000.0, 1000.0, 1000.0, -1000.0))->valid = false;
    TestLayer side;
    canvas.getOverlayLayers().append(&side);
    side.bounds = world(-1000.0, 1000.0, 1000.0, -1000.0);
    canvas.getBackgroundLayers().append(&side);
    QCOMPARE(canvas.getMaxBounds(), world(-30.0, 40.0, 20.0, -5.0));
    canvas.getOverlayLayers().clear();
    canvas.getBackgroundLayers().clear();
}

void MapCanvasTest::maxBoundsAreNullWithoutAShownLayer()
{
    MapCanvas canvas(nullptr);
    QVERIFY(canvas.getMaxBounds().isNull());

    auto* layer = new TestLayer;
    layer->visible = false;
    canvas.addLayer(layer);
    QVERIFY(canvas.getMaxBounds().isNull());
}

void MapCanvasTest::tellsShownLayersTheView()
{
    QStringList journal;
    JournalLayer side("side", &journal);
    MapCanvas canvas(nullptr);
    canvas.addLayer(new JournalLayer("a", &journal));
    canvas.getLayers().append(nullptr);
    auto* invalid = new JournalLayer("invalid", &journal);
    invalid->valid = false;
    canvas.addLayer(invalid);
    canvas.addLayer(new JournalLayer("b", &journal));
    canvas.getOverlayLayers().append(&side);
    canvas.getBackgroundLayers().append(&side);

    canvas.setView(640, 480, -1.5, 2.5, 3.5, -4.5);

    QCOMPARE(journal, QStringList({"a setView 640x480 -1.5 2.5 3.5 -4.5",
                                   "b setView 640x480 -1.5 2.5 3.5 -4.5"}));
    canvas.getOverlayLayers().clear();
    canvas.getBackgroundLayers().clear();
}

void MapCanvasTest::hasTheViewBeforeItsLayersAreTold()
{
    class AskingLayer : public TestLayer
    {
    public:
        explicit AskingLayer(MapCanvas* newCanvas) : canvas(newCanvas) {}
        void setView(int, int, double, double, double, double) override
        {
            seen = canvas->getBounds();
        }
        QRectF seen;

    private:
        MapCanvas* canvas;
    };
    MapCanvas canvas(nullptr);
    auto* layer = new AskingLayer(&canvas);
    canvas.addLayer(layer);

    canvas.setView(100, 100, 1.0, 99.0, 98.0, 2.0);

    QCOMPARE(layer->seen, world(1.0, 99.0, 98.0, 2.0));
}

void MapCanvasTest::aLayerHiddenDuringAChangeOfViewGetsTheNextOne()
{
    QStringList journal;
    MapCanvas canvas(nullptr);
    auto* layer = new JournalLayer("a", &journal);
    canvas.addLayer(layer);
    layer->visible = false;
    canvas.setView(100, 100, 0.0, 1.0, 1.0, 0.0);

    layer->visible = true;
    QCOMPARE(journal, QStringList());

    canvas.setView(100, 100, 0.0, 2.0, 2.0, 0.0);
    QCOMPARE(journal, QStringList({"a setView 100x100 0 2 2 0"}));
}

void MapCanvasTest::passesEachUpdateCallOn()
{
    QStringList journal;
    JournalLayer side("side", &journal);
    MapCanvas canvas(nullptr);
    canvas.addLayer(new JournalLayer("a", &journal));
    canvas.getLayers().append(nullptr);
    auto* hidden = new JournalLayer("hidden", &journal);
    hidden->visible = false;
    canvas.addLayer(hidden);
    canvas.addLayer(new JournalLayer("b", &journal));
    canvas.getOverlayLayers().append(&side);

    canvas.beginUpdate(true);
    canvas.beginUpdate(false);
    canvas.endUpdate();

    QCOMPARE(journal, QStringList({"a beginUpdate zoom", "b beginUpdate zoom", "a beginUpdate roam",
                                   "b beginUpdate roam", "a endUpdate", "b endUpdate"}));
    canvas.getOverlayLayers().clear();
}

void MapCanvasTest::aLayerMayTakeOthersAwayWhileItIsCalled_data()
{
    QTest::addColumn<std::function<void(MapCanvas&)>>("pass");
    QTest::addColumn<QString>("call");
    const auto row = [](const char* name, const std::function<void(MapCanvas&)>& pass,
                        const QString& call) { QTest::newRow(name) << pass << call; };
    row(
        "as a change starts", [](MapCanvas& canvas) { canvas.beginUpdate(true); },
        "beginUpdate zoom");
    row(
        "as a change is over", [](MapCanvas& canvas) { canvas.endUpdate(); }, "endUpdate");
    row(
        "as it is told the view",
        [](MapCanvas& canvas) { canvas.setView(100, 100, 0.0, 2.0, 2.0, 0.0); },
        "setView 100x100 0 2 2 0");
    row(
        "as it is painted", [](MapCanvas& canvas) { paintFrame(canvas); }, "paint");
}

void MapCanvasTest::aLayerMayTakeOthersAwayWhileItIsCalled()
{
    class Remover : public TestLayer
    {
    public:
        explicit Remover(MapCanvas* newCanvas) : canvas(newCanvas) {}
        void beginUpdate(bool) override { removeBoth(); }
        void endUpdate() override { removeBoth(); }
        void setView(int, int, double, double, double, double) override { removeBoth(); }
        void paint(GeoPainter&, QRectF*, QRect*) override { removeBoth(); }

    private:
        void removeBoth()
        {
            canvas->deleteLayerAt(2);
            canvas->deleteLayerAt(0);
        }
        MapCanvas* canvas;
    };
    QFETCH(std::function<void(MapCanvas&)>, pass);
    QFETCH(QString, call);
    QStringList journal;
    MapCanvas canvas(nullptr);
    canvas.addLayer(new JournalLayer("below", &journal));
    canvas.addLayer(new Remover(&canvas));
    canvas.addLayer(new JournalLayer("above", &journal));
    canvas.addLayer(new JournalLayer("third", &journal));
    canvas.addLayer(new JournalLayer("top", &journal));

    pass(canvas);

    QCOMPARE(journal, QStringList({"below " + call, "above gone", "below gone", "third " + call,
                                   "top " + call}));
}

void MapCanvasTest::aSideLayerMayLeaveItsListWhileItIsPainted()
{
    class Leaver : public TestLayer
    {
    public:
        void paint(GeoPainter&, QRectF*, QRect*) override { side->removeOne(this); }
        QVector<Layer*>* side = nullptr;
    };
    QStringList journal;
    Leaver leaver;
    JournalLayer second("second", &journal);
    JournalLayer last("last", &journal);
    MapCanvas canvas(nullptr);
    leaver.side = &canvas.getOverlayLayers();
    *leaver.side << &leaver << &second << &last;

    paintFrame(canvas);

    QCOMPARE(journal, QStringList({"second paint", "last paint"}));
    canvas.getOverlayLayers().clear();
}

void MapCanvasTest::paintsFromTheBottomUpBetweenTheSideLists()
{
    QStringList journal;
    JournalLayer ground("ground", &journal, Qt::gray);
    JournalLayer cover("cover", &journal, Qt::red);
    MapCanvas canvas(nullptr);
    auto* bottom = new JournalLayer("bottom", &journal, Qt::blue);
    auto* top = new JournalLayer("top", &journal, Qt::green);
    canvas.addLayer(top);
    canvas.addLayer(bottom, 0);
    canvas.getBackgroundLayers().append(&ground);
    canvas.getOverlayLayers().append(&cover);
    ground.bounds = world(0.0, 99.0, 80.0, 0.0);
    bottom->bounds = world(0.0, 99.0, 60.0, 0.0);
    top->bounds = world(0.0, 99.0, 40.0, 0.0);
    cover.bounds = world(0.0, 99.0, 20.0, 0.0);

    const QImage frame = paintFrame(canvas);

    QCOMPARE(journal, QStringList({"ground paint", "bottom paint", "top paint", "cover paint"}));
    QImage expected(100, 100, QImage::Format_RGB32);
    expected.fill(Qt::white);
    QPainter painter(&expected);
    painter.fillRect(0, 0, 80, 99, Qt::gray);
    painter.fillRect(0, 0, 60, 99, Qt::blue);
    painter.fillRect(0, 0, 40, 99, Qt::green);
    painter.fillRect(0, 0, 20, 99, Qt::red);
    painter.end();
    QCOMPARE(frame, expected);
    canvas.getBackgroundLayers().clear();
    canvas.getOverlayLayers().clear();
}

void MapCanvasTest::passesOverLayersThatAreHiddenInvalidOrMissing()
{
    QStringList journal;
    JournalLayer hiddenSide("hidden", &journal);
    JournalLayer invalidSide("invalid", &journal);
    hiddenSide.visible = false;
    invalidSide.valid = false;
    MapCanvas canvas(nullptr);
    auto* hidden = new JournalLayer("hidden", &journal);
    auto* invalid = new JournalLayer("invalid", &journal);
    hidden->visible = false;
    invalid->valid = false;
    canvas.addLayer(hidden);
    canvas.addLayer(invalid);
    canvas.getLayers().append(nullptr);
    canvas.getOverlayLayers() = {&hiddenSide, nullptr, &invalidSide};
    canvas.getBackgroundLayers() = {&hiddenSide, nullptr, &invalidSide};
    canvas.setDrawLayerBBox(true);

    const QImage frame = paintFrame(canvas);

    QImage white(100, 100, QImage::Format_RGB32);
    white.fill(Qt::white);
    QCOMPARE(journal, QStringList());
    QCOMPARE(frame, white);
    canvas.getOverlayLayers().clear();
    canvas.getBackgroundLayers().clear();
}

void MapCanvasTest::bothLimitsOfAScaleRangeAreExclusive_data()
{
    QTest::addColumn<double>("minScale");
    QTest::addColumn<double>("maxScale");
    QTest::addColumn<bool>("shown");
    const double most = std::numeric_limits<double>::max();
    const double scale = scaleOf(world(0.0, 99.0, 99.0, 0.0));
    const double below = std::nextafter(scale, 0.0);
    const double above = std::nextafter(scale, most);
    QTest::newRow("at the lower limit it is hidden") << scale << most << false;
    QTest::newRow("a hair above the lower limit it is shown") << below << most << true;
    QTest::newRow("at the upper limit it is hidden") << 0.0 << scale << false;
    QTest::newRow("a hair below the upper limit it is shown") << 0.0 << above << true;
    QTest::newRow("between both limits it is shown") << below << above << true;
    QTest::newRow("between swapped limits it is hidden") << above << below << false;
}

void MapCanvasTest::bothLimitsOfAScaleRangeAreExclusive()
{
    QFETCH(double, minScale);
    QFETCH(double, maxScale);
    QFETCH(bool, shown);
    QStringList journal;
    MapCanvas canvas(nullptr);
    auto* layer = new JournalLayer("a", &journal);
    layer->setMinScale(minScale);
    layer->setMaxScale(maxScale);
    canvas.addLayer(layer);

    paintFrame(canvas);

    QCOMPARE(journal, shown ? QStringList({"a paint"}) : QStringList());
}

void MapCanvasTest::theScaleRangeOfASideLayerDoesNotCount()
{
    QStringList journal;
    JournalLayer side("side", &journal);
    side.setMaxScale(0.0);
    MapCanvas canvas(nullptr);
    canvas.getOverlayLayers().append(&side);
    canvas.getBackgroundLayers().append(&side);

    paintFrame(canvas);

    QCOMPARE(journal, QStringList({"side paint", "side paint"}));
    canvas.getOverlayLayers().clear();
    canvas.getBackgroundLayers().clear();
}

void MapCanvasTest::aMirroredWorldShowsNoLayerOfTheStack()
{
    QStringList journal;
    JournalLayer side("side", &journal);
    MapCanvas canvas(nullptr);
    canvas.addLayer(new JournalLayer("a", &journal));
    canvas.getOverlayLayers().append(&side);

    paintFrame(canvas, world(99.0, 99.0, 0.0, 0.0));

    QCOMPARE(journal, QStringList({"side paint"}));
    canvas.getOverlayLayers().clear();
}

void MapCanvasTest::drawsABoxAroundEachLayerInItsScaleRange()
{
    MapCanvas canvas(nullptr);
    const auto add = [&canvas](QRectF bounds) {
        auto* layer = new TestLayer; // paints nothing
        layer->bounds = bounds;
        canvas.addLayer(layer);
        return layer;
    };
    add(world(10.0, 89.0, 50.0, 49.0));
    add(world(40.0, 60.0, 90.0, 20.0));
    add(world(1.0, 98.0, 98.0, 1.0))->setMaxScale(1.0);
    add(world(1.0, 98.0, 98.0, 1.0))->visible = false;
    canvas.setDrawLayerBBox(true);

    const QImage frame = paintFrame(canvas);

    QImage expected(100, 100, QImage::Format_RGB32);
    expected.fill(Qt::white);
    QPainter painter(&expected);
    painter.setPen(QColor(0, 255, 255));
    painter.drawRect(10, 10, 40, 40);
    painter.drawRect(40, 39, 50, 40);
    painter.end();
    QCOMPARE(frame, expected);
}

void MapCanvasTest::drawsABoxAroundTheMap()
{
    MapCanvas canvas(nullptr);
    auto* a = new TestLayer;
    a->bounds = world(10.0, 89.0, 50.0, 49.0);
    a->setMaxScale(1.0); // the map's box does not ask for the scale
    canvas.addLayer(a);
    auto* b = new TestLayer;
    b->bounds = world(40.0, 60.0, 90.0, 20.0);
    canvas.addLayer(b);
    canvas.setDrawMapBBox(true);
    canvas.setMapBBoxColor(QColor(200, 100, 50));

    const QImage frame = paintFrame(canvas);

    QImage expected(100, 100, QImage::Format_RGB32);
    expected.fill(Qt::white);
    QPainter painter(&expected);
    painter.setPen(QColor(200, 100, 50));
    painter.drawRect(10, 10, 80, 69);
    painter.end();
    QCOMPARE(frame, expected);
}

void MapCanvasTest::theBoxesLieBetweenTheStackAndTheOverlay()
{
    QStringList journal;
    JournalLayer cover("cover", &journal, Qt::yellow);
    cover.bounds = world(0.0, 99.0, 50.0, 0.0);
    MapCanvas canvas(nullptr);
    auto* layer = new JournalLayer("a", &journal, Qt::blue);
    layer->bounds = world(10.0, 89.0, 90.0, 9.0);
    canvas.addLayer(layer);
    canvas.getOverlayLayers().append(&cover);
    canvas.setDrawLayerBBox(true);
    canvas.setDrawMapBBox(true);

    const QImage frame = paintFrame(canvas);

    QImage expected(100, 100, QImage::Format_RGB32);
    expected.fill(Qt::white);
    QPainter painter(&expected);
    painter.fillRect(10, 10, 80, 80, Qt::blue);
    painter.setPen(QColor(255, 0, 0)); // the map's box comes last and hides the layer's
    painter.drawRect(10, 10, 80, 80);
    painter.fillRect(0, 0, 50, 99, Qt::yellow);
    painter.end();
    QCOMPARE(frame, expected);
    canvas.getOverlayLayers().clear();
}

void MapCanvasTest::theBoxesAreFilledWithThePaintersBrush()
{
    MapCanvas canvas(nullptr);
    auto* layer = new TestLayer; // paints nothing
    layer->bounds = world(10.0, 89.0, 50.0, 49.0);
    canvas.addLayer(layer);
    const auto frameWith = [&canvas](bool layerBox, bool mapBox) {
        canvas.setDrawLayerBBox(layerBox);
        canvas.setDrawMapBBox(mapBox);
        QImage frame(100, 100, QImage::Format_RGB32);
        frame.fill(Qt::white);
        QRectF worldRect = world(0.0, 99.0, 99.0, 0.0);
        QRect device(0, 0, 100, 100);
        GeoPainter painter(&frame, worldRect, device);
        painter.setBrush(Qt::yellow);
        canvas.paint(painter, &worldRect, &device);
        return frame;
    };

    QCOMPARE(frameWith(true, false).pixelColor(30, 30), QColor(Qt::yellow));
    QCOMPARE(frameWith(false, true).pixelColor(30, 30), QColor(Qt::yellow));
    QCOMPARE(frameWith(false, false).pixelColor(30, 30), QColor(Qt::white));
}

void MapCanvasTest::leavesThePainterAsItWas()
{
    MapCanvas canvas(nullptr);
    canvas.addLayer(new TestLayer);
    canvas.setDrawMapBBox(true);
    QImage frame(100, 100, QImage::Format_RGB32);
    QRectF worldRect = world(0.0, 99.0, 99.0, 0.0);
    QRect device(0, 0, 100, 100);
    GeoPainter painter(&frame, worldRect, device);
    painter.setPen(Qt::magenta);

    canvas.paint(painter, &worldRect, &device);

    QCOMPARE(painter.pen().color(), QColor(Qt::magenta));
}

void MapCanvasTest::handsItsReferenceToAllLayers()
{
    MapCanvas canvas(nullptr);
    auto* layer = new TestLayer;
    auto* hidden = new TestLayer;
    hidden->visible = false;
    canvas.addLayer(layer);
    canvas.getLayers().append(nullptr);
    canvas.addLayer(hidden);
    SpatialReference reference;
    reference.setEpsg(32633);

    QVERIFY(canvas.setSrs(reference));

    QCOMPARE(layer->getSpatialRef().epsg, 32633);
    QCOMPARE(hidden->getSpatialRef().epsg, 32633);
    QVERIFY(layer->visible);
    canvas.deleteAllLayers();
    QCOMPARE(canvas.getSrs().epsg, 32633);
}

void MapCanvasTest::theReferenceIsThatOfTheBottomLayer()
{
    MapCanvas canvas(nullptr);
    SpatialReference own;
    own.setEpsg(4326);
    canvas.setSrs(own);
    QCOMPARE(canvas.getSrs().epsg, 4326);

    auto* bottom = new TestLayer;
    SpatialReference other;
    other.setEpsg(3857);
    bottom->setSpatialRef(other);
    canvas.addLayer(new TestLayer);
    canvas.addLayer(bottom, 0);
    QCOMPARE(canvas.getSrs().epsg, 3857);
    QCOMPARE(&canvas.getSrs(), &bottom->getSpatialRef());

    canvas.getLayers().prepend(nullptr);
    QCOMPARE(canvas.getSrs().epsg, 4326);
}

MAP_TEST_MAIN(MapCanvasTest)
#include "MapCanvasTest.moc"
