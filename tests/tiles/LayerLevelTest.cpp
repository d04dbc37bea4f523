#include <corvane/map/GeoPainter.h>
#include <tests/tiles/PlainTiledLayer.h>
#include <tests/tiles/TileLines.h>

#include <QtTest>

#include <atomic>
#include <cmath>
#include <limits>
#include <thread>

using namespace Corvane;
using namespace Corvane::Map;

namespace {

constexpr int patience = 30000; // milliseconds
constexpr double infinity = std::numeric_limits<double>::infinity();

QString tileAt(LayerLevel& level, double x, double y)
{
    unsigned int tx = 0;
    unsigned int ty = 0;
    level.getTileXY(x, y, &tx, &ty);
    return QStringLiteral("%1,%2").arg(tx).arg(ty);
}

void addTile(LayerLevel& level, QString key, GeoImage* image)
{
    level.addTile(key, image);
}

/// Four tiles of 8 pixels by 8, two columns and two rows, one world unit per pixel, north up, with
/// the top-left corner at (0, 16).
class SmallLayer : public PlainTiledLayer
{
public:
    SmallLayer() : PlainTiledLayer(16, 16, 1.0, -1.0, QPointF(0.0, 16.0)) { tileSize = 8; }
};

/// The tile of that column and row in its own colour, put into the level.
GeoImage* fill(LayerLevel& level, unsigned int tx, unsigned int ty)
{
    double tlx = 0.0;
    double tly = 0.0;
    double brx = 0.0;
    double bry = 0.0;
    level.getTileCoords(tx, ty, &tlx, &tly, &brx, &bry);
    GeoImage* const tile = newTile(8, tileColour(0, tx, ty), tlx, tly, brx, bry);
    addTile(level, level.getTileKey(tx, ty), tile);
    return tile;
}

QImage canvas(int width, int height)
{
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(Qt::white);
    return image;
}

/// Operations of a level, by name, that touch no more of it than they must.
void operate(LayerLevel& level, const QString& operation)
{
    if (operation == "setView") {
        level.setView(15.0, 16.0, 1.0, 0.0); // reversed: no tile is looked for
    } else if (operation == "paint") {
        QImage image = canvas(16, 16);
        QRectF world(15.0, 16.0, -14.0, -16.0);
        QRect device(0, 0, 16, 16);
        GeoPainter painter(&image, world, device);
        level.paint(painter, &world, &device);
    } else if (operation == "getTile") {
        level.getTile(0, 0);
    } else if (operation == "addTile") {
        addTile(level, level.getTileKey(0, 0), nullptr);
    } else if (operation == "purgeTiles") {
        level.purgeTiles(0.0, 16.0, 16.0, 0.0);
    } else if (operation == "purgeAll") {
        level.purgeAll();
    }
}

/// A thread that operates on the level while somebody else holds its lock.
class Operation
{
public:
    Operation(LayerLevel& level, const QString& name)
        : thread([this, &level, name] {
              begun = true;
              operate(level, name);
              ended = true;
          })
    {
    }
    ~Operation() { thread.join(); }

    bool hasBegun() const
    {
        return QTest::qWaitFor([this] { return begun.load(); }, patience);
    }
    bool hasEnded() const
    {
        return QTest::qWaitFor([this] { return ended.load(); }, patience);
    }

    std::atomic<bool> begun{false};
    std::atomic<bool> ended{false};

private:
    std::thread thread; // the last: it uses the two above
};

void operations()
{
    QTest::addColumn<bool>("writes");
    QTest::newRow("setView") << false;
    QTest::newRow("paint") << false;
    QTest::newRow("getTile") << true;
    QTest::newRow("addTile") << true;
    QTest::newRow("purgeTiles") << true;
    QTest::newRow("purgeAll") << true;
}

QImage painted(LayerLevel& level, const QSize& size, QRectF world, QRect device)
{
    QImage image = canvas(size.width(), size.height());
    GeoPainter painter(&image, world, device);
    level.paint(painter, &world, &device);
    painter.end();
    return image;
}

} // namespace

