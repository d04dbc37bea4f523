#include <viewer/places/UtmGrid.h>

#include <viewer/places/MapReference.h>

#include <corvane/core/Integer.h>

#include <QPointF>
#include <QString>

#include <cmath>

namespace Corvane::Viewer {
namespace {

constexpr int zoneCount = 60;
constexpr double zoneWidth = 6.0;  // degrees
constexpr double bandHeight = 8.0; // degrees; the northernmost has 12
constexpr double southEnd = -80.0;
constexpr double northEnd = 84.0;
constexpr const char* bandLetters = "CDEFGHJKLMNPQRSTUVWX";
constexpr int lastBand = 19;

std::shared_ptr<const MapReference> zoneReference(int zone, bool isNorth)
{
    const int first = isNorth ? 32600 : 32700;
    return MapReference::ofDefinition(QStringLiteral("EPSG:%1").arg(first + zone));
}

int svalbardZone(double longitude)
{
    return longitude < 9.0 ? 31 : longitude < 21.0 ? 33 : longitude < 33.0 ? 35 : 37;
}

} // namespace

int utmZoneOf(const QPointF& degrees)
{
    const double latitude = degrees.y();
    const double longitude = degrees.x();
    if (!(latitude >= southEnd && latitude <= northEnd && std::abs(longitude) <= 180.0)) {
        return 0;
    }
    if (latitude >= 72.0 && longitude >= 0.0 && longitude < 42.0) {
        return svalbardZone(longitude);
    }
    if (latitude >= 56.0 && latitude < 64.0 && longitude >= 3.0 && longitude < 12.0) {
        return 32; // the south-west of Norway
    }
    const int zone = Util::truncateToInt(std::floor((longitude + 180.0) / zoneWidth));
    return zone % zoneCount + 1;
}

QString utmText(const QPointF& degrees)
{
    const int zone = utmZoneOf(degrees);
    QPointF place;
    if (zone == 0 || !zoneReference(zone, degrees.y() >= 0.0)->fromDegrees(degrees, &place)) {
        return QString();
    }
    const int band = Util::truncateToInt(std::floor((degrees.y() - southEnd) / bandHeight));
    return QStringLiteral("%1%2 %3 E  %4 N")
        .arg(zone)
        .arg(QLatin1Char(bandLetters[std::min(band, lastBand)]))
        .arg(place.x(), 0, 'f', 0)
        .arg(place.y(), 0, 'f', 0);
}

bool utmToDegrees(int zone, bool isNorth, const QPointF& place, QPointF* degrees)
{
    return zone >= 1 && zone <= zoneCount &&
           zoneReference(zone, isNorth)->toDegrees(place, degrees);
}

} // namespace Corvane::Viewer
