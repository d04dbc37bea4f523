#pragma once

#include <corvane/map/HistogramT.h>

#include <QRectF>
#include <QSize>
#include <QVector>

#include <memory>

namespace Corvane::Map {

class RasterSource;

/// Counts the values of a source. Reads on the calling thread until it is done; what is not valid
/// (no-data, masked, not a number) does not count.
class RasterStatistics
{
public:
    explicit RasterStatistics(std::shared_ptr<RasterSource> source);

    /// One record for each band of the source, for the pixels that the world rectangle touches.
    /// With a sample size an overview that has at least that many pixels both ways stands for the
    /// image, or a sample of that size. Empty where there is nothing to count.
    QVector<HistogramT<unsigned long long>> histograms(const QRectF& area,
                                                       const QSize& sampleSize) const;

private:
    std::shared_ptr<RasterSource> source;
};

} // namespace Corvane::Map