class LayerLevelTest : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void tellsItsNumberAsADouble();
    void namesATileByLevelColumnRowAndLayer_data();
    void namesATileByLevelColumnRowAndLayer();
    void asksTheLayerForItsTextAtEachKey();

    void countsColumnsAndRows_data();
    void countsColumnsAndRows();
    void aTileSizeOfNothingPutsEveryPointIntoTheFirstTile();
    void aTileSpanThatWrapsToNothingLeavesTheColumnsUnbounded();
    void aTileSpanThatWrapsBelowZeroDividesPlainly();
    void worldPerTileCarriesTheSignOfTheCell_data();
    void worldPerTileCarriesTheSignOfTheCell();

    void findsTheTileOfAPoint_data();
    void findsTheTileOfAPoint();
    void asksForTheBoundsAfreshAtEveryPoint();
    void tellsTheWorldRectangleOfATile_data();
    void tellsTheWorldRectangleOfATile();

    void hasNoTileAtFirst();
    void handsOutATileByColumnAndRow();
    void keepsTheFirstOfTwoTilesAndDeletesTheSecond();
    void aNullImageHoldsItsKeyAndCountsAsMissing();
    void deletesItsTilesAtTheEnd();

    void requestsColumnByColumn();
    void requestsTheRowsOfASouthUpImageDownward();
    void requestsTheEdgeForAViewWhollyOutside_data();
    void requestsTheEdgeForAViewWhollyOutside();
    void requestsNothingForAReversedView_data();
    void requestsNothingForAReversedView();
    void asksForTheUrlOfATileInMemoryToo();
    void answersTheSameViewWithOneFetchPerTileWhileItIsUnderWay();
    void requestsATileWhoseImageWasNullAgain();

    void namesTheTilesOutOfViewAndKeepsThem_data();
    void namesTheTilesOutOfViewAndKeepsThem();
    void namesEveryTileOfASouthUpImage();
    void namesATileWithoutAnImageOnlyWhenAllArePurged();
    void namesAllTilesAndKeepsThem();

    void paintsItsTilesWhereTheyLie();
    void leavesTheGroundWhereATileIsMissing();
    void paintsOnlyTheTilesInView();
    void paintsTilesScaled();
    void paintsWithTheFarCornerAsSize();
    void paintsNothingForAReversedView();
    void paintingRequestsNothing();
    void drawsNoOutlines();

    void everyOperationWaitsForAWriter_data();
    void everyOperationWaitsForAWriter();
    void onlyWhatReadsPassesAReader_data();
    void onlyWhatReadsPassesAReader();
    void theLockIsFreeWhileTheLayerIsAsked();
};

void LayerLevelTest::init()
{
    waitForRequests();
}

void LayerLevelTest::tellsItsNumberAsADouble()
{
    PlainTiledLayer layer(512, 512, 1.0, -1.0);
    QCOMPARE(LayerLevel(&layer, 0, 256).getLevel(), 0.0);
    QCOMPARE(LayerLevel(&layer, 255, 256).getLevel(), 255.0);
}

void LayerLevelTest::namesATileByLevelColumnRowAndLayer_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<unsigned int>("tx");
    QTest::addColumn<unsigned int>("ty");
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("key");

    QTest::newRow("the first tile") << 0 << 0U << 0U << "plain"
                                    << "l=0;tx=0;ty=0;lyr=plain";
    QTest::newRow("column before row, nothing padded") << 3 << 12U << 305U << "{1-2}"
                                                       << "l=3;tx=12;ty=305;lyr={1-2}";
    QTest::newRow("the largest numbers") << 255 << 4294967295U << 4294967295U << "x"
                                         << "l=255;tx=4294967295;ty=4294967295;lyr=x";
    QTest::newRow("a layer without a text") << 10 << 100U << 1000U << ""
                                            << "l=10;tx=100;ty=1000;lyr=";
    QTest::newRow("a text that looks like a place marker") << 1 << 2U << 3U << "%1;l=9"
                                                           << "l=1;tx=2;ty=3;lyr=%1;l=9";
}

void LayerLevelTest::namesATileByLevelColumnRowAndLayer()
{
    QFETCH(int, level);
    QFETCH(unsigned int, tx);
    QFETCH(unsigned int, ty);
    QFETCH(QString, id);
    PlainTiledLayer layer(512, 512, 1.0, -1.0);
    layer.id = id;
    LayerLevel layerLevel(&layer, static_cast<unsigned char>(level), 256);

    QTEST(layerLevel.getTileKey(tx, ty), "key");
}

void LayerLevelTest::asksTheLayerForItsTextAtEachKey()
{
    PlainTiledLayer layer(512, 512, 1.0, -1.0);
    LayerLevel level(&layer, 0, 256);
    layer.id = QStringLiteral("one");
    QCOMPARE(level.getTileKey(0, 0), QStringLiteral("l=0;tx=0;ty=0;lyr=one"));
    layer.id = QStringLiteral("other");
    QCOMPARE(level.getTileKey(0, 0), QStringLiteral("l=0;tx=0;ty=0;lyr=other"));
}

void LayerLevelTest::countsColumnsAndRows_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("level");
    QTest::addColumn<QString>("last");

    QTest::newRow("a size that divides without rest") << 512 << 768 << 0 << "1,2";
    QTest::newRow("one pixel more begins a tile") << 513 << 769 << 0 << "2,3";
    QTest::newRow("one pixel less still has it") << 511 << 767 << 0 << "1,2";
    QTest::newRow("one pixel") << 1 << 1 << 0 << "0,0";
    QTest::newRow("the next level has half the tiles, rounded up") << 1280 << 1281 << 1 << "2,2";
    QTest::newRow("a far level has one tile") << 100000 << 300000 << 20 << "0,0";
    QTest::newRow("no pixels at all") << 0 << 0 << 0 << "0,0";
    QTest::newRow("a width below zero") << -1000 << 1000 << 0 << "0,3";
    QTest::newRow("level 32 counts as level 0") << 512 << 768 << 32 << "1,2";
    QTest::newRow("level 33 counts as level 1") << 1280 << 1281 << 33 << "2,2";
    QTest::newRow("the largest image") << std::numeric_limits<int>::max()
                                       << std::numeric_limits<int>::max() << 0 << "8388607,8388607";
}

