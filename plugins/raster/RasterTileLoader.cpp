#include <plugins/raster/RasterTileLoader.h>

#include <plugins/common/MarkedTile.h>
#include <plugins/common/PoolActivity.h>
#include <plugins/common/WebClock.h>
#include <plugins/raster/GdalRasterLayer.h>
#include <plugins/raster/PixelTransparency.h>
#include <plugins/raster/RasterSource.h>

#include <corvane/map/GeoImage.h>

#include <algorithm>
#include <utility>

namespace Corvane::Map {

namespace {

constexpr unsigned int longestRun = 64; // tiles; bounds the memory of one read

} // namespace

RasterTileLoader::RasterTileLoader(GdalRasterLayer* rasterLayer,
                                   std::shared_ptr<RasterSource> source, BandPlan plan)
    : TileLink(rasterLayer),
      reader(std::move(source), std::move(plan), &exchange.cancelledFlag()),
      runLevels(reader.source().facts().stripLevels())
{
}

RasterTileLoader::~RasterTileLoader() = default;

bool RasterTileLoader::readsRuns(unsigned int level) const
{
    return (runLevels >> level & 1U) != 0U;
}

bool RasterTileLoader::isStopped() const
{
    return exchange.isCancelled() || PoolActivity::isEnding();
}

// The last tiles of a row or column end where the image ends, so they hold no empty margin.
std::unique_ptr<GeoImage> RasterTileLoader::geoImage(const TileId& tile, QImage pixels) const
{
    const RasterFacts& facts = reader.source().facts();
    const unsigned int scale = 1U << tile.level;
    const double tileWidth = facts.cellX * facts.tileSize * scale;
    const double tileHeight = facts.cellY * facts.tileSize * scale;
    const double left = facts.bounds.left() + tile.x * tileWidth;
    const double top = facts.bounds.top() + tile.y * tileHeight;
    auto image = std::make_unique<GeoImage>(
        0, 0, left, top, std::min(left + tileWidth, facts.bounds.right()),
        std::max(top + tileHeight, facts.bounds.bottom()), QImage::Format_RGB32, nullptr);
    static_cast<QImage&>(*image) = std::move(pixels);
    return image;
}

// On a pool thread. A server that fails is asked again when it has had its rest.
bool RasterTileLoader::isLeftAlone(const TileId& tile)
{
    if (!reader.source().isRemote() || !reader.source().health.isPaused()) {
        return false;
    }
    attempts.heldBack();
    exchange.giveUp(tile);
    tellOfPutOff();
    return true;
}

// On a pool thread. A tile that fails is put off before it is given up: a view that asks in between
// does not get it at once.
void RasterTileLoader::noteAnswer(const TileId& tile, qint64 begin, bool came,
                                  const QString& failure)
{
    if (!reader.source().isRemote()) {
        return;
    }
    if (came) {
        attempts.succeeded(tile);
        reader.source().health.succeeded(WebClock::now() - begin);
    } else {
        attempts.failed(tile, 0);
        reader.source().health.failed(tile, failure, 0);
        exchange.giveUp(tile);
        tellOfPutOff();
    }
}

// On a pool thread.
void RasterTileLoader::tellOfPutOff()
{
    if (lifeline.enter()) {
        callForRetry();
        lifeline.leave();
    }
}

// On a pool thread.
std::unique_ptr<GeoImage> RasterTileLoader::load(const TileId& tile)
{
    if (isLeftAlone(tile)) {
        return nullptr;
    }
    QString error;
    const qint64 begin = WebClock::now();
    QImage pixels = reader.read(tile.level, reader.tilePixels(tile.level, tile.x, tile.y), &error);
    if (pixels.isNull() && isStopped()) {
        return nullptr;
    }
    noteAnswer(tile, begin, !pixels.isNull(), error);
    if (pixels.isNull()) {
        reader.source().reportFailure(error);
        if (reader.source().isRemote()) {
            return nullptr;
        }
        pixels = markedTile(static_cast<int>(reader.source().facts().tileSize));
    }
    return geoImage(tile, std::move(pixels));
}

// On a pool thread.
std::vector<DeliveredTile> RasterTileLoader::readRun(const TileId& first)
{
    std::vector<TileId> row = exchange.owedInRow(first);
    const auto isFar = [&first](const TileId& tile) {
        return std::max(tile.x, first.x) - std::min(tile.x, first.x) >= longestRun / 2;
    };
    row.erase(std::remove_if(row.begin(), row.end(), isFar), row.end());
    if (std::find(row.begin(), row.end(), first) == row.end()) {
        row.push_back(first); // the view has moved on; the caller wants it all the same
        std::sort(row.begin(), row.end(),
                  [](const TileId& a, const TileId& b) { return a.x < b.x; });
    }
    const QRect all = reader.tilePixels(first.level, row.front().x, first.y) |
                      reader.tilePixels(first.level, row.back().x, first.y);
    std::vector<DeliveredTile> tiles;
    if (isLeftAlone(first)) {
        for (const TileId& tile : row) {
            exchange.giveUp(tile);
        }
        return tiles;
    }
    QString error;
    const qint64 begin = WebClock::now();
    const QImage pixels = reader.read(first.level, all, &error);
    if (pixels.isNull() && isStopped()) {
        return tiles;
    }
    if (pixels.isNull()) {
        reader.source().reportFailure(error);
    }
    for (const TileId& tile : row) {
        noteAnswer(tile, begin, !pixels.isNull(), error);
        if (pixels.isNull() && reader.source().isRemote()) {
            continue;
        }
        const QRect part = reader.tilePixels(tile.level, tile.x, tile.y);
        QImage copy = pixels.isNull()
                          ? markedTile(static_cast<int>(reader.source().facts().tileSize))
                          : opaqueIfPossible(pixels.copy(part.translated(-all.topLeft())));
        tiles.push_back({tile, geoImage(tile, std::move(copy))});
    }
    return tiles;
}

// On a pool thread.
std::unique_ptr<GeoImage> RasterTileLoader::loadRun(const TileId& first)
{
    std::unique_ptr<GeoImage> result;
    for (DeliveredTile& tile : readRun(first)) {
        if (tile.tile == first) {
            result = std::move(tile.image);
        } else {
            deliver(std::move(tile));
        }
    }
    return result;
}

// On a pool thread.
void RasterTileLoader::loadRuns()
{
    TileId next;
    while (!isStopped() && exchange.nextRun(runLevels, &next)) {
        for (DeliveredTile& tile : readRun(next)) {
            deliver(std::move(tile));
        }
    }
}

// On a pool thread.
void RasterTileLoader::deliver(DeliveredTile tile)
{
    exchange.deliver(tile.tile, std::move(tile.image));
    if (lifeline.enter()) {
        callForRepaint();
        lifeline.leave();
    }
}

} // namespace Corvane::Map
