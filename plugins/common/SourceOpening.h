#pragma once

#include <plugins/common/LayerLifeline.h>
#include <plugins/common/PoolActivity.h>

#include <QString>
#include <QThreadPool>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>

namespace Corvane::Map {

/// The opening of a source on a pool thread, before all tiles. Held by shared pointer: a layer that
/// loses interest leaves it to end by itself.
template <typename Source>
class SourceOpening : public std::enable_shared_from_this<SourceOpening<Source>>
{
public:
    /// Opens on a pool thread: the source, or null with the reason in error. Stops early once
    /// abandoned is true.
    using Open =
        std::function<std::shared_ptr<Source>(QString* error, const std::atomic<bool>& abandoned)>;
    /// Posts to a slot of the layer, by its name, that it has ended. On a pool thread, while the layer is there.
    using Tell = std::function<void()>;

    SourceOpening(Open openSource, Tell tellLayer)
        : open(std::move(openSource)),
          tell(std::move(tellLayer))
    {
    }

    void start()
    {
        {
            const std::lock_guard<std::mutex> guard(queue().mutex);
            queue().openings.push_back(this->shared_from_this());
        }
        QThreadPool::globalInstance()->start([] { takeWaiting()->run(); }, priority);
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
    /// Once it has ended: the source, or null with the reason in error.
    std::shared_ptr<Source> result(QString* error)
    {
        const std::lock_guard<std::mutex> guard(mutex);
        *error = failure;
        return std::move(source);
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

    // The openings that no thread has taken up. They pass through our own mutex instead of the
    // pool's queue, whose hand-over a thread sanitizer does not see.
    struct Queue
    {
        std::mutex mutex; // guards openings
        std::deque<std::shared_ptr<SourceOpening>> openings;
    };

    static Queue& queue()
    {
        static Queue waiting;
        return waiting;
    }

    static std::shared_ptr<SourceOpening> takeWaiting()
    {
        const std::lock_guard<std::mutex> guard(queue().mutex);
        std::shared_ptr<SourceOpening> next = std::move(queue().openings.front());
        queue().openings.pop_front();
        return next;
    }

    // On a pool thread.
    void run()
    {
        const PoolActivity activity;
        QString error;
        std::shared_ptr<Source> opened = open(&error, abandoned);
        bool tells = false;
        {
            const std::lock_guard<std::mutex> guard(mutex);
            source = std::move(opened);
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

    Open open;
    Tell tell; // called inside the lifeline only
    LayerLifeline lifeline;
    std::atomic<bool> abandoned{false};
    std::mutex mutex; // guards what follows
    std::condition_variable ended;
    bool isDone = false;
    bool telling = false;
    QString failure;
    std::shared_ptr<Source> source;
};

} // namespace Corvane::Map
