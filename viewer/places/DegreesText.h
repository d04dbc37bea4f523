#pragma once

class QPointF;
class QString;

namespace Corvane::Viewer {

enum class AngleForm
{
    Degrees,
    Minutes,
    Seconds
};

constexpr double metresPerDegree = 111320.0; ///< about, of latitude: for counts of digits

/// How many decimals tell neighbours at this distance apart; 0 where the distance is none.
int digitsFor(double resolution);

/// "52.51630° N  13.37770° E", "52° 30.978' N  ..." or "52° 30' 58.7\" N  ...": longitude x, latitude
/// y, with digits for a resolution in degrees. Any thread.
QString latitudeLongitudeText(const QPointF& degrees, AngleForm form, double resolution);

} // namespace Corvane::Viewer
