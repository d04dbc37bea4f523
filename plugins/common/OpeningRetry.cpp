#include <plugins/common/OpeningRetry.h>

#include <plugins/common/WebClock.h>

#include <algorithm>
#include <utility>

namespace Corvane::Map {

namespace {

constexpr qint64 firstPause = 2000; // milliseconds, doubled each time
constexpr qint64 longestPause = 120000;
constexpr int lookInterval = 250; // milliseconds

} // namespace

OpeningRetry::OpeningRetry(std::function<void()> toTryAgain) : tryAgain(std::move(toTryAgain))
{
    timer.setInterval(lookInterval);
    QObject::connect(&timer, &QTimer::timeout, &timer, [this] { look(); });
}

void OpeningRetry::failed()
{
    due = WebClock::now() + std::min(firstPause << std::min(pauses, 10), longestPause);
    ++pauses;
    timer.start();
}

void OpeningRetry::stop()
{
    timer.stop();
    due = 0;
}

void OpeningRetry::reset()
{
    stop();
    pauses = 0;
}

void OpeningRetry::look()
{
    if (due <= WebClock::now()) {
        stop();
        tryAgain();
    }
}

} // namespace Corvane::Map
