#pragma once

#include <viewer/measuring/Measurement.h>

#include <QString>

namespace Corvane::Viewer {

enum class MeasureUnits
{
    Metric,
    Imperial,
    Nautical
};

/// "12.34 m", "5,551.759 km", "3 units".
QString lengthText(double length, Measurement::Unit unit, MeasureUnits wanted);
/// "12.3 m²", "1.234 ha", "12,308.778 km²", "3 square units".
QString areaText(double area, Measurement::Unit unit, MeasureUnits wanted);
/// All of a measurement, and the points in the map's coordinates, to paste elsewhere.
QString measurementText(MeasureKind kind, const Measurement& measurement, MeasureUnits wanted,
                        const QVector<QPointF>& points);

} // namespace Corvane::Viewer
