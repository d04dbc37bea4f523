#include <plugins/raster/RasterTileRequest.h>

#include <plugins/raster/RasterTileLoader.h>

#include <corvane/map/GeoImage.h>

namespace Corvane::Map {

// On a pool thread.
std::unique_ptr<GeoImage> RasterTileRequest::makeTile(TileLink& link)
{
    auto& loader = static_cast<RasterTileLoader&>(link);
    if (!loader.readsRuns(tile.level)) {
        return loader.load(tile);
    }
    readsRuns = loader.exchange.startReadingRuns();
    if (!readsRuns) {
        handOver();
        return nullptr;
    }
    return loader.loadRun(tile);
}

// On a pool thread.
void RasterTileRequest::finish(TileLink& link)
{
    if (readsRuns) {
        static_cast<RasterTileLoader&>(link).loadRuns();
    }
}

} // namespace Corvane::Map
