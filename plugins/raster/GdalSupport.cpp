#include <plugins/raster/GdalSupport.h>

#include <cpl_conv.h>
#include <cpl_error.h>

#include <QRegularExpression>
#include <QUrl>

#include <algorithm>
#include <mutex>
#include <set>

namespace Corvane::Map {

namespace {

constexpr GIntBig mebibyte = 1 << 20;
// Small blocks are decoded once, so a larger cache only costs: 8 threads decode about a third more
// JPEG tiles a second with it than with GDAL's own default of a twentieth of the memory.
constexpr GIntBig blockCacheBytes = 16 * mebibyte;
// A run of tiles over strips reads whole rows, and a reduced read comes back for each band: what
// does not stay is inflated again.
constexpr int cachedReads = 4;
constexpr GIntBig leastLargeCache = 64 * mebibyte;
constexpr GIntBig mostLargeCache = 512 * mebibyte;

std::mutex cacheMutex; // guards wantedBytes and the calls that follow from it
std::multiset<qint64>& wantedBytes()
{
    static std::multiset<qint64> all;
    return all;
}

void applyCacheSize()
{
    const auto& all = wantedBytes();
    const qint64 largest = all.empty() ? 0 : *all.rbegin();
    const GIntBig large =
        std::clamp<GIntBig>(largest * cachedReads, leastLargeCache, mostLargeCache);
    GDALSetCacheMax64(largest > 0 ? large : blockCacheBytes);
}

void setOption(const char* name, const char* value)
{
    if (!CPLGetConfigOption(name, nullptr)) { // the user's own setting goes first
        CPLSetConfigOption(name, value);
    }
}

} // namespace

void setUpGdal()
{
    static std::once_flag once;
    std::call_once(once, [] {
        GDALAllRegister();
        // Tiles are read by several threads already.
        CPLSetConfigOption("GDAL_NUM_THREADS", nullptr);
        // A dead server must not hold a pool thread for ever. In seconds.
        setOption("GDAL_HTTP_CONNECTTIMEOUT", "10");
        setOption("GDAL_HTTP_TIMEOUT", "30");
        setOption("CPL_VSIL_CURL_CACHE_SIZE", "67108864");
        applyCacheSize();
    });
}

GdalErrors::GdalErrors()
{
    CPLErrorReset();
    CPLPushErrorHandlerEx(&GdalErrors::collect, this);
}

GdalErrors::~GdalErrors()
{
    CPLPopErrorHandler();
}

void GdalErrors::collect(CPLErr kind, CPLErrorNum, const char* message)
{
    auto* const self = static_cast<GdalErrors*>(CPLGetErrorHandlerUserData());
    if (kind == CE_Warning) {
        self->warning = QString::fromUtf8(message);
    } else if (kind >= CE_Failure && self->error.isEmpty()) {
        self->error = QString::fromUtf8(message);
    }
}

QString GdalErrors::text() const
{
    return error.isEmpty() ? warning : error;
}

bool isRemote(const QString& dataSource)
{
    static const QStringList prefixes = {
        QStringLiteral("http://"),    QStringLiteral("https://"), QStringLiteral("s3://"),
        QStringLiteral("/vsicurl"),   QStringLiteral("/vsis3"),   QStringLiteral("/vsigs"),
        QStringLiteral("/vsiaz"),     QStringLiteral("/vsioss"),  QStringLiteral("/vsiswift"),
        QStringLiteral("/vsiwebhdfs")};
    return std::any_of(prefixes.begin(), prefixes.end(), [&dataSource](const QString& prefix) {
        return dataSource.startsWith(prefix, Qt::CaseInsensitive);
    });
}

bool isPlainFile(const QString& dataSource)
{
    // "NETCDF:file.nc:variable", "<VRTDataset>...", "/vsizip/archive.zip/image.tif" are for GDAL
    static const QRegularExpression forGdal(QStringLiteral("^(/vsi|<|[A-Za-z0-9_]{2,}:)"));
    return !forGdal.match(dataSource).hasMatch();
}

QString protocolOf(const QString& dataSource)
{
    if (dataSource.startsWith(QLatin1String("s3://"), Qt::CaseInsensitive) ||
        dataSource.startsWith(QLatin1String("/vsis3")))
    {
        return QStringLiteral("s3");
    }
    return isRemote(dataSource) ? QStringLiteral("http") : QStringLiteral("file");
}

QString gdalName(const QString& dataSource)
{
    if (dataSource.startsWith(QLatin1String("s3://"), Qt::CaseInsensitive)) {
        return QStringLiteral("/vsis3/") + dataSource.mid(5);
    }
    if (dataSource.startsWith(QLatin1String("http://"), Qt::CaseInsensitive) ||
        dataSource.startsWith(QLatin1String("https://"), Qt::CaseInsensitive))
    {
        return QStringLiteral("/vsicurl/") + dataSource;
    }
    if (dataSource.startsWith(QLatin1String("file:"), Qt::CaseInsensitive)) {
        return QUrl(dataSource).toLocalFile();
    }
    return dataSource;
}

DatasetPointer openDataset(const QString& name, bool remote, QString* error)
{
    const GdalErrors errors;
    // A listing of the folder costs a server many requests, and a file only one.
    CPLSetThreadLocalConfigOption("GDAL_DISABLE_READDIR_ON_OPEN", remote ? "EMPTY_DIR" : nullptr);
    DatasetPointer dataset(GDALOpenEx(name.toUtf8().constData(),
                                      GDAL_OF_READONLY | GDAL_OF_RASTER | GDAL_OF_VERBOSE_ERROR,
                                      nullptr, nullptr, nullptr));
    CPLSetThreadLocalConfigOption("GDAL_DISABLE_READDIR_ON_OPEN", nullptr);
    if (!dataset && error) {
        *error = errors.text();
    }
    return dataset;
}

BlockCacheShare::BlockCacheShare(qint64 bytes) : wanted(bytes)
{
    const std::lock_guard<std::mutex> guard(cacheMutex);
    wantedBytes().insert(wanted);
    applyCacheSize();
}

BlockCacheShare::~BlockCacheShare()
{
    const std::lock_guard<std::mutex> guard(cacheMutex);
    auto& all = wantedBytes();
    all.erase(all.find(wanted));
    applyCacheSize();
}

} // namespace Corvane::Map
