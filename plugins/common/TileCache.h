#pragma once

#include <QByteArray>
#include <QNetworkDiskCache>
#include <QString>
#include <QUrl>

#include <atomic>
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
    bool mayStandIn = false; ///< also past its time, while the server does not answer
};

/// How full a cache is, in bytes; without a limit there is none.
struct CacheFill
{
    qint64 bytes = 0;
    qint64 limit = 0;
};

/// Where a plugin's cache is; an empty folder stands for none.
struct CachePlace
{
    QString folder;
    qint64 limit = 0; // bytes
};

/// The answers of all sources of a plugin on disk, for as long as their servers allow, in the format
/// of QNetworkDiskCache. Any thread.
class TileCache
{
public:
    static constexpr int usualMegabytes = 256;

    static TileCache& instance();
    /// In the user's cache folder, in a folder named after the plugin, with the size that the setting
    /// "Plugins/NAME/DiskCacheMB" names; 0 for none. On the GUI thread.
    static CachePlace placeFor(const QString& plugin);

    /// Puts it where the settings say. Once; on the GUI thread.
    void setUp(const QString& plugin);
    /// An empty folder stands for no cache. limit in bytes; a smaller one than before takes a while.
    void setFolder(const QString& folder, qint64 limit);

    std::optional<CachedAnswer> find(const QUrl& url);
    /// Keeps the answer where it may be kept; what was kept before goes in any case.
    void store(const QUrl& url, const FetchResult& answer);
    /// The server says that what is kept still holds.
    void renew(const QUrl& url, const FetchResult& answer);
    void remove(const QUrl& url);
    /// From now on the server is asked about what was kept before, however fresh it is.
    void distrust();
    /// Counts once, which takes a while.
    CacheFill fill();
    /// Takes a while; then it is empty.
    void clear();

private:
    TileCache() = default;
    ~TileCache();

    // Guards cache, which is for one thread at a time, whole calls with their files: so short a
    // time costs less than a cache of our own.
    std::mutex mutex;
    QNetworkDiskCache cache;
    std::atomic<qint64> distrusted{0}; // since when, milliseconds since 1970
    bool isOn = false;
    std::atomic<bool> wasSetUp{false};
};

} // namespace Corvane::Map
