#pragma once

namespace Corvane {

/// Six values that travel with an image for its layer's plugin, which gives them a meaning.
struct EnhancementParams
{
    double first = 0.0;   ///< as the plugin has it
    double second = 1.0;  ///< as the plugin has it
    double third = 1.0;   ///< as the plugin has it
    double fourth = 45.0; ///< as the plugin has it
    double fifth = 45.0;  ///< as the plugin has it
    bool sixth = false;   ///< as the plugin has it
};

} // namespace Corvane
