#pragma once

#include <plugins/common/PoolJob.h>

namespace Corvane::Map {

/// The opening of a source on a pool thread.
template <typename Source>
using SourceOpening = PoolJob<Source>;

} // namespace Corvane::Map
