#include <plugins/webtiles/SourceHealth.h>

#include <plugins/webtiles/WebClock.h>

#include <corvane/core/Application.h>

#include <QCoreApplication>
#include <QDateTime>

#include <algorithm>
#include <utility>

namespace Corvane::Map {

namespace {

// A few tiles may be broken for good; more than that in a row, and it is the server.
constexpr int patientFailures = 8;
constexpr std::size_t patientTiles = 4;
constexpr qint64 firstPause = 5000; // milliseconds, doubled each time
constexpr qint64 longestPause = 120000;
constexpr qint64 second = 1000;

qint64 pauseAfter(int pauses)
{
    return std::min(firstPause << std::min(pauses, 10), longestPause);
}

QString tr(const char* text)
{
    return QCoreApplication::translate("SourceHealth", text);
}

} // namespace

SourceHealth::SourceHealth(QString sourceName) : name(std::move(sourceName)) {}

void SourceHealth::succeeded()
{
    const std::lock_guard<std::mutex> guard(mutex);
    failedTiles.clear();
    failures = 0;
    pauses = 0;
    pausedUntil = 0;
    reason.clear();
    wasLogged = false;
}

void SourceHealth::failed(const TileId& tile, const QString& newReason, qint64 retryAt)
{
    const qint64 now = WebClock::now();
    qint64 pause = 0;
    bool log = false;
    {
        const std::lock_guard<std::mutex> guard(mutex);
        reason = newReason;
        if (pausedUntil > now && retryAt <= pausedUntil) {
            return; // it was under way when the pause began
        }
        ++failures;
        failedTiles.insert(tile);
        const bool relapsed = pauses > 0;
        const bool often = failures >= patientFailures && failedTiles.size() >= patientTiles;
        if (retryAt == 0 && !relapsed && !often) {
            return;
        }
        pausedUntil = std::max(retryAt, relapsed || often ? now + pauseAfter(pauses) : 0);
        ++pauses;
        pause = pausedUntil - now;
        log = !std::exchange(wasLogged, true);
    }
    if (log) {
        Application::logMessage(QStringLiteral("web tiles of %1 fail, left alone for %2 s: %3")
                                    .arg(name)
                                    .arg((pause + second - 1) / second)
                                    .arg(newReason),
                                LogLevel::Warning, QDateTime::currentDateTime());
    }
}

bool SourceHealth::isPaused() const
{
    const std::lock_guard<std::mutex> guard(mutex);
    return pausedUntil > WebClock::now();
}

QString SourceHealth::stateText() const
{
    const qint64 now = WebClock::now();
    const std::lock_guard<std::mutex> guard(mutex);
    if (pausedUntil > now) {
        return tr("left alone for %1 s: %2")
            .arg((pausedUntil - now + second - 1) / second)
            .arg(reason);
    }
    return failures > 0 ? tr("failing: %1").arg(reason) : tr("ready");
}

QString SourceHealth::lastFailure() const
{
    const std::lock_guard<std::mutex> guard(mutex);
    return reason;
}

} // namespace Corvane::Map
