#pragma once

#include <corvane/core/Export.h>

#include <QPainter>

class QPaintDevice;
class QPointF;
class QPolygonF;
class QRect;
class QRectF;

namespace Corvane {

class GeoImage;

/// A painter that knows the world rectangle and the device rectangle of what it paints on, so that
/// a layer can draw in world coordinates. Lives for one paint pass.
class CORVANE_EXPORT GeoPainter : public QPainter
{
public:
    /// Paints on the device, not owned, whose rectangle screen shows the world rectangle. Both are
    /// copied.
    GeoPainter(QPaintDevice* device, QRectF& world, QRect& screen);

    /// Rounded to the nearest pixel. No pointer may be null.
    void mapWorldToDevice(double wx, double wy, int* x, int* y) const;
    /// The world position of the pixel's corner. No pointer may be null.
    void mapDeviceToWorld(int x, int y, double* wx, double* wy);
    /// With two opposite corners in world units, with pen and brush.
    void drawWorldRect(QPointF& a, QPointF& b);
    /// Through points in world units, with the pen.
    void drawWorldPolylineF(QVector<QPointF>& points);
    /// Clips to a rectangle of two opposite corners in world units.
    void setWorldClip(QPointF& a, QPointF& b);
    /// Clips to a polygon in world units; see the source for the rule of its vertices.
    void setWorldClip(QPolygonF& polygon);
    /// Does nothing: images are drawn by GeoImage::paint.
    void drawGeoImage(GeoImage* image);

private:
    double tlx;
    double tly;
    double brx;
    double bry;
    int left;
    int top;
    int right;
    int bottom;
};

} // namespace Corvane
