#pragma once

#include <corvane/core/Export.h>

namespace Corvane::System {

/// The machine's physical memory in mebibytes, or -1 where the system does not tell. Any thread.
CORVANE_EXPORT long long getTotalRAM();

} // namespace Corvane::System
