#pragma once

#include <corvane/core/Export.h>

namespace Corvane::Util {

/// value truncated towards zero. What does not fit an int, infinities and NaN among it, becomes
/// the smallest int. Any thread.
CORVANE_EXPORT int truncateToInt(double value);

/// value rounded to the nearest int, halves towards positive infinity on both sides of zero.
/// What does not fit an int becomes the smallest int. Any thread.
CORVANE_EXPORT int roundToInt(double value);

/// value rounded to the nearest int, halves away from zero. What does not fit an int becomes the
/// smallest int. Any thread.
CORVANE_EXPORT int roundAwayFromZero(double value);

} // namespace Corvane::Util
