#include <plugins/webtiles/WebTileOffer.h>

#include <plugins/common/HttpFetch.h>
#include <plugins/common/PoolActivity.h>
#include <plugins/common/SourceReports.h>
#include <plugins/webtiles/TilePreset.h>
#include <plugins/webtiles/WebTileSource.h>
#include <plugins/webtiles/WmtsCapabilities.h>

#include <QCoreApplication>
#include <QFile>
#include <QUrl>

namespace Corvane::Map {

namespace {

constexpr int okStatus = 200;
constexpr qint64 longestPreset = 1 << 20; // bytes

bool isCapabilities(const QString& dataSource)
{
    const QUrl url(dataSource);
    const QString scheme = url.scheme().toLower();
    const bool web = scheme == QLatin1String("http") || scheme == QLatin1String("https");
    return web && !dataSource.contains(QLatin1Char('{')) &&
           (dataSource.contains(QLatin1String("wmts"), Qt::CaseInsensitive) ||
            dataSource.contains(QLatin1String("getcapabilities"), Qt::CaseInsensitive) ||
            url.fragment().startsWith(QLatin1String("layer=")));
}

// "#layer=NAME" chooses one of several.
QString layerIn(const QUrl& url)
{
    const QString fragment = url.fragment(QUrl::FullyDecoded);
    const QString prefix = QStringLiteral("layer=");
    return fragment.startsWith(prefix) ? fragment.mid(prefix.size()) : QString();
}

std::shared_ptr<WebTileOffer> fetchCapabilities(const QString& dataSource,
                                                const WebTileSettings& settings,
                                                const std::atomic<bool>& abandoned, QString* error,
                                                bool* mayPass)
{
    QUrl url(dataSource);
    const QString layer = layerIn(url);
    url.setFragment(QString());
    FetchOrder order;
    order.url = url.toEncoded();
    order.userAgent = userAgentWith(settings.userAgentSuffix);
    order.deadline = settings.deadlineMilliseconds();
    const FetchResult answer =
        fetch(order, [&abandoned] { return abandoned || PoolActivity::isEnding(); });
    if (mayPass) {
        *mayPass = isPassing(answer.status);
    }
    if (!answer.failure.isEmpty()) {
        *error = answer.failure;
        return nullptr;
    }
    if (answer.status != okStatus) {
        *error = QCoreApplication::translate("WebTileOffer", "the server answers with status %1")
                     .arg(answer.status);
        return nullptr;
    }
    return readCapabilities(answer.body, layer, error);
}

} // namespace

bool isPreset(const QString& dataSource)
{
    return dataSource.endsWith(QLatin1String(".webtiles"), Qt::CaseInsensitive) &&
           !dataSource.contains(QLatin1String("://"));
}

bool isWebTileSource(const QString& dataSource)
{
    return TileTemplate::isTemplate(dataSource) || isPreset(dataSource) ||
           isCapabilities(dataSource);
}

std::shared_ptr<WebTileOffer> askForOffer(const QString& dataSource,
                                          const WebTileSettings& settings,
                                          const std::atomic<bool>& abandoned, QString* error,
                                          bool* mayPass)
{
    if (TileTemplate::isTemplate(dataSource)) {
        auto offer = std::make_shared<WebTileOffer>();
        offer->url = dataSource;
        return offer;
    }
    if (isPreset(dataSource)) {
        QFile file(dataSource);
        if (!file.open(QIODevice::ReadOnly)) {
            *error = file.errorString();
            return nullptr;
        }
        return readPreset(file.read(longestPreset), error);
    }
    if (isCapabilities(dataSource)) {
        return fetchCapabilities(dataSource, settings, abandoned, error, mayPass);
    }
    *error = QCoreApplication::translate("WebTileOffer", "this is no source of web tiles");
    return nullptr;
}

} // namespace Corvane::Map
