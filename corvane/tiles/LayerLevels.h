#pragma once

#include <corvane/core/Export.h>

#include <QRectF>
#include <QVector>

class QRect;

namespace Corvane {

class GeoPainter;

namespace Map {

class ITiledLayer;
class LayerLevel;

/// The pyramid of a tiled layer: level 0 is full resolution, each further level halves it. Picks
/// the one level that suits a view. Index i holds level i; the pyramid owns the levels.
/// Used on the thread that drives the layer.
class CORVANE_EXPORT LayerLevels : public QVector<LayerLevel*>
{
public:
    LayerLevels();
    /// A copy shares the level pointers.
    LayerLevels(const LayerLevels& other) = default;
    LayerLevels& operator=(const LayerLevels& other) = default;
    /// Deletes the levels.
    virtual ~LayerLevels();
    /// Paints the tiles in memory of the level that suits the world rectangle.
    virtual void paint(GeoPainter& painter, QRectF* world, QRect* device);

    /// Appends levels; a second call grows the pyramid.
    void init(ITiledLayer* layer, unsigned int tileSize, QRectF bounds, unsigned int levels);
    /// Replaces the levels by as many as the image's smaller side asks for.
    void init(ITiledLayer* layer, unsigned int tileSize, QRectF bounds, double worldPerPixelX,
              double worldPerPixelY);
    /// The coarsest level whose pixels are no larger than a device pixel; null without levels.
    LayerLevel* getLayerLevel(int width, int height, double tlx, double tly, double brx,
                              double bry);
    /// Requests the tiles of the view that are not in memory.
    void setView(int width, int height, double tlx, double tly, double brx, double bry);

private:
    int chooseLevel(int width, double tlx, double brx) const;
    void appendLevel(ITiledLayer* layer);
    void deleteLevels();

    unsigned int tileSize = 0;
    QRectF bounds;
};

} // namespace Map
} // namespace Corvane
