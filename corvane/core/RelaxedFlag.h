#pragma once

#include <atomic>

namespace Corvane {

/// A plain flag that crosses threads: reads and writes are atomic and order nothing else.
/// Copyable like a bool.
class RelaxedFlag
{
public:
    RelaxedFlag(bool initial = false) : value(initial) {}
    RelaxedFlag(const RelaxedFlag& other) : value(static_cast<bool>(other)) {}
    RelaxedFlag& operator=(const RelaxedFlag& other) { return *this = static_cast<bool>(other); }
    RelaxedFlag& operator=(bool newValue)
    {
        value.store(newValue, std::memory_order_relaxed);
        return *this;
    }
    operator bool() const { return value.load(std::memory_order_relaxed); }

private:
    std::atomic<bool> value;
};

} // namespace Corvane
