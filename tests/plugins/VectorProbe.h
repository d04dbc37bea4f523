#pragma once

#include <plugins/vector/OgrVectorLayer.h>

#include <corvane/map/GeoPainter.h>

#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>

#include <algorithm>
#include <cstdlib>
#include <functional>

namespace Corvane::Tests {

/// A view of so many pixels onto a rectangle of the world, north-up.
struct WorldView
{
    int width = 200;
    int height = 200;
    double left = 0.0;
    double top = 100.0;
    double unitsPerPixel = 0.5;

    QRectF world() const
    {
        return QRectF(left, top, width * unitsPerPixel, -height * unitsPerPixel);
    }
    void set(Map::Layer& layer) const
    {
        const QRectF area = world();
        layer.setView(width, height, area.left(), area.top(), area.left() + area.width(),
                      area.top() + area.height());
    }
    QPointF toPixel(double x, double y) const
    {
        return QPointF((x - left) / unitsPerPixel, (top - y) / unitsPerPixel);
    }
};

/// What the layer paints for the view, on a white picture.
inline QImage painted(Map::Layer& layer, const WorldView& view)
{
    QImage picture(view.width, view.height, QImage::Format_RGB32);
    picture.fill(Qt::white);
    QRectF world = view.world();
    QRect device = picture.rect();
    GeoPainter painter(&picture, world, device);
    layer.paint(painter, &world, &device);
    painter.end();
    return picture;
}

/// The view with everything in memory.
inline QImage complete(Map::OgrVectorLayer& layer, const WorldView& view)
{
    layer.setProgressive(false);
    view.set(layer);
    return painted(layer, view);
}

/// The same picture made by the painter itself, with the layer's pen and brush.
inline QImage drawn(Map::OgrVectorLayer& layer, const WorldView& view,
                    const std::function<void(QPainter&)>& draw)
{
    QImage picture(view.width, view.height, QImage::Format_RGB32);
    picture.fill(Qt::white);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing, layer.isAntialiasing());
    painter.setPen(layer.getPen());
    painter.setBrush(layer.getBrush());
    draw(painter);
    painter.end();
    return picture;
}

/// The largest difference of any channel of any pixel; 256 where the sizes differ.
inline int difference(const QImage& a, const QImage& b)
{
    if (a.size() != b.size()) {
        return 256;
    }
    int most = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb one = a.pixel(x, y);
            const QRgb other = b.pixel(x, y);
            most = std::max({most, std::abs(qRed(one) - qRed(other)),
                             std::abs(qGreen(one) - qGreen(other)),
                             std::abs(qBlue(one) - qBlue(other))});
        }
    }
    return most;
}

/// How many pixels are not white.
inline int inked(const QImage& picture)
{
    int count = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            count += picture.pixel(x, y) != qRgb(255, 255, 255) ? 1 : 0;
        }
    }
    return count;
}

} // namespace Corvane::Tests
