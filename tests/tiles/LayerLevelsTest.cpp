#include <corvane/map/GeoPainter.h>
#include <tests/tiles/PaintedLevels.h>
#include <tests/tiles/PlainTiledLayer.h>
#include <tests/tiles/TileLines.h>

#include <QtTest>

#include <cmath>

using namespace Corvane;
using namespace Corvane::Map;

namespace {

/// 64 by 64 pixels in tiles of 8: three levels by the count of the sizes, two by two tiles
/// at level 2. One world unit per pixel, north up, the top-left corner at (0, 64).
class PyramidLayer : public PlainTiledLayer
{
public:
    PyramidLayer() : PlainTiledLayer(64, 64, 1.0, -1.0, QPointF(0.0, 64.0))
    {
        tileSize = 8;
        levels.init(this, 8, bounds, worldPerPixelX, worldPerPixelY);
    }
};

QList<double> numbers(const LayerLevels& levels)
{
    QList<double> result;
    for (LayerLevel* const level : levels) {
        result.append(level->getLevel());
    }
    return result;
}

int chosen(LayerLevels& levels, int width, double tlx, double brx)
{
    return static_cast<int>(levels.indexOf(levels.getLayerLevel(width, 0, tlx, 0.0, brx, 0.0)));
}

void addTile(LayerLevel& level, unsigned int tx, unsigned int ty, GeoImage* image)
{
    QString key = level.getTileKey(tx, ty);
    level.addTile(key, image);
}

} // namespace

class LayerLevelsTest : public QObject
{
    Q_OBJECT
private slots:
    void isEmptyAtFirst();
    void withoutLevelsDoesNothing();
    void countsTheLevelsOfTheSmallerSide_data();
    void countsTheLevelsOfTheSmallerSide();
    void countsLevelsForASideThatComesOutBelowZero();
    void countsLevelsForACellSizeOfNothing();
    void aTileSizeOfNothingHalvesDownToNothing();
    void aSecondCountOfTheSizesReplacesThePyramid();
    void makesAsManyLevelsAsItIsTold();
    void aSecondCountGrowsThePyramid();
    void aCountOfNothingCreatesNothing();
    void theNumberOfALevelIsOfEightBits();
    void theTwoFormsTakeTheSizeFromDifferentPlaces();

    void choosesTheCoarsestLevelThatIsFineEnough_data();
    void choosesTheCoarsestLevelThatIsFineEnough();
    void withOneLevelUsesItAtEveryZoom();
    void theHeightTakesNoPartInTheChoice();
    void anIndexOutsideIsNull();
    void aNullLevelIsPassedOver();

    void aViewFillsTheChosenLevelAlone();
    void aViewNamesTheTilesOfAllOtherLevels();
    void keepsTheTilesOfAllLevelsAfterZoomingFar();
    void paintsTheChosenLevelAndNoOther();
    void paintTakesItsWidthFromTheDevice();
    void aViewThatWasFilledIsPaintedPixelForPixel();

    void aCopySharesTheLevels();
    void deletesItsLevelsAtTheEnd();
};

void LayerLevelsTest::isEmptyAtFirst()
{
    const LayerLevels levels;
    QVERIFY(levels.isEmpty());
}

void LayerLevelsTest::withoutLevelsDoesNothing()
{
    LayerLevels levels;

    QCOMPARE(levels.getLayerLevel(100, 100, 0.0, 100.0, 100.0, 0.0), nullptr);
    levels.setView(100, 100, 0.0, 100.0, 100.0, 0.0);
    QImage white(16, 16, QImage::Format_ARGB32);
    white.fill(Qt::white);
    QCOMPARE(painted(levels, 16, QRectF(0.0, 100.0, 100.0, -100.0)), white);
}

void LayerLevelsTest::countsTheLevelsOfTheSmallerSide_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("levels");

    QTest::newRow("a large image, wide side down") << 100000 << 300000 << 9;
    QTest::newRow("a large image, wide side across") << 300000 << 100000 << 9;
    QTest::newRow("a side of one pixel") << 1 << 1000 << 1;
    QTest::newRow("no pixels") << 0 << 0 << 1;
    QTest::newRow("a side of one tile") << 256 << 256 << 1;
    QTest::newRow("one pixel more than a tile") << 257 << 300 << 1;
    QTest::newRow("one pixel more than two tiles") << 513 << 513 << 1;
    QTest::newRow("two pixels more than two tiles") << 514 << 514 << 2;
    QTest::newRow("four tiles") << 1024 << 1024 << 2;
    QTest::newRow("four pixels more than four tiles") << 1028 << 1028 << 3;
}

