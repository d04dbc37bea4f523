#include <plugins/common/PoolTask.h>

#include <plugins/common/PoolActivity.h>

#include <QThread>
#include <QThreadPool>

#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

#ifdef Q_OS_LINUX
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>
#endif

namespace Corvane::Map {

namespace {

constexpr int mostWaitingThreads = 16; // each of them sleeps in a socket

// The tasks of a pool that no thread has taken up, by priority. They pass through our own mutex instead
// of the pool's queue, whose hand-over a thread sanitizer does not see.
struct Waiting
{
    std::mutex mutex; // guards tasks
    std::map<int, std::deque<std::function<void()>>> tasks;
};

// Never destroyed: a thread may take up a task while the process ends.
Waiting& waitingForPool()
{
    static auto* const all = new Waiting;
    return *all;
}

Waiting& waitingBesidePool()
{
    static auto* const all = new Waiting;
    return *all;
}

Waiting& waitingInBackground()
{
    static auto* const all = new Waiting;
    return *all;
}

QThreadPool* newPool(int threads)
{
    auto* const pool = new QThreadPool;
    pool->setMaxThreadCount(threads);
    return pool;
}

// The same.
QThreadPool& threadsBesidePool()
{
    static QThreadPool* const threads = newPool(mostWaitingThreads);
    return *threads;
}

// The same.
QThreadPool& backgroundThread()
{
    static QThreadPool* const thread = newPool(1);
    return *thread;
}

// Of this thread alone, for good: whatever else wants a processor goes first.
void lowerPriority()
{
#ifdef Q_OS_LINUX // where Qt's priorities change nothing
    constexpr int niceness = 5;
    const auto self = static_cast<id_t>(::syscall(SYS_gettid));
    ::setpriority(PRIO_PROCESS, self, niceness);
#else
    QThread::currentThread()->setPriority(QThread::LowPriority);
#endif
}

std::function<void()> takeWaiting(Waiting& waiting, int priority)
{
    const std::lock_guard<std::mutex> guard(waiting.mutex);
    auto& queue = waiting.tasks[priority];
    std::function<void()> next = std::move(queue.front());
    queue.pop_front();
    return next;
}

void start(QThreadPool& pool, Waiting& waiting, std::function<void()> task, int priority)
{
    // it counts from here on: the plugin is not unloaded before the task has had its turn
    auto counted = [activity = std::make_shared<PoolActivity>(), run = std::move(task)] { run(); };
    {
        const std::lock_guard<std::mutex> guard(waiting.mutex);
        waiting.tasks[priority].push_back(std::move(counted));
    }
    pool.start([&waiting, priority] { takeWaiting(waiting, priority)(); }, priority);
}

} // namespace

void startOnPool(std::function<void()> task, int priority)
{
    start(*QThreadPool::globalInstance(), waitingForPool(), std::move(task), priority);
}

void startBesidePool(std::function<void()> task)
{
    start(threadsBesidePool(), waitingBesidePool(), std::move(task), 0);
}

void startInBackground(std::function<void()> task)
{
    auto low = [run = std::move(task)] {
        lowerPriority();
        run();
    };
    start(backgroundThread(), waitingInBackground(), std::move(low), 0);
}

} // namespace Corvane::Map