void LayerLevelTest::countsColumnsAndRows()
{
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(int, level);
    PlainTiledLayer layer(width, height, 1.0, 1.0);
    layer.bounds = QRectF(0.0, 0.0, 1.0, 1.0);
    LayerLevel layerLevel(&layer, static_cast<unsigned char>(level), 256);

    // far right and far down, and still within the range of an int after the division
    QTEST(tileAt(layerLevel, 1e11, 1e11), "last");
    QCOMPARE(tileAt(layerLevel, -1e11, -1e11), QStringLiteral("0,0"));
}

void LayerLevelTest::aTileSizeOfNothingPutsEveryPointIntoTheFirstTile()
{
    PlainTiledLayer layer(512, 512, 1.0, -1.0);
    LayerLevel level(&layer, 0, 0);

    QCOMPARE(level.getWorldPerTileX(), 0.0);
    QCOMPARE(tileAt(level, 0.0, 0.0), QStringLiteral("0,0"));
    QCOMPARE(tileAt(level, 300.0, 300.0), QStringLiteral("0,0"));
    QCOMPARE(tileAt(level, -300.0, -300.0), QStringLiteral("0,0"));

    layer.gate = nullptr;
    layer.tileSize = 1;
    layer.pyramid().append(new LayerLevel(&layer, 0, 0));
    layer.pyramid().first()->setView(0.0, 0.0, 300.0, -300.0);
    waitForRequests();
    QCOMPARE(layer.made.all(), QStringList({"l=0;tx=0;ty=0;lyr=plain"}));
}

void LayerLevelTest::aTileSpanThatWrapsToNothingLeavesTheColumnsUnbounded()
{
    PlainTiledLayer layer(512, 512, 1.0, 1.0);
    LayerLevel level(&layer, 1, 0x80000000U); // the span is 2 to the power of 32

    QCOMPARE(level.getWorldPerTileX(), 4294967296.0);
    QCOMPARE(tileAt(level, 4294967296.0 * 1000000000.5, 4294967296.0 * 7.0),
             QStringLiteral("1000000000,7"));
    QCOMPARE(tileAt(level, 4294967296.0 * 2147483647.0, 0.0), QStringLiteral("2147483646,0"));
}

void LayerLevelTest::aTileSpanThatWrapsBelowZeroDividesPlainly()
{
    PlainTiledLayer layer(-1000000, 512, 1.0, 1.0);
    LayerLevel level(&layer, 0, 0xFFFFFFFFU); // the span is -1
    QCOMPARE(tileAt(level, 1e18, 1e18), QStringLiteral("999999,0"));
    QCOMPARE(tileAt(level, -1e18, -1e18), QStringLiteral("0,0"));

    // the quotient wraps, and so does the last column
    layer.width = std::numeric_limits<int>::min();
    LayerLevel wrapped(&layer, 0, 0xFFFFFFFFU);
    QCOMPARE(tileAt(wrapped, 1e18, 1e18), QStringLiteral("2147483647,0"));
}

void LayerLevelTest::worldPerTileCarriesTheSignOfTheCell_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<double>("scale");

    QTest::newRow("full resolution") << 0 << 1.0;
    QTest::newRow("each level doubles it") << 3 << 8.0;
    QTest::newRow("level 31 is positive still") << 31 << 2147483648.0;
    QTest::newRow("level 32 starts again") << 32 << 1.0;
    QTest::newRow("level 255 counts as 31") << 255 << 2147483648.0;
}

void LayerLevelTest::worldPerTileCarriesTheSignOfTheCell()
{
    QFETCH(int, level);
    QFETCH(double, scale);
    PlainTiledLayer layer(512, 512, 0.1, -0.3);
    LayerLevel layerLevel(&layer, static_cast<unsigned char>(level), 256);

    QCOMPARE(layerLevel.getWorldPerTileX(), 0.1 * 256.0 * scale);
    QCOMPARE(layerLevel.getWorldPerTileY(), -0.3 * 256.0 * scale);
}

void LayerLevelTest::findsTheTileOfAPoint_data()
{
    QTest::addColumn<double>("x");
    QTest::addColumn<double>("y");
    QTest::addColumn<QString>("tile");

    // 4 columns and 3 rows of 100 by 100 world units, north up, the top-left corner at (1000, 500)
    QTest::newRow("the corner itself") << 1000.0 << 500.0 << "0,0";
    QTest::newRow("inside the first tile") << 1099.9 << 400.1 << "0,0";
    QTest::newRow("an edge belongs to the next tile") << 1100.0 << 400.0 << "1,1";
    QTest::newRow("the far corner stays in the last tile") << 1400.0 << 200.0 << "3,2";
    QTest::newRow("left of the image") << 999.9 << 450.0 << "0,0";
    QTest::newRow("above the image") << 1050.0 << 500.1 << "0,0";
    QTest::newRow("right of and below the image") << 1e6 << -1e6 << "3,2";
    QTest::newRow("beyond what an int holds falls to the first tile") << 1e300 << -1e300 << "0,0";
    QTest::newRow("just beyond what an int holds")
        << 1000.0 + 100.0 * 2147483648.0 << 500.0 - 100.0 * 2147483648.0 << "0,0";
    QTest::newRow("just within what an int holds")
        << 1000.0 + 100.0 * 2147483647.0 << 500.0 - 100.0 * 2147483647.0 << "3,2";
    QTest::newRow("infinitely far") << infinity << -infinity << "0,0";
    QTest::newRow("infinitely far the other way") << -infinity << infinity << "0,0";
    QTest::newRow("not a number") << std::nan("") << std::nan("") << "0,0";
}

