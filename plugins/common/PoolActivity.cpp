#include <plugins/common/PoolActivity.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>

namespace Corvane::Map {

namespace {

constexpr std::chrono::seconds longestWaitAtExit(30);

// One for the plugin. Its destructor runs before those of the libraries that the plugin depends on.
class Activities
{
public:
    void begin()
    {
        const std::lock_guard<std::mutex> guard(mutex);
        ++running;
    }
    void end()
    {
        const std::lock_guard<std::mutex> guard(mutex);
        --running;
        ended.notify_all();
    }
    ~Activities() { waitForAll(); }
    void waitForAll()
    {
        ending = true;
        std::unique_lock<std::mutex> guard(mutex);
        ended.wait_for(guard, longestWaitAtExit, [this] { return running == 0; });
    }

    std::atomic<bool> ending{false};

private:
    std::mutex mutex; // guards running
    std::condition_variable ended;
    int running = 0;
};

Activities activities;

} // namespace

PoolActivity::PoolActivity()
{
    activities.begin();
}

PoolActivity::~PoolActivity()
{
    activities.end();
}

void PoolActivity::end()
{
    activities.waitForAll();
}

bool PoolActivity::isEnding()
{
    return activities.ending;
}

} // namespace Corvane::Map
