#include <plugins/vector/DeviceLines.h>
#include <plugins/vector/LabelPlacer.h>
#include <plugins/vector/OgrVectorLayer.h>
#include <plugins/vector/VectorChunk.h>
#include <plugins/vector/VectorChunkBuilder.h>

#include <tests/plugins/TestVectors.h>
#include <tests/plugins/VectorProbe.h>

#include <corvane/core/Application.h>

#include <QLoggingCategory>
#include <QPainterPath>
#include <QPicture>
#include <QPrinter>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <memory>

using namespace Corvane;
using namespace Corvane::Map;
using namespace Corvane::Tests;

namespace {

constexpr int roundings = 3;    // of 255, between two ways to the same pixel
constexpr int simplified = 130; // of 255, where an edge may lie half a pixel beside
constexpr double pi = 3.14159265358979323846;

using Draw = std::function<void(QPainter&, const WorldView&)>;

QPolygonF ring(const WorldView& view, const std::vector<QPointF>& corners)
{
    QPolygonF polygon;
    for (const QPointF& corner : corners) {
        polygon.append(view.toPixel(corner.x(), corner.y()));
    }
    return polygon;
}

void drawRings(QPainter& painter, const QList<QPolygonF>& rings)
{
    QPainterPath path;
    for (const QPolygonF& polygon : rings) {
        path.addPolygon(polygon);
        path.closeSubpath();
    }
    painter.drawPath(path);
}

QString circle(double x, double y, double radius, int corners)
{
    QStringList vertices;
    for (int i = 0; i <= corners; ++i) {
        const double angle = 2.0 * pi * (i % corners) / corners;
        vertices.append(QStringLiteral("%1 %2")
                            .arg(x + radius * std::cos(angle), 0, 'g', 17)
                            .arg(y + radius * std::sin(angle), 0, 'g', 17));
    }
    return vertices.join(',');
}

} // namespace

Q_DECLARE_METATYPE(Draw)

/// What the layer draws, beside what the painter draws of the same shapes.
class VectorDrawingTest : public QObject
{
    Q_OBJECT
private slots:
    void drawsAsThePainterDoes_data();
    void drawsAsThePainterDoes();
    void drawsEachSymbol_data();
    void drawsEachSymbol();
    void curvesComeAsLines();
    void manyVerticesAreThinnedToThePixel();
    void whatIsSmallerThanAPixelIsADot();
    void hugeShapesAreCutToTheView_data();
    void hugeShapesAreCutToTheView();
    void featuresLieInTheOrderOfTheFile();
    void onlyWhatIsInViewIsLookedAt();
    void aCutRingStaysOneRing();
    void aCutLineComesInRuns();
    void theInnerPointLiesInside();

    void aMovedViewShowsTheOldPictureMovedAtOnce();
    void aNarrowerViewShowsTheOldPictureScaledAtOnce();
    void roamingBackLeavesNoHole();
    void withoutProgressTheViewIsCompleteAtOnce();
    void anUpsideDownViewIsMirrored();
    void aViewWithoutSizeDrawsNothing();

    void labelsComeFromTheField();
    void labelsDoNotOverlap();
    void theLargerShapeHasItsLabelFirst();
    void labelsAreReadAsUtf8();
    void aLabelIsOneShortLine_data();
    void aLabelIsOneShortLine();

    void paperGetsTheShapesThemselves();
    void aStripOfAPageHoldsItsPartOnly();
    void aPageBeyondAllPicturesIsDrawnDirectly();

private:
    QString made(const VectorRecipe& recipe);
    std::unique_ptr<OgrVectorLayer> opened(const VectorRecipe& recipe);
    std::unique_ptr<OgrVectorLayer> opened(const QStringList& wkts) { return opened(shapes(wkts)); }

    QTemporaryDir folder;
    int files = 0;
};

QString VectorDrawingTest::made(const VectorRecipe& recipe)
{
    const QString path = folder.filePath(QStringLiteral("%1.gpkg").arg(++files));
    return makeVectors(path, recipe) ? path : QString();
}

std::unique_ptr<OgrVectorLayer> VectorDrawingTest::opened(const VectorRecipe& recipe)
{
    auto layer = std::make_unique<OgrVectorLayer>();
    layer->setProgressive(false);
    layer->setDataSource(made(recipe));
    return layer;
}

