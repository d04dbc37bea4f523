#include <plugins/common/TileCache.h>

#include <plugins/common/Freshness.h>
#include <plugins/common/HttpFetch.h>
#include <plugins/common/PoolActivity.h>
#include <plugins/common/WebClock.h>

#include <corvane/core/Application.h>

#include <QDateTime>
#include <QIODevice>
#include <QNetworkCacheMetaData>
#include <QNetworkRequest>
#include <QSettings>
#include <QStandardPaths>

#include <memory>

namespace Corvane::Map {

namespace {

// When the server gave the answer, or said that it still holds; milliseconds since 1970.
constexpr auto confirmedAt = QNetworkRequest::User;

constexpr int okStatus = 200;

// What is kept of the headers. The body lies unpacked, so its length and packing are not.
const char* const keptHeaders[] = {
    "Content-Type", "ETag", "Last-Modified", "Cache-Control", "Expires", "Date", "Age"};

QByteArray rawHeader(const QNetworkCacheMetaData& data, const char* name)
{
    for (const auto& header : data.rawHeaders()) {
        if (qstricmp(header.first.constData(), name) == 0) {
            return header.second;
        }
    }
    return QByteArray();
}

QNetworkCacheMetaData metaDataOf(const QUrl& url, const FetchResult& answer, qint64 expires)
{
    QNetworkCacheMetaData data;
    data.setUrl(url);
    data.setSaveToDisk(true);
    data.setExpirationDate(QDateTime::fromMSecsSinceEpoch(expires, Qt::UTC));
    if (const auto modified = httpTime(answer.header("Last-Modified"))) {
        data.setLastModified(QDateTime::fromMSecsSinceEpoch(*modified, Qt::UTC));
    }
    QNetworkCacheMetaData::RawHeaderList headers;
    for (const char* const name : keptHeaders) {
        const QByteArray value = answer.header(name);
        if (!value.isEmpty()) {
            headers.append({QByteArray(name), value});
        }
    }
    data.setRawHeaders(headers);
    QNetworkCacheMetaData::AttributesMap attributes;
    attributes.insert(QNetworkRequest::HttpStatusCodeAttribute, okStatus);
    attributes.insert(confirmedAt, WebClock::now());
    data.setAttributes(attributes);
    return data;
}

// The answer to a check names what has changed; the rest stays, and what kind of picture was kept
// is not for an answer without a body to say.
FetchResult merged(const QNetworkCacheMetaData& kept, const FetchResult& answer)
{
    FetchResult result;
    for (const char* const name : keptHeaders) {
        const bool isOfBody = qstrcmp(name, "Content-Type") == 0;
        const QByteArray fresh = isOfBody ? QByteArray() : answer.header(name);
        const QByteArray value = fresh.isEmpty() ? rawHeader(kept, name) : fresh;
        // the age belongs to the one answer that brought it
        const bool isOld =
            fresh.isEmpty() && (qstrcmp(name, "Age") == 0 || qstrcmp(name, "Date") == 0);
        if (!value.isEmpty() && !isOld) {
            result.addHeader(name, value);
        }
    }
    return result;
}

} // namespace

TileCache& TileCache::instance()
{
    static TileCache cache;
    return cache;
}

// Requests that are under way at the end of the program want the cache until they have ended.
TileCache::~TileCache()
{
    PoolActivity::end();
}

CachePlace TileCache::placeFor(const QString& plugin)
{
    Application* const application = Application::instance();
    const QString key = QStringLiteral("Plugins/%1/DiskCacheMB").arg(plugin);
    const qint64 megabytes =
        application ? application->getSettings()->value(key, usualMegabytes).toLongLong() : 0;
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
    if (megabytes <= 0 || folder.isEmpty()) {
        return {};
    }
    return {folder + QLatin1Char('/') + plugin.toLower(), megabytes << 20};
}

void TileCache::setUp(const QString& plugin)
{
    if (!wasSetUp) {
        const CachePlace place = placeFor(plugin);
        setFolder(place.folder, place.limit);
    }
}

void TileCache::setFolder(const QString& folder, qint64 limit)
{
    const std::lock_guard<std::mutex> guard(mutex);
    wasSetUp = true;
    isOn = !folder.isEmpty();
    if (isOn) {
        cache.setCacheDirectory(folder);
        cache.setMaximumCacheSize(limit);
    }
}

std::optional<CachedAnswer> TileCache::find(const QUrl& url)
{
    CachedAnswer found;
    QNetworkCacheMetaData data;
    {
        const std::lock_guard<std::mutex> guard(mutex);
        const std::unique_ptr<QIODevice> device(isOn ? cache.data(url) : nullptr);
        if (!device) {
            return std::nullopt;
        }
        data = cache.metaData(url);
        found.body = device->readAll();
    }
    found.contentType = rawHeader(data, "Content-Type");
    found.etag = rawHeader(data, "ETag");
    found.lastModified = rawHeader(data, "Last-Modified");
    const QByteArray control = rawHeader(data, "Cache-Control").toLower();
    found.mayStandIn = !control.contains("must-revalidate") && !control.contains("no-cache");
    found.isFresh = data.expirationDate().toMSecsSinceEpoch() > WebClock::now() &&
                    data.attributes().value(confirmedAt).toLongLong() > distrusted;
    return found;
}

void TileCache::distrust()
{
    distrusted = WebClock::now();
}

void TileCache::store(const QUrl& url, const FetchResult& answer)
{
    const Freshness freshness = freshnessOf(answer, WebClock::now());
    const std::lock_guard<std::mutex> guard(mutex);
    if (!isOn) {
        return;
    }
    cache.remove(url);
    if (!freshness.mayStore) {
        return;
    }
    // owned by the cache
    QIODevice* const device = cache.prepare(metaDataOf(url, answer, freshness.expires));
    if (!device) {
        return;
    }
    if (device->write(answer.body) == answer.body.size()) {
        cache.insert(device);
    } else {
        cache.remove(url);
    }
}

void TileCache::renew(const QUrl& url, const FetchResult& answer)
{
    const std::lock_guard<std::mutex> guard(mutex);
    const QNetworkCacheMetaData kept = isOn ? cache.metaData(url) : QNetworkCacheMetaData();
    if (!kept.isValid()) {
        return;
    }
    const FetchResult both = merged(kept, answer);
    const Freshness freshness = freshnessOf(both, WebClock::now());
    if (freshness.mayStore) {
        cache.updateMetaData(metaDataOf(url, both, freshness.expires));
    } else {
        cache.remove(url);
    }
}

void TileCache::remove(const QUrl& url)
{
    const std::lock_guard<std::mutex> guard(mutex);
    if (isOn) {
        cache.remove(url);
    }
}

CacheFill TileCache::fill()
{
    const std::lock_guard<std::mutex> guard(mutex);
    return isOn ? CacheFill{cache.cacheSize(), cache.maximumCacheSize()} : CacheFill();
}

void TileCache::clear()
{
    const std::lock_guard<std::mutex> guard(mutex);
    if (isOn) {
        cache.clear();
    }
}

} // namespace Corvane::Map
