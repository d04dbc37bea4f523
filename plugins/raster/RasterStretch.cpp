#include <plugins/raster/RasterStretch.h>

#include <plugins/raster/RasterFacts.h>
#include <plugins/raster/RasterSource.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace Corvane::Map {

namespace {

constexpr int sampleEdge = 512;
constexpr double cut = 0.02; // at either end

std::vector<double> validSample(GDALRasterBandH band, const BandFacts& facts,
                                GDALRasterIOExtraArg* extra)
{
    const int width = GDALGetRasterBandXSize(band);
    const int height = GDALGetRasterBandYSize(band);
    const int w = std::min(width, sampleEdge);
    const int h = std::min(height, sampleEdge);
    std::vector<double> values(static_cast<std::size_t>(w) * static_cast<std::size_t>(h));
    if (GDALRasterIOEx(band, GF_Read, 0, 0, width, height, values.data(), w, h, GDT_Float64, 0, 0,
                       extra) != CE_None)
    {
        return {};
    }
    std::vector<unsigned char> mask(values.size(), 255);
    if ((GDALGetMaskFlags(band) & GMF_ALL_VALID) == 0 &&
        GDALRasterIOEx(GDALGetMaskBand(band), GF_Read, 0, 0, width, height, mask.data(), w, h,
                       GDT_Byte, 0, 0, extra) != CE_None)
    {
        return {};
    }
    std::vector<double> valid;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double value =
            facts.isSignedByte && values[i] > 127.0 ? values[i] - 256.0 : values[i];
        if (mask[i] != 0 && std::isfinite(value)) {
            valid.push_back(value);
        }
    }
    return valid;
}

double percentile(std::vector<double>& values, double share)
{
    const auto position = static_cast<std::ptrdiff_t>(
        std::floor(share * static_cast<double>(values.size() - 1) + 0.5));
    std::nth_element(values.begin(), values.begin() + position, values.end());
    return values[static_cast<std::size_t>(position)];
}

} // namespace

StretchRange percentileCut(GDALRasterBandH band, const BandFacts& facts, GDALProgressFunc goOn,
                           void* goOnData)
{
    GDALRasterIOExtraArg extra;
    INIT_RASTERIO_EXTRA_ARG(extra);
    extra.pfnProgress = goOn;
    extra.pProgressData = goOnData;
    std::vector<double> values = validSample(band, facts, &extra);
    if (values.empty()) {
        return {};
    }
    return {percentile(values, cut), percentile(values, 1.0 - cut)};
}

} // namespace Corvane::Map
