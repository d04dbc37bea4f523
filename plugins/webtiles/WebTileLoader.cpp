#include <plugins/webtiles/WebTileLoader.h>

#include <plugins/common/PoolActivity.h>
#include <plugins/webtiles/TileFetch.h>
#include <plugins/webtiles/WebMercator.h>
#include <plugins/webtiles/WebTileSource.h>

#include <corvane/map/GeoImage.h>

#include <cmath>
#include <utility>

namespace Corvane::Map {

WebTileLoader::WebTileLoader(QObject* tiledLayer, std::shared_ptr<WebTileSource> source)
    : TileLink(tiledLayer),
      theSource(std::move(source))
{
}

WebTileLoader::~WebTileLoader() = default;

int WebTileLoader::zoomOf(unsigned int level) const
{
    return theSource->maxZoom - static_cast<int>(level);
}

// On a pool thread.
std::unique_ptr<GeoImage> WebTileLoader::load(const TileId& tile)
{
    const WebTile webTile{zoomOf(tile.level), tile.x, tile.y};
    const bool paused = theSource->health.isPaused();
    const auto isUnwanted = [this, &tile] {
        return exchange.isCancelled() || PoolActivity::isEnding() || !exchange.isOwed(tile);
    };
    TileAnswer answer =
        paused ? findTile(*theSource, webTile) : fetchTile(*theSource, webTile, isUnwanted);
    if (paused && answer.kind == TileAnswer::Kind::Failed) {
        attempts.heldBack();
        return putOff(tile);
    }
    switch (answer.kind) {
    case TileAnswer::Kind::Picture:
        attempts.succeeded(tile);
        if (answer.fromServer) { // what lay on disk says nothing of the server
            theSource->health.succeeded();
        }
        return geoImage(tile, std::move(answer.picture));
    case TileAnswer::Kind::Empty:
        attempts.markEmpty(tile);
        theSource->health.succeeded();
        return emptyTile(tile);
    case TileAnswer::Kind::Failed:
        attempts.failed(tile, answer.retryAt);
        theSource->health.failed(tile, answer.failure, answer.retryAt);
        return putOff(tile);
    case TileAnswer::Kind::Dropped:
        break;
    }
    return nullptr;
}

// It is left alone before it is given up: a view that asks in between does not get it at once.
std::unique_ptr<GeoImage> WebTileLoader::putOff(const TileId& tile)
{
    exchange.giveUp(tile);
    return nullptr;
}

std::unique_ptr<GeoImage> WebTileLoader::emptyTile(const TileId& tile) const
{
    QImage pixel(1, 1, QImage::Format_ARGB32_Premultiplied);
    pixel.fill(Qt::transparent);
    return geoImage(tile, std::move(pixel));
}

std::unique_ptr<GeoImage> WebTileLoader::geoImage(const TileId& tile, QImage pixels) const
{
    const double span = std::ldexp(2.0 * WebMercator::edge, -zoomOf(tile.level));
    const double left = -WebMercator::edge + tile.x * span;
    const double top = WebMercator::edge - tile.y * span;
    auto image = std::make_unique<GeoImage>(0, 0, left, top, left + span, top - span,
                                            QImage::Format_RGB32, nullptr);
    static_cast<QImage&>(*image) = std::move(pixels);
    return image;
}

} // namespace Corvane::Map
