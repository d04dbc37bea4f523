#pragma once

#include <plugins/common/TileId.h>

#include <corvane/tiles/ITileRequest.h>

#include <memory>

namespace Corvane {

class GeoImage;

namespace Map {

class TileLink;

/// One tile to bring. It looks whether the tile is still wanted before it is made, and whether the
/// layer is still there before it calls it: the layer may go at any time.
class LinkedTileRequest : public ITileRequest
{
public:
    /// The link is held weakly: requests that the registry refuses stay allocated for ever, and
    /// must not keep a source open.
    LinkedTileRequest(ITiledLayer* layer, std::weak_ptr<TileLink> link, const QString& key,
                      const TileId& tile, unsigned int tileSize, double tlx, double tly, double brx,
                      double bry);

    void run() override;
    bool processTile() override;
    /// The finished tile, for the layer to take; null when it was taken or none was made.
    std::unique_ptr<GeoImage> takeImage();
    /// Hands the tile on to where the layer finds it, and tells the layer. While it runs only.
    void deliver(std::unique_ptr<GeoImage> image);

protected:
    /// Makes the tile, which is wanted; null where it brings none. On a pool thread, outside the
    /// lifeline.
    virtual std::unique_ptr<GeoImage> makeTile(TileLink& link) = 0;
    /// Another request brings the tile: nothing is missing when this one ends without it.
    void handOver() { handedOver = true; }
    /// Runs last, with the layer left alone and the key back. On a pool thread.
    virtual void finish(TileLink& link);

    const TileId tile;

private:
    std::weak_ptr<TileLink> weakLink;
    std::shared_ptr<TileLink> heldLink; // only while it runs
    bool insideLifeline = false;
    bool handedOver = false;
};

} // namespace Map
} // namespace Corvane
