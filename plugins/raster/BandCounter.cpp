#include <plugins/raster/BandCounter.h>

#include <plugins/raster/RasterFacts.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Corvane::Map {

namespace {

constexpr std::size_t binCount = 256;

// The record has no room for what is negative.
unsigned long long toUnsigned(double value)
{
    constexpr double tooLarge = 18446744073709551616.0;
    if (!(value > 0.0)) {
        return 0;
    }
    return value < tooLarge ? static_cast<unsigned long long>(value)
                            : std::numeric_limits<unsigned long long>::max();
}

// Where the counts reach half of their sum.
std::size_t medianIndex(const std::vector<unsigned long long>& counts, unsigned long long total)
{
    unsigned long long below = 0;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        below += counts[i];
        if (below >= total - below) {
            return i;
        }
    }
    return 0;
}

std::size_t modeIndex(const std::vector<unsigned long long>& counts)
{
    return static_cast<std::size_t>(std::max_element(counts.begin(), counts.end()) -
                                    counts.begin());
}

} // namespace

BandCounter::BandCounter(const BandFacts& bandFacts) : facts(bandFacts)
{
    if (facts.type == GDT_Byte) {
        lowest = facts.isSignedByte ? -128 : 0;
        valueCounts.resize(256);
    } else if (facts.type == GDT_UInt16 || facts.type == GDT_Int16) {
        lowest = facts.type == GDT_Int16 ? -32768 : 0;
        valueCounts.resize(65536);
    }
}

double BandCounter::adjusted(double value) const
{
    return facts.isSignedByte && value > 127.0 ? value - 256.0 : value;
}

bool BandCounter::counts(double value, const unsigned char* valid, std::size_t index) const
{
    if (valid && valid[index] == 0) {
        return false;
    }
    return std::isfinite(value) && !facts.isNoData(value);
}

void BandCounter::add(const double* values, const unsigned char* valid, std::size_t count)
{
    if (valueCounts.empty()) {
        addDeep(values, valid, count);
    } else {
        addWhole(values, valid, count);
    }
}

void BandCounter::addWhole(const double* values, const unsigned char* valid, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        const double value = adjusted(values[i]);
        if (counts(value, valid, i)) {
            ++valueCounts[static_cast<std::size_t>(static_cast<int>(value) - lowest)];
            ++total;
        }
    }
}

// Mean and squares of the piece first, then joined with those of the pieces before it: stable, and
// without a division for each value. The first mean lacks what summing has rounded away, which the
// distances from it bring back.
void BandCounter::addDeep(const double* values, const unsigned char* valid, std::size_t count)
{
    unsigned long long pieceTotal = 0;
    double sum = 0.0;
    double low = std::numeric_limits<double>::infinity();
    double high = -low;
    for (std::size_t i = 0; i < count; ++i) {
        if (counts(values[i], valid, i)) {
            ++pieceTotal;
            sum += values[i];
            low = std::min(low, values[i]);
            high = std::max(high, values[i]);
        }
    }
    if (pieceTotal == 0) {
        return;
    }
    const auto pieceCount = static_cast<double>(pieceTotal);
    const double roundedMean = sum / pieceCount;
    double distances = 0.0;
    double pieceSquares = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        if (counts(values[i], valid, i)) {
            const double fromMean = values[i] - roundedMean;
            distances += fromMean;
            pieceSquares += fromMean * fromMean;
        }
    }
    const double lack = distances / pieceCount;
    const double pieceMean = roundedMean + lack;
    pieceSquares = std::max(pieceSquares - lack * distances, 0.0); // below zero by rounding only
    const auto before = static_cast<double>(total);
    const double all = before + pieceCount;
    const double distance = pieceMean - mean;
    smallest = total == 0 ? low : std::min(smallest, low);
    largest = total == 0 ? high : std::max(largest, high);
    mean += distance * pieceCount / all;
    squares += pieceSquares + distance * distance * before * pieceCount / all;
    total += pieceTotal;
}

std::size_t BandCounter::binOf(double value) const
{
    const double width = largest - smallest;
    const double position = width > 0.0 ? (value - smallest) * (binCount / width) : 0.0;
    return std::min(static_cast<std::size_t>(position), binCount - 1);
}

