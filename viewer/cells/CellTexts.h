#pragma once

#include <corvane/map/CellReading.h>

#include <QFont>
#include <QString>

namespace Corvane::Viewer {

/// What the panels of cells write for a cell: its value, "no data", or nothing outside of the raster.
QString cellText(const Map::CellValue& value);
/// The value that stands for no data, and of what type it is; may be empty.
QString cellToolTip(const Map::CellValue& value, const QString& type);
/// The same font, slanted where there is no value.
QFont cellFont(QFont font, const Map::CellValue& value);
/// "Red", or "Band 4" where the band has no name.
QString bandText(const QString& name, int number);

} // namespace Corvane::Viewer
