#pragma once

namespace Corvane::Viewer {

/// What the world coordinates of a map are counted in.
struct MapUnits
{
    enum Kind
    {
        Unknown, ///< no reference: cells of the image, or who knows
        Degrees,
        Length
    };

    Kind kind = Unknown;
    double metresPerUnit = 1.0; ///< of a Length
};

} // namespace Corvane::Viewer
