#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

namespace Corvane::Map {

/// Decodes a tile, ready to paint; null with the reason in error. The picture has the tile size or,
/// for fine screens, twice that: anything else, half a file and an error page among it, is none.
/// Any thread.
QImage decodeTile(const QByteArray& body, const QByteArray& contentType, int tileSize,
                  QString* error);

} // namespace Corvane::Map