void VectorDrawingTest::drawsAsThePainterDoes_data()
{
    QTest::addColumn<QStringList>("wkts");
    QTest::addColumn<Draw>("draw");
    QTest::newRow("a polygon")
        << QStringList{"POLYGON((10 10,90 20,50 90,10 10))"}
        << Draw([](QPainter& painter, const WorldView& view) {
               drawRings(painter, {ring(view, {{10, 10}, {90, 20}, {50, 90}})});
           });
    QTest::newRow("a polygon with two holes")
        << QStringList{"POLYGON((10 10,90 10,90 90,10 90,10 10),(20 20,40 20,40 40,20 20),"
                       "(60 60,80 60,80 80,60 60))"}
        << Draw([](QPainter& painter, const WorldView& view) {
               drawRings(painter, {ring(view, {{10, 10}, {90, 10}, {90, 90}, {10, 90}}),
                                   ring(view, {{20, 20}, {40, 20}, {40, 40}}),
                                   ring(view, {{60, 60}, {80, 60}, {80, 80}})});
           });
    QTest::newRow("several polygons in one feature")
        << QStringList{"MULTIPOLYGON(((10 10,40 10,40 40,10 10)),((60 60,90 60,90 90,60 60)))"}
        << Draw([](QPainter& painter, const WorldView& view) {
               drawRings(painter, {ring(view, {{10, 10}, {40, 10}, {40, 40}}),
                                   ring(view, {{60, 60}, {90, 60}, {90, 90}})});
           });
    QTest::newRow("a line") << QStringList{"LINESTRING(10 10,50 80,90 15)"}
                            << Draw([](QPainter& painter, const WorldView& view) {
                                   painter.drawPolyline(ring(view, {{10, 10}, {50, 80}, {90, 15}}));
                               });
    QTest::newRow("several lines in one feature")
        << QStringList{"MULTILINESTRING((10 10,50 80),(90 15,20 20))"}
        << Draw([](QPainter& painter, const WorldView& view) {
               painter.drawPolyline(ring(view, {{10, 10}, {50, 80}}));
               painter.drawPolyline(ring(view, {{90, 15}, {20, 20}}));
           });
    QTest::newRow("points")
        << QStringList{"POINT(20.3 30.8)", "MULTIPOINT((50 50),(80 10))"}
        << Draw([](QPainter& painter, const WorldView& view) {
               for (const QPointF& point : ring(view, {{20.3, 30.8}, {50, 50}, {80, 10}})) {
                   painter.drawEllipse(point, 3.5, 3.5);
               }
           });
    QTest::newRow("a collection: areas, then lines, then points")
        << QStringList{"GEOMETRYCOLLECTION(POINT(50 50),LINESTRING(0 50,100 50),"
                       "POLYGON((20 20,80 20,80 80,20 80,20 20)))"}
        << Draw([](QPainter& painter, const WorldView& view) {
               drawRings(painter, {ring(view, {{20, 20}, {80, 20}, {80, 80}, {20, 80}})});
               painter.drawPolyline(ring(view, {{0, 50}, {100, 50}}));
               painter.drawEllipse(view.toPixel(50, 50), 3.5, 3.5);
           });
    QTest::newRow("heights and measures are passed over")
        << QStringList{"LINESTRING ZM(10 10 5 1,90 90 7 2)", "POINT Z(20 80 1000)"}
        << Draw([](QPainter& painter, const WorldView& view) {
               painter.drawPolyline(ring(view, {{10, 10}, {90, 90}}));
               painter.drawEllipse(view.toPixel(20, 80), 3.5, 3.5);
           });
    QTest::newRow("a surface of triangles")
        << QStringList{"TIN Z(((10 10 0,90 10 0,50 50 0,10 10 0)),((10 90 0,90 90 0,50 55 0,10 90 0)))"}
        << Draw([](QPainter& painter, const WorldView& view) {
               drawRings(painter, {ring(view, {{10, 10}, {90, 10}, {50, 50}}),
                                   ring(view, {{10, 90}, {90, 90}, {50, 55}})});
           });
}

void VectorDrawingTest::drawsAsThePainterDoes()
{
    QFETCH(QStringList, wkts);
    QFETCH(Draw, draw);
    const auto layer = opened(wkts);
    QVERIFY(layer->isValid());
    QBrush brush(QColor(180, 200, 90));
    layer->setBrush(brush);
    const WorldView view;
    for (const bool smooth : {true, false}) {
        layer->setAntialiasing(smooth);
        const QImage expected =
            drawn(*layer, view, [&](QPainter& painter) { draw(painter, view); });
        QVERIFY(inked(expected) > 50);
        QVERIFY(difference(complete(*layer, view), expected) <= roundings);
    }
}

