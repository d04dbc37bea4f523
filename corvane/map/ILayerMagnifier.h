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
    virtual void beginMagnify(const QSize& lens) = 0;
    virtual void endMagnify() = 0;
    virtual void setMagnification(double factor) = 0;
    virtual double getMagnification() = 0;
    virtual void paintMagnified(GeoPainter& painter, const QPoint& centre, const QRect& device) = 0;

protected:
    ~ILayerMagnifier() = default;
};

} // namespace Map
} // namespace Corvane
