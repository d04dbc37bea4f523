#pragma once

#include <plugins/common/TileLink.h>
#include <plugins/webtiles/TileAttempts.h>

#include <QImage>

#include <memory>

namespace Corvane {

class GeoImage;

namespace Map {

struct WebTileSource;

/// What the requests of a web tile layer share: where they ask, and what is left alone for now.
/// Any thread.
class WebTileLoader : public TileLink
{
public:
    WebTileLoader(QObject* layer, std::shared_ptr<WebTileSource> source);
    ~WebTileLoader();

    TileAttempts attempts;

    /// The zoom of a level of the pyramid.
    int zoomOf(unsigned int level) const;
    /// The tile's image; null where it is missing for now, and will be asked for again, or where
    /// nobody wants it any more. On a pool thread.
    std::unique_ptr<GeoImage> load(const TileId& tile);
    /// A transparent tile.
    std::unique_ptr<GeoImage> emptyTile(const TileId& tile) const;

    const WebTileSource& source() const { return *theSource; }

private:
    std::unique_ptr<GeoImage> geoImage(const TileId& tile, QImage pixels) const;
    std::unique_ptr<GeoImage> putOff(const TileId& tile);

    std::shared_ptr<WebTileSource> theSource;
};

} // namespace Map
} // namespace Corvane
