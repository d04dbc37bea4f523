#include <plugins/common/Freshness.h>

#include <plugins/common/HttpFetch.h>

#include <curl/curl.h>

#include <QList>

#include <algorithm>

namespace Corvane::Map {

namespace {

constexpr qint64 second = 1000;
constexpr qint64 longestLife = 365LL * 24 * 3600 * second;
constexpr qint64 longestRetry = 24LL * 3600 * second;

// "a, b=\"c, d\"" in two, lower case.
QList<QByteArray> directives(const QByteArray& header)
{
    QList<QByteArray> result;
    QByteArray current;
    bool quoted = false;
    for (const char character : header) {
        if (character == '"') {
            quoted = !quoted;
        } else if (character == ',' && !quoted) {
            result.append(current.trimmed().toLower());
            current.clear();
        } else {
            current += character;
        }
    }
    result.append(current.trimmed().toLower());
    return result;
}

bool has(const QList<QByteArray>& directives, const QByteArray& name)
{
    return std::any_of(directives.begin(), directives.end(), [&name](const QByteArray& directive) {
        return directive == name || directive.startsWith(name + '=');
    });
}

// Seconds, as milliseconds; nothing where the text is no number.
std::optional<qint64> secondsIn(const QByteArray& text)
{
    const QByteArray digits = text.trimmed();
    const bool plain = !digits.isEmpty() && std::all_of(digits.begin(), digits.end(), [](char c) {
        return c >= '0' && c <= '9';
    });
    if (!plain) {
        return std::nullopt;
    }
    bool fits = false;
    const qint64 number = digits.toLongLong(&fits);
    return fits ? std::min(number, longestLife / second) * second : longestLife;
}

std::optional<qint64> maxAge(const QList<QByteArray>& directives)
{
    const QByteArray name("max-age=");
    for (const QByteArray& directive : directives) {
        if (directive.startsWith(name)) {
            return secondsIn(directive.mid(name.size())).value_or(0);
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<qint64> httpTime(const QByteArray& text)
{
    // "0" and "-1" stand for the past, and are no dates
    const bool isDate = text.contains(':');
    const time_t time = isDate ? curl_getdate(text.constData(), nullptr) : -1;
    return time < 0 ? std::nullopt : std::optional<qint64>(qint64{time} * second);
}

Freshness freshnessOf(const FetchResult& result, qint64 now)
{
    const QList<QByteArray> control = directives(result.header("Cache-Control"));
    const bool hasControl = !result.header("Cache-Control").isEmpty();
    const bool canBeChecked =
        !result.header("ETag").isEmpty() || !result.header("Last-Modified").isEmpty();
    const qint64 sent = httpTime(result.header("Date")).value_or(now);
    const qint64 onTheWay =
        std::max(std::max<qint64>(now - sent, 0), secondsIn(result.header("Age")).value_or(0));

    qint64 life = 0;
    const QByteArray expires = result.header("Expires");
    if (const auto age = maxAge(control)) {
        life = *age;
    } else if (!expires.isEmpty()) {
        life = httpTime(expires).value_or(sent) - sent;
    }
    const bool askAlways = has(control, "no-cache") ||
                           (!hasControl && has(directives(result.header("Pragma")), "no-cache"));
    Freshness freshness;
    freshness.expires = askAlways ? now : now + std::min(life, longestLife) - onTheWay;
    const bool forbidden = has(control, "no-store") || result.header("Vary").trimmed() == "*";
    freshness.mayStore = !forbidden && (canBeChecked || freshness.expires > now);
    return freshness;
}

qint64 retryTimeOf(const FetchResult& result, qint64 now)
{
    const QByteArray text = result.header("Retry-After");
    qint64 at = 0;
    if (const auto pause = secondsIn(text)) {
        at = now + std::min(*pause, longestRetry);
    } else if (const auto time = httpTime(text)) {
        at = std::min(*time, now + longestRetry);
    }
    return at > now ? at : 0;
}

} // namespace Corvane::Map
