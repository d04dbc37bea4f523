#pragma once

#include <corvane/core/Export.h>

class QString;

/// Numbers as the text that people read. Any thread.
namespace Corvane::Util::String {

/// "1.50000000E, 2.50000000N"
CORVANE_EXPORT QString formatEastingNorthing(double easting, double northing,
                                             const QString& separator);
/// Degrees, north and east positive: with 8 decimals, or as degrees, minutes and whole seconds
/// with a hemisphere letter.
CORVANE_EXPORT QString formatLatitudeLongitude(double latitude, double longitude,
                                               const QString& separator,
                                               bool degreesMinutesSeconds);
/// x with 6 decimals, y with 8.
CORVANE_EXPORT QString formatRaw(double x, double y, const QString& separator);
/// A count of bytes in the largest unit that it fills, from KB to PB, printed with the printf
/// format for one double; below 1024 as "512 bytes".
CORVANE_EXPORT QString formatFileSize(unsigned long long size, const char* format);
/// A count of pixels in units of 10^9, as the default locale writes it, without a unit.
CORVANE_EXPORT QString formatGigaPixel(unsigned long long pixels, unsigned char precision);

} // namespace Corvane::Util::String
