#pragma once

#include <QList>
#include <QPoint>
#include <QString>

class QPointF;

namespace Corvane::Map {
class MapView;
class RasterLayer;
} // namespace Corvane::Map

namespace Corvane::Viewer {

/// How the user wants to read where the pointer is.
enum class CoordinateForm
{
    Map,     ///< east and north, as the map counts
    Cells,   ///< column and row of a raster
    Degrees, ///< latitude and longitude on WGS 84, as the next two
    Minutes,
    Seconds,
    Utm
};

QList<CoordinateForm> coordinateForms();
/// What a form is called in the settings; what is no name there is the map's own form.
QString coordinateFormKey(CoordinateForm form);
CoordinateForm coordinateFormOf(const QString& key);
/// What the user chooses the form by, and what stands before the coordinates.
QString coordinateFormTitle(CoordinateForm form);
QString coordinateFormLabel(CoordinateForm form);

/// The raster whose cells are counted: the selected layer, or else the top one that is shown; null
/// without one.
Map::RasterLayer* rasterOf(Map::MapView& view);
/// The cell of the picture that is shown, from 0; false outside of it.
bool cellAt(Map::RasterLayer& raster, const QPointF& world, QPoint* cell);

/// Why the map has no coordinates of this form; empty where it has.
QString whyNoCoordinates(CoordinateForm form, Map::MapView& view);
/// A place of the map, with as many digits as tell neighbouring pixels apart. Empty where the place
/// has no coordinates of this form.
QString coordinateText(CoordinateForm form, Map::MapView& view, const QPointF& world);

} // namespace Corvane::Viewer
