#pragma once

#include <atomic>

namespace Corvane {

/// A plain flag that crosses threads: reads and writes are atomic and order nothing else.
/// Copyable like a bool.
class RelaxedFlag
{
public:
    /// Starts with this value.
    RelaxedFlag(bool initial = false) : value(initial) {}
    /// Copies the value of this moment.
    RelaxedFlag(const RelaxedFlag& other) : value(static_cast<bool>(other)) {}
    /// Copies the value of this moment.
    RelaxedFlag& operator=(const RelaxedFlag& other) { return *this = static_cast<bool>(other); }
    /// Any thread; orders nothing else.
    RelaxedFlag& operator=(bool newValue)
    {
        value.store(newValue, std::memory_order_relaxed);
        return *this;
    }
    /// Any thread; orders nothing else.
    operator bool() const { return value.load(std::memory_order_relaxed); }

private:
    std::atomic<bool> value;
};

} // namespace Corvane
