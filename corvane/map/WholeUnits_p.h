#pragma once

#include <cmath>

namespace Corvane {

/// The value without its fraction, towards zero, and without the sign of a zero. Any thread.
inline double wholeUnits(double value)
{
    return std::trunc(value) + 0.0;
}

} // namespace Corvane
