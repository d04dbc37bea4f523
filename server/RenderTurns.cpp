#include <server/RenderTurns.h>

#include <algorithm>
#include <utility>

namespace Corvane::Server {

RenderTurns::RenderTurns(int atOnce, std::chrono::milliseconds longest,
                         std::chrono::milliseconds respite)
    : limit(longest),
      grace(respite),
      freePlaces(atOnce),
      watcher([this] { watch(); })
{
}

RenderTurns::~RenderTurns()
{
    stop();
    watcher.join();
}

RenderTurns::Turn::Turn(RenderTurns& all, QString of)
    : turns(all),
      subject(std::move(of)),
      end(std::chrono::steady_clock::now() + all.limit)
{
    std::unique_lock<std::mutex> guard(turns.mutex);
    const auto isDecided = [this] {
        return turns.freePlaces > 0 || turns.isStopping || turns.isLost(subject);
    };
    const bool came = turns.changed.wait_until(guard, end, isDecided);
    taken = came && !turns.isStopping && !turns.isLost(subject);
    over = !taken;
    if (taken) {
        hasPlace = true;
        --turns.freePlaces;
        turns.atWork.push_back(this);
        turns.changed.notify_all();
    }
}

RenderTurns::Turn::~Turn()
{
    if (taken) {
        const std::lock_guard<std::mutex> guard(turns.mutex);
        turns.atWork.remove(this);
        turns.takeBack(*this);
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

int RenderTurns::lostCount() const
{
    const std::lock_guard<std::mutex> guard(mutex);
    return static_cast<int>(std::count_if(atWork.begin(), atWork.end(),
                                          [](const Turn* turn) { return !turn->hasPlace; }));
}

// This and the next one under mutex.
bool RenderTurns::isLost(const QString& subject) const
{
    return std::any_of(atWork.begin(), atWork.end(), [&subject](const Turn* turn) {
        return !turn->hasPlace && turn->subject == subject;
    });
}

void RenderTurns::takeBack(Turn& turn)
{
    if (std::exchange(turn.hasPlace, false)) {
        ++freePlaces;
    }
}

// On a thread of its own.
void RenderTurns::watch()
{
    std::unique_lock<std::mutex> guard(mutex);
    while (!isStopping) {
        const auto now = std::chrono::steady_clock::now();
        auto next = now + limit;
        for (Turn* const turn : atWork) {
            if (turn->end > now) {
                next = std::min(next, turn->end);
                continue;
            }
            turn->over = true;
            if (turn->end + grace <= now && turn->hasPlace) {
                takeBack(*turn);
                changed.notify_all();
            } else if (turn->hasPlace) {
                next = std::min(next, turn->end + grace);
            }
        }
        changed.wait_until(guard, next);
    }
}

} // namespace Corvane::Server
