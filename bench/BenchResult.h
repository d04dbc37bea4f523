#pragma once

#include <QString>

#include <chrono>
#include <vector>

namespace Corvane::Bench {

/// Measures milliseconds since its construction.
class Stopwatch
{
public:
    double milliseconds() const
    {
        const std::chrono::duration<double, std::milli> elapsed = Clock::now() - start;
        return elapsed.count();
    }

private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point start = Clock::now();
};

/// What a figure is to hold: a bound on its median or on the ratio of its median to the limit's.
struct BenchGoal
{
    QString kind; ///< "max", "min", "max_ratio" or "min_ratio"; empty without a goal
    double bound = 0.0;
};

/// One figure with its samples and, where there is one, the limit that a bare program reached in
/// the same run.
struct BenchResult
{
    QString id;
    QString unit;
    std::vector<double> samples;
    std::vector<double> limitSamples;
    BenchGoal goal;

    /// Writes the figure to standard output as one line of JSON.
    void print() const;
};

} // namespace Corvane::Bench
