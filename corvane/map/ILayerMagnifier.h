#pragma once

#include <corvane/core/Export.h>

class QPoint;
class QRect;
class QSize;

namespace Corvane {

class GeoPainter;

namespace Map {

/// A layer that can draw a magnified piece of itself. For plugins: the library never calls it.
class CORVANE_EXPORT ILayerMagnifier
{
public:
    /// The lens appears; its size is in device pixels.
    virtual void beginMagnify(const QSize& lens) = 0;
    /// The lens is gone.
    virtual void endMagnify() = 0;
    /// 1 is the size of the map.
    virtual void setMagnification(double factor) = 0;
    /// The factor that was set last.
    virtual double getMagnification() = 0;
    /// Draws what lies about centre into device, both in device pixels.
    virtual void paintMagnified(GeoPainter& painter, const QPoint& centre, const QRect& device) = 0;

protected:
    ~ILayerMagnifier() = default;
};

} // namespace Map
} // namespace Corvane