void LayerLevelTest::findsTheTileOfAPoint()
{
    QFETCH(double, x);
    QFETCH(double, y);
    PlainTiledLayer layer(400, 300, 1.0, -1.0, QPointF(1000.0, 500.0));
    LayerLevel level(&layer, 0, 100);

    QTEST(tileAt(level, x, y), "tile");
}

void LayerLevelTest::asksForTheBoundsAfreshAtEveryPoint()
{
    PlainTiledLayer layer(400, 300, 1.0, -1.0, QPointF(0.0, 300.0));
    LayerLevel level(&layer, 0, 100);
    QCOMPARE(tileAt(level, 150.0, 150.0), QStringLiteral("1,1"));

    layer.bounds.moveTopLeft(QPointF(-100.0, 400.0));

    QCOMPARE(tileAt(level, 150.0, 150.0), QStringLiteral("2,2"));
    double tlx = 0.0;
    double tly = 0.0;
    double brx = 0.0;
    double bry = 0.0;
    level.getTileCoords(0, 0, &tlx, &tly, &brx, &bry);
    QCOMPARE(tlx, -100.0);
    QCOMPARE(tly, 400.0);
}

void LayerLevelTest::tellsTheWorldRectangleOfATile_data()
{
    QTest::addColumn<unsigned int>("tx");
    QTest::addColumn<unsigned int>("ty");
    QTest::addColumn<QRectF>("rectangle");

    QTest::newRow("the first") << 0U << 0U << QRectF(1000.0, 500.0, 200.0, -200.0);
    QTest::newRow("the last runs past the image")
        << 1U << 1U << QRectF(1200.0, 300.0, 200.0, -200.0);
    QTest::newRow("beyond the last") << 10U << 20U << QRectF(3000.0, -3500.0, 200.0, -200.0);
    QTest::newRow("a number beyond a signed int")
        << 4000000000U << 0U << QRectF(1000.0 + 8e11, 500.0, 200.0, -200.0);
}

void LayerLevelTest::tellsTheWorldRectangleOfATile()
{
    QFETCH(unsigned int, tx);
    QFETCH(unsigned int, ty);
    PlainTiledLayer layer(350, 350, 1.0, -1.0, QPointF(1000.0, 500.0));
    LayerLevel level(&layer, 1, 100);

    double tlx = 0.0;
    double tly = 0.0;
    double brx = 0.0;
    double bry = 0.0;
    level.getTileCoords(tx, ty, &tlx, &tly, &brx, &bry);

    QTEST(QRectF(tlx, tly, brx - tlx, bry - tly), "rectangle");
}

void LayerLevelTest::hasNoTileAtFirst()
{
    SmallLayer layer;
    LayerLevel level(&layer, 0, 8);
    QCOMPARE(level.getTile(0, 0), nullptr);
    QCOMPARE(level.getTile(-1, -1), nullptr);
    QCOMPARE(level.getTile(1000000, 1000000), nullptr);
}

void LayerLevelTest::handsOutATileByColumnAndRow()
{
    const TileLines lines;
    SmallLayer layer;
    LayerLevel level(&layer, 0, 8);

    GeoImage* const tile = fill(level, 1, 0);

    QCOMPARE(level.getTile(1, 0), tile);
    QCOMPARE(level.getTile(0, 1), nullptr);
    QCOMPARE(lines.all(), QStringList({"Adding image with key : l=0;tx=1;ty=0;lyr=plain"}));
}

void LayerLevelTest::keepsTheFirstOfTwoTilesAndDeletesTheSecond()
{
    const TileLines lines;
    SmallLayer layer;
    layer.id = QStringLiteral("a \"quoted\" text");
    LayerLevel level(&layer, 0, 8);
    int firstDeleted = 0;
    int secondDeleted = 0;
    auto* const first = new CountedTile(&firstDeleted);

    addTile(level, level.getTileKey(0, 0), first);
    addTile(level, level.getTileKey(0, 0), new CountedTile(&secondDeleted));
    addTile(level, level.getTileKey(0, 0), nullptr);

    QCOMPARE(level.getTile(0, 0), first);
    QCOMPARE(firstDeleted, 0);
    QCOMPARE(secondDeleted, 1);
    const QString duplicate =
        QStringLiteral("LayerLevel::addTile() duplicate key (deleting image, not added) : "
                       "l=0;tx=0;ty=0;lyr=a \"quoted\" text");
    QCOMPARE(lines.all(),
             QStringList({"Adding image with key : l=0;tx=0;ty=0;lyr=a \"quoted\" text", duplicate,
                          duplicate}));
}

void LayerLevelTest::aNullImageHoldsItsKeyAndCountsAsMissing()
{
    const TileLines lines;
    SmallLayer layer;
    LayerLevel level(&layer, 0, 8);
    int deleted = 0;

    addTile(level, level.getTileKey(0, 0), nullptr);
    addTile(level, level.getTileKey(0, 0), new CountedTile(&deleted));

    QCOMPARE(level.getTile(0, 0), nullptr);
    QCOMPARE(deleted, 1);
    QCOMPARE(lines.all(),
             QStringList({"Adding image with key : l=0;tx=0;ty=0;lyr=plain",
                          "LayerLevel::addTile() duplicate key (deleting image, not added) : "
                          "l=0;tx=0;ty=0;lyr=plain"}));
}

