#include <plugins/common/TileFetch.h>

#include <plugins/common/Freshness.h>
#include <plugins/common/HttpFetch.h>
#include <plugins/common/SourceReports.h>
#include <plugins/common/TileCache.h>
#include <plugins/common/TilePicture.h>
#include <plugins/common/WebClock.h>

#include <QCoreApplication>
#include <QUrl>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <set>

namespace Corvane::Map {

namespace {

constexpr int okStatus = 200;
constexpr int noContent = 204;
constexpr int notModified = 304;
constexpr int notFound = 404;
constexpr int gone = 410;
constexpr std::chrono::milliseconds askingInterval(25);

std::mutex turnMutex; // guards urlsUnderWay
std::condition_variable turnEnded;
std::set<QByteArray> urlsUnderWay;

/// Makes the holder the only one who asks for a URL.
class UrlTurn
{
public:
    UrlTurn(QByteArray wantedUrl, const std::function<bool()>& isUnwanted)
        : url(std::move(wantedUrl))
    {
        bool wanted = true;
        while (wanted && !take()) {
            wanted = !isUnwanted();
        }
    }
    ~UrlTurn()
    {
        if (taken) {
            const std::lock_guard<std::mutex> guard(turnMutex);
            urlsUnderWay.erase(url);
            turnEnded.notify_all();
        }
    }
    UrlTurn(const UrlTurn&) = delete;
    UrlTurn& operator=(const UrlTurn&) = delete;

    /// False where it is unwanted by now.
    bool isTaken() const { return taken; }

private:
    bool take()
    {
        std::unique_lock<std::mutex> guard(turnMutex);
        taken = urlsUnderWay.insert(url).second;
        if (!taken) {
            turnEnded.wait_for(guard, askingInterval);
        }
        return taken;
    }

    QByteArray url;
    bool taken = false;
};

TileAnswer failed(const QString& reason, qint64 retryAt = 0)
{
    TileAnswer answer;
    answer.failure = reason;
    answer.retryAt = retryAt;
    return answer;
}

TileAnswer ofKind(TileAnswer::Kind kind)
{
    TileAnswer answer;
    answer.kind = kind;
    return answer;
}

TileAnswer pictureOf(const QByteArray& body, const QByteArray& contentType)
{
    TileAnswer answer;
    answer.picture = decodeTile(body, contentType, &answer.failure);
    answer.kind = answer.picture.isNull() ? TileAnswer::Kind::Failed : TileAnswer::Kind::Picture;
    return answer;
}

FetchOrder fetchOrderFor(const TileOrder& tile, const QByteArray& url,
                         const std::optional<CachedAnswer>& kept)
{
    FetchOrder order;
    order.url = url;
    order.userAgent = tile.userAgent;
    order.deadline = tile.deadline;
    if (!tile.authorization.isEmpty()) {
        order.headers.push_back("Authorization: " + tile.authorization);
    }
    if (kept && !kept->etag.isEmpty()) {
        order.headers.push_back("If-None-Match: " + kept->etag);
    }
    if (kept && !kept->lastModified.isEmpty()) {
        order.headers.push_back("If-Modified-Since: " + kept->lastModified);
    }
    return order;
}

// No answer, or none for now: what was good once is better than nothing.
void letStandIn(TileAnswer& answer, const std::optional<CachedAnswer>& kept)
{
    if (answer.kind == TileAnswer::Kind::Failed && kept && kept->mayStandIn &&
        isPassing(answer.status)) {
        QString error;
        answer.picture = decodeTile(kept->body, kept->contentType, &error);
    }
}

// What the server's answer means; what is good is kept on disk.
TileAnswer understand(const FetchResult& result, const QUrl& url,
                      const std::optional<CachedAnswer>& kept)
{
    TileCache& cache = TileCache::instance();
    if (result.wasDropped) {
        return ofKind(TileAnswer::Kind::Dropped);
    }
    if (!result.failure.isEmpty()) {
        return failed(result.failure);
    }
    if (result.status == notModified && kept) {
        TileAnswer answer = pictureOf(kept->body, kept->contentType);
        if (answer.kind == TileAnswer::Kind::Picture) {
            cache.renew(url, result);
        } else {
            cache.remove(url); // else the server would confirm it for ever
        }
        return answer;
    }
    if (result.status == notFound || result.status == gone || result.status == noContent) {
        cache.remove(url);
        return ofKind(TileAnswer::Kind::Empty);
    }
    if (result.status != okStatus) {
        return failed(QCoreApplication::translate("TileFetch", "the server answers with status %1")
                          .arg(result.status),
                      retryTimeOf(result, WebClock::now()));
    }
    TileAnswer answer = pictureOf(result.body, result.header("Content-Type"));
    if (answer.kind == TileAnswer::Kind::Picture) {
        cache.store(url, result);
    }
    return answer;
}

} // namespace

TileAnswer findTile(const QUrl& url)
{
    const auto kept = TileCache::instance().find(url);
    TileAnswer answer =
        kept && kept->isFresh ? pictureOf(kept->body, kept->contentType) : failed(QString());
    letStandIn(answer, kept);
    return answer;
}

// On a pool thread.
TileAnswer fetchTile(const TileOrder& order, const std::function<bool()>& isUnwanted)
{
    const QUrl& url = order.url;
    const QByteArray encodedUrl = url.toEncoded();
    const UrlTurn turn(encodedUrl, isUnwanted);
    if (!turn.isTaken()) {
        return ofKind(TileAnswer::Kind::Dropped);
    }
    const auto kept = TileCache::instance().find(url);
    if (kept && kept->isFresh) {
        TileAnswer answer = pictureOf(kept->body, kept->contentType);
        if (answer.kind == TileAnswer::Kind::Picture) {
            return answer;
        }
    }
    const FetchResult result = fetch(fetchOrderFor(order, encodedUrl, kept), isUnwanted);
    TileAnswer answer = understand(result, url, kept);
    answer.fromServer = result.status != 0;
    answer.status = result.status;
    letStandIn(answer, kept);
    return answer;
}

} // namespace Corvane::Map
