#include <plugins/common/SourceHealth.h>

#include <plugins/common/WebClock.h>

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
constexpr qint64 slowAnswer = 2000; // milliseconds
constexpr qint64 answersInMean = 4;

qint64 pauseAfter(int pauses)
{
    return std::min(firstPause << std::min(pauses, 10), longestPause);
}

} // namespace

SourceHealth::SourceHealth(QString sourceName) : name(std::move(sourceName)) {}

void SourceHealth::succeeded(qint64 answerTime)
{
    const qint64 now = WebClock::now();
    const std::lock_guard<std::mutex> guard(mutex);
    meanAnswerTime = meanAnswerTime == never
                         ? answerTime
                         : meanAnswerTime + (answerTime - meanAnswerTime) / answersInMean;
    if (pausedUntil > now) {
        return; // it was under way when the pause began, which the server may have asked for
    }
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
        Application::logMessage(QStringLiteral("the server of %1 fails, left alone for %2 s: %3")
                                    .arg(name)
                                    .arg((pause + second - 1) / second)
                                    .arg(newReason),
                                LogLevel::Warning, QDateTime::currentDateTime());
    }
}

void SourceHealth::forgive()
{
    const std::lock_guard<std::mutex> guard(mutex);
    failedTiles.clear();
    failures = 0;
    pauses = 0;
    pausedUntil = 0;
}

bool SourceHealth::isPaused() const
{
    const std::lock_guard<std::mutex> guard(mutex);
    return pausedUntil > WebClock::now();
}

SourceHealth::Report SourceHealth::report() const
{
    const qint64 now = WebClock::now();
    const std::lock_guard<std::mutex> guard(mutex);
    Report report;
    report.reason = reason;
    report.answerTime = std::max<qint64>(meanAnswerTime, 0);
    if (pausedUntil > now) {
        report.state = State::Waiting;
        report.waitingUntil = pausedUntil;
    } else if (!reason.isEmpty()) {
        report.state = State::Failing;
    } else if (meanAnswerTime != never) {
        report.state = meanAnswerTime > slowAnswer ? State::Slow : State::Reachable;
    }
    return report;
}

QString SourceHealth::stateText() const
{
    const Report now = report();
    if (now.state == State::Waiting) {
        const qint64 rest = now.waitingUntil - WebClock::now();
        return QCoreApplication::translate("SourceHealth", "left alone for %1 s: %2")
            .arg((rest + second - 1) / second)
            .arg(now.reason);
    }
    return now.state == State::Failing
               ? QCoreApplication::translate("SourceHealth", "failing: %1").arg(now.reason)
               : QCoreApplication::translate("SourceHealth", "ready");
}

QString SourceHealth::lastFailure() const
{
    const std::lock_guard<std::mutex> guard(mutex);
    return reason;
}

} // namespace Corvane::Map
