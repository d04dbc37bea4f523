#pragma once

#include <viewer/places/MapUnits.h>

class QString;
class QStringList;

namespace Corvane::Map {
class MapView;
}

namespace Corvane::Viewer {

/// What the scale of a view is reckoned with.
struct ViewScale
{
    MapUnits::Kind kind = MapUnits::Unknown;
    double unitsPerPixel = 0.0; ///< 0 for a view that has no scale, because it shows nothing
    double metresPerUnit = 0.0; ///< on the ground at the view's centre; 0 where nobody knows
    double dotsPerMetre = 0.0;  ///< of the screen
    double cell = 0.0;          ///< of the bottom layer, in units; 0 for none

    static ViewScale ofView(Map::MapView& view);
};

/// "1:25 000", or "50 %" of the cells where the map has no reference, or "1 px = 0.5" without cells.
/// Empty for no scale.
QString scaleText(const ViewScale& scale);
/// How many pixels of the screen make one cell: "zoom 100 %". Empty without cells.
QString zoomText(const ViewScale& scale);
/// What a pixel covers: "1 px = 0.53 m". Empty for no scale.
QString pixelText(const ViewScale& scale);
/// The usual scales of such a map, to choose from.
QStringList usualScales(const ViewScale& scale);

/// Reads "25000", "1:25 000", "1/25000", "2 m", "0.5 ft/px", "1 px = 2", "50 %". The map units for a
/// pixel, or 0 with the reason in error.
double readScale(const QString& text, const ViewScale& scale, QString* error);

} // namespace Corvane::Viewer
