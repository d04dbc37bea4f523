#include <plugins/webtiles/WebTileLoader.h>

#include <plugins/common/TileFetch.h>
#include <plugins/common/TilePicture.h>
#include <plugins/common/WebClock.h>
#include <plugins/webtiles/WebMercator.h>
#include <plugins/webtiles/WebTileSource.h>

#include <corvane/map/GeoImage.h>

#include <cmath>
#include <utility>

namespace Corvane::Map {

WebTileLoader::WebTileLoader(QObject* tiledLayer, std::shared_ptr<WebTileSource> tileSource)
    : ServedTileLink(tiledLayer),
      source(std::move(tileSource))
{
}

WebTileLoader::~WebTileLoader() = default;

int WebTileLoader::zoomOf(unsigned int level) const
{
    return source->maxZoom - static_cast<int>(level);
}

SourceHealth& WebTileLoader::health() const
{
    return source->health;
}

bool WebTileLoader::isKnownEmpty(const TileId& tile) const
{
    return source->lacks({zoomOf(tile.level), tile.x, tile.y}) ||
           ServedTileLink::isKnownEmpty(tile);
}

TileOrder WebTileLoader::orderFor(const TileId& tile) const
{
    return source->orderFor({zoomOf(tile.level), tile.x, tile.y});
}

std::unique_ptr<GeoImage> WebTileLoader::placed(const TileId& tile, QImage pixels) const
{
    const double span = std::ldexp(2.0 * WebMercator::edge, -zoomOf(tile.level));
    const double left = -WebMercator::edge + tile.x * span;
    const double top = WebMercator::edge - tile.y * span;
    const QSizeF covered = shareOfTile(pixels.size(), source->tileSize) * span;
    auto image = std::make_unique<GeoImage>(0, 0, left, top, left + covered.width(),
                                            top - covered.height(), QImage::Format_RGB32, nullptr);
    static_cast<QImage&>(*image) = std::move(pixels);
    return image;
}

} // namespace Corvane::Map
