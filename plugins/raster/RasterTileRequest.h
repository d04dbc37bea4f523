#pragma once

#include <plugins/common/LinkedTileRequest.h>

namespace Corvane::Map {

class RasterTileLoader;

/// One tile to read, alone or with the rest of its row.
class RasterTileRequest : public LinkedTileRequest
{
public:
    /// The link is a RasterTileLoader.
    using LinkedTileRequest::LinkedTileRequest;

protected:
    std::unique_ptr<GeoImage> makeTile(TileLink& link) override;
    void finish(TileLink& link) override;

private:
    bool readsRuns = false; // those of others as well
};

} // namespace Corvane::Map
