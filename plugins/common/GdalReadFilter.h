#pragma once

#include <QString>
#include <QStringList>

#include <functional>

namespace Corvane::Map {

/// The file extensions of everything that GDAL reads here, in lower case and without a dot.
/// capability: GDAL_DCAP_RASTER or GDAL_DCAP_VECTOR.
QStringList gdalExtensions(const char* capability);

/// The file dialog filters of the same: "description (*.a *.b)", joined by ";;" and sorted, without
/// the extensions that are left out.
QString gdalReadFilter(const char* capability,
                       const std::function<bool(const QString& extension)>& isLeftOut);

/// Whether a file of this extension, which may hold both kinds, is taken for vectors first.
bool isChieflyVector(const QString& extension);

} // namespace Corvane::Map
