#pragma once

#include <corvane/map/ZoomBox.h>

#include <QImage>
#include <QRectF>

namespace Corvane::Map {

/// What all views draw with. GUI thread only.
struct MapViewArt
{
    QImage logo;      ///< shown while a map is empty; null where the picture is missing
    QImage crosshair; ///< shown about the press while zooming; null where the picture is missing
    ZoomBox zoomBox;
};

MapViewArt& mapViewArt();

/// rect at half its size, with the same centre.
inline QRectF zoomedIn(const QRectF& rect)
{
    return QRectF(rect.x() + rect.width() * 0.25, rect.y() + rect.height() * 0.25,
                  rect.width() * 0.5, rect.height() * 0.5);
}

/// rect at double its size, with the same centre.
inline QRectF zoomedOut(const QRectF& rect)
{
    return QRectF(rect.x() - rect.width() * 0.5, rect.y() - rect.height() * 0.5, rect.width() * 2.0,
                  rect.height() * 2.0);
}

} // namespace Corvane::Map
