#pragma once

#include <QByteArray>
#include <QImage>
#include <QSizeF>
#include <QString>

namespace Corvane::Map {

/// Decodes a tile, ready to paint; null with the reason in error for what is none: an error page,
/// half a file, a picture of more than 2048 pixels on a side. Any thread.
QImage decodeTile(const QByteArray& body, const QByteArray& contentType, QString* error);

/// How much of its tile a picture covers from the top left corner on, from 0 to 1 on each axis.
/// Servers send more pixels for fine screens and fewer where they have no better: a square picture
/// covers the whole tile. Others are cut off where the server's image ends, and keep their scale,
/// which is that of the tile size, or that of the longer side where this does not fit.
QSizeF shareOfTile(const QSize& picture, int tileSize);

} // namespace Corvane::Map
