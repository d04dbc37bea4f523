#pragma once

#include <QString>

namespace Corvane::Map {
class Layer;
class MapView;
} // namespace Corvane::Map

namespace Corvane::Viewer {

/// What the world coordinates of a map are counted in, as far as its layers tell.
struct MapUnits
{
    enum Kind
    {
        Unknown, ///< no reference: cells of the image, or who knows
        Degrees,
        Length
    };

    Kind kind = Unknown;
    double metresPerUnit = 1.0; ///< of a Length

    static MapUnits ofLayer(Map::Layer& layer);
    /// Of a spatial reference in well-known text, of either generation.
    static MapUnits ofWkt(const QString& wkt);
};

/// The world position with as many digits as tell neighbouring pixels apart.
QString coordinateText(const MapUnits& units, double x, double y, double unitsPerPixel);

/// How large the map is shown: "1 : 25,000" for a length, "1 px = 0.01°" for degrees, and with a
/// raster layer also how large its cells are. Empty while the map has no layer.
QString scaleText(Map::MapView& view);

/// The units of the bottom layer that is valid.
MapUnits unitsOf(Map::MapView& view);

} // namespace Corvane::Viewer
