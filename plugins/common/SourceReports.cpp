#include <plugins/common/SourceReports.h>

#include <plugins/common/OpeningRetry.h>

#include <QRegularExpression>
#include <QUrl>

#include <algorithm>

namespace Corvane::Map {

QString hostOf(const QString& dataSource)
{
    // "/vsicurl/http://host/...", "/vsicurl?max_retry=3&url=http%3A%2F%2Fhost", "/vsizip/vsicurl/..."
    static const auto& address = // see PoolActivity
        *new QRegularExpression(QStringLiteral("[A-Za-z][A-Za-z0-9+.-]*://[^/?#&|]+"));
    static const auto& store = *new QRegularExpression( // see PoolActivity
        QStringLiteral("/vsi(?:s3|gs|az|oss|swift|webhdfs)(?:_streaming)?/([^/]+)"));
    const QString text = dataSource.contains(QLatin1String("%3A%2F%2F"), Qt::CaseInsensitive)
                             ? QUrl::fromPercentEncoding(dataSource.toUtf8())
                             : dataSource;
    const QUrl url(address.match(text).captured());
    if (!url.host().isEmpty()) {
        return url.port() < 0 ? url.host()
                              : QStringLiteral("%1:%2").arg(url.host()).arg(url.port());
    }
    return store.match(text).captured(1);
}

SourceReport reportClosed(const QString& dataSource, bool isOpening, const OpeningRetry& retry,
                          const QString& reason)
{
    SourceReport report;
    report.host = hostOf(dataSource);
    report.reason = reason;
    report.waitingUntil = retry.getDue();
    if (isOpening) {
        report.state = SourceReport::State::Opening;
    } else if (retry.getDue() > 0) {
        report.state = SourceReport::State::Waiting;
    } else {
        report.state =
            reason.isEmpty() ? SourceReport::State::Unasked : SourceReport::State::Failed;
    }
    return report;
}

SourceReport reportOpen(const QString& dataSource, const SourceHealth::Report& health,
                        bool showsStale)
{
    using Health = SourceHealth::State;
    using State = SourceReport::State;
    SourceReport report;
    report.host = hostOf(dataSource);
    report.reason = health.reason;
    report.waitingUntil = health.waitingUntil;
    report.answerTime = health.answerTime;
    switch (health.state) {
    case Health::Unasked:
        report.state = State::Unasked;
        break;
    case Health::Reachable:
        report.state = State::Reachable;
        break;
    case Health::Slow:
        report.state = State::Slow;
        break;
    case Health::Failing:
        report.state = showsStale ? State::Stale : State::Failed;
        break;
    case Health::Waiting:
        report.state = showsStale ? State::Stale : State::Waiting;
        break;
    }
    return report;
}

bool isPassing(int status)
{
    constexpr int requestTimeout = 408;
    constexpr int tooEarly = 425;
    constexpr int tooMany = 429;
    const bool isRefusal = status >= 400 && status < 500 && status != requestTimeout &&
                           status != tooEarly && status != tooMany;
    const bool isAnswer = status >= 200 && status < 400;
    return !isRefusal && !isAnswer;
}

} // namespace Corvane::Map
