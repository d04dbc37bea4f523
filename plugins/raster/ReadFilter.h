#pragma once

#include <QString>

namespace Corvane::Map {

/// The file dialog filters of the images that GDAL reads here: "description (*.a *.b)", joined by
/// ";;" and sorted. Extensions that are chiefly those of vector files are left to them.
QString rasterReadFilter();

} // namespace Corvane::Map
