#pragma once

namespace Corvane::Map {

/// Makes a pointer to a layer known to the meta-object system under the names that signals and
/// invokable operations have for it. A call that is queued by its name, a spy and a script need it.
void registerLayerPointer();

} // namespace Corvane::Map
