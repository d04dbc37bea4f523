#include <plugins/webtiles/WebTileRequest.h>

#include <plugins/webtiles/WebTileLoader.h>

#include <corvane/map/GeoImage.h>

namespace Corvane::Map {

// On a pool thread.
std::unique_ptr<GeoImage> WebTileRequest::makeTile(TileLink& link)
{
    return static_cast<WebTileLoader&>(link).load(tile);
}

} // namespace Corvane::Map
