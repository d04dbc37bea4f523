#include <plugins/raster/RasterTileRequest.h>

#include <plugins/raster/GdalRasterLayer.h>
#include <plugins/raster/GdalSupport.h>
#include <plugins/raster/RasterTileLoader.h>

#include <corvane/map/GeoImage.h>
#include <corvane/tiles/TileRequestRegistry.h>

#include <utility>

namespace Corvane::Map {

RasterTileRequest::RasterTileRequest(GdalRasterLayer* rasterLayer,
                                     std::weak_ptr<RasterTileLoader> tileLoader,
                                     const QString& tileKey, const TileId& id,
                                     unsigned int tileSize, double worldLeft, double worldTop,
                                     double worldRight, double worldBottom)
    : ITileRequest(rasterLayer, tileKey, id.level, id.x, id.y, tileSize, tileSize, worldLeft,
                   worldTop, worldRight, worldBottom),
      tile(id),
      link(std::move(tileLoader))
{
}

// On a pool thread. A request that found its tile unwanted and brought nothing may have stood in
// the way of a new one for the same tile until its key left the registry: that is told here.
void RasterTileRequest::run()
{
    TileRequestRegistry::instance().synchronize(); // with the thread that made the request
    const GdalActivity activity;
    loader = link.lock();
    if (!loader) {
        cancel();
    }
    ITileRequest::run();
    const std::shared_ptr<RasterTileLoader> ownLoader = std::move(loader);
    if (insideLifeline) {
        if (!handedOver && ownLoader->exchange.wasAskedMeanwhile(tile)) {
            ownLoader->callForView();
        }
        ownLoader->lifeline.leave();
    }
    if (readsRuns) {
        ownLoader->loadRuns();
    }
}

// On a pool thread. The layer is entered for the call that follows, never while reading.
bool RasterTileRequest::processTile()
{
    std::unique_ptr<GeoImage> made = makeTile();
    insideLifeline = loader->lifeline.enter();
    if (!insideLifeline) {
        cancel();
        return false;
    }
    if (!made) {
        return false;
    }
    brx = made->brx;
    bry = made->bry;
    image = made.release();
    return true;
}

std::unique_ptr<GeoImage> RasterTileRequest::makeTile()
{
    if (!loader->exchange.isOwed(tile)) {
        return nullptr;
    }
    if (!loader->readsRuns(tile.level)) {
        return loader->load(tile);
    }
    readsRuns = loader->exchange.startReadingRuns();
    handedOver = !readsRuns;
    return readsRuns ? loader->loadRun(tile) : nullptr;
}

std::unique_ptr<GeoImage> RasterTileRequest::takeImage()
{
    return std::unique_ptr<GeoImage>(std::exchange(image, nullptr));
}

void RasterTileRequest::deliver(std::unique_ptr<GeoImage> made)
{
    loader->exchange.deliver(tile, std::move(made));
    loader->callForRepaint();
}

} // namespace Corvane::Map