void LayerLevelsTest::countsTheLevelsOfTheSmallerSide()
{
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(int, levels);
    PlainTiledLayer layer(width, height, 0.5, -0.5);

    layer.pyramid().init(&layer, 256, layer.bounds, 0.5, -0.5);

    QCOMPARE(static_cast<int>(layer.pyramid().size()), levels);
    for (int i = 0; i < levels; ++i) {
        QCOMPARE(layer.pyramid().at(i)->getLevel(), static_cast<double>(i));
        QCOMPARE(layer.pyramid().at(i)->getWorldPerTileX(), 128.0 * (1 << i));
    }
}

void LayerLevelsTest::countsLevelsForASideThatComesOutBelowZero()
{
    PlainTiledLayer layer(1000, 1000, 1.0, 1.0);
    // 1000 down to -1: the side is 2 to the power of 32 less 1000
    layer.pyramid().init(&layer, 256, QRectF(0.0, 0.0, 1000.0, 1000.0), 1.0, -1.0);
    QCOMPARE(static_cast<int>(layer.pyramid().size()), 24);
}

void LayerLevelsTest::countsLevelsForACellSizeOfNothing()
{
    PlainTiledLayer layer(1000, 1000, 1.0, 1.0);
    // an infinite count is the smallest int: the side is 2 to the power of 31
    layer.pyramid().init(&layer, 256, QRectF(0.0, 0.0, 1000.0, 1000.0), 0.0, 1.0);
    QCOMPARE(static_cast<int>(layer.pyramid().size()), 23);
}

void LayerLevelsTest::aTileSizeOfNothingHalvesDownToNothing()
{
    PlainTiledLayer layer(100, 100, 1.0, 1.0);
    layer.pyramid().init(&layer, 0, layer.bounds, 1.0, 1.0);
    QCOMPARE(static_cast<int>(layer.pyramid().size()), 7); // 100, 50, 25, 12, 6, 3, 1
}

void LayerLevelsTest::aSecondCountOfTheSizesReplacesThePyramid()
{
    const TileLines lines;
    PlainTiledLayer layer(2048, 2048, 1.0, -1.0);
    int deleted = 0;
    layer.pyramid().init(&layer, 256, layer.bounds, 1.0, -1.0);
    QCOMPARE(numbers(layer.pyramid()), QList<double>({0.0, 1.0, 2.0}));
    addTile(*layer.pyramid().at(0), 0, 0, new CountedTile(&deleted));
    addTile(*layer.pyramid().at(2), 0, 0, new CountedTile(&deleted));

    layer.pyramid().init(&layer, 512, layer.bounds, 1.0, -1.0);

    QCOMPARE(deleted, 2);
    QCOMPARE(numbers(layer.pyramid()), QList<double>({0.0, 1.0}));
    QCOMPARE(layer.pyramid().at(0)->getWorldPerTileX(), 512.0);
}

void LayerLevelsTest::makesAsManyLevelsAsItIsTold()
{
    PlainTiledLayer layer(10, 10, 1.0, -1.0);
    layer.pyramid().init(&layer, 256, layer.bounds, 4U);
    QCOMPARE(numbers(layer.pyramid()), QList<double>({0.0, 1.0, 2.0, 3.0}));
}

void LayerLevelsTest::aSecondCountGrowsThePyramid()
{
    PlainTiledLayer layer(10, 10, 1.0, -1.0);
    layer.pyramid().init(&layer, 256, layer.bounds, 2U);
    LayerLevel* const first = layer.pyramid().at(0);

    layer.pyramid().init(&layer, 128, layer.bounds, 2U);

    QCOMPARE(numbers(layer.pyramid()), QList<double>({0.0, 1.0, 2.0, 3.0}));
    QCOMPARE(layer.pyramid().at(0), first);
    QCOMPARE(layer.pyramid().at(1)->getWorldPerTileX(), 512.0);
    QCOMPARE(layer.pyramid().at(2)->getWorldPerTileX(), 512.0);
    QCOMPARE(layer.pyramid().at(3)->getWorldPerTileX(), 1024.0);
}

void LayerLevelsTest::aCountOfNothingCreatesNothing()
{
    PlainTiledLayer layer(10, 10, 1.0, -1.0);
    layer.pyramid().init(&layer, 256, layer.bounds, 0U);
    QVERIFY(layer.pyramid().isEmpty());
    layer.pyramid().init(&layer, 256, layer.bounds, 1U);
    layer.pyramid().init(&layer, 256, layer.bounds, 0U);
    QCOMPARE(static_cast<int>(layer.pyramid().size()), 1);
}

