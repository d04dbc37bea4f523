#pragma once

#include <gdal.h>

namespace Corvane::Map {

struct BandFacts;
struct StretchRange;

/// The values between which lies all but the lowest and the highest 2 percent of a band, from a
/// sample that an overview gives cheaply. The band's own values 0 and 255 where nothing is valid, or
/// goOn stops the reading.
StretchRange percentileCut(GDALRasterBandH band, const BandFacts& facts, GDALProgressFunc goOn,
                           void* goOnData);

} // namespace Corvane::Map