void VectorDrawingTest::drawsEachSymbol_data()
{
    QTest::addColumn<Draw>("draw");
    QTest::newRow("Circle") << Draw([](QPainter& painter, const WorldView& view) {
        painter.drawEllipse(view.toPixel(50, 50), 10.0, 10.0);
    });
    QTest::newRow("Square") << Draw([](QPainter& painter, const WorldView& view) {
        painter.drawRect(QRectF(view.toPixel(50, 50) - QPointF(10, 10), QSizeF(20, 20)));
    });
    QTest::newRow("Triangle") << Draw([](QPainter& painter, const WorldView& view) {
        const QPointF middle = view.toPixel(50, 50);
        painter.drawPolygon(QPolygonF(
            {middle + QPointF(0, -10), middle + QPointF(10, 10), middle + QPointF(-10, 10)}));
    });
    QTest::newRow("Cross") << Draw([](QPainter& painter, const WorldView& view) {
        const QPointF middle = view.toPixel(50, 50);
        painter.drawLine(middle - QPointF(10, 10), middle + QPointF(10, 10));
        painter.drawLine(middle + QPointF(-10, 10), middle + QPointF(10, -10));
    });
}

void VectorDrawingTest::drawsEachSymbol()
{
    QFETCH(Draw, draw);
    const auto layer = opened(QStringList{"POINT(50 50)"});
    QBrush brush(QColor(180, 200, 90));
    layer->setBrush(brush);
    layer->setPointSize(20.0);
    layer->setPointSymbol(QTest::currentDataTag());
    const WorldView view;
    const QImage expected = drawn(*layer, view, [&](QPainter& painter) { draw(painter, view); });
    QVERIFY(difference(complete(*layer, view), expected) <= roundings);
}

void VectorDrawingTest::curvesComeAsLines()
{
    const auto layer =
        opened(QStringList{"CURVEPOLYGON(CIRCULARSTRING(10 50,50 90,90 50,50 10,10 50))"});
    const WorldView view;
    const QImage expected = drawn(*layer, view, [&view](QPainter& painter) {
        painter.drawEllipse(view.toPixel(50, 50), 80.0, 80.0);
    });
    QVERIFY(difference(complete(*layer, view), expected) <= simplified);
    QVERIFY(inked(expected) > 300);
}

void VectorDrawingTest::manyVerticesAreThinnedToThePixel()
{
    const auto layer = opened(QStringList{"POLYGON((" + circle(50, 50, 40, 20000) + "))"});
    QBrush brush(Qt::blue);
    layer->setBrush(brush);
    const WorldView view;
    const QImage expected = drawn(*layer, view, [&view](QPainter& painter) {
        painter.drawEllipse(view.toPixel(50, 50), 80.0, 80.0);
    });
    QVERIFY(difference(complete(*layer, view), expected) <= simplified);

    VectorChunkBuilder builder(false);
    QByteArray wkt = "LINESTRING(" + circle(50, 50, 40, 20000).toLatin1() + ")";
    char* text = wkt.data();
    OGRGeometryH line = nullptr;
    QCOMPARE(OGR_G_CreateFromWkt(&text, nullptr, &line), OGRERR_NONE);
    QVERIFY(builder.add(line, ""));
    OGR_G_DestroyGeometry(line);
    const auto chunk = builder.finish(nullptr, nullptr);
    DevicePoints points;
    mapPart(*chunk, 0, ViewFrame(QRectF(0, 0, 200, 200), view.world()), false, &points);
    QVERIFY(points.size() < 1100); // the way around is 503 pixels
    QVERIFY(points.size() > 500);
    QCOMPARE(points.back(), points.front()); // the end stays
}

void VectorDrawingTest::whatIsSmallerThanAPixelIsADot()
{
    QStringList wkts;
    for (int i = 0; i < 10; ++i) {
        wkts << QStringLiteral("POLYGON((%1 50,%2 50,%2 50.1,%1 50))").arg(10.0 + i).arg(10.1 + i);
    }
    wkts << "LINESTRING(80 20,80.2 20.2)";
    const auto layer = opened(wkts);
    const QImage picture = complete(*layer, WorldView());
    QCOMPARE(inked(picture), 11); // ten at two pixels' distance, and the line
    QCOMPARE(picture.pixelColor(20, 99), layer->getPen().color());
    WorldView far;
    far.unitsPerPixel = 10.0;
    far.top = 1000.0;
    QCOMPARE(inked(complete(*layer, far)), 2); // all polygons fall on one pixel
    QPen none(Qt::NoPen);
    layer->setPen(none);
    QBrush brush(Qt::green);
    layer->setBrush(brush);
    QCOMPARE(complete(*layer, WorldView()).pixelColor(20, 99), QColor(Qt::green));
    QBrush nothing;
    layer->setBrush(nothing);
    QCOMPARE(inked(complete(*layer, WorldView())), 0);
}

