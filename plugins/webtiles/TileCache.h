#pragma once

#include <QByteArray>
#include <QNetworkDiskCache>
#include <QString>
#include <QUrl>

#include <mutex>
#include <optional>

namespace Corvane::Map {

struct FetchResult;

/// An answer that was kept.
struct CachedAnswer
{
    QByteArray body;
    QByteArray contentType;
    QByteArray etag;
    QByteArray lastModified;
    bool isFresh = false;
};

/// The answers of all web tile sources on disk, for as long as their servers allow, in the format
/// of QNetworkDiskCache. Any thread.
class TileCache
{
public:
    static TileCache& instance();

    /// In the user's cache folder, with the size that "Plugins/WebTiles/DiskCacheMB" names, 256
    /// unless set; 0 for none. Once; on the GUI thread.
    void setUp();
    /// An empty folder stands for no cache. limit in bytes.
    void setFolder(const QString& folder, qint64 limit);

    std::optional<CachedAnswer> find(const QUrl& url);
    /// Keeps the answer where it may be kept; what was kept before goes in any case.
    void store(const QUrl& url, const FetchResult& answer);
    /// The server says that what is kept still holds.
    void renew(const QUrl& url, const FetchResult& answer);
    void remove(const QUrl& url);

private:
    TileCache() = default;
    ~TileCache();

    // Guards cache, which is for one thread at a time, whole calls with their files: so short a
    // time costs less than a cache of our own.
    std::mutex mutex;
    QNetworkDiskCache cache;
    bool isOn = false;
    bool wasSetUp = false;
};

} // namespace Corvane::Map
