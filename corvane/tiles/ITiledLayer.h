#pragma once

#include <corvane/core/Export.h>
#include <corvane/tiles/LayerLevels.h>

#include <QtPlugin>

class QRectF;
class QString;

namespace Corvane::Map {

class ITileRequest;

/// What a layer tells the tile engine about its image, and what it gets back. The order of the
/// operations is part of the contract. A plugin's class is destroyed through its own type.
class CORVANE_EXPORT ITiledLayer
{
public:
    ITiledLayer() = default;
    ITiledLayer(const ITiledLayer& other) = default;
    ITiledLayer(ITiledLayer&& other) = default;
    ITiledLayer& operator=(const ITiledLayer& other) = default;
    ITiledLayer& operator=(ITiledLayer&& other) = default;

    /// The source locator of a tile. Called for every tile in view at every view: cheap and pure.
    virtual QString getTileUrl(unsigned int level, unsigned int tx, unsigned int ty,
                               unsigned int width, unsigned int height, double tlx, double tly,
                               double brx, double bry) = 0;
    /// Full-resolution size in pixels.
    virtual int getWidth() = 0;
    /// Full-resolution size in pixels, on y.
    virtual int getHeight() = 0;
    /// World units per full-resolution pixel; positive.
    virtual double getWorldPerPixelX() = 0;
    /// The same on y, with the sign that makes rows grow downward: negative for a north-up image.
    virtual double getWorldPerPixelY() = 0;
    /// The image's world rectangle; its top-left is the origin of tile numbering.
    virtual QRectF getBounds() = 0;
    /// A tile was made: take the image over. On a pool thread, several at once.
    virtual void tileReady(ITileRequest* request) = 0;
    /// A tile could not be made. On a pool thread, several at once.
    virtual void tileFailed(ITileRequest* request) = 0;
    /// A new request, owned by the pool once queued.
    virtual ITileRequest* createTileRequest(const QString& key, const QString& url,
                                            unsigned int level, unsigned int tx, unsigned int ty,
                                            double tlx, double tly, double brx, double bry) = 0;
    /// What keeps the tiles of two layers apart: unique per layer, stable while requests run.
    virtual QString getTileLayerId() = 0;

protected:
    ~ITiledLayer() = default;

    LayerLevels levels; ///< the pyramid; empty until the layer starts it
};

} // namespace Corvane::Map

Q_DECLARE_INTERFACE(Corvane::Map::ITiledLayer, "com.corvane.viewer.ITiledLayer/1.0")
