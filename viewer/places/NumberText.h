#pragma once

class QString;

namespace Corvane::Viewer {

enum class LoneSeparator
{
    IsDecimal,       ///< "52,516" is between 52 and 53
    GroupsThousands, ///< "25,000" is a whole number, as three digits follow
};

/// Reads a number as people write it: with a decimal point or comma, with thousands grouped by
/// blanks, points, commas or apostrophes. False, the value untouched, for anything else. Any thread.
bool readNumber(const QString& text, LoneSeparator loneSeparator, double* value);

} // namespace Corvane::Viewer
