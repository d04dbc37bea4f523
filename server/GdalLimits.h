#pragma once

#include <QtGlobal>

namespace Corvane::Server {

/// Bytes of a block at the most: one is read as a whole.
constexpr qint64 mostBlockBytes = 256 << 20;

/// Makes all formats refuse what takes too much memory to read, wherever it is opened from: as an image
/// of its own, as the source of a virtual raster or inside of another format. GDAL's error says so.
/// Once, when the formats are known.
void limitGdal();

} // namespace Corvane::Server
