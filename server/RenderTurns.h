#pragma once

#include <QString>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <list>
#include <mutex>
#include <thread>

namespace Corvane::Server {

/// Who may make pictures: so many threads at once and no more, each for so long and no longer. One that
/// does not end when it should gives its place to others, and its subject gets no other until it has
/// ended: some work cannot be stopped. Any thread.
class RenderTurns
{
public:
    /// limit is for the wait and the work together, grace for noticing that it is over.
    RenderTurns(int atOnce, std::chrono::milliseconds limit, std::chrono::milliseconds grace);
    ~RenderTurns();
    RenderTurns(const RenderTurns&) = delete;
    RenderTurns& operator=(const RenderTurns&) = delete;

    /// A place among those at work while it lives.
    class Turn
    {
    public:
        /// Waits for a place to work on the subject.
        Turn(RenderTurns& turns, QString subject);
        ~Turn();
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;

        /// False where none came free in time, or the subject does not end.
        bool isTaken() const { return taken; }
        /// Becomes true when the time is over, or the server stops.
        const std::atomic<bool>& isOver() const { return over; }

    private:
        friend class RenderTurns;

        RenderTurns& turns;
        const QString subject;
        std::chrono::steady_clock::time_point end;
        std::atomic<bool> over{false};
        bool taken = false;
        bool hasPlace = false; // under the mutex of turns
    };

    /// Ends all turns, and no new one begins.
    void stop();

    /// How many have not ended when they should.
    int lostCount() const;

private:
    bool isLost(const QString& subject) const;
    void takeBack(Turn& turn);
    void watch();

    const std::chrono::milliseconds limit;
    const std::chrono::milliseconds grace;
    mutable std::mutex mutex; // guards what follows
    std::condition_variable changed;
    std::list<Turn*> atWork; // those without a place among them
    int freePlaces;
    bool isStopping = false;
    std::thread watcher;
};

} // namespace Corvane::Server
