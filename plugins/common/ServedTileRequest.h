#pragma once

#include <plugins/common/LinkedTileRequest.h>

namespace Corvane::Map {

/// One tile to fetch, by a transfer that ends at once when nobody wants the tile any more.
class ServedTileRequest : public LinkedTileRequest
{
public:
    /// The link is a ServedTileLink.
    using LinkedTileRequest::LinkedTileRequest;

protected:
    std::unique_ptr<GeoImage> makeTile(TileLink& link) override;
};

} // namespace Corvane::Map
