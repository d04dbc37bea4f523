#include <server/RenderTurns.h>

#include <algorithm>

namespace Corvane::Server {

RenderTurns::RenderTurns(int atOnce, std::chrono::milliseconds longest)
    : limit(longest),
      freePlaces(atOnce),
      watcher([this] { watch(); })
{
}

RenderTurns::~RenderTurns()
{
    stop();
    watcher.join();
}

RenderTurns::Turn::Turn(RenderTurns& all)
    : turns(all),
      end(std::chrono::steady_clock::now() + all.limit)
{
    std::unique_lock<std::mutex> guard(turns.mutex);
    const bool came = turns.changed.wait_until(
        guard, end, [this] { return turns.freePlaces > 0 || turns.isStopping; });
    taken = came && !turns.isStopping;
    over = !taken;
    if (taken) {
        --turns.freePlaces;
        const auto later = std::find_if(turns.atWork.begin(), turns.atWork.end(),
                                        [this](const Turn* other) { return other->end > end; });
        turns.atWork.insert(later, this);
        turns.changed.notify_all();
    }
}

RenderTurns::Turn::~Turn()
{
    if (taken) {
        const std::lock_guard<std::mutex> guard(turns.mutex);
        turns.atWork.remove(this);
        ++turns.freePlaces;
        turns.changed.notify_all();
    }
}

void RenderTurns::stop()
{
    const std::lock_guard<std::mutex> guard(mutex);
    isStopping = true;
    for (Turn* const turn : atWork) {
        turn->over = true;
    }
    changed.notify_all();
}

// On a thread of its own.
void RenderTurns::watch()
{
    std::unique_lock<std::mutex> guard(mutex);
    while (!isStopping) {
        const auto now = std::chrono::steady_clock::now();
        auto next = now + limit;
        for (Turn* const turn : atWork) {
            if (turn->end <= now) {
                turn->over = true;
            } else {
                next = std::min(next, turn->end);
            }
        }
        changed.wait_until(guard, next);
    }
}

} // namespace Corvane::Server
