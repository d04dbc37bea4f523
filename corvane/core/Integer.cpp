#include <corvane/core/Integer.h>

#include <cmath>
#include <limits>

namespace Corvane::Util {

int truncateToInt(double value)
{
    constexpr double belowSmallest = -2147483649.0;
    constexpr double aboveLargest = 2147483648.0;
    // written so that a NaN fails the test
    const bool fits = value > belowSmallest && value < aboveLargest;
    return fits ? static_cast<int>(value) : std::numeric_limits<int>::min();
}

int roundToInt(double value)
{
    if (value >= 0.0) {
        return truncateToInt(value + 0.5);
    }
    const double below = std::trunc(value - 1.0);
    return truncateToInt(std::trunc(value - below + 0.5) + below);
}

int roundAwayFromZero(double value)
{
    return truncateToInt(value < 0.0 ? value - 0.5 : value + 0.5);
}

} // namespace Corvane::Util