void VectorDrawingTest::hugeShapesAreCutToTheView_data()
{
    QTest::addColumn<QStringList>("wkts");
    QTest::addColumn<Draw>("draw");
    QTest::newRow("a polygon around everything")
        << QStringList{"POLYGON((-1e9 -1e9,1e9 -1e9,1e9 1e9,-1e9 1e9,-1e9 -1e9))"}
        << Draw([](QPainter& painter, const WorldView&) {
               painter.fillRect(0, 0, 200, 200, painter.brush());
           });
    QTest::newRow("its hole reaches into the view")
        << QStringList{"POLYGON((-1e9 -1e9,1e9 -1e9,1e9 1e9,-1e9 1e9,-1e9 -1e9),"
                       "(50 -1e8,1e8 -1e8,1e8 1e8,50 1e8,50 -1e8))"}
        << Draw([](QPainter& painter, const WorldView&) {
               painter.drawRect(QRectF(-50.0, -50.0, 150.0, 300.0));
           });
    QTest::newRow("a line through it")
        << QStringList{"LINESTRING(-1e8 -1e8,1e8 1e8,1e8 30,-1e8 30)"}
        << Draw([](QPainter& painter, const WorldView& view) {
               painter.drawLine(view.toPixel(-50, -50), view.toPixel(150, 150));
               painter.drawLine(view.toPixel(-50, 30), view.toPixel(150, 30));
           });
    QTest::newRow("an edge just outside, whose pen reaches in")
        << QStringList{"POLYGON((-50 -1e7,-0.5 -1e7,-0.5 1e7,-50 1e7,-50 -1e7))"}
        << Draw([](QPainter& painter, const WorldView&) {
               painter.drawRect(QRectF(-101.0, -100.0, 100.0, 500.0));
           });
}

void VectorDrawingTest::hugeShapesAreCutToTheView()
{
    QFETCH(QStringList, wkts);
    QFETCH(Draw, draw);
    const auto layer = opened(wkts);
    QBrush brush(QColor(180, 200, 90));
    layer->setBrush(brush);
    QPen pen = layer->getPen();
    pen.setWidth(5);
    layer->setPen(pen);
    const WorldView view;
    const QImage expected = drawn(*layer, view, [&](QPainter& painter) { draw(painter, view); });
    QVERIFY(inked(expected) > 100);
    QVERIFY(difference(complete(*layer, view), expected) <= roundings);
}

void VectorDrawingTest::featuresLieInTheOrderOfTheFile()
{
    const auto layer =
        opened(QStringList{"POLYGON((10 10,60 10,60 60,10 60,10 10))", "LINESTRING(0 50,100 50)",
                           "POLYGON((40 40,90 40,90 90,40 90,40 40))"});
    QBrush brush(QColor(180, 200, 90));
    layer->setBrush(brush);
    const WorldView view;
    const QImage expected = drawn(*layer, view, [&view](QPainter& painter) {
        drawRings(painter, {ring(view, {{10, 10}, {60, 10}, {60, 60}, {10, 60}})});
        painter.drawPolyline(ring(view, {{0, 50}, {100, 50}}));
        drawRings(painter, {ring(view, {{40, 40}, {90, 40}, {90, 90}, {40, 90}})});
    });
    QVERIFY(difference(complete(*layer, view), expected) <= roundings);
}

void VectorDrawingTest::onlyWhatIsInViewIsLookedAt()
{
    VectorChunkBuilder builder(false);
    for (int i = 0; i < 1000; ++i) {
        OGRGeometryH point = OGR_G_CreateGeometry(wkbPoint);
        OGR_G_SetPoint_2D(point, 0, i % 100, i / 100);
        QVERIFY(builder.add(point, ""));
        OGR_G_DestroyGeometry(point);
    }
    const auto chunk = builder.finish(nullptr, nullptr);
    WorldBox area;
    area.add(9.5, 2.5);
    area.add(12.5, 4.5);
    QCOMPARE(chunk->find(area), std::vector<std::uint32_t>({310, 311, 312, 410, 411, 412}));
    WorldBox all;
    all.add(-1e300, -1e300);
    all.add(1e300, 1e300);
    QCOMPARE(chunk->find(all).size(), std::size_t(1000));
    WorldBox none;
    none.add(1000.0, 1000.0);
    QCOMPARE(chunk->find(none).size(), std::size_t(0));
}