void LayerLevelsTest::theNumberOfALevelIsOfEightBits()
{
    PlainTiledLayer layer(10, 10, 1.0, -1.0);
    layer.pyramid().init(&layer, 256, layer.bounds, 258U);
    QCOMPARE(layer.pyramid().at(255)->getLevel(), 255.0);
    QCOMPARE(layer.pyramid().at(256)->getLevel(), 0.0);
    QCOMPARE(layer.pyramid().at(257)->getLevel(), 1.0);
}

void LayerLevelsTest::theTwoFormsTakeTheSizeFromDifferentPlaces()
{
    PlainTiledLayer layer(2048, 2048, 1.0, -1.0);
    // The bounds and cell sizes handed in decide the count, the layer's own size the tiles.
    layer.pyramid().init(&layer, 256, QRectF(0.0, 0.0, 100.0, 100.0), 1.0, 1.0);
    QCOMPARE(static_cast<int>(layer.pyramid().size()), 1);
    unsigned int tx = 0;
    unsigned int ty = 0;
    layer.pyramid().at(0)->getTileXY(1e9, -1e9, &tx, &ty);
    QCOMPARE(tx, 7U);
    QCOMPARE(ty, 7U);
}

void LayerLevelsTest::choosesTheCoarsestLevelThatIsFineEnough_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<double>("tlx");
    QTest::addColumn<double>("brx");
    QTest::addColumn<int>("index");

    // five levels of 1, 2, 4, 8 and 16 world units per pixel
    QTest::newRow("finer than the finest") << 1000 << 0.0 << 10.0 << 0;
    QTest::newRow("as fine as the finest") << 1000 << 0.0 << 1000.0 << 0;
    QTest::newRow("just short of the next") << 1000 << 0.0 << 1999.9 << 0;
    QTest::newRow("equality takes the coarser level") << 1000 << 0.0 << 2000.0 << 1;
    QTest::newRow("just past equality") << 1000 << 0.0 << 2000.1 << 1;
    QTest::newRow("a level in the middle") << 1000 << -3000.0 << 3000.0 << 2;
    QTest::newRow("equality with the coarsest") << 1000 << 0.0 << 16000.0 << 4;
    QTest::newRow("coarser than the coarsest") << 1000 << 0.0 << 1e9 << 4;
    QTest::newRow("a reversed rectangle is finer than all") << 1000 << 16000.0 << 0.0 << 0;
    QTest::newRow("a rectangle of no width") << 1000 << 5.0 << 5.0 << 0;
    QTest::newRow("no device width") << 0 << 0.0 << 10.0 << 4;
    QTest::newRow("no device width, reversed: nothing is below minus infinity")
        << 0 << 10.0 << 0.0 << 0;
    QTest::newRow("no width on either side") << 0 << 5.0 << 5.0 << 4;
    QTest::newRow("a device width below zero") << -1000 << 0.0 << 16000.0 << 0;
    QTest::newRow("a rectangle that is not a number") << 1000 << std::nan("") << 1.0 << 4;
}

void LayerLevelsTest::choosesTheCoarsestLevelThatIsFineEnough()
{
    QFETCH(int, width);
    QFETCH(double, tlx);
    QFETCH(double, brx);
    PlainTiledLayer layer(100000, 100000, 1.0, -1.0);
    layer.pyramid().init(&layer, 256, layer.bounds, 5U);

    QTEST(chosen(layer.pyramid(), width, tlx, brx), "index");
}

void LayerLevelsTest::withOneLevelUsesItAtEveryZoom()
{
    PlainTiledLayer layer(100, 100, 1.0, -1.0);
    layer.pyramid().init(&layer, 256, layer.bounds, 1U);

    QCOMPARE(chosen(layer.pyramid(), 1000, 0.0, 0.001), 0);
    QCOMPARE(chosen(layer.pyramid(), 1000, 0.0, 1e9), 0);
    QCOMPARE(chosen(layer.pyramid(), 0, 0.0, 0.0), 0);
}

void LayerLevelsTest::theHeightTakesNoPartInTheChoice()
{
    PlainTiledLayer layer(100000, 100000, 1.0, -1.0);
    layer.pyramid().init(&layer, 256, layer.bounds, 5U);
    LayerLevels& levels = layer.pyramid();

    QCOMPARE(levels.getLayerLevel(1000, 0, 0.0, 0.0, 4000.0, 0.0), levels.at(2));
    QCOMPARE(levels.getLayerLevel(1000, 1, 0.0, 1e9, 4000.0, -1e9), levels.at(2));
}

