#include <corvane/map/GeoPainter.h>

#include <corvane/core/Integer.h>
#include <corvane/map/DeviceSpan_p.h>

#include <QPainterPath>
#include <QPointF>
#include <QPolygon>
#include <QPolygonF>
#include <QRect>
#include <QRectF>
#include <QVector>

#include <cstdint>

namespace Corvane {

namespace {

int before(int position)
{
    return static_cast<int>(static_cast<std::int64_t>(position) - 1);
}

} // namespace

GeoPainter::GeoPainter(QPaintDevice* device, QRectF& world, QRect& screen)
    : QPainter(device),
      tlx(world.topLeft().x()),
      tly(world.topLeft().y()),
      brx(world.bottomRight().x()),
      bry(world.bottomRight().y()),
      left(screen.topLeft().x()),
      top(screen.topLeft().y()),
      right(screen.bottomRight().x()),
      bottom(screen.bottomRight().y())
{
}

void GeoPainter::mapWorldToDevice(double wx, double wy, int* x, int* y) const
{
    *x = Util::roundToInt(deviceSpan(left, right) / (brx - tlx) * (wx - tlx) + left);
    *y = Util::roundToInt(deviceSpan(top, bottom) / (bry - tly) * (wy - tly) + top);
}

void GeoPainter::mapDeviceToWorld(int x, int y, double* wx, double* wy)
{
    *wx = (brx - tlx) / deviceSpan(left, right) * deviceSpan(left, x) + tlx;
    *wy = (bry - tly) / deviceSpan(top, bottom) * deviceSpan(top, y) + tly;
}

void GeoPainter::drawWorldRect(QPointF& a, QPointF& b)
{
    int ax = 0;
    int ay = 0;
    int bx = 0;
    int by = 0;
    mapWorldToDevice(a.x(), a.y(), &ax, &ay);
    mapWorldToDevice(b.x(), b.y(), &bx, &by);
    // drawRect(ax, ay, bx - ax, by - ay), without the differences, which may not fit an int
    drawRect(QRect(QPoint(ax, ay), QPoint(before(bx), before(by))));
}

void GeoPainter::drawWorldPolylineF(QVector<QPointF>& points)
{
    QPolygon polyline;
    polyline.reserve(points.size());
    for (const QPointF& point : qAsConst(points)) {
        int x = 0;
        int y = 0;
        mapWorldToDevice(point.x(), point.y(), &x, &y);
        polyline.append(QPoint(x, y));
    }
    drawPolyline(polyline);
}

void GeoPainter::setWorldClip(QPointF& a, QPointF& b)
{
    int ax = 0;
    int ay = 0;
    int bx = 0;
    int by = 0;
    mapWorldToDevice(a.x(), a.y(), &ax, &ay);
    mapWorldToDevice(b.x(), b.y(), &bx, &by);
    QPainterPath path;
    path.addRect(ax, ay, deviceSpan(ax, bx), deviceSpan(ay, by));
    setClipPath(path, Qt::ReplaceClip);
}

void GeoPainter::setWorldClip(QPolygonF& polygon)
{
    // The clip begins with as many points at the origin as the polygon has vertices.
    // GeoPainterTest::worldClipBeginsAtTheOrigin holds it.
    QPolygon clip(polygon.size());
    for (const QPointF& vertex : qAsConst(polygon)) {
        int x = 0;
        int unused = 0;
        mapWorldToDevice(vertex.x(), vertex.y(), &x, &unused);
        // y is mapped from the vertex's x: layers clip with polygons made for this.
        // GeoPainterTest::worldClipUsesXForBothAxes holds it.
        const int y =
            Util::roundToInt(deviceSpan(top, bottom) / (bry - tly) * (vertex.x() - tly) + top);
        clip.append(QPoint(x, y));
    }
    QPainterPath path;
    path.addPolygon(QPolygonF(clip));
    setClipPath(path, Qt::ReplaceClip);
}

void GeoPainter::drawGeoImage(GeoImage*) {}

} // namespace Corvane
