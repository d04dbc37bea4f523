#include <plugins/common/RefreshPacer.h>

#include <utility>

namespace Corvane::Map {

namespace {

constexpr int shortestInterval = 33; // milliseconds between two repaints of an incomplete view

} // namespace

RefreshPacer::RefreshPacer(std::function<void()> refreshLayer) : refresh(std::move(refreshLayer))
{
    timer.setSingleShot(true);
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, &timer, [this] { refreshNow(); });
}

void RefreshPacer::tilesArrived(bool complete)
{
    const qint64 elapsed = sinceLast.isValid() ? sinceLast.elapsed() : shortestInterval;
    if (complete || elapsed >= shortestInterval) {
        refreshNow();
    } else if (!timer.isActive()) {
        timer.start(static_cast<int>(shortestInterval - elapsed));
    }
}

void RefreshPacer::refreshNow()
{
    timer.stop();
    sinceLast.start();
    refresh();
}

} // namespace Corvane::Map
