#pragma once

#include <plugins/vector/WorldBox.h>

#include <QRect>
#include <QRectF>

#include <cmath>

namespace Corvane::Map {

/// A rectangle of the world on a rectangle of pixels, as tiles are placed: the world's edges fall on
/// the outer edges of the pixels.
struct ViewFrame
{
    QRectF device;
    double tlx = 0.0;
    double tly = 0.0;
    double brx = 0.0;
    double bry = 0.0;

    ViewFrame() = default;
    ViewFrame(const QRectF& deviceRect, const QRectF& world)
        : device(deviceRect),
          tlx(world.left()),
          tly(world.top()),
          brx(world.left() + world.width()),
          bry(world.top() + world.height())
    {
    }

    /// Whether positions can be mapped at all.
    bool isUsable() const
    {
        return device.width() > 0.0 && device.height() > 0.0 && brx != tlx && bry != tly &&
               std::isfinite(brx - tlx) && std::isfinite(bry - tly) && std::isfinite(getScaleX()) &&
               std::isfinite(getScaleY());
    }
    double getScaleX() const { return device.width() / (brx - tlx); } // pixels per unit
    double getScaleY() const { return device.height() / (bry - tly); }
    double toDeviceX(double x) const { return (x - tlx) * getScaleX() + device.left(); }
    double toDeviceY(double y) const { return (y - tly) * getScaleY() + device.top(); }
    double toWorldX(double x) const { return (x - device.left()) / getScaleX() + tlx; }
    double toWorldY(double y) const { return (y - device.top()) / getScaleY() + tly; }
    /// What the rectangle of pixels shows of the world.
    WorldBox worldOf(const QRectF& pixels) const
    {
        WorldBox box;
        box.add(toWorldX(pixels.left()), toWorldY(pixels.top()));
        box.add(toWorldX(pixels.right()), toWorldY(pixels.bottom()));
        return box;
    }
    /// The same mapping with so many more pixels on each side.
    ViewFrame grownBy(double pixels) const
    {
        const QRectF wider = device.adjusted(-pixels, -pixels, pixels, pixels);
        const double left = toWorldX(wider.left());
        const double top = toWorldY(wider.top());
        return ViewFrame(wider, QRectF(left, top, toWorldX(wider.right()) - left,
                                       toWorldY(wider.bottom()) - top));
    }
    bool operator==(const ViewFrame& other) const
    {
        return device == other.device && tlx == other.tlx && tly == other.tly && brx == other.brx &&
               bry == other.bry;
    }
};

} // namespace Corvane::Map
