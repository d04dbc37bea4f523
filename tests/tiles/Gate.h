#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

/// Holds threads until it is opened, and tells how many have come. Any thread.
class Gate
{
public:
    Gate() = default;
    Gate(const Gate&) = delete;
    Gate& operator=(const Gate&) = delete;
    /// Nobody is held any more; sees what the last visitor did.
    ~Gate() { const std::lock_guard<std::mutex> guard(mutex); }

    /// Counts the caller in and returns once the gate is open.
    void pass()
    {
        std::unique_lock<std::mutex> guard(mutex);
        ++arrived;
        changed.notify_all();
        changed.wait(guard, [this] { return opened; });
    }

    void open()
    {
        const std::lock_guard<std::mutex> guard(mutex);
        opened = true;
        changed.notify_all();
    }

    /// Returns once so many have come, whether or not the gate is open.
    void waitForArrivals(int count)
    {
        std::unique_lock<std::mutex> guard(mutex);
        changed.wait(guard, [this, count] { return arrived >= count; });
    }

    int arrivals()
    {
        const std::lock_guard<std::mutex> guard(mutex);
        return arrived;
    }

private:
    std::mutex mutex; // guards the two below
    std::condition_variable changed;
    int arrived = 0;
    bool opened = false;
};

/// Gives the other threads their turns, for something that must not happen to happen in.
inline void letOthersRun()
{
    constexpr int turns = 10000;
    for (int i = 0; i < turns; ++i) {
        std::this_thread::yield();
    }
}
