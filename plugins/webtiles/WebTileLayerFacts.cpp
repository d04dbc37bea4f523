// What a WebTileLayer answers about its source and settings; how it gets there stands in
// WebTileLayer.cpp.
#include <plugins/webtiles/WebTileLayer.h>

#include <plugins/common/SourceReports.h>
#include <plugins/webtiles/WebMercator.h>
#include <plugins/webtiles/WebTileOffer.h>

#include <QIcon>
#include <QUrl>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

namespace Corvane::Map {

namespace {

constexpr int bands = 3;
constexpr int unset = -1;
constexpr double shortestDeadline = 0.1; // seconds
constexpr double longestDeadline = 600.0;

// Whether it was another value.
template <typename Value>
bool change(Value& setting, const Value& value)
{
    return !(std::exchange(setting, value) == value);
}

} // namespace

QString WebTileLayer::getDataSource()
{
    return dataSource;
}

QIcon WebTileLayer::getIcon()
{
    return QIcon(QStringLiteral(":/resources/web.png"));
}

QString WebTileLayer::getFormat()
{
    return tr("Web tiles");
}

QString WebTileLayer::getCoordSysName()
{
    return source ? QStringLiteral("WGS 84 / Pseudo-Mercator") : QString();
}

QRectF WebTileLayer::getBounds()
{
    using WebMercator::edge;
    return source ? QRectF(-edge, edge, 2.0 * edge, -2.0 * edge) : QRectF();
}

bool WebTileLayer::isValid()
{
    return source != nullptr;
}

QString WebTileLayer::getLastError()
{
    return source ? source->health.lastFailure() : lastError;
}

QString WebTileLayer::getProtocol()
{
    return QUrl(offer ? offer->url : dataSource).scheme().toLower();
}

qint8 WebTileLayer::getPercentComplete()
{
    return static_cast<qint8>(opening ? 0 : view.percentComplete());
}

double WebTileLayer::getCellSizeX()
{
    return source ? std::ldexp(2.0 * WebMercator::edge / source->tileSize, -source->maxZoom) : 0.0;
}

double WebTileLayer::getCellSizeY()
{
    return -getCellSizeX();
}

int WebTileLayer::getNumberOfBands()
{
    return source ? bands : 0;
}

QVector<qint32> WebTileLayer::getBandList()
{
    return source ? QVector<qint32>{1, 2, 3} : QVector<qint32>();
}

void WebTileLayer::setBandList(QVector<qint32>) {}

QSize WebTileLayer::getSize()
{
    const int side = source ? source->tileSize << source->maxZoom : 0;
    return QSize(side, side);
}

QString WebTileLayer::getCellType()
{
    return source ? QStringLiteral("UInt8") : QStringLiteral("Unknown");
}

bool WebTileLayer::getOpacity()
{
    return source != nullptr; // whatever comes, what is not there is transparent
}

double WebTileLayer::getNoDataValue()
{
    return std::numeric_limits<double>::quiet_NaN();
}

double WebTileLayer::getRotation()
{
    return 0.0;
}

RasterLayer::ColorSpace WebTileLayer::getColorSpace()
{
    return source ? ColorSpace::Rgb : ColorSpace::Unknown;
}

int WebTileLayer::getMinZoom() const
{
    return source ? source->minZoom : settings.minZoom.value_or(unset);
}

void WebTileLayer::setMinZoom(int zoom)
{
    if (change(settings.minZoom, zoom < 0 ? std::nullopt : std::optional<int>(zoom))) {
        applySettings();
    }
}

int WebTileLayer::getMaxZoom() const
{
    return source ? source->maxZoom : settings.maxZoom.value_or(unset);
}

void WebTileLayer::setMaxZoom(int zoom)
{
    if (change(settings.maxZoom, zoom < 0 ? std::nullopt : std::optional<int>(zoom))) {
        applySettings();
    }
}

int WebTileLayer::getTileSize() const
{
    return source ? source->tileSize : settings.tileSize.value_or(0);
}

void WebTileLayer::setTileSize(int pixels)
{
    if (change(settings.tileSize, pixels <= 0 ? std::nullopt : std::optional<int>(pixels))) {
        applySettings();
    }
}

QString WebTileLayer::getAttribution() const
{
    return source ? attribution : settings.attribution;
}

void WebTileLayer::setAttribution(const QString& text)
{
    if (change(settings.attribution, text)) {
        applySettings();
    }
}

QString WebTileLayer::getHosts() const
{
    return source ? source->hosts : settings.hosts;
}

void WebTileLayer::setHosts(const QString& hosts)
{
    if (change(settings.hosts, hosts)) {
        applySettings();
    }
}

QString WebTileLayer::getUserAgentSuffix() const
{
    return settings.userAgentSuffix;
}

void WebTileLayer::setUserAgentSuffix(const QString& suffix)
{
    if (change(settings.userAgentSuffix, suffix)) {
        applySettings();
    }
}

double WebTileLayer::getDeadline() const
{
    return settings.deadline;
}

void WebTileLayer::setDeadline(double seconds)
{
    // written so that a NaN becomes the shortest
    const double inRange =
        seconds > shortestDeadline ? std::min(seconds, longestDeadline) : shortestDeadline;
    if (change(settings.deadline, inRange)) {
        applySettings();
    }
}

QString WebTileLayer::getSourceState()
{
    if (opening) {
        return tr("opening");
    }
    return source ? source->health.stateText() : tr("not open: %1").arg(lastError);
}

SourceReport WebTileLayer::getSourceReport()
{
    if (source && hostOf(offer->url).isEmpty()) {
        return SourceReport();
    }
    return source ? servedReport(offer->url)
                  : reportClosed(dataSource, isOpening(), opening.retry, lastError);
}

void WebTileLayer::retrySource()
{
    retryNow();
}

QString WebTileLayer::getUrl() const
{
    return source ? offer->url : QString();
}

SourceHealth::Report WebTileLayer::getHealth() const
{
    return source ? source->health.report() : SourceHealth::Report();
}

} // namespace Corvane::Map
