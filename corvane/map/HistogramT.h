#pragma once

#include <corvane/core/Export.h>

#include <QString>

#include <algorithm>
#include <memory>

namespace Corvane::Map {

/// The value histogram of one band with its statistics, filled by a layer and read by panels.
/// A copy is deep.
template <typename Count>
class HistogramT
{
public:
    HistogramT() = default;
    /// Copies the counts.
    HistogramT(const HistogramT& other) { *this = other; }
    /// Copies the counts.
    HistogramT& operator=(const HistogramT& other)
    {
        if (this == &other) {
            return *this;
        }
        std::unique_ptr<Count[]> copied;
        if (other.counts) {
            copied.reset(new Count[other.numberOfBins]);
            std::copy_n(other.counts, other.numberOfBins, copied.get());
        }
        delete[] counts;
        counts = copied.release();
        numberOfBins = other.numberOfBins;
        maximum = other.maximum;
        minimum = other.minimum;
        peakCount = other.peakCount;
        totalCount = other.totalCount;
        mean = other.mean;
        median = other.median;
        standardDeviation = other.standardDeviation;
        mode = other.mode;
        bandName = other.bandName;
        return *this;
    }
    virtual ~HistogramT() { delete[] counts; }

    Count* counts = nullptr;           ///< one entry per bin; owned, from new[]
    unsigned int numberOfBins = 0;     ///< length of counts
    unsigned long long maximum = 0;    ///< largest value
    unsigned long long minimum = 0;    ///< smallest value
    unsigned long long peakCount = 0;  ///< largest count
    unsigned long long totalCount = 0; ///< pixels counted
    double mean = 0.0;                 ///< in units of the band
    double median = 0.0;               ///< in units of the band
    double standardDeviation = 0.0;    ///< in units of the band
    double mode = 0.0;                 ///< the most frequent value
    QString bandName;                  ///< may be empty
};

// Made once, in the library: records outlive the plugin that filled them, so their destructor must
// not be the plugin's.
extern template class CORVANE_EXPORT HistogramT<unsigned long long>;

} // namespace Corvane::Map
