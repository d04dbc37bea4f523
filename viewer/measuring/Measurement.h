#pragma once

#include <QPointF>
#include <QString>
#include <QVector>

namespace Corvane::Viewer {

class MapReference;

enum class MeasureKind
{
    Distance,
    Area
};

/// What a length is taken on, where the map leaves a choice.
enum class MeasureSurface
{
    Ellipsoid,
    Plane ///< that of the projected map, with what the projection does to lengths
};

/// The size of a line or an area.
struct Measurement
{
    enum Unit
    {
        Metres,
        Degrees, ///< of a map whose points are no places
        MapUnits
    };

    Unit unit = MapUnits;
    double length = 0.0;     ///< of the line, or around the area once it has three corners
    double lastLength = 0.0; ///< between the last two points
    double area = 0.0;       ///< square units, never negative
    QString basis;           ///< "on the ellipsoid WGS 84"
};

/// Measures along the points, which are in the map's coordinates. On the ellipsoid the edges are
/// geodesics. GUI thread only.
Measurement measure(MeasureKind kind, const QVector<QPointF>& points, const MapReference& reference,
                    MeasureSurface surface);

/// The geodesic between two places of a map as a line that can be drawn, with both ends; straight
/// where there is none, or where it would run round the back of the map.
QVector<QPointF> geodesicBetween(const QPointF& from, const QPointF& to,
                                 const MapReference& reference);

} // namespace Corvane::Viewer
