#include <tests/tiles/PaintedLevels.h>
#include <tests/tiles/PlainTiledLayer.h>

#include <QLoggingCategory>
#include <QtTest>

#include <atomic>
#include <thread>
#include <vector>

using namespace Corvane;
using namespace Corvane::Map;

namespace {

constexpr int poolThreads = 8;

} // namespace

/// Views and repaints on the driving thread while the pool delivers. Made for ThreadSanitizer.
class TileTrafficTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void aLevelTakesTilesFromEightThreadsWhileItIsPaintedAndViewed();
    void aPyramidFillsWhileTheViewMoves();
    void viewsAreCancelledWhileTheyFill();
};

void TileTrafficTest::initTestCase()
{
    QLoggingCategory::setFilterRules(QStringLiteral("corvane.tiles=false"));
}

void TileTrafficTest::aLevelTakesTilesFromEightThreadsWhileItIsPaintedAndViewed()
{
    PlainTiledLayer layer(128, 128, 1.0, -1.0, QPointF(0.0, 128.0));
    layer.tileSize = 8;
    LayerLevels& levels = layer.pyramid();
    levels.init(&layer, 8, layer.bounds, 1U);
    LayerLevel& level = *levels.first();
    Gate start;
    std::atomic<int> running{poolThreads};
    QThreadPool* const pool = QThreadPool::globalInstance();
    for (int thread = 0; thread < poolThreads; ++thread) {
        pool->start([&] {
            start.pass();
            for (unsigned int tx = 0; tx < 16; ++tx) {
                for (unsigned int ty = 0; ty < 16; ++ty) {
                    double tlx = 0.0;
                    double tly = 0.0;
                    double brx = 0.0;
                    double bry = 0.0;
                    level.getTileCoords(tx, ty, &tlx, &tly, &brx, &bry);
                    QString key = level.getTileKey(tx, ty);
                    level.addTile(key, newTile(8, tileColour(0, tx, ty), tlx, tly, brx, bry));
                }
            }
            --running;
        });
    }
    start.waitForArrivals(poolThreads);
    start.open();
    while (running > 0) {
        painted(levels, 128, QRectF(0.0, 128.0, 128.0, -128.0));
        levels.setView(128, 128, 0.0, 128.0, 127.5, 0.5);
    }
    waitForRequests();

    QImage expected(128, 128, QImage::Format_ARGB32);
    for (int x = 0; x < 128; ++x) {
        for (int y = 0; y < 128; ++y) {
            expected.setPixelColor(
                x, y, tileColour(0, static_cast<unsigned>(x / 8), static_cast<unsigned>(y / 8)));
        }
    }
    QCOMPARE(painted(levels, 128, QRectF(0.0, 128.0, 128.0, -128.0)), expected);
}

void TileTrafficTest::aPyramidFillsWhileTheViewMoves()
{
    PlainTiledLayer layer(1024, 1024, 1.0, -1.0, QPointF(0.0, 1024.0));
    layer.tileSize = 16;
    LayerLevels& levels = layer.pyramid();
    levels.init(&layer, 16, layer.bounds, 1.0, -1.0);
    for (int step = 0; step < 60; ++step) {
        const double size = 64.0 * (1 + step % 12);
        const double left = step * 4.0;
        levels.setView(64, 64, left, 1024.0 - left, left + size, 1024.0 - left - size);
        painted(levels, 64, QRectF(left, 1024.0 - left, size, -size));
    }
    waitForRequests();

    const QStringList made = layer.made.all();
    QCOMPARE(layer.results.all().size(), made.size());
    QCOMPARE(layer.requestsDeleted.load(), static_cast<int>(made.size()));
    for (const QString& call : layer.calls.all().filter(QStringLiteral("url "))) {
        const QStringList tile = call.section(' ', 1, 1).split('/');
        QVERIFY(levels.at(tile.at(1).toInt())->getTile(tile.at(2).toInt(), tile.at(3).toInt()));
    }
}

void TileTrafficTest::viewsAreCancelledWhileTheyFill()
{
    PlainTiledLayer layer(1024, 1024, 1.0, -1.0, QPointF(0.0, 1024.0));
    layer.tileSize = 16;
    LayerLevels& levels = layer.pyramid();
    levels.init(&layer, 16, layer.bounds, 1U);
    std::atomic<bool> done{false};
    std::thread canceller([&done] {
        while (!done) {
            TileRequestRegistry::instance().cancelAll();
            std::this_thread::yield();
        }
    });
    for (int step = 0; step < 30; ++step) {
        levels.setView(128, 128, 0.0, 1024.0, 127.5, 896.5);
    }
    done = true;
    canceller.join();
    waitForRequests();

    levels.setView(128, 128, 0.0, 1024.0, 127.5, 896.5);
    waitForRequests();
    for (int tx = 0; tx < 8; ++tx) {
        for (int ty = 0; ty < 8; ++ty) {
            QVERIFY(levels.first()->getTile(tx, ty));
        }
    }
}

QTEST_GUILESS_MAIN(TileTrafficTest)
#include "TileTrafficTest.moc"
