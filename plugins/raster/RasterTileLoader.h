#pragma once

#include <plugins/common/TileAttempts.h>
#include <plugins/common/TileLink.h>
#include <plugins/raster/TileReader.h>

#include <memory>
#include <vector>

namespace Corvane {

class GeoImage;

namespace Map {

class GdalRasterLayer;
class RasterSource;

/// What the requests of a raster layer share: where they read, and what they read together.
/// Any thread.
class RasterTileLoader : public TileLink
{
public:
    /// layer is not owned; its destructor calls close.
    RasterTileLoader(GdalRasterLayer* layer, std::shared_ptr<RasterSource> source, BandPlan plan);
    ~RasterTileLoader();
    RasterTileLoader(const RasterTileLoader&) = delete;
    RasterTileLoader& operator=(const RasterTileLoader&) = delete;

    /// What could not be had from a server, to be asked for again.
    TileAttempts attempts;

    /// Whether the tiles of a row of this level are read together.
    bool readsRuns(unsigned int level) const;
    /// The tile's image, a marked one where it cannot be read; null when cancelled, or where a server
    /// does not give it for now.
    std::unique_ptr<GeoImage> load(const TileId& tile);
    /// Reads the owed tiles of the row of first together, delivers the others and returns first.
    std::unique_ptr<GeoImage> loadRun(const TileId& first);
    /// Reads and delivers what else is owed in runs, until nothing is.
    void loadRuns();

private:
    std::unique_ptr<GeoImage> geoImage(const TileId& tile, QImage pixels) const;
    void tellOfPutOff();
    bool isLeftAlone(const TileId& tile);
    void noteAnswer(const TileId& tile, qint64 begin, bool came, const QString& failure);
    std::vector<DeliveredTile> readRun(const TileId& first);
    void deliver(DeliveredTile tile);
    bool isStopped() const;

    TileReader reader;
    std::uint32_t runLevels;
};

} // namespace Map
} // namespace Corvane
