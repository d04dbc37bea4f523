#include <plugins/raster/RasterOpening.h>

#include <plugins/raster/GdalRasterLayer.h>
#include <plugins/raster/GdalSupport.h>
#include <plugins/raster/RasterSource.h>

#include <QMetaObject>
#include <QThreadPool>

#include <chrono>
#include <deque>
#include <utility>

namespace Corvane::Map {

namespace {

constexpr int priority = 1; // before the tiles, which have 0

// The openings that no thread has taken up. They pass through our own mutex instead of the pool's
// queue, whose hand-over a thread sanitizer does not see.
std::mutex waitingMutex; // guards waiting
std::deque<std::shared_ptr<RasterOpening>>& waiting()
{
    static std::deque<std::shared_ptr<RasterOpening>> openings;
    return openings;
}

std::shared_ptr<RasterOpening> takeWaiting()
{
    const std::lock_guard<std::mutex> guard(waitingMutex);
    std::shared_ptr<RasterOpening> next = std::move(waiting().front());
    waiting().pop_front();
    return next;
}

} // namespace

RasterOpening::RasterOpening(GdalRasterLayer* rasterLayer, QString toOpen)
    : layer(rasterLayer),
      dataSource(std::move(toOpen))
{
}

void RasterOpening::start()
{
    {
        const std::lock_guard<std::mutex> guard(waitingMutex);
        waiting().push_back(shared_from_this());
    }
    QThreadPool::globalInstance()->start([] { takeWaiting()->open(); }, priority);
}

// On a pool thread.
void RasterOpening::open()
{
    const GdalActivity activity;
    QString error;
    std::shared_ptr<RasterSource> opened = RasterSource::open(dataSource, &error);
    bool tell = false;
    {
        const std::lock_guard<std::mutex> guard(mutex);
        source = std::move(opened);
        failure = error;
        isDone = true;
        tell = telling;
        ended.notify_all();
    }
    if (tell && lifeline.enter()) {
        QMetaObject::invokeMethod(layer, "takeOpened", Qt::QueuedConnection);
        lifeline.leave();
    }
}

bool RasterOpening::waitFor(int milliseconds)
{
    std::unique_lock<std::mutex> guard(mutex);
    const auto done = [this] { return isDone; };
    if (milliseconds < 0) {
        ended.wait(guard, done);
        return true;
    }
    return ended.wait_for(guard, std::chrono::milliseconds(milliseconds), done);
}

std::shared_ptr<RasterSource> RasterOpening::result(QString* error)
{
    const std::lock_guard<std::mutex> guard(mutex);
    *error = failure;
    return std::move(source);
}

bool RasterOpening::startTelling()
{
    const std::lock_guard<std::mutex> guard(mutex);
    telling = !isDone;
    return telling;
}

bool RasterOpening::tellsLayer()
{
    const std::lock_guard<std::mutex> guard(mutex);
    return telling;
}

void RasterOpening::abandon()
{
    lifeline.close();
}

} // namespace Corvane::Map