void VectorDrawingTest::aCutRingStaysOneRing()
{
    DevicePoints ring = {{-50, 50}, {50, -50}, {150, 50}, {50, 150}};
    clipRing(QRectF(0, 0, 100, 100), &ring);
    const QPolygonF kept(QVector<QPointF>(ring.begin(), ring.end()));
    QCOMPARE(kept.boundingRect(), QRectF(0, 0, 100, 100)); // it held the whole clip
    QVERIFY(kept.containsPoint(QPointF(1, 1), Qt::OddEvenFill));
    QVERIFY(kept.containsPoint(QPointF(99, 50), Qt::OddEvenFill));
    DevicePoints inside = {{10, 10}, {20, 10}, {20, 20}};
    const DevicePoints before = inside;
    clipRing(QRectF(0, 0, 100, 100), &inside);
    QCOMPARE(inside, before);
    DevicePoints outside = {{-10, -10}, {-20, -10}, {-20, -20}};
    clipRing(QRectF(0, 0, 100, 100), &outside);
    QVERIFY(outside.empty());
}

void VectorDrawingTest::aCutLineComesInRuns()
{
    std::vector<DevicePoints> runs;
    clipLine(QRectF(0, 0, 100, 100), {{-10, 50}, {50, 50}, {50, -50}, {70, -50}, {70, 50}},
             [&runs](const DevicePoints& run) { runs.push_back(run); });
    QCOMPARE(runs.size(), std::size_t(2));
    QCOMPARE(runs[0], DevicePoints({{0, 50}, {50, 50}, {50, 0}}));
    QCOMPARE(runs[1], DevicePoints({{70, 0}, {70, 50}}));
}

void VectorDrawingTest::theInnerPointLiesInside()
{
    // a U, whose middle lies outside of it
    const DevicePoints u = {{0, 0},  {10, 0},  {10, 80},   {60, 80},
                            {60, 0}, {100, 0}, {100, 100}, {0, 100}};
    QCOMPARE(innerPoint(u), QPointF(80, 50)); // in the wider arm
    QCOMPARE(innerPoint({{0, 5}, {10, 5}}), QPointF(5, 5));
}

void VectorDrawingTest::aMovedViewShowsTheOldPictureMovedAtOnce()
{
    const auto layer = opened(QStringList{"POLYGON((20 20,80 20,80 80,20 80,20 20))"});
    QBrush brush(Qt::blue);
    layer->setBrush(brush);
    WorldView view;
    const QImage before = complete(*layer, view);
    layer->setProgressive(true);
    view.left += 10.0; // twenty pixels
    view.set(*layer);
    const QImage moved = painted(*layer, view);
    QCOMPARE(moved.copy(0, 0, 180, 200), before.copy(20, 0, 180, 200));
    QTRY_COMPARE(int(layer->getPercentComplete()), 100);
    QCOMPARE(painted(*layer, view), complete(*layer, view));
}

void VectorDrawingTest::aNarrowerViewShowsTheOldPictureScaledAtOnce()
{
    const auto layer = opened(QStringList{"POLYGON((20 20,80 20,80 80,20 80,20 20))"});
    QBrush brush(Qt::blue);
    layer->setBrush(brush);
    complete(*layer, WorldView());
    layer->setProgressive(true);
    const WorldView closer = {200, 200, 10.0, 90.0, 0.25};
    closer.set(*layer);
    const QImage scaled = painted(*layer, closer);
    QCOMPARE(scaled.pixelColor(100, 100), QColor(Qt::blue));
    QCOMPARE(scaled.pixelColor(20, 100), QColor(Qt::white));
    QTRY_COMPARE(int(layer->getPercentComplete()), 100);
    const QImage expected = drawn(*layer, closer, [&closer](QPainter& painter) {
        drawRings(painter, {ring(closer, {{20, 20}, {80, 20}, {80, 80}, {20, 80}})});
    });
    QVERIFY(difference(painted(*layer, closer), expected) <= roundings);
}

