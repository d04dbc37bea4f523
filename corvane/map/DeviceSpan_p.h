#pragma once

namespace Corvane {

/// The distance between two device positions, in pixels. Exact for all ints, where the difference
/// itself may not fit one. Any thread.
inline double deviceSpan(int from, int to)
{
    return static_cast<double>(to) - static_cast<double>(from);
}

} // namespace Corvane
