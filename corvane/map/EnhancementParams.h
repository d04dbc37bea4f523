#pragma once

namespace Corvane {

/// Six values that travel with an image for its layer's plugin, which gives them a meaning.
struct EnhancementParams
{
    double first = 0.0;
    double second = 1.0;
    double third = 1.0;
    double fourth = 45.0;
    double fifth = 45.0;
    bool sixth = false;
};

} // namespace Corvane
