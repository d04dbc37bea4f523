#pragma once

#include <QImage>

namespace Corvane::Map {

/// The picture of a tile that cannot be read: grey, hatched, with a red cross. The pixels are
/// shared by all callers with the same size. Any thread.
QImage markedTile(int edge);
/// Whether the picture is such a one, or has its pixels.
bool isMarkedTile(const QImage& image);

} // namespace Corvane::Map