void VectorDrawingTest::roamingBackLeavesNoHole()
{
    const auto layer =
        opened(QStringList{"POLYGON((-500 -500,600 -500,600 600,-500 600,-500 -500))"});
    QBrush brush(Qt::blue);
    layer->setBrush(brush);
    complete(*layer, {200, 200, -600.0, 700.0, 6.5}); // all of it
    layer->setProgressive(true);
    complete(*layer, WorldView());
    layer->setProgressive(true);
    layer->beginUpdate(false);
    const WorldView aside = {200, 200, 150.0, 100.0, 0.5}; // beyond what was drawn of this scale
    aside.set(*layer);
    const QImage shown = painted(*layer, aside);
    for (int x = 0; x < 200; x += 10) {
        QCOMPARE(shown.pixelColor(x, 100), QColor(Qt::blue));
    }
    layer->endUpdate();
    QTRY_COMPARE(int(layer->getPercentComplete()), 100);
}

void VectorDrawingTest::withoutProgressTheViewIsCompleteAtOnce()
{
    QStringList wkts;
    for (int i = 0; i < 25; ++i) {
        wkts
            << QStringLiteral("POLYGON((%1 10,%2 10,%2 90,%1 90,%1 10))").arg(i * 4).arg(i * 4 + 2);
    }
    const auto layer = opened(wkts);
    const WorldView view;
    view.set(*layer);
    QCOMPARE(int(layer->getPercentComplete()), 100);
    const QImage expected = drawn(*layer, view, [&view](QPainter& painter) {
        for (int i = 0; i < 25; ++i) {
            const double left = i * 4;
            drawRings(painter,
                      {ring(view, {{left, 10}, {left + 2, 10}, {left + 2, 90}, {left, 90}})});
        }
    });
    QVERIFY(difference(painted(*layer, view), expected) <= roundings);
}

void VectorDrawingTest::anUpsideDownViewIsMirrored()
{
    const auto layer = opened(QStringList{"POLYGON((10 10,90 20,50 90,10 10))"});
    QBrush brush(Qt::blue);
    layer->setBrush(brush);
    const QImage upright = complete(*layer, WorldView());
    layer->setView(200, 200, 0.0, 0.0, 100.0, 100.0);
    QImage picture(200, 200, QImage::Format_RGB32);
    picture.fill(Qt::white);
    QRectF world(0.0, 0.0, 100.0, 100.0);
    QRect device = picture.rect();
    GeoPainter painter(&picture, world, device);
    layer->paint(painter, &world, &device);
    painter.end();
    QVERIFY(difference(picture, upright.mirrored()) <= roundings);
}

void VectorDrawingTest::aViewWithoutSizeDrawsNothing()
{
    const auto layer = opened(QStringList{"POLYGON((10 10,90 20,50 90,10 10))"});
    const double none = std::nan("");
    layer->setView(0, 0, 0.0, 0.0, 0.0, 0.0);
    QCOMPARE(int(layer->getPercentComplete()), 100);
    layer->setView(200, 200, 5.0, 5.0, 5.0, 5.0);
    QCOMPARE(int(layer->getPercentComplete()), 100);
    layer->setView(200, 200, none, none, none, none);
    QCOMPARE(int(layer->getPercentComplete()), 100);
    layer->setView(200, 200, -1e308, 1e308, 1e308, -1e308);
    QCOMPARE(int(layer->getPercentComplete()), 100);
    QImage picture(200, 200, QImage::Format_RGB32);
    picture.fill(Qt::white);
    QRectF world;
    QRect device = picture.rect();
    GeoPainter painter(&picture, world, device);
    layer->paint(painter, &world, &device);
    painter.end();
    QCOMPARE(inked(picture), 0);
    QVERIFY(inked(complete(*layer, WorldView())) > 0);
}

void VectorDrawingTest::labelsComeFromTheField()
{
    const auto layer =
        opened(QStringList{"POLYGON((10 10,90 10,90 90,10 90,10 10))", "POINT(20 95)"});
    const WorldView view;
    const QImage plain = complete(*layer, view);
    layer->setLabelField("name");
    const QImage labelled = complete(*layer, view);
    QVERIFY(difference(labelled, plain) > 100);
    // one stands in the middle of the polygon, one to the right of the point
    QCOMPARE(labelled.copy(20, 20, 50, 160), plain.copy(20, 20, 50, 160));
    QVERIFY(labelled.copy(80, 80, 40, 40) != plain.copy(80, 80, 40, 40));
    QVERIFY(labelled.copy(44, 0, 30, 19) != plain.copy(44, 0, 30, 19));
    layer->setLabelColor(Qt::magenta);
    QVERIFY(complete(*layer, view) != labelled);
    layer->setLabelField("no such field");
    QCOMPARE(complete(*layer, view), plain);
    layer->setLabelField(QString());
    QCOMPARE(complete(*layer, view), plain);
}

