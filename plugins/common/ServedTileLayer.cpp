#include <plugins/common/ServedTileLayer.h>

#include <plugins/common/ServedTileLink.h>
#include <plugins/common/ServedTileRequest.h>
#include <plugins/common/SourceHealth.h>
#include <plugins/common/SourceReports.h>
#include <plugins/common/TileCache.h>

#include <corvane/map/GeoImage.h>
#include <corvane/tiles/LayerLevel.h>
#include <corvane/tiles/TileRequestRegistry.h>

#include <utility>

namespace Corvane::Map {

namespace {

constexpr int waitLimit = 30 * 1000; // milliseconds, for what has to come before we go on
constexpr std::size_t fewTiles = 2;
constexpr std::size_t manyTiles = 100;

} // namespace

ServedTileLayer::ServedTileLayer(IRendererClient* client, const char* plugin)
    : TiledRasterLayer(client),
      retries(&view, [this] { retryDue(); })
{
    TileCache::instance().setUp(QString::fromLatin1(plugin));
    setSourceWaitLimit(waitLimit);
    view.whileWaiting = [this] { return retries.lookWhileWaiting(); };
}

ServedTileLayer::~ServedTileLayer() = default;

void ServedTileLayer::startServed(std::shared_ptr<ServedTileLink> newLink, const char* idPrefix,
                                  unsigned int tileSize, bool coarsestIsCheap)
{
    servedTileSize = tileSize;
    startTiles(newLink, idPrefix, tileSize, coarsestIsCheap);
    retries.follow(&newLink->attempts, &newLink->health());
    served = std::move(newLink); // now that no pool thread is inside that looks at the old one
}

void ServedTileLayer::stopServed()
{
    retries.stop();
    stopTiles();
    served.reset();
}

// On a pool thread, inside the lifeline. What stands in for a tile is waited for as well.
void ServedTileLayer::tileReady(ITileRequest* request)
{
    TiledRasterLayer::tileReady(request);
    if (served->attempts.isWaiting()) {
        QMetaObject::invokeMethod(this, "startRetrying", Qt::QueuedConnection);
    }
}

void ServedTileLayer::forgetSource()
{
    TileCache::instance().distrust();
}

// On a pool thread, inside the lifeline: the link stays until the lifeline is closed.
void ServedTileLayer::tileFailed(ITileRequest*)
{
    if (served->attempts.isWaiting()) {
        QMetaObject::invokeMethod(this, "startRetrying", Qt::QueuedConnection);
    }
    if (served->takeChange()) {
        QMetaObject::invokeMethod(this, "followChange", Qt::QueuedConnection);
    }
}

void ServedTileLayer::followChange() {}

void ServedTileLayer::startRetrying()
{
    retries.start();
}

void ServedTileLayer::retryDue()
{
    if (retries.look(isVisible())) {
        renewStale();
    }
}

// They stay on the screen until what comes takes their place. A server that fails is tried with a few.
void ServedTileLayer::renewStale()
{
    const bool fails = served->health().report().state == SourceHealth::State::Failing;
    const auto isWanted = [this](const TileId& tile) { return view.wants(tile); };
    for (const TileId& tile : served->attempts.takeDueStale(fails ? fewTiles : manyTiles, isWanted))
    {
        LayerLevel* const level = levels.at(static_cast<int>(tile.level));
        double tlx = 0.0;
        double tly = 0.0;
        double brx = 0.0;
        double bry = 0.0;
        level->getTileCoords(tile.x, tile.y, &tlx, &tly, &brx, &bry);
        TileRequestRegistry::instance().queue(createTileRequest(level->getTileKey(tile.x, tile.y),
                                                                QString(), tile.level, tile.x,
                                                                tile.y, tlx, tly, brx, bry));
    }
}

SourceReport ServedTileLayer::servedReport(const QString& dataSource) const
{
    return reportOpen(dataSource, served->health().report(), served->attempts.showsStale());
}

void ServedTileLayer::retryServed()
{
    served->health().forgive();
    served->attempts.makeDue();
    retryDue();
}

ITileRequest* ServedTileLayer::createTileRequest(const QString& key, const QString&,
                                                 unsigned int level, unsigned int tx,
                                                 unsigned int ty, double tlx, double tly,
                                                 double brx, double bry)
{
    const TileId tile{level, tx, ty};
    if (served->isKnownEmpty(tile)) {
        served->exchange.deliver(tile, served->emptyTile(tile));
        return nullptr;
    }
    if (!served->attempts.mayAsk(tile)) {
        return nullptr;
    }
    served->exchange.ask(tile);
    return new ServedTileRequest(this, served, key, tile, servedTileSize, tlx, tly, brx, bry);
}

} // namespace Corvane::Map
