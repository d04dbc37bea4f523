#pragma once

#include <plugins/common/LayerLifeline.h>
#include <plugins/common/PoolTask.h>

#include <QString>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>

namespace Corvane::Map {

/// Something that a pool thread makes for a layer, before all tiles: a source that is opened, a
/// picture that is drawn. Held by shared pointer: a layer that loses interest leaves it to end by
/// itself.
template <typename Result>
class PoolJob : public std::enable_shared_from_this<PoolJob<Result>>
{
public:
    /// Works on a pool thread: the result, or null with the reason in error. Stops early once
    /// abandoned is true.
    using Work =
        std::function<std::shared_ptr<Result>(QString* error, const std::atomic<bool>& abandoned)>;
    /// Posts to a slot of the layer, by its name, that it has ended or that the work has news. On a pool thread, while the layer is there.
    using Tell = std::function<void()>;

    PoolJob(Work toDo, Tell tellLayer) : work(std::move(toDo)), tell(std::move(tellLayer)) {}

    void start()
    {
        startOnPool([self = this->shared_from_this()] { self->run(); }, priority);
    }
    /// The same for work that waits for a server: beside the pool.
    void startRemote()
    {
        startBesidePool([self = this->shared_from_this()] { self->run(); });
    }
    /// The same for work that takes minutes: at a low priority.
    void startInBackground()
    {
        Map::startInBackground([self = this->shared_from_this()] { self->run(); });
    }
    /// Whether it has ended, after waiting for it; a negative time waits without end.
    bool waitFor(int milliseconds)
    {
        std::unique_lock<std::mutex> guard(mutex);
        const auto done = [this] { return isDone; };
        if (milliseconds < 0) {
            ended.wait(guard, done);
            return true;
        }
        return ended.wait_for(guard, std::chrono::milliseconds(milliseconds), done);
    }
    /// Once it has ended: what came of it, or null with the reason in error. The layer is not
    /// touched once this returns.
    std::shared_ptr<Result> result(QString* error)
    {
        lifeline.close(); // a thread may be about to tell what the layer has seen by itself
        const std::lock_guard<std::mutex> guard(mutex);
        *error = failure;
        return std::move(made);
    }
    /// For the work: tells the layer that there is something to look at before the end.
    void tellMeanwhile()
    {
        if (lifeline.enter()) {
            tell();
            lifeline.leave();
        }
    }
    /// From now on the layer is told when it ends. False where it has ended before.
    bool startTelling()
    {
        const std::lock_guard<std::mutex> guard(mutex);
        telling = !isDone;
        return telling;
    }
    bool tellsLayer()
    {
        const std::lock_guard<std::mutex> guard(mutex);
        return telling;
    }
    /// The layer is not touched once this returns.
    void abandon()
    {
        abandoned = true;
        lifeline.close();
    }

private:
    static constexpr int priority = 1; // before the tiles, which have 0

    // On a pool thread.
    void run()
    {
        QString error;
        std::shared_ptr<Result> result = work(&error, abandoned);
        bool tells = false;
        {
            const std::lock_guard<std::mutex> guard(mutex);
            made = std::move(result);
            failure = error;
            isDone = true;
            tells = telling;
            ended.notify_all();
        }
        if (tells && lifeline.enter()) {
            tell();
            lifeline.leave();
        }
    }

    Work work;
    Tell tell; // called inside the lifeline only
    LayerLifeline lifeline;
    std::atomic<bool> abandoned{false};
    std::mutex mutex; // guards what follows
    std::condition_variable ended;
    bool isDone = false;
    bool telling = false;
    QString failure;
    std::shared_ptr<Result> made;
};

} // namespace Corvane::Map
