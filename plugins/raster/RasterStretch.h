#pragma once

#include <gdal.h>

#include <optional>

namespace Corvane::Map {

struct BandFacts;
struct StretchRange;

/// How a sample is taken: GDAL asks goOn now and then whether it is still wanted.
struct SampleTerms
{
    GDALProgressFunc goOn = nullptr;
    void* goOnData = nullptr;
    bool needsAll = false; ///< what cannot be read now may be read later; else a part will do
};

/// The values between which lies all but the lowest and the highest 2 percent of a band, from a
/// sample that an overview gives cheaply. 0 and 255 where nothing is valid; none where it cannot be
/// taken, or is not wanted any more.
std::optional<StretchRange> percentileCut(GDALRasterBandH band, const BandFacts& facts,
                                          const SampleTerms& terms);

} // namespace Corvane::Map
