#pragma once

#include <corvane/map/HistogramT.h>

#include <cstddef>
#include <vector>

namespace Corvane::Map {

struct BandFacts;

/// Counts the values of one band as they come, in any order. Integers of up to 16 bits are counted
/// value by value, which makes everything exact; deeper values go through a second pass that counts
/// them into bins between the smallest and the largest.
class BandCounter
{
public:
    explicit BandCounter(const BandFacts& facts);

    /// valid may be null, else 0 stands for a value that does not count.
    void add(const double* values, const unsigned char* valid, std::size_t count);
    bool needsSecondPass() const { return valueCounts.empty() && total > 0; }
    void addSecondPass(const double* values, const unsigned char* valid, std::size_t count);

    unsigned long long validCount() const { return total; }
    HistogramT<unsigned long long> histogram() const;

private:
    bool counts(double value, const unsigned char* valid, std::size_t index) const;
    double adjusted(double value) const;
    void addWhole(const double* values, const unsigned char* valid, std::size_t count);
    void addDeep(const double* values, const unsigned char* valid, std::size_t count);
    std::size_t binOf(double value) const;
    std::vector<unsigned long long> bins() const;
    void summariseWhole(HistogramT<unsigned long long>& record) const;
    void summariseDeep(HistogramT<unsigned long long>& record) const;

    const BandFacts& facts;
    std::vector<unsigned long long> valueCounts; // of each whole value from lowest on
    int lowest = 0;
    std::vector<unsigned long long> binCounts; // second pass
    unsigned long long total = 0;
    double smallest = 0.0;
    double largest = 0.0;
    double mean = 0.0;
    double squares = 0.0; // sum of the squared distances from the mean
};

} // namespace Corvane::Map
