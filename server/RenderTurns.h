#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <list>
#include <mutex>
#include <thread>

namespace Corvane::Server {

/// Who may make pictures: so many threads at once and no more, each for so long and no longer.
/// Any thread.
class RenderTurns
{
public:
    /// limit is for the wait and the work together.
    RenderTurns(int atOnce, std::chrono::milliseconds limit);
    ~RenderTurns();
    RenderTurns(const RenderTurns&) = delete;
    RenderTurns& operator=(const RenderTurns&) = delete;

    /// A place among those at work while it lives.
    class Turn
    {
    public:
        /// Waits for a place.
        explicit Turn(RenderTurns& turns);
        ~Turn();
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;

        /// False where none came free in time.
        bool isTaken() const { return taken; }
        /// Becomes true when the time is over, or the server stops.
        const std::atomic<bool>& isOver() const { return over; }

    private:
        friend class RenderTurns;

        RenderTurns& turns;
        std::chrono::steady_clock::time_point end;
        std::atomic<bool> over{false};
        bool taken = false;
    };

    /// Ends all turns, and no new one begins.
    void stop();

private:
    void watch();

    const std::chrono::milliseconds limit;
    std::mutex mutex; // guards what follows
    std::condition_variable changed;
    std::list<Turn*> atWork; // the one that ends first at the front
    int freePlaces;
    bool isStopping = false;
    std::thread watcher;
};

} // namespace Corvane::Server
