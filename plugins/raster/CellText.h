#pragma once

#include <gdal.h>

#include <QString>

namespace Corvane::Map {

struct BandFacts;

/// The digits of one value of a band as it lies in memory, in the band's own type; they read back as
/// exactly that value.
QString cellText(const BandFacts& band, const void* value);

/// Whether the value stands for no data.
bool isNoDataCell(const BandFacts& band, GDALRasterBandH handle, const void* value);

/// What a band's values are called: "UInt8", "CInt16".
QString cellTypeName(const BandFacts& band);

} // namespace Corvane::Map
