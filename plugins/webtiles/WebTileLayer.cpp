#include <plugins/webtiles/WebTileLayer.h>

#include <plugins/common/HttpFetch.h>
#include <plugins/common/PrintedPicture.h>
#include <plugins/common/SourceReports.h>
#include <plugins/webtiles/WebMercator.h>
#include <plugins/webtiles/WebTileLoader.h>
#include <plugins/webtiles/WebTileOffer.h>

#include <corvane/core/Application.h>
#include <corvane/map/GeoImage.h>
#include <corvane/map/GeoPainter.h>

#include <QDateTime>
#include <QDir>
#include <QDomElement>
#include <QFileInfo>
#include <QFontMetrics>
#include <QUrl>

#include <algorithm>
#include <utility>

namespace Corvane::Map {

namespace {

constexpr int openingLimit = 30 * 1000; // milliseconds, for what has to come before we go on
constexpr int longestTitle = 200;       // letters
constexpr int attributionPixels = 10;   // height of the text
constexpr int attributionMargin = 3;

// On paper as large as on a screen, whatever the printer's resolution.
int printedPixels(const GeoPainter& painter, int screenPixels)
{
    constexpr int screenDotsPerInch = 96;
    return isPrinting(painter) ? screenPixels * painter.device()->logicalDpiY() / screenDotsPerInch
                               : screenPixels;
}

QString titleOf(const QString& dataSource, const QString& offered)
{
    const QUrl url(dataSource);
    const QString plain = url.host().isEmpty() ? QFileInfo(dataSource).fileName() : url.host();
    return offered.isEmpty() ? plain : offered.left(longestTitle).simplified();
}

} // namespace

WebTileLayer::WebTileLayer(IRendererClient* client)
    : ServedTileLayer(client, "WebTiles"),
      opening(this, [this] { tryAgain(); })
{
}

WebTileLayer::~WebTileLayer()
{
    closeSource();
}

bool WebTileLayer::setDataSource(QString newSource)
{
    if (newSource == dataSource && (source || opening)) {
        return true; // documents name a source twice
    }
    closeSource();
    opening.retry.reset();
    dataSource = newSource;
    if (!isWebTileSource(dataSource)) {
        return false;
    }
    if (TileTemplate::isTemplate(dataSource)) {
        auto plain = std::make_shared<WebTileOffer>();
        plain->url = dataSource;
        return adopt(plain);
    }
    startOpening(false);
    return opening.goesOn(view.progressive, openingLimit) || takeOpened();
}

void WebTileLayer::startOpening(bool tells)
{
    const QString toOpen = dataSource;
    const WebTileSettings terms = settings;
    failurePasses = std::make_shared<std::atomic<bool>>(false);
    opening.start(
        [=, passes = failurePasses](QString* error, const std::atomic<bool>& abandoned) {
            bool mayPass = false;
            auto offered = askForOffer(toOpen, terms, abandoned, error, &mayPass);
            *passes = mayPass;
            return offered;
        },
        !hostOf(dataSource).isEmpty(), tells);
}

void WebTileLayer::tryAgain()
{
    opening.retry.stop();
    lastError.clear();
    startOpening(true);
}

// Whether a source is open now.
bool WebTileLayer::takeOpened()
{
    const auto ended = opening.take();
    if (!ended) {
        return source != nullptr; // told late, of a source that was given up
    }
    if (ended->source && adopt(ended->source)) {
        opening.retry.reset();
    } else if (!ended->source) {
        fail(ended->error);
        if (*failurePasses) {
            opening.retry.failed();
        }
    }
    if (ended->inBackground) {
        refreshAll();
        emit sourceOpened(source != nullptr);
    }
    return source != nullptr;
}

bool WebTileLayer::adopt(const std::shared_ptr<WebTileOffer>& opened)
{
    QString error;
    auto made = WebTileSource::make(*opened, settings, dataSource, &error);
    if (!made) {
        closeSource();
        offer = opened; // other settings may make a source of it
        return fail(error);
    }
    offer = opened;
    source = std::move(made);
    if (description.isEmpty()) {
        description = titleOf(dataSource, offer->title);
    }
    attribution = plainAttribution(settings.attribution.isEmpty() ? offer->attribution
                                                                  : settings.attribution);
    spatialRef.setEpsg(WebMercator::epsg);
    TileBudget::instance().setLimit(TileBudget::limitFor(QStringLiteral("WebTiles")));
    loader = std::make_shared<WebTileLoader>(this, source);
    const bool coarsestIsThere = source->minZoom <= 1;
    startServed(loader, "webtiles", static_cast<unsigned int>(source->tileSize), coarsestIsThere);
    return true;
}

bool WebTileLayer::fail(const QString& reason)
{
    lastError = reason;
    Application::logMessage(QStringLiteral("cannot open %1: %2").arg(dataSource, reason),
                            opening.retry.hasFailedBefore() ? LogLevel::Debug : LogLevel::Warning,
                            QDateTime::currentDateTime());
    return false;
}

void WebTileLayer::closeSource()
{
    opening.giveUp();
    stopServed();
    loader.reset();
    source.reset();
    offer.reset();
    lastError.clear();
}

void WebTileLayer::applySettings()
{
    if (offer) {
        adopt(std::shared_ptr<WebTileOffer>(offer));
        refreshAll();
    }
}

bool WebTileLayer::canRetry() const
{
    return source ? loader->attempts.isWaiting() : !opening && !dataSource.isEmpty();
}

void WebTileLayer::retryNow()
{
    if (source) {
        retryServed();
    } else if (canRetry()) {
        tryAgain();
    }
}

QString WebTileLayer::getTileUrl(unsigned int level, unsigned int tx, unsigned int ty, unsigned int,
                                 unsigned int, double, double, double, double)
{
    return source ? source->urls.urlOf({loader->zoomOf(level), tx, ty}) : QString();
}

// A preset that is missing keeps the name that it would have: the base class would lose it.
bool WebTileLayer::readXML(QDomNode& theNode, QDir& baseDir, QString* pErrorMessage)
{
    QDomNode node = theNode.cloneNode();
    QDomElement element = node.lastChildElement(QStringLiteral("datasource"));
    const QString name = element.attribute(QStringLiteral("value"));
    if (isPreset(name) && QDir::isRelativePath(name) && !baseDir.exists(name)) {
        element.setAttribute(QStringLiteral("value"),
                             QDir::cleanPath(baseDir.absoluteFilePath(name)));
    }
    return ServedTileLayer::readXML(node, baseDir, pErrorMessage);
}

void WebTileLayer::paint(GeoPainter& painter, QRectF* world, QRect* device)
{
    ServedTileLayer::paint(painter, world, device);
    if (source && !attribution.isEmpty()) {
        paintAttribution(painter, *device, view.shownPart(*world, *device));
    }
}

void WebTileLayer::paintAttribution(GeoPainter& painter, const QRect& device,
                                    const QRect& part) const
{
    const int size = printedPixels(painter, attributionPixels);
    const int margin = printedPixels(painter, attributionMargin);
    painter.save();
    painter.setClipRect(part, Qt::IntersectClip);
    QFont font = painter.font();
    font.setPixelSize(size);
    painter.setFont(font);
    const QFontMetrics metrics(font);
    const int room = std::max(device.width() - 2 * margin, 0);
    const QString text = metrics.elidedText(attribution, Qt::ElideRight, room);
    QRect box(0, 0, metrics.horizontalAdvance(text) + 2 * margin, metrics.height());
    box.moveBottomRight(device.bottomRight());
    painter.fillRect(box, QColor(255, 255, 255, 180)); // readable on any map
    painter.setPen(QColor(50, 50, 50));
    painter.drawText(box, Qt::AlignCenter, text);
    painter.restore();
}

} // namespace Corvane::Map