void LayerLevelTest::deletesItsTilesAtTheEnd()
{
    const TileLines lines;
    SmallLayer layer;
    int deleted = 0;
    {
        LayerLevel level(&layer, 0, 8);
        addTile(level, level.getTileKey(0, 0), new CountedTile(&deleted));
        addTile(level, level.getTileKey(1, 1), new CountedTile(&deleted));
        addTile(level, level.getTileKey(1, 0), nullptr);
        QCOMPARE(deleted, 0);
    }
    QCOMPARE(deleted, 2);
}

void LayerLevelTest::requestsColumnByColumn()
{
    const TileLines lines;
    PlainTiledLayer layer(400, 300, 2.0, -2.0, QPointF(1000.0, 500.0));
    layer.tileSize = 100;
    layer.pyramid().init(&layer, 100, layer.bounds, 1U);

    layer.pyramid().first()->setView(1250.0, 450.0, 1450.0, 250.0);

    QCOMPARE(layer.calls.all(),
             QStringList({
                 "url tile/0/1/0 100x100 1200,500 1400,300",
                 "create l=0;tx=1;ty=0;lyr=plain tile/0/1/0 0:1,0 1200,500 1400,300",
                 "url tile/0/1/1 100x100 1200,300 1400,100",
                 "create l=0;tx=1;ty=1;lyr=plain tile/0/1/1 0:1,1 1200,300 1400,100",
                 "url tile/0/2/0 100x100 1400,500 1600,300",
                 "create l=0;tx=2;ty=0;lyr=plain tile/0/2/0 0:2,0 1400,500 1600,300",
                 "url tile/0/2/1 100x100 1400,300 1600,100",
                 "create l=0;tx=2;ty=1;lyr=plain tile/0/2/1 0:2,1 1400,300 1600,100",
             }));
    waitForRequests();
    QVERIFY(layer.pyramid().first()->getTile(2, 1));
}

void LayerLevelTest::requestsTheRowsOfASouthUpImageDownward()
{
    const TileLines lines;
    PlainTiledLayer layer(100, 300, 1.0, 1.0, QPointF(0.0, 0.0));
    layer.pyramid().init(&layer, 100, layer.bounds, 1U);

    layer.pyramid().first()->setView(0.0, 50.0, 50.0, 150.0);

    QCOMPARE(layer.calls.all(), QStringList({
                                    "url tile/0/0/0 100x100 0,0 100,100",
                                    "create l=0;tx=0;ty=0;lyr=plain tile/0/0/0 0:0,0 0,0 100,100",
                                    "url tile/0/0/1 100x100 0,100 100,200",
                                    "create l=0;tx=0;ty=1;lyr=plain tile/0/0/1 0:0,1 0,100 100,200",
                                }));
}

void LayerLevelTest::requestsTheEdgeForAViewWhollyOutside_data()
{
    QTest::addColumn<QRectF>("view");
    QTest::addColumn<QStringList>("made");

    QTest::newRow("to the left: the first column")
        << QRectF(-90.0, 32.0, 10.0, -32.0)
        << QStringList({"l=0;tx=0;ty=0;lyr=plain", "l=0;tx=0;ty=1;lyr=plain",
                        "l=0;tx=0;ty=2;lyr=plain", "l=0;tx=0;ty=3;lyr=plain"});
    QTest::newRow("above and to the right: the corner tile")
        << QRectF(100.0, 90.0, 10.0, -10.0) << QStringList({"l=0;tx=3;ty=0;lyr=plain"});
    QTest::newRow("below: the last row")
        << QRectF(8.0, -50.0, 16.0, -10.0)
        << QStringList(
               {"l=0;tx=1;ty=3;lyr=plain", "l=0;tx=2;ty=3;lyr=plain", "l=0;tx=3;ty=3;lyr=plain"});
}

void LayerLevelTest::requestsTheEdgeForAViewWhollyOutside()
{
    QFETCH(QRectF, view);
    const TileLines lines;
    PlainTiledLayer layer(32, 32, 1.0, -1.0, QPointF(0.0, 32.0));
    layer.tileSize = 8;
    layer.pyramid().init(&layer, 8, layer.bounds, 1U);

    layer.pyramid().first()->setView(view.left(), view.top(), view.right(), view.bottom());
    waitForRequests();

    QTEST(layer.made.sorted(), "made");
}

void LayerLevelTest::requestsNothingForAReversedView_data()
{
    QTest::addColumn<double>("cellSizeY");
    QTest::addColumn<QRectF>("view");

    QTest::newRow("right before left") << -1.0 << QRectF(30.0, 30.0, -28.0, -28.0);
    QTest::newRow("bottom above top") << -1.0 << QRectF(2.0, 2.0, 28.0, 28.0);
    QTest::newRow("a cell size without the sign of the view")
        << 1.0 << QRectF(2.0, 62.0, 28.0, -28.0);
}

void LayerLevelTest::requestsNothingForAReversedView()
{
    QFETCH(double, cellSizeY);
    QFETCH(QRectF, view);
    PlainTiledLayer layer(32, 32, 1.0, cellSizeY, QPointF(0.0, 32.0));
    layer.pyramid().init(&layer, 8, layer.bounds, 1U);

    layer.pyramid().first()->setView(view.left(), view.top(), view.right(), view.bottom());

    QCOMPARE(layer.calls.all(), QStringList());
}

