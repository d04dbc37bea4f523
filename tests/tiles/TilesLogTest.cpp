#include <tests/tiles/PlainTiledLayer.h>
#include <tests/tiles/TileLines.h>

#include <QLoggingCategory>
#include <QtTest>

#include <atomic>
#include <cstdlib>
#include <new>

using namespace Corvane;
using namespace Corvane::Map;

namespace {

std::atomic<int> allocations{0};

} // namespace

// Counts what the program and the library ask of the heap by new.
void* operator new(std::size_t size)
{
    ++allocations;
    if (void* const memory = std::malloc(size)) {
        return memory;
    }
    std::abort();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

namespace {

/// What a change of view takes from the heap by new, beside the layer's own calls.
class QuietLayer : public PlainTiledLayer
{
public:
    QuietLayer() : PlainTiledLayer(64, 64, 1.0, -1.0, QPointF(0.0, 64.0))
    {
        tileSize = 8;
        levels.init(this, 8, bounds, worldPerPixelX, worldPerPixelY);
    }

    QString getTileUrl(unsigned int, unsigned int, unsigned int, unsigned int, unsigned int, double,
                       double, double, double) override
    {
        return QString();
    }
};

int allocationsOfAView(PlainTiledLayer& layer)
{
    const int before = allocations;
    layer.pyramid().setView(64, 64, 0.0, 64.0, 63.5, 0.5);
    return allocations - before;
}

} // namespace

class TilesLogTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void isOnUnlessARuleSaysOtherwise();
    void offItWritesNoLine();
    void offItWalksNoTileForTheLines();
};

void TilesLogTest::init()
{
    QLoggingCategory::setFilterRules(QString());
}

void TilesLogTest::cleanup()
{
    QLoggingCategory::setFilterRules(QString());
}

void TilesLogTest::isOnUnlessARuleSaysOtherwise()
{
    TileLines lines;
    QuietLayer layer;
    QString key = QStringLiteral("a key");
    layer.pyramid().first()->addTile(key, nullptr);
    QCOMPARE(lines.all(), QStringList({"Adding image with key : a key"}));
}

void TilesLogTest::offItWritesNoLine()
{
    QLoggingCategory::setFilterRules(QStringLiteral("corvane.tiles=false"));
    TileLines lines;
    QuietLayer layer;
    LayerLevel& level = *layer.pyramid().first();
    QString key = level.getTileKey(0, 0);
    int deleted = 0;

    level.addTile(key, newTile(8, Qt::red, 0.0, 64.0, 8.0, 56.0));
    level.addTile(key, new CountedTile(&deleted));
    level.purgeTiles(1000.0, 1000.0, 1001.0, 999.0);
    level.purgeAll();

    QCOMPARE(deleted, 1);
    QVERIFY(level.getTile(0, 0));
    QCOMPARE(lines.all(), QStringList());
}

// The walk over the tiles works on a copy of the list of them, the one thing on the road of a view
// that takes memory by new.
void TilesLogTest::offItWalksNoTileForTheLines()
{
    const TileLines lines;
    QuietLayer layer;
    for (LayerLevel* const level : qAsConst(layer.pyramid())) {
        for (unsigned int tx = 0; tx < 8; ++tx) {
            for (unsigned int ty = 0; ty < 8; ++ty) {
                QString key = level->getTileKey(tx, ty);
                level->addTile(key, newTile(8, Qt::red, 0.0, 64.0, 8.0, 56.0));
            }
        }
    }

    QVERIFY(allocationsOfAView(layer) > 0);
    QLoggingCategory::setFilterRules(QStringLiteral("corvane.tiles=false"));
    QCOMPARE(allocationsOfAView(layer), 0);
}

QTEST_GUILESS_MAIN(TilesLogTest)
#include "TilesLogTest.moc"