void BandCounter::addSecondPass(const double* values, const unsigned char* valid, std::size_t count)
{
    binCounts.resize(binCount);
    for (std::size_t i = 0; i < count; ++i) {
        if (counts(values[i], valid, i)) {
            ++binCounts[binOf(values[i])];
        }
    }
}

void BandCounter::summariseWhole(HistogramT<unsigned long long>& record) const
{
    const auto first = std::find_if(valueCounts.begin(), valueCounts.end(),
                                    [](unsigned long long n) { return n > 0; });
    const auto last = std::find_if(valueCounts.rbegin(), valueCounts.rend(),
                                   [](unsigned long long n) { return n > 0; });
    long double sum = 0.0L;
    for (std::size_t i = 0; i < valueCounts.size(); ++i) {
        sum += static_cast<long double>(valueCounts[i]) * (static_cast<int>(i) + lowest);
    }
    const long double average = sum / static_cast<long double>(total);
    long double distances = 0.0L;
    for (std::size_t i = 0; i < valueCounts.size(); ++i) {
        const long double distance = static_cast<int>(i) + lowest - average;
        distances += static_cast<long double>(valueCounts[i]) * distance * distance;
    }
    const auto valueAt = [this](std::size_t i) { return static_cast<int>(i) + lowest; };
    record.minimum = toUnsigned(valueAt(static_cast<std::size_t>(first - valueCounts.begin())));
    record.maximum = toUnsigned(valueAt(static_cast<std::size_t>(valueCounts.rend() - last) - 1));
    record.mean = static_cast<double>(average);
    record.standardDeviation =
        static_cast<double>(std::sqrt(distances / static_cast<long double>(total)));
    record.median = valueAt(medianIndex(valueCounts, total));
    record.mode = valueAt(modeIndex(valueCounts));
}

void BandCounter::summariseDeep(HistogramT<unsigned long long>& record) const
{
    const double binWidth = (largest - smallest) / binCount;
    const auto middleOf = [=](std::size_t bin) {
        return smallest + (static_cast<double>(bin) + 0.5) * binWidth;
    };
    record.minimum = toUnsigned(smallest);
    record.maximum = toUnsigned(largest);
    record.mean = mean;
    record.standardDeviation = std::sqrt(squares / static_cast<double>(total));
    record.median = middleOf(medianIndex(binCounts, total));
    record.mode = middleOf(modeIndex(binCounts));
}

// Bytes have a bin for each value, everything else 256 from the smallest to the largest.
std::vector<unsigned long long> BandCounter::bins() const
{
    if (valueCounts.empty()) {
        return binCounts;
    }
    if (facts.isPlainByte()) {
        return valueCounts;
    }
    std::size_t first = 0;
    while (first + 1 < valueCounts.size() && valueCounts[first] == 0) {
        ++first;
    }
    std::size_t last = valueCounts.size() - 1;
    while (last > first && valueCounts[last] == 0) {
        --last;
    }
    std::vector<unsigned long long> result(binCount);
    const auto width = static_cast<double>(last - first);
    for (std::size_t i = first; i <= last; ++i) {
        const double position =
            width > 0.0 ? static_cast<double>(i - first) * (binCount / width) : 0.0;
        result[std::min(static_cast<std::size_t>(position), binCount - 1)] += valueCounts[i];
    }
    return result;
}

HistogramT<unsigned long long> BandCounter::histogram() const
{
    HistogramT<unsigned long long> record;
    record.bandName = facts.name();
    std::vector<unsigned long long> counted = bins();
    counted.resize(binCount);
    record.numberOfBins = static_cast<unsigned int>(counted.size());
    record.counts = new unsigned long long[counted.size()];
    std::copy(counted.begin(), counted.end(), record.counts);
    record.peakCount = *std::max_element(counted.begin(), counted.end());
    record.totalCount = total;
    if (total > 0 && !valueCounts.empty()) {
        summariseWhole(record);
    } else if (total > 0) {
        summariseDeep(record);
    }
    return record;
}

} // namespace Corvane::Map