void LayerLevelTest::asksForTheUrlOfATileInMemoryToo()
{
    const TileLines lines;
    SmallLayer layer;
    layer.pyramid().init(&layer, 8, layer.bounds, 1U);
    fill(*layer.pyramid().first(), 0, 0);

    layer.pyramid().first()->setView(1.0, 15.0, 2.0, 14.0);

    QCOMPARE(layer.calls.all(), QStringList({"url tile/0/0/0 8x8 0,16 8,8"}));
}

void LayerLevelTest::answersTheSameViewWithOneFetchPerTileWhileItIsUnderWay()
{
    const TileLines lines;
    Gate gate;
    SmallLayer layer;
    layer.gate = &gate;
    layer.pyramid().init(&layer, 8, layer.bounds, 1U);
    LayerLevel& level = *layer.pyramid().first();

    level.setView(1.0, 15.0, 2.0, 1.0);
    gate.waitForArrivals(2);
    level.setView(1.0, 15.0, 2.0, 1.0);
    gate.open();
    waitForRequests();
    level.setView(1.0, 15.0, 2.0, 1.0);
    waitForRequests();

    const QString url0 = QStringLiteral("url tile/0/0/0 8x8 0,16 8,8");
    const QString url1 = QStringLiteral("url tile/0/0/1 8x8 0,8 8,0");
    const QString create0 =
        QStringLiteral("create l=0;tx=0;ty=0;lyr=plain tile/0/0/0 0:0,0 0,16 8,8");
    const QString create1 =
        QStringLiteral("create l=0;tx=0;ty=1;lyr=plain tile/0/0/1 0:0,1 0,8 8,0");
    QCOMPARE(layer.calls.all(),
             QStringList({url0, create0, url1, create1, url0, create0, url1, create1, url0, url1}));
    QCOMPARE(layer.made.sorted(),
             QStringList({"l=0;tx=0;ty=0;lyr=plain", "l=0;tx=0;ty=1;lyr=plain"}));
    QCOMPARE(layer.requestsDeleted.load(), 2);
    QCOMPARE(lines.sorted(), QStringList({"Adding image with key : l=0;tx=0;ty=0;lyr=plain",
                                          "Adding image with key : l=0;tx=0;ty=1;lyr=plain"}));
}

void LayerLevelTest::requestsATileWhoseImageWasNullAgain()
{
    const TileLines lines;
    SmallLayer layer;
    layer.pyramid().init(&layer, 8, layer.bounds, 1U);
    LayerLevel& level = *layer.pyramid().first();
    addTile(level, level.getTileKey(0, 0), nullptr);

    level.setView(1.0, 15.0, 2.0, 14.0);
    waitForRequests();

    QCOMPARE(layer.made.all(), QStringList({"l=0;tx=0;ty=0;lyr=plain"}));
    QCOMPARE(level.getTile(0, 0), nullptr);
}

void LayerLevelTest::namesTheTilesOutOfViewAndKeepsThem_data()
{
    QTest::addColumn<QRectF>("view");
    QTest::addColumn<bool>("named");

    // the tile is the world rectangle from (10, 20) to (20, 10)
    QTest::newRow("the view is the tile") << QRectF(10.0, 20.0, 10.0, -10.0) << false;
    QTest::newRow("the view lies inside the tile") << QRectF(14.0, 16.0, 2.0, -2.0) << false;
    QTest::newRow("the view surrounds the tile") << QRectF(0.0, 30.0, 30.0, -30.0) << false;
    QTest::newRow("the view touches the left edge") << QRectF(0.0, 20.0, 10.0, -10.0) << false;
    QTest::newRow("the view touches the right edge") << QRectF(20.0, 20.0, 10.0, -10.0) << false;
    QTest::newRow("the view touches the top edge") << QRectF(10.0, 30.0, 10.0, -10.0) << false;
    QTest::newRow("the view touches the bottom edge") << QRectF(10.0, 10.0, 10.0, -10.0) << false;
    QTest::newRow("the view lies to the left") << QRectF(0.0, 20.0, 9.0, -10.0) << true;
    QTest::newRow("the view lies to the right") << QRectF(21.0, 20.0, 9.0, -10.0) << true;
    QTest::newRow("the view lies above") << QRectF(10.0, 31.0, 10.0, -10.0) << true;
    QTest::newRow("the view lies below") << QRectF(10.0, 9.0, 10.0, -10.0) << true;
}

void LayerLevelTest::namesTheTilesOutOfViewAndKeepsThem()
{
    QFETCH(QRectF, view);
    QFETCH(bool, named);
    TileLines lines;
    SmallLayer layer;
    LayerLevel level(&layer, 0, 8);
    int deleted = 0;
    auto* const tile = new CountedTile(&deleted, 10.0, 20.0, 20.0, 10.0);
    addTile(level, level.getTileKey(0, 0), tile);
    lines.clear();

    level.purgeTiles(view.left(), view.top(), view.right(), view.bottom());

    QCOMPARE(lines.all(), named
                              ? QStringList({"purgeTiles deleting image: l=0;tx=0;ty=0;lyr=plain"})
                              : QStringList());
    QCOMPARE(level.getTile(0, 0), tile);
    QCOMPARE(deleted, 0);
}

