#pragma once

#include <functional>

namespace Corvane::Map {

/// Runs the task on a thread of the global pool, before waiting ones of lower priority and after
/// those of its own that wait already. Tiles have the priority 0. Any thread.
void startOnPool(std::function<void()> task, int priority);

/// Runs the task, which may spend its time waiting for servers, on a thread of a few beside the
/// global pool: servers that never answer would keep that from everything else. Any thread.
void startBesidePool(std::function<void()> task);

/// Runs the task, which may take minutes, on a thread with a low priority: one such task after the
/// other. Any thread.
void startInBackground(std::function<void()> task);

} // namespace Corvane::Map
