#pragma once

#include <plugins/common/LayerLifeline.h>
#include <plugins/common/TileExchange.h>
#include <plugins/raster/TileReader.h>

#include <atomic>
#include <memory>
#include <vector>

namespace Corvane {

class GeoImage;

namespace Map {

class GdalRasterLayer;
class RasterSource;

/// What the requests of a layer share: where they read, where they deliver, and how they reach the
/// layer while it is there. The layer is called by slot name: Qt then makes and frees the queued call
/// itself, on whichever thread. Outlives the layer as long as requests run. Any thread.
class RasterTileLoader
{
public:
    /// layer is not owned; its destructor calls close.
    RasterTileLoader(GdalRasterLayer* layer, std::shared_ptr<RasterSource> source, BandPlan plan);
    ~RasterTileLoader();
    RasterTileLoader(const RasterTileLoader&) = delete;
    RasterTileLoader& operator=(const RasterTileLoader&) = delete;

    TileExchange exchange;
    LayerLifeline lifeline;

    /// Whether the tiles of a row of this level are read together.
    bool readsRuns(unsigned int level) const;
    /// The tile's image, a marked one where it cannot be read; null when cancelled.
    std::unique_ptr<GeoImage> load(const TileId& tile);
    /// Reads the owed tiles of the row of first together, delivers the others and returns first.
    std::unique_ptr<GeoImage> loadRun(const TileId& first);
    /// Reads and delivers what else is owed in runs, until nothing is.
    void loadRuns();
    /// Asks the layer to set its view again. The caller is inside the lifeline.
    void callForView();
    /// The layer has heard the call.
    void viewCallHeard() { viewCalled = false; }
    /// Tells the layer that tiles were delivered. The caller is inside the lifeline.
    void callForRepaint();
    void repaintCallHeard() { repaintCalled = false; }

    /// Nothing is delivered any more, and the layer is not touched once this returns.
    void close();

private:
    std::unique_ptr<GeoImage> geoImage(const TileId& tile, QImage pixels) const;
    std::vector<DeliveredTile> readRun(const TileId& first);
    void deliver(DeliveredTile tile);
    bool isStopped() const;

    GdalRasterLayer* layer; // not owned; touched inside the lifeline only
    TileReader reader;
    std::uint32_t runLevels;
    std::atomic<bool> viewCalled{false};
    std::atomic<bool> repaintCalled{false};
};

} // namespace Map
} // namespace Corvane
