#pragma once

#include <plugins/common/TileId.h>

#include <corvane/tiles/ITileRequest.h>

#include <memory>

namespace Corvane {

class GeoImage;

namespace Map {

class GdalRasterLayer;
class RasterTileLoader;

/// One tile to read. It looks whether the tile is still wanted before it reads, and whether the
/// layer is still there before it calls it: the layer may go at any time.
class RasterTileRequest : public ITileRequest
{
public:
    /// The loader is held weakly: requests that the registry refuses stay allocated for ever, and
    /// must not keep a source open.
    RasterTileRequest(GdalRasterLayer* layer, std::weak_ptr<RasterTileLoader> loader,
                      const QString& key, const TileId& tile, unsigned int tileSize, double tlx,
                      double tly, double brx, double bry);

    void run() override;
    bool processTile() override;
    /// The finished tile, for the layer to take; null when it was taken or none was made.
    std::unique_ptr<GeoImage> takeImage();
    /// Hands the tile on to where the layer finds it, and tells the layer. While it runs only.
    void deliver(std::unique_ptr<GeoImage> image);

private:
    std::unique_ptr<GeoImage> makeTile();

    TileId tile;
    std::weak_ptr<RasterTileLoader> link;
    std::shared_ptr<RasterTileLoader> loader; // only while it runs
    bool insideLifeline = false;
    bool handedOver = false; // another request brings the tile
    bool readsRuns = false;  // this one brings those of others
};

} // namespace Map
} // namespace Corvane