void LayerLevelTest::namesEveryTileOfASouthUpImage()
{
    TileLines lines;
    PlainTiledLayer layer(8, 8, 1.0, 1.0);
    LayerLevel level(&layer, 0, 8);
    addTile(level, level.getTileKey(0, 0), newTile(8, Qt::red, 0.0, 0.0, 8.0, 8.0));
    lines.clear();

    level.purgeTiles(0.0, 0.0, 8.0, 8.0);

    QCOMPARE(lines.all(), QStringList({"purgeTiles deleting image: l=0;tx=0;ty=0;lyr=plain"}));
}

void LayerLevelTest::namesATileWithoutAnImageOnlyWhenAllArePurged()
{
    TileLines lines;
    SmallLayer layer;
    LayerLevel level(&layer, 0, 8);
    addTile(level, level.getTileKey(0, 0), nullptr);
    lines.clear();

    level.purgeTiles(1000.0, 1000.0, 1001.0, 999.0);
    QCOMPARE(lines.all(), QStringList());
    level.purgeAll();
    QCOMPARE(lines.all(), QStringList({"purgeAll deleting image: l=0;tx=0;ty=0;lyr=plain"}));
}

void LayerLevelTest::namesAllTilesAndKeepsThem()
{
    TileLines lines;
    SmallLayer layer;
    LayerLevel level(&layer, 0, 8);
    GeoImage* const one = fill(level, 0, 0);
    GeoImage* const other = fill(level, 1, 1);
    lines.clear();

    level.purgeAll();

    QCOMPARE(lines.sorted(), QStringList({"purgeAll deleting image: l=0;tx=0;ty=0;lyr=plain",
                                          "purgeAll deleting image: l=0;tx=1;ty=1;lyr=plain"}));
    QCOMPARE(level.getTile(0, 0), one);
    QCOMPARE(level.getTile(1, 1), other);
}

void LayerLevelTest::paintsItsTilesWhereTheyLie()
{
    const TileLines lines;
    SmallLayer layer;
    LayerLevel level(&layer, 0, 8);
    QImage expected = canvas(16, 16);
    QPainter painter(&expected);
    for (const QPoint tile : {QPoint(0, 0), QPoint(1, 0), QPoint(0, 1), QPoint(1, 1)}) {
        const auto tx = static_cast<unsigned int>(tile.x());
        const auto ty = static_cast<unsigned int>(tile.y());
        fill(level, tx, ty);
        painter.fillRect(QRect(tile * 8, QSize(8, 8)), tileColour(0, tx, ty));
    }
    painter.end();

    QCOMPARE(painted(level, QSize(16, 16), QRectF(0.0, 16.0, 16.0, -16.0), QRect(0, 0, 16, 16)),
             expected);
}

void LayerLevelTest::leavesTheGroundWhereATileIsMissing()
{
    const TileLines lines;
    SmallLayer layer;
    LayerLevel level(&layer, 0, 8);
    fill(level, 1, 0);
    addTile(level, level.getTileKey(0, 1), nullptr);
    QImage expected = canvas(16, 16);
    QPainter painter(&expected);
    painter.fillRect(QRect(8, 0, 8, 8), tileColour(0, 1, 0));
    painter.end();

    QCOMPARE(painted(level, QSize(16, 16), QRectF(0.0, 16.0, 16.0, -16.0), QRect(0, 0, 16, 16)),
             expected);
}

void LayerLevelTest::paintsOnlyTheTilesInView()
{
    const TileLines lines;
    PlainTiledLayer layer(24, 8, 1.0, -1.0, QPointF(0.0, 8.0));
    LayerLevel level(&layer, 0, 8);
    fill(level, 0, 0);
    // This tile's own rectangle lies in the view; its column does not.
    addTile(level, level.getTileKey(2, 0), newTile(8, Qt::red, 0.0, 8.0, 8.0, 0.0));
    QImage expected = canvas(8, 8);
    expected.fill(tileColour(0, 0, 0));

    QCOMPARE(
        painted(level, QSize(8, 8), QRectF(0.0, 8.0, 7.5, -7.5), QRect(0, 0, 8, 8)).pixel(0, 0),
        expected.pixel(0, 0));
    QCOMPARE(painted(level, QSize(8, 8), QRectF(0.0, 8.0, 7.5, -7.5), QRect(0, 0, 8, 8)), expected);
}

void LayerLevelTest::paintsTilesScaled()
{
    const TileLines lines;
    SmallLayer layer;
    LayerLevel level(&layer, 0, 8);
    fill(level, 0, 0);
    fill(level, 1, 0);
    QImage expected = canvas(32, 16);
    QPainter painter(&expected);
    painter.fillRect(QRect(0, 0, 16, 16), tileColour(0, 0, 0));
    painter.fillRect(QRect(16, 0, 16, 16), tileColour(0, 1, 0));
    painter.end();

    QCOMPARE(painted(level, QSize(32, 16), QRectF(0.0, 16.0, 16.0, -8.0), QRect(0, 0, 32, 16)),
             expected);
}

