#pragma once

#include <plugins/common/TileId.h>

#include <QRect>
#include <QRectF>
#include <QRegion>

#include <functional>

namespace Corvane {

class GeoImage;
class GeoPainter;

namespace Map {

class TileShelf;

/// Fills the places of tiles that have not come with outdated ones or what other levels hold, each spot
/// from one level only: finer levels near by first, then coarser ones, then whatever is left.
/// For one paint pass, on the layer's thread.
class UnderlayPainter
{
public:
    /// The world rectangle of a tile.
    using TileBounds = std::function<QRectF(const TileId&)>;

    /// world is shown in device; bounds is the layer's own world rectangle.
    UnderlayPainter(const TileShelf& shelf, const QRectF& world, const QRect& device,
                    const QRectF& bounds);

    /// chosen is the range of the view in its own level, levelCount the number of levels.
    void paint(GeoPainter& painter, const TileRange& chosen, unsigned int levelCount,
               const TileBounds& tileBounds);

private:
    QRect onDevice(double tlx, double tly, double brx, double bry) const;
    void collectHoles(const TileRange& chosen, const TileBounds& tileBounds);
    void paintLevel(GeoPainter& painter, unsigned int level);

    const TileShelf& shelf;
    QRectF world;
    QRect device;
    QRectF bounds;
    unsigned int chosenLevel = 0;
    QRegion holes; // device pixels that are still bare
};

} // namespace Map
} // namespace Corvane
