#include <server/BoundedWorkers.h>

#include <utility>

namespace Corvane::Server {

BoundedWorkers::BoundedWorkers(int count, int most, std::atomic<int>& number)
    : mostWaiting(static_cast<std::size_t>(most)),
      waitingNow(number)
{
    for (int i = 0; i < count; ++i) {
        threads.emplace_back([this] { work(); });
    }
}

void BoundedWorkers::enqueue(std::function<void()> task)
{
    std::unique_lock<std::mutex> guard(mutex);
    changed.wait(guard, [this] { return waiting.size() < mostWaiting; });
    waiting.push_back(std::move(task));
    ++waitingNow;
    changed.notify_all();
}

void BoundedWorkers::shutdown()
{
    {
        const std::lock_guard<std::mutex> guard(mutex);
        isEnding = true;
    }
    changed.notify_all();
    for (std::thread& thread : threads) {
        thread.join();
    }
}

// On a thread of its own.
void BoundedWorkers::work()
{
    for (;;) {
        std::function<void()> task;
        {
            std::unique_lock<std::mutex> guard(mutex);
            changed.wait(guard, [this] { return isEnding || !waiting.empty(); });
            if (waiting.empty()) {
                return;
            }
            task = std::move(waiting.front());
            waiting.pop_front();
            --waitingNow;
        }
        changed.notify_all();
        task();
    }
}

} // namespace Corvane::Server
