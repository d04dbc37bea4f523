#include <plugins/raster/RasterStretch.h>

#include <plugins/raster/RasterFacts.h>
#include <plugins/raster/RasterSource.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace Corvane::Map {

namespace {

constexpr int sampleEdge = 512;
constexpr int slices = 16;   // of a band that cannot be read in one
constexpr double cut = 0.02; // at either end

// Rows of a band, and as how many they are read.
struct Rows
{
    int top;
    int count;
    int sampled;
};

bool readSample(GDALRasterBandH band, const Rows& rows, GDALDataType type, void* values,
                const SampleTerms& terms)
{
    GDALRasterIOExtraArg extra;
    INIT_RASTERIO_EXTRA_ARG(extra);
    extra.pfnProgress = terms.goOn;
    extra.pProgressData = terms.goOnData;
    const int width = GDALGetRasterBandXSize(band);
    return GDALRasterIOEx(band, GF_Read, 0, rows.top, width, rows.count, values,
                          std::min(width, sampleEdge), rows.sampled, type, 0, 0, &extra) == CE_None;
}

// Adds what is valid. False where it cannot be read.
bool addSample(GDALRasterBandH band, const BandFacts& facts, const Rows& rows,
               const SampleTerms& terms, std::vector<double>* valid)
{
    const int columns = std::min(GDALGetRasterBandXSize(band), sampleEdge);
    std::vector<double> values(static_cast<std::size_t>(columns) *
                               static_cast<std::size_t>(rows.sampled));
    std::vector<unsigned char> mask(values.size(), 255);
    const bool isMasked = (GDALGetMaskFlags(band) & GMF_ALL_VALID) == 0;
    if (!readSample(band, rows, GDT_Float64, values.data(), terms) ||
        (isMasked && !readSample(GDALGetMaskBand(band), rows, GDT_Byte, mask.data(), terms)))
    {
        return false;
    }
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double value =
            facts.isSignedByte && values[i] > 127.0 ? values[i] - 256.0 : values[i];
        if (mask[i] != 0 && std::isfinite(value)) {
            valid->push_back(value);
        }
    }
    return true;
}

// Of a damaged file, from slices that can be read.
void addSlices(GDALRasterBandH band, const BandFacts& facts, const SampleTerms& terms,
               std::vector<double>* valid)
{
    const int height = GDALGetRasterBandYSize(band);
    const int step = (height + slices - 1) / slices;
    for (int top = 0; top < height; top += step) {
        const int count = std::min(step, height - top);
        addSample(band, facts, {top, count, std::min(count, sampleEdge / slices)}, terms, valid);
    }
}

bool isUnwanted(const SampleTerms& terms)
{
    return terms.goOn && terms.goOn(0.0, "", terms.goOnData) == FALSE;
}

double percentile(std::vector<double>& values, double share)
{
    const auto position = static_cast<std::ptrdiff_t>(
        std::floor(share * static_cast<double>(values.size() - 1) + 0.5));
    std::nth_element(values.begin(), values.begin() + position, values.end());
    return values[static_cast<std::size_t>(position)];
}

} // namespace

std::optional<StretchRange> percentileCut(GDALRasterBandH band, const BandFacts& facts,
                                          const SampleTerms& terms)
{
    const int height = GDALGetRasterBandYSize(band);
    std::vector<double> values;
    if (!addSample(band, facts, {0, height, std::min(height, sampleEdge)}, terms, &values)) {
        if (terms.needsAll) {
            return std::nullopt;
        }
        addSlices(band, facts, terms, &values);
    }
    if (isUnwanted(terms)) {
        return std::nullopt;
    }
    if (values.empty()) {
        return StretchRange();
    }
    return StretchRange{percentile(values, cut), percentile(values, 1.0 - cut)};
}

} // namespace Corvane::Map