void LayerLevelsTest::anIndexOutsideIsNull()
{
    PlainTiledLayer layer(100, 100, 1.0, -1.0);
    layer.pyramid().init(&layer, 256, layer.bounds, 2U);
    QVERIFY(layer.pyramid().value(1));
    QCOMPARE(layer.pyramid().value(2), nullptr);
    QCOMPARE(layer.pyramid().value(-1), nullptr);
}

void LayerLevelsTest::aNullLevelIsPassedOver()
{
    const TileLines lines;
    PyramidLayer layer;
    LayerLevels& levels = layer.pyramid();
    delete levels.at(1);
    levels[1] = nullptr;

    // level 1 would suit: the finer one stands in, and the missing one is not purged either
    QCOMPARE(chosen(levels, 32, 0.0, 64.0), 0);
    QCOMPARE(chosen(levels, 16, 0.0, 64.0), 2);
    levels.setView(32, 32, 0.0, 64.0, 7.0, 57.5);
    QCOMPARE(layer.calls.count("url tile/0/0/0 8x8 0,64 8,56"), 1);
    waitForRequests();
    layer.calls.clear();

    // without level 0 nothing can stand in
    delete levels.at(0);
    levels[0] = nullptr;
    levels.setView(64, 64, 0.0, 64.0, 64.0, 0.0);
    QCOMPARE(layer.calls.all(), QStringList());
    QImage white(64, 64, QImage::Format_ARGB32);
    white.fill(Qt::white);
    QCOMPARE(painted(levels, 64, QRectF(0.0, 64.0, 64.0, -64.0)), white);
}

void LayerLevelsTest::aViewFillsTheChosenLevelAlone()
{
    const TileLines lines;
    PyramidLayer layer;
    QCOMPARE(numbers(layer.pyramid()), QList<double>({0.0, 1.0, 2.0}));

    layer.pyramid().setView(16, 16, 0.0, 64.0, 64.0, 0.0);
    waitForRequests();

    QCOMPARE(layer.made.sorted(),
             QStringList({"l=2;tx=0;ty=0;lyr=plain", "l=2;tx=0;ty=1;lyr=plain",
                          "l=2;tx=1;ty=0;lyr=plain", "l=2;tx=1;ty=1;lyr=plain"}));
}

void LayerLevelsTest::aViewNamesTheTilesOfAllOtherLevels()
{
    TileLines lines;
    PyramidLayer layer;
    LayerLevels& levels = layer.pyramid();
    addTile(*levels.at(0), 0, 0, newTile(8, Qt::red, 0.0, 64.0, 8.0, 56.0));
    addTile(*levels.at(1), 0, 0, newTile(8, Qt::red, 0.0, 64.0, 16.0, 48.0));
    addTile(*levels.at(1), 3, 3, newTile(8, Qt::red, 48.0, 16.0, 64.0, 0.0));
    addTile(*levels.at(2), 0, 0, newTile(8, Qt::red, 0.0, 64.0, 32.0, 32.0));
    lines.clear();

    levels.setView(7, 7, 0.0, 64.0, 15.5, 48.5);

    // the chosen level first, then the others from the finest up
    QCOMPARE(lines.all(), QStringList({"purgeTiles deleting image: l=1;tx=3;ty=3;lyr=plain",
                                       "purgeAll deleting image: l=0;tx=0;ty=0;lyr=plain",
                                       "purgeAll deleting image: l=2;tx=0;ty=0;lyr=plain"}));
    QCOMPARE(layer.calls.all(), QStringList({"url tile/1/0/0 8x8 0,64 16,48"}));
}

void LayerLevelsTest::keepsTheTilesOfAllLevelsAfterZoomingFar()
{
    TileLines lines;
    PyramidLayer layer;
    LayerLevels& levels = layer.pyramid();
    for (const double width : {64.0, 32.0, 16.0, 32.0, 64.0}) {
        levels.setView(15, 15, 0.0, 64.0, width - 0.5, 64.0 - width + 0.5);
        waitForRequests();
    }
    lines.clear();
    levels.setView(15, 15, 40.0, 24.0, 54.0, 10.0);
    waitForRequests();

    int inMemory = 0;
    for (LayerLevel* const level : qAsConst(levels)) {
        for (int tx = 0; tx < 8; ++tx) {
            for (int ty = 0; ty < 8; ++ty) {
                inMemory += level->getTile(tx, ty) ? 1 : 0;
            }
        }
    }
    QStringList named = lines.all().filter(QStringLiteral("deleting image"));
    QCOMPARE(inMemory, layer.made.all().size());
    QCOMPARE(static_cast<int>(named.size()), inMemory - 4); // all but the four of the last view
    for (LayerLevel* const level : qAsConst(levels)) {
        QVERIFY(level->getTile(0, 0));
    }
}

