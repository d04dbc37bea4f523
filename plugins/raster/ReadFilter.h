#pragma once

#include <QString>

namespace Corvane::Map {

/// The file dialog filters of everything that GDAL reads here: "description (*.a *.b)", joined by
/// ";;" and sorted.
QString rasterReadFilter();

} // namespace Corvane::Map
