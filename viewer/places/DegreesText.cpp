#include <viewer/places/DegreesText.h>

#include <corvane/core/Integer.h>

#include <QPointF>
#include <QString>

#include <algorithm>
#include <cmath>

namespace Corvane::Viewer {
namespace {

constexpr int mostDigits = 10;
constexpr int mostAngleDigits = 8; // a millimetre, in degrees
// A pixel of 0.9 units needs no more digits than one of 1: views are rarely round.
constexpr double digitTolerance = 0.05;

/// Rounded as a whole first, so that 59.99 minutes carry.
QString angleText(double value, AngleForm form, int digits)
{
    const double partsPerDegree = form == AngleForm::Degrees   ? 1.0
                                  : form == AngleForm::Minutes ? 60.0
                                                               : 3600.0;
    const double scale = std::pow(10.0, digits);
    double parts = std::round(std::abs(value) * partsPerDegree * scale) / scale;
    if (form == AngleForm::Degrees) {
        return QStringLiteral("%1°").arg(parts, 0, 'f', digits);
    }
    const double tolerance = 0.5 / scale; // of what the division leaves
    const double degrees = std::floor((parts + tolerance) / partsPerDegree);
    parts = std::max(parts - degrees * partsPerDegree, 0.0);
    const int width = digits > 0 ? digits + 3 : 2;
    if (form == AngleForm::Minutes) {
        return QStringLiteral("%1° %2'")
            .arg(Util::truncateToInt(degrees))
            .arg(parts, width, 'f', digits, QLatin1Char('0'));
    }
    const double minutes = std::floor((parts + tolerance) / 60.0);
    return QStringLiteral("%1° %2' %3\"")
        .arg(Util::truncateToInt(degrees))
        .arg(Util::truncateToInt(minutes), 2, 10, QLatin1Char('0'))
        .arg(std::max(parts - minutes * 60.0, 0.0), width, 'f', digits, QLatin1Char('0'));
}

} // namespace

int digitsFor(double resolution)
{
    if (!(std::isfinite(resolution) && resolution > 0.0)) {
        return 0;
    }
    return std::clamp(Util::truncateToInt(std::ceil(-std::log10(resolution) - digitTolerance)), 0,
                      mostDigits);
}

QString latitudeLongitudeText(const QPointF& degrees, AngleForm form, double resolution)
{
    const double partsPerDegree = form == AngleForm::Degrees   ? 1.0
                                  : form == AngleForm::Minutes ? 60.0
                                                               : 3600.0;
    const int digits = std::min(digitsFor(resolution * partsPerDegree), mostAngleDigits);
    return QStringLiteral("%1 %2  %3 %4")
        .arg(angleText(degrees.y(), form, digits), degrees.y() < 0.0 ? "S" : "N",
             angleText(degrees.x(), form, digits), degrees.x() < 0.0 ? "W" : "E");
}

} // namespace Corvane::Viewer
