#include <plugins/common/ServedTileRequest.h>

#include <plugins/common/ServedTileLink.h>

#include <corvane/map/GeoImage.h>

namespace Corvane::Map {

// On a pool thread.
std::unique_ptr<GeoImage> ServedTileRequest::makeTile(TileLink& link)
{
    return static_cast<ServedTileLink&>(link).load(tile);
}

} // namespace Corvane::Map
