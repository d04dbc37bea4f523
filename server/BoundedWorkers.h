#pragma once

#include <httplib.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace Corvane::Server {

/// The threads that serve connections, one each. Connections beyond their number wait, and those
/// beyond the wait are not taken up, so that they wait in the system.
class BoundedWorkers final : public httplib::TaskQueue
{
public:
    /// waiting is kept at how many wait; it outlives this.
    BoundedWorkers(int threads, int mostWaiting, std::atomic<int>& waiting);

    /// Blocks while too many wait.
    void enqueue(std::function<void()> task) override;
    /// Returns when all tasks have ended.
    void shutdown() override;

private:
    void work();

    const std::size_t mostWaiting;
    std::atomic<int>& waitingNow;
    std::mutex mutex; // guards waiting and isEnding
    std::condition_variable changed;
    std::deque<std::function<void()>> waiting;
    bool isEnding = false;
    std::vector<std::thread> threads;
};

} // namespace Corvane::Server
