#include <plugins/common/GdalAccess.h>

#include <plugins/common/SourceReports.h>

#include <cpl_conv.h>
#include <cpl_error.h>
#include <cpl_vsi.h>

#include <QDir>
#include <QDomElement>
#include <QRegularExpression>
#include <QStringList>
#include <QUrl>

#include <algorithm>
#include <mutex>

namespace Corvane::Map {

namespace {

void setOption(const char* name, const char* value)
{
    if (!CPLGetConfigOption(name, nullptr)) { // the user's own setting goes first
        CPLSetConfigOption(name, value);
    }
}

// Where the name of a virtual file system begins that reads over the network, which may stand within
// that of an archive: "/vsizip//vsicurl/http://server/archive.zip/image.tif". -1 without one.
int remoteSystem(const QString& name)
{
    static const auto& system = *new QRegularExpression( // see PoolActivity
        QStringLiteral("/vsi(?:curl|s3|gs|az|adls|oss|swift|webhdfs)"),
        QRegularExpression::CaseInsensitiveOption);
    return name.startsWith(QLatin1String("/vsi"), Qt::CaseInsensitive) ? name.indexOf(system) : -1;
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
    const auto prefixes = {QLatin1String("http://"), QLatin1String("https://"),
                           QLatin1String("s3://")};
    return remoteSystem(dataSource) >= 0 ||
           std::any_of(prefixes.begin(), prefixes.end(), [&dataSource](QLatin1String prefix) {
               return dataSource.startsWith(prefix, Qt::CaseInsensitive);
           });
}

bool isPlainFile(const QString& dataSource)
{
    // "NETCDF:file.nc:variable", "<VRTDataset>...", "/vsizip/archive.zip/image.tif" are for GDAL
    static const auto& forGdal = // see PoolActivity
        *new QRegularExpression(QStringLiteral("^(/vsi|<|[A-Za-z0-9_]{2,}:)"));
    return !forGdal.match(dataSource).hasMatch();
}

QString protocolOf(const QString& dataSource)
{
    if (dataSource.startsWith(QLatin1String("s3://"), Qt::CaseInsensitive) ||
        dataSource.mid(remoteSystem(dataSource)).startsWith(QLatin1String("/vsis3")))
    {
        return QStringLiteral("s3");
    }
    return isRemote(dataSource) ? QStringLiteral("http") : QStringLiteral("file");
}

bool mayPass(const QString& error)
{
    static const auto& httpStatus = *new QRegularExpression( // see PoolActivity
        QStringLiteral("HTTP (?:response|error) code\\s*: (\\d+)"));
    const auto status = httpStatus.match(error);
    return status.hasMatch() ? isPassing(status.captured(1).toInt())
                             : error.contains(QLatin1String("CURL error"));
}

void forgetRemote(const QString& name)
{
    // of an archive all that is known of its server: nothing tells where the archive's own name ends
    static const auto& server = // see PoolActivity
        *new QRegularExpression(QStringLiteral("^/[^/]+/(?:https?://)?[^/]+"));
    const int begin = remoteSystem(name);
    const QString known = begin > 0 ? server.match(name.mid(begin)).captured() : name;
    VSICurlPartialClearCache(known.toUtf8().constData());
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

QString nameForGdal(const QDomNode& element, const QDir& baseDir)
{
    const QString name =
        element.lastChildElement(QStringLiteral("datasource")).attribute(QStringLiteral("value"));
    if (!isPlainFile(name)) {
        return name;
    }
    const bool isMissing = QDir::isRelativePath(name) && !name.isEmpty() && !baseDir.exists(name);
    return isMissing ? QDir::cleanPath(baseDir.absoluteFilePath(name)) : QString();
}

SystemName nameOf(OGRSpatialReferenceH system)
{
    SystemName named;
    if (!system) {
        return named;
    }
    named.name = QString::fromUtf8(OSRGetName(system));
    char* text = nullptr;
    if (OSRExportToWkt(system, &text) == OGRERR_NONE) {
        named.wkt = QString::fromUtf8(text);
    }
    CPLFree(text);

    OGRSpatialReferenceH identified = OSRClone(system);
    if (!OSRGetAuthorityCode(identified, nullptr)) {
        OSRAutoIdentifyEPSG(identified);
    }
    const QString authority = QString::fromUtf8(OSRGetAuthorityName(identified, nullptr));
    if (authority.compare(QLatin1String("EPSG"), Qt::CaseInsensitive) == 0) {
        named.epsg = QString::fromUtf8(OSRGetAuthorityCode(identified, nullptr)).toInt();
    }
    OSRDestroySpatialReference(identified);
    return named;
}

DatasetPointer openDataset(const QString& name, unsigned int flags, const char* const* options,
                           bool remote, QString* error)
{
    const GdalErrors errors;
    // A listing of the folder costs a server many requests, and a file only one.
    CPLSetThreadLocalConfigOption("GDAL_DISABLE_READDIR_ON_OPEN", remote ? "EMPTY_DIR" : nullptr);
    DatasetPointer dataset(GDALOpenEx(name.toUtf8().constData(),
                                      GDAL_OF_READONLY | flags | GDAL_OF_VERBOSE_ERROR, nullptr,
                                      options, nullptr));
    CPLSetThreadLocalConfigOption("GDAL_DISABLE_READDIR_ON_OPEN", nullptr);
    if (!dataset && error) {
        *error = errors.text();
    }
    return dataset;
}

} // namespace Corvane::Map