void VectorDrawingTest::labelsDoNotOverlap()
{
    QFont font;
    font.setPixelSize(20);
    const auto drawLabels = [&font](const QList<QPointF>& anchors) {
        LabelPlacer placer(font, Qt::black);
        for (const QPointF& anchor : anchors) {
            placer.add("WWW", anchor, 1.0, false);
        }
        QImage picture(300, 200, QImage::Format_RGB32);
        picture.fill(Qt::darkGray);
        QPainter painter(&picture);
        placer.draw(&painter, picture.rect());
        return picture;
    };
    const QImage one = drawLabels({{150, 100}});
    QCOMPARE(drawLabels({{150, 100}, {155, 105}, {120, 95}}), one);
    const QImage two = drawLabels({{150, 100}, {150, 160}});
    QVERIFY(two != one);
    QCOMPARE(two.copy(0, 0, 300, 125), one.copy(0, 0, 300, 125));
    // nor does one stick out of the picture
    QCOMPARE(drawLabels({{5, 5}}), drawLabels({}));
}

void VectorDrawingTest::theLargerShapeHasItsLabelFirst()
{
    QFont font;
    font.setPixelSize(20);
    const auto drawLabels = [&font](const QStringList& texts, const QList<double>& weights) {
        LabelPlacer placer(font, Qt::black);
        for (int i = 0; i < texts.size(); ++i) {
            placer.add(texts[i], QPointF(100, 100), weights[i], false);
        }
        QImage picture(200, 200, QImage::Format_RGB32);
        picture.fill(Qt::darkGray);
        QPainter painter(&picture);
        placer.draw(&painter, picture.rect());
        return picture;
    };
    QCOMPARE(drawLabels({"small", "large"}, {1.0, 9.0}), drawLabels({"large"}, {9.0}));
    QCOMPARE(drawLabels({"first", "second"}, {1.0, 1.0}), drawLabels({"first"}, {1.0}));
}

void VectorDrawingTest::aLabelIsOneShortLine_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("label");
    const QString dots = QString::fromUtf8("\342\200\246");
    const QString theta = QString::fromUtf8("\316\270");
    QTest::newRow("a short one") << "Main Street"
                                 << "Main Street";
    QTest::newRow("as long as can be") << QString(100, 'x') << QString(100, 'x');
    QTest::newRow("a letter longer") << QString(101, 'x') << QString(99, 'x') + dots;
    QTest::newRow("megabytes") << QString(3 << 20, 'x') << QString(99, 'x') + dots;
    QTest::newRow("letters of several bytes") << theta.repeated(500) << theta.repeated(99) + dots;
    QTest::newRow("several lines") << " one\n\ttwo  three\r\n"
                                   << "one two three";
    QTest::newRow("nothing but blanks") << QString(1000, ' ') << QString();
}

// No longer one has room anywhere, and a map may have millions.
void VectorDrawingTest::aLabelIsOneShortLine()
{
    QFETCH(QString, value);
    VectorChunkBuilder builder(true);
    OGRGeometryH point = OGR_G_CreateGeometry(wkbPoint);
    OGR_G_SetPoint_2D(point, 0, 1.0, 2.0);
    QVERIFY(builder.add(point, value.toUtf8().constData()));
    OGR_G_DestroyGeometry(point);
    const auto chunk = builder.finish(nullptr, nullptr);
    QTEST(chunk->labelOf(0), "label");
    QVERIFY(chunk->getBytes() < 2000);
}

void VectorDrawingTest::labelsAreReadAsUtf8()
{
    const QString text = QString::fromUtf8("\316\221\316\270\316\256\316\275\316\261");
    VectorChunkBuilder builder(true);
    OGRGeometryH point = OGR_G_CreateGeometry(wkbPoint);
    OGR_G_SetPoint_2D(point, 0, 1.0, 2.0);
    QVERIFY(builder.add(point, text.toUtf8().constData()));
    QVERIFY(builder.add(point, ""));
    QVERIFY(builder.add(point, "plain"));
    OGR_G_DestroyGeometry(point);
    const auto chunk = builder.finish(nullptr, nullptr);
    QCOMPARE(chunk->labelOf(0), text);
    QCOMPARE(chunk->labelOf(1), QString());
    QCOMPARE(chunk->labelOf(2), QString("plain"));

    VectorRecipe recipe = shapes({"POINT(50 50)"});
    recipe.features[0].values = QStringList(text);
    const auto layer = opened(recipe);
    recipe.features[0].values = QStringList("????????");
    const auto other = opened(recipe);
    layer->setLabelField("name");
    other->setLabelField("name");
    QVERIFY(complete(*layer, WorldView()) != complete(*other, WorldView()));
}

