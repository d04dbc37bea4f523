#include <corvane/tiles/ITileRequest.h>

#include <corvane/map/GeoImage.h>
#include <corvane/tiles/ITiledLayer.h>
#include <corvane/tiles/TileRequestRegistry.h>

#include <utility>

namespace Corvane::Map {

ITileRequest::ITileRequest(ITiledLayer* tiledLayer, QString tileKey, unsigned int levelNumber,
                           unsigned int column, unsigned int row, unsigned int tileWidth,
                           unsigned int tileHeight, double worldLeft, double worldTop,
                           double worldRight, double worldBottom)
    : tlx(worldLeft),
      tly(worldTop),
      brx(worldRight),
      bry(worldBottom),
      key(std::move(tileKey)),
      layer(tiledLayer),
      level(levelNumber),
      x(column),
      y(row),
      width(tileWidth),
      height(tileHeight)
{
}

ITileRequest::~ITileRequest() = default;

// On a pool thread.
void ITileRequest::run()
{
    TileRequestRegistry& registry = TileRequestRegistry::instance();
    registry.synchronize(); // before the first look at what the queueing thread wrote here
    if (!cancelled) {
        deliver(processTile());
    }
    image = nullptr;
    layer = nullptr;
    registry.remove(key, this); // last: the pool deletes the request after it
}

void ITileRequest::cancel()
{
    cancelled = true;
}

// On a pool thread.
void ITileRequest::deliver(bool made)
{
    if (cancelled) {
        dropPixels();
    } else if (made) {
        layer->tileReady(this);
    } else {
        layer->tileFailed(this);
    }
}

// A request never frees its image. One that nobody was told of stays, without its pixels.
void ITileRequest::dropPixels()
{
    if (image) {
        static_cast<QImage&>(*image) = QImage();
    }
}

QString& ITileRequest::getKey()
{
    return key;
}

GeoImage* ITileRequest::getImage()
{
    return image;
}

unsigned int ITileRequest::getLayerLevel()
{
    return level;
}

unsigned int ITileRequest::getX()
{
    return x;
}

unsigned int ITileRequest::getY()
{
    return y;
}

} // namespace Corvane::Map
