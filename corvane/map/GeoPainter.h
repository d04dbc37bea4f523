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
    GeoPainter(QPaintDevice* device, QRectF& world, QRect& screen);

    void mapWorldToDevice(double wx, double wy, int* x, int* y) const;
    void mapDeviceToWorld(int x, int y, double* wx, double* wy);
    void drawWorldRect(QPointF& a, QPointF& b);
    void drawWorldPolylineF(QVector<QPointF>& points);
    void setWorldClip(QPointF& a, QPointF& b);
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
