#include <corvane/core/StringUtil.h>

#include <corvane/core/Integer.h>

#include <QLocale>
#include <QString>

#include <cmath>

namespace Corvane::Util::String {

namespace {

struct SizeUnit
{
    unsigned long long bytes;
    const char* suffix;
};

constexpr SizeUnit sizeUnits[] = {
    {1ULL << 50, " PB"}, {1ULL << 40, " TB"}, {1ULL << 30, " GB"},
    {1ULL << 20, " MB"}, {1ULL << 10, " KB"},
};

constexpr double pixelsPerGigaPixel = 1e9;

QString withEightDecimals(double value)
{
    return QString::number(value, 'f', 8);
}

QString degreesMinutesSecondsText(double value, char positive, char negative)
{
    const char hemisphere = value < 0 ? negative : positive;
    const double angle = value < 0 ? -value : value;
    const double degrees = std::floor(angle);
    const double minutesAndRest = (angle - degrees) * 60;
    const double minutes = std::floor(minutesAndRest);
    // Nothing carries: 59.9999 seconds print as 60.
    const double seconds = std::round(std::fabs((minutesAndRest - minutes) * 60));
    return QStringLiteral("%1%2%3'%4\"%5")
        .arg(truncateToInt(degrees))
        .arg(QChar(0x00B0))
        .arg(truncateToInt(minutes))
        .arg(truncateToInt(seconds))
        .arg(QLatin1Char(hemisphere));
}

} // namespace

QString formatEastingNorthing(double easting, double northing, const QString& separator)
{
    return QStringLiteral("%1E%2%3N")
        .arg(withEightDecimals(easting), separator, withEightDecimals(northing));
}

QString formatLatitudeLongitude(double latitude, double longitude, const QString& separator,
                                bool degreesMinutesSeconds)
{
    if (!degreesMinutesSeconds) {
        return withEightDecimals(latitude) + separator + withEightDecimals(longitude);
    }
    return degreesMinutesSecondsText(latitude, 'N', 'S') + separator +
           degreesMinutesSecondsText(longitude, 'E', 'W');
}

QString formatRaw(double x, double y, const QString& separator)
{
    // The two do not get the same number of decimals; users' tools parse this text.
    const QString xText = QStringLiteral("%1").arg(x, 0, 'f', -1, QLatin1Char(' '));
    return QStringLiteral("%1%2%3").arg(xText, separator, withEightDecimals(y));
}

QString formatFileSize(unsigned long long size, const char* format)
{
    for (const SizeUnit& unit : sizeUnits) {
        if (size >= unit.bytes) {
            const double value = static_cast<double>(size) / static_cast<double>(unit.bytes);
            return QString::asprintf(format, value) + QLatin1String(unit.suffix);
        }
    }
    return QStringLiteral("%1 bytes").arg(size);
}

QString formatGigaPixel(unsigned long long pixels, unsigned char precision)
{
    return QLocale().toString(static_cast<double>(pixels) / pixelsPerGigaPixel, 'f', precision);
}

} // namespace Corvane::Util::String