namespace {

/// What the layer says to a device that keeps painter calls.
QPicture recorded(OgrVectorLayer& layer, QRectF world, QRect device)
{
    QPicture picture;
    GeoPainter painter(&picture, world, device);
    layer.paint(painter, &world, &device);
    painter.end();
    return picture;
}

QImage played(QPicture& picture, const QSize& size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.drawPicture(0, 0, picture);
    painter.end();
    return image;
}

} // namespace

void VectorDrawingTest::paperGetsTheShapesThemselves()
{
    const auto layer = opened(QStringList{"POLYGON((10 10,90 20,50 90,10 10))"});
    QBrush brush(Qt::blue);
    layer->setBrush(brush);
    const WorldView view;
    view.set(*layer);
    QPicture picture = recorded(*layer, view.world(), QRect(0, 0, 200, 200));
    QVERIFY(picture.size() < 2000U); // some calls and no pixels
    QVERIFY(difference(played(picture, QSize(200, 200)), painted(*layer, view)) <= roundings);

    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(folder.filePath("page.pdf"));
    const QSize page = printer.pageLayout().paintRectPixels(printer.resolution()).size();
    QRectF world(0.0, 100.0, 100.0, -100.0);
    QRect device(QPoint(0, 0), page);
    layer->setView(page.width(), page.height(), 0.0, 100.0, 100.0, 0.0);
    GeoPainter painter(&printer, world, device);
    layer->paint(painter, &world, &device);
    painter.end();
    QFile pdf(folder.filePath("page.pdf"));
    QVERIFY(pdf.open(QIODevice::ReadOnly));
    const QByteArray bytes = pdf.readAll();
    QVERIFY(bytes.size() > 500);
    QVERIFY(!bytes.contains("/Subtype /Image"));
}

void VectorDrawingTest::aStripOfAPageHoldsItsPartOnly()
{
    const auto layer = opened(QStringList{"POLYGON((10 10,90 10,90 90,10 90,10 10))"});
    QBrush brush(Qt::blue);
    layer->setBrush(brush);
    const QRectF world(0.0, 100.0, 100.0, -100.0);
    layer->setView(200, 50, 0.0, 75.0, 100.0, 50.0); // the second of four
    QPicture picture = recorded(*layer, world, QRect(0, 0, 200, 200));
    const QImage strip = played(picture, QSize(200, 200));
    QCOMPARE(inked(strip.copy(0, 0, 200, 50)), 0);
    QCOMPARE(inked(strip.copy(0, 100, 200, 100)), 0);
    QCOMPARE(strip.pixelColor(100, 51), QColor(Qt::blue));
    QCOMPARE(strip.pixelColor(100, 98), QColor(Qt::blue));
}

void VectorDrawingTest::aPageBeyondAllPicturesIsDrawnDirectly()
{
    const auto layer = opened(QStringList{"POLYGON((10 10,90 10,90 90,10 90,10 10))"});
    QBrush brush(Qt::blue);
    layer->setBrush(brush);
    layer->setView(40000, 40000, 0.0, 100.0, 100.0, 0.0); // 6 gigabytes as a picture
    QCOMPARE(int(layer->getPercentComplete()), 100);
    QImage corner(200, 200, QImage::Format_RGB32);
    corner.fill(Qt::white);
    QRectF world(0.0, 100.0, 100.0, -100.0);
    QRect device(0, 0, 40000, 40000);
    GeoPainter painter(&corner, world, device);
    painter.translate(-3900, -3900);
    layer->paint(painter, &world, &device);
    painter.end();
    QCOMPARE(corner.pixelColor(20, 20), QColor(Qt::white));
    QCOMPARE(corner.pixelColor(180, 180), QColor(Qt::blue));
}

int main(int argc, char** argv)
{
    QLoggingCategory::setFilterRules("corvane.tiles.debug=false\ndefault.debug=false");
    Application application(argc, argv, "VectorDrawingTest");
    VectorDrawingTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "VectorDrawingTest.moc"