void LayerLevelTest::paintsWithTheFarCornerAsSize()
{
    const TileLines lines;
    SmallLayer layer;
    LayerLevel level(&layer, 0, 8);
    GeoImage* const tile = fill(level, 0, 0);

    QImage farCornerAsSize = canvas(64, 64);
    QPainter oddPainter(&farCornerAsSize);
    tile->paint(oddPainter, 4, 6, 4 + 16, 6 + 16, 0.0, 16.0, 16.0, 0.0);
    oddPainter.end();
    QImage sizeAsSize = canvas(64, 64);
    QPainter plainPainter(&sizeAsSize);
    tile->paint(plainPainter, 4, 6, 16, 16, 0.0, 16.0, 16.0, 0.0);
    plainPainter.end();
    QVERIFY(farCornerAsSize != sizeAsSize);

    QCOMPARE(painted(level, QSize(64, 64), QRectF(0.0, 16.0, 16.0, -16.0), QRect(4, 6, 16, 16)),
             farCornerAsSize);
}

void LayerLevelTest::paintsNothingForAReversedView()
{
    const TileLines lines;
    SmallLayer layer;
    LayerLevel level(&layer, 0, 8);
    fill(level, 0, 0);
    fill(level, 1, 0);
    fill(level, 0, 1);
    fill(level, 1, 1);
    const QImage ground = canvas(16, 16);
    const QRect device(0, 0, 16, 16);

    QCOMPARE(painted(level, QSize(16, 16), QRectF(15.0, 16.0, -14.0, -16.0), device), ground);
    QCOMPARE(painted(level, QSize(16, 16), QRectF(0.0, 1.0, 16.0, 14.0), device), ground);
}

void LayerLevelTest::paintingRequestsNothing()
{
    SmallLayer layer;
    LayerLevel level(&layer, 0, 8);

    painted(level, QSize(16, 16), QRectF(0.0, 16.0, 16.0, -16.0), QRect(0, 0, 16, 16));

    QCOMPARE(layer.calls.all(), QStringList());
}

void LayerLevelTest::drawsNoOutlines()
{
    SmallLayer layer;
    LayerLevel level(&layer, 0, 8);

    QCOMPARE(painted(level, QSize(64, 64), QRectF(0.0, 16.0, 16.0, -16.0), QRect(0, 0, 64, 64)),
             canvas(64, 64));
}

void LayerLevelTest::everyOperationWaitsForAWriter_data()
{
    operations();
}

void LayerLevelTest::everyOperationWaitsForAWriter()
{
    const TileLines lines;
    SmallLayer layer;
    LayerLevel level(&layer, 0, 8);
    level.lockForWrite();
    bool waited = false;
    {
        const Operation operation(level, QTest::currentDataTag());
        waited = operation.hasBegun();
        letOthersRun();
        waited = waited && !operation.ended;
        level.unlock();
    }
    QVERIFY(waited);
    QVERIFY(level.tryLockForWrite()); // it was given back
    level.unlock();
}

void LayerLevelTest::onlyWhatReadsPassesAReader_data()
{
    operations();
}

void LayerLevelTest::onlyWhatReadsPassesAReader()
{
    QFETCH(const bool, writes);
    const TileLines lines;
    SmallLayer layer;
    LayerLevel level(&layer, 0, 8);
    level.lockForRead();
    const Operation operation(level, QTest::currentDataTag());
    const bool begun = operation.hasBegun();
    letOthersRun();
    const bool waited = writes ? !operation.ended : !operation.hasEnded();
    level.unlock();
    QVERIFY(begun);
    QCOMPARE(waited, writes);
}

// The lock is given back before the layer is called: it may do with the level what it likes.
void LayerLevelTest::theLockIsFreeWhileTheLayerIsAsked()
{
    class TryingLayer : public SmallLayer
    {
    public:
        QString getTileUrl(unsigned int, unsigned int, unsigned int, unsigned int, unsigned int,
                           double, double, double, double) override
        {
            tryLock("url");
            return QString();
        }
        ITileRequest* createTileRequest(const QString&, const QString&, unsigned int, unsigned int,
                                        unsigned int, double, double, double, double) override
        {
            tryLock("create");
            return nullptr;
        }
        QRectF getBounds() override
        {
            tryLock("bounds");
            return SmallLayer::getBounds();
        }
        LayerLevel* level = nullptr;
        QStringList tries;

    private:
        void tryLock(const QString& question)
        {
            if (level) {
                const bool isFree = level->tryLockForWrite();
                tries << question + (isFree ? " free" : " held");
                if (isFree) {
                    level->unlock();
                }
            }
        }
    };
    TryingLayer layer;
    LayerLevel level(&layer, 0, 8);
    layer.level = &level;

    level.setView(1.0, 15.0, 2.0, 14.0);
    level.purgeTiles(1.0, 15.0, 2.0, 14.0);
    painted(level, QSize(16, 16), QRectF(0.0, 16.0, 16.0, -16.0), QRect(0, 0, 16, 16));

    QCOMPARE(layer.tries.filter("url").size(), 1);
    QCOMPARE(layer.tries.filter("create").size(), 1);
    QVERIFY(layer.tries.filter("bounds").size() >= 3);
    QCOMPARE(layer.tries.filter("held"), QStringList());
}

QTEST_GUILESS_MAIN(LayerLevelTest)
#include "LayerLevelTest.moc"
