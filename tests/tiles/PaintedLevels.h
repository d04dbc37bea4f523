#pragma once

#include <corvane/map/GeoPainter.h>
#include <corvane/tiles/LayerLevels.h>

#include <QImage>

/// What the levels show of the world in a square of so many pixels, on white.
inline QImage painted(Corvane::Map::LayerLevels& levels, int size, QRectF world)
{
    QImage image(size, size, QImage::Format_ARGB32);
    image.fill(Qt::white);
    QRect device(0, 0, size, size);
    Corvane::GeoPainter painter(&image, world, device);
    levels.paint(painter, &world, &device);
    painter.end();
    return image;
}
