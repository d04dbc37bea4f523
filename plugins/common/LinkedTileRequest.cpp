#include <plugins/common/LinkedTileRequest.h>

#include <plugins/common/PoolActivity.h>
#include <plugins/common/TileLink.h>

#include <corvane/map/GeoImage.h>
#include <corvane/tiles/TileRequestRegistry.h>

#include <utility>

namespace Corvane::Map {

LinkedTileRequest::LinkedTileRequest(ITiledLayer* tiledLayer, std::weak_ptr<TileLink> tileLink,
                                     const QString& tileKey, const TileId& id,
                                     unsigned int tileSize, double worldLeft, double worldTop,
                                     double worldRight, double worldBottom)
    : ITileRequest(tiledLayer, tileKey, id.level, id.x, id.y, tileSize, tileSize, worldLeft,
                   worldTop, worldRight, worldBottom),
      tile(id),
      weakLink(std::move(tileLink))
{
}

// On a pool thread. A request that found its tile unwanted and brought nothing may have stood in
// the way of a new one for the same tile until its key left the registry: that is told here.
void LinkedTileRequest::run()
{
    TileRequestRegistry::instance().synchronize(); // with the thread that made the request
    const PoolActivity activity;
    heldLink = weakLink.lock();
    if (!heldLink) {
        cancel();
    }
    ITileRequest::run();
    const std::shared_ptr<TileLink> ownLink = std::move(heldLink);
    if (!ownLink) {
        return;
    }
    if (insideLifeline) {
        if (!handedOver && ownLink->exchange.wasAskedMeanwhile(tile)) {
            ownLink->callForView();
        }
        ownLink->lifeline.leave();
    }
    finish(*ownLink);
}

// On a pool thread. The layer is entered for the call that follows, never while the tile is made.
bool LinkedTileRequest::processTile()
{
    std::unique_ptr<GeoImage> made;
    if (heldLink->exchange.isOwed(tile)) {
        made = makeTile(*heldLink);
    }
    insideLifeline = heldLink->lifeline.enter();
    if (!insideLifeline) {
        cancel();
        return false;
    }
    if (!made) {
        return false;
    }
    brx = made->brx;
    bry = made->bry;
    image = made.release();
    return true;
}

void LinkedTileRequest::finish(TileLink&) {}

std::unique_ptr<GeoImage> LinkedTileRequest::takeImage()
{
    return std::unique_ptr<GeoImage>(std::exchange(image, nullptr));
}

void LinkedTileRequest::deliver(std::unique_ptr<GeoImage> made)
{
    heldLink->exchange.deliver(tile, std::move(made));
    heldLink->callForRepaint();
}

} // namespace Corvane::Map
