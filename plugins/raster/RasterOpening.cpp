#include <plugins/raster/RasterOpening.h>

#include <plugins/raster/GdalRasterLayer.h>
#include <plugins/raster/GdalSupport.h>
#include <plugins/raster/RasterSource.h>

#include <QMetaObject>
#include <QThreadPool>

#include <chrono>
#include <utility>

namespace Corvane::Map {

namespace {

constexpr int priority = 1; // before the tiles, which have 0

} // namespace

RasterOpening::RasterOpening(GdalRasterLayer* rasterLayer, QString toOpen)
    : layer(rasterLayer),
      dataSource(std::move(toOpen))
{
}

void RasterOpening::start()
{
    QThreadPool::globalInstance()->start([self = shared_from_this()] { self->open(); }, priority);
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
        QMetaObject::invokeMethod(
            layer, [target = layer] { target->takeOpened(); }, Qt::QueuedConnection);
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