void LayerLevelsTest::paintsTheChosenLevelAndNoOther()
{
    const TileLines lines;
    PyramidLayer layer;
    LayerLevels& levels = layer.pyramid();
    levels.setView(16, 16, 0.0, 64.0, 64.0, 0.0); // fills level 2
    waitForRequests();
    QImage white(64, 64, QImage::Format_ARGB32);
    white.fill(Qt::white);

    // level 0 suits this view and has no tile: the coarse tiles in memory do not stand in
    QCOMPARE(painted(levels, 64, QRectF(0.0, 64.0, 64.0, -64.0)), white);
    QVERIFY(painted(levels, 16, QRectF(0.0, 64.0, 64.0, -64.0)) != white.scaled(16, 16));
}

void LayerLevelsTest::paintTakesItsWidthFromTheDevice()
{
    const TileLines lines;
    PyramidLayer layer;
    LayerLevels& levels = layer.pyramid();
    addTile(*levels.at(0), 0, 0, newTile(8, Qt::red, 0.0, 64.0, 8.0, 56.0));
    addTile(*levels.at(1), 0, 0, newTile(8, Qt::green, 0.0, 64.0, 16.0, 48.0));
    addTile(*levels.at(2), 0, 0, newTile(8, Qt::blue, 0.0, 64.0, 32.0, 32.0));
    const QRectF world(0.0, 64.0, 8.0, -8.0);

    QCOMPARE(painted(levels, 8, world).pixelColor(2, 2), QColor(Qt::red));
    QCOMPARE(painted(levels, 4, world).pixelColor(2, 2), QColor(Qt::green));
    QCOMPARE(painted(levels, 2, world).pixelColor(1, 1), QColor(Qt::blue));
}

void LayerLevelsTest::aViewThatWasFilledIsPaintedPixelForPixel()
{
    const TileLines lines;
    PyramidLayer layer;
    LayerLevels& levels = layer.pyramid();
    const QRectF world(4.0, 64.0 - 4.0, 24.0, -24.0);
    levels.setView(24, 24, world.left(), world.top(), world.right(), world.bottom());
    waitForRequests();

    QImage expected(24, 24, QImage::Format_ARGB32);
    for (int x = 0; x < 24; ++x) {
        for (int y = 0; y < 24; ++y) {
            expected.setPixelColor(x, y,
                                   tileColour(0, static_cast<unsigned int>((x + 4) / 8),
                                              static_cast<unsigned int>((y + 4) / 8)));
        }
    }
    QImage image(24, 24, QImage::Format_ARGB32);
    image.fill(Qt::white);
    QRectF view = world;
    QRect device(0, 0, 24, 24);
    GeoPainter painter(&image, view, device);
    levels.paint(painter, &view, &device);
    painter.end();
    QCOMPARE(image, expected);
}

void LayerLevelsTest::aCopySharesTheLevels()
{
    PlainTiledLayer layer(2048, 2048, 1.0, -1.0);
    layer.pyramid().init(&layer, 256, layer.bounds, 3U);
    LayerLevel* const second = layer.pyramid().at(1);

    LayerLevels copy(layer.pyramid());
    LayerLevels assigned;
    assigned = layer.pyramid();

    QCOMPARE(copy.at(1), second);
    QCOMPARE(assigned.at(1), second);
    // the tile size came along
    QCOMPARE(assigned.getLayerLevel(256, 256, 0.0, 0.0, 512.0, 0.0), second);
    // the original deletes them
    copy.clear();
    assigned.clear();
}

void LayerLevelsTest::deletesItsLevelsAtTheEnd()
{
    const TileLines lines;
    int deleted = 0;
    {
        PlainTiledLayer layer(2048, 2048, 1.0, -1.0);
        layer.pyramid().init(&layer, 256, layer.bounds, 3U);
        addTile(*layer.pyramid().at(0), 0, 0, new CountedTile(&deleted));
        addTile(*layer.pyramid().at(2), 0, 0, new CountedTile(&deleted));
    }
    QCOMPARE(deleted, 2);
}

QTEST_GUILESS_MAIN(LayerLevelsTest)
#include "LayerLevelsTest.moc"
