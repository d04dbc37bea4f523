#include <plugins/webtiles/WebTileLayer.h>

#include <plugins/webtiles/HttpFetch.h>
#include <plugins/webtiles/TileCache.h>
#include <plugins/webtiles/WebMercator.h>
#include <plugins/webtiles/WebTileLoader.h>
#include <plugins/webtiles/WebTileOffer.h>
#include <plugins/webtiles/WebTileRequest.h>

#include <corvane/core/Application.h>
#include <corvane/map/GeoImage.h>
#include <corvane/map/GeoPainter.h>

#include <QDateTime>
#include <QFileInfo>
#include <QFontMetrics>
#include <QUrl>

#include <algorithm>
#include <utility>

namespace Corvane::Map {

namespace {

constexpr int openingPatience = 40;   // milliseconds on the GUI thread
constexpr int waitLimit = 30 * 1000;  // milliseconds, for what has to come before we go on
constexpr int retryInterval = 250;    // milliseconds between looks at what was put off
constexpr int attributionPixels = 10; // height of the text
constexpr int attributionMargin = 3;

QString titleOf(const QString& dataSource, const QString& offered)
{
    const QUrl url(dataSource);
    const QString plain = url.host().isEmpty() ? QFileInfo(dataSource).fileName() : url.host();
    return offered.isEmpty() ? plain : offered;
}

} // namespace

WebTileLayer::WebTileLayer(IRendererClient* client) : TiledRasterLayer(client)
{
    TileCache::instance().setUp();
    retryTimer.setInterval(retryInterval);
    connect(&retryTimer, &QTimer::timeout, this, &WebTileLayer::retry);
    view.waitLimit = waitLimit;
    view.whileWaiting = [this] { return lookWhileWaiting(); };
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
    dataSource = newSource;
    if (!isWebTileSource(dataSource)) {
        return false;
    }
    if (TileTemplate::isTemplate(dataSource)) {
        auto plain = std::make_shared<WebTileOffer>();
        plain->url = dataSource;
        return adopt(plain);
    }
    startOpening();
    opening->waitFor(view.progressive ? openingPatience : waitLimit);
    return opening->startTelling() || takeOpened();
}

void WebTileLayer::startOpening()
{
    const QByteArray userAgent = userAgentWith(settings.userAgentSuffix);
    const int deadline = static_cast<int>(settings.deadline * 1000.0);
    const QString toOpen = dataSource;
    opening = std::make_shared<SourceOpening<WebTileOffer>>(
        [=](QString* error, const std::atomic<bool>& abandoned) {
            return askForOffer(toOpen, userAgent, deadline, abandoned, error);
        },
        [this] { QMetaObject::invokeMethod(this, "takeOpened", Qt::QueuedConnection); });
    opening->start();
}

// Whether a source is open now.
bool WebTileLayer::takeOpened()
{
    if (!opening || !opening->waitFor(0)) {
        return source != nullptr; // told late, of a source that was given up
    }
    QString error;
    const bool inBackground = opening->tellsLayer();
    const std::shared_ptr<WebTileOffer> opened = opening->result(&error);
    opening.reset();
    if (opened) {
        adopt(opened);
    } else {
        fail(error);
    }
    if (inBackground) {
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
    auto newLoader = std::make_shared<WebTileLoader>(this, source);
    const bool coarsestIsThere = source->minZoom <= 1;
    startTiles(newLoader, "webtiles", static_cast<unsigned int>(source->tileSize), coarsestIsThere);
    loader = std::move(newLoader); // now that no pool thread is inside that looks at the old one
    return true;
}

bool WebTileLayer::fail(const QString& reason)
{
    lastError = reason;
    Application::logMessage(QStringLiteral("cannot open %1: %2").arg(dataSource, reason),
                            LogLevel::Warning, QDateTime::currentDateTime());
    return false;
}

void WebTileLayer::closeSource()
{
    if (opening) {
        opening->abandon();
        opening.reset();
    }
    retryTimer.stop();
    stopTiles();
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

// On a pool thread, inside the lifeline: the loader stays until the lifeline is closed.
void WebTileLayer::tileFailed(ITileRequest*)
{
    if (loader->attempts.isWaiting()) {
        QMetaObject::invokeMethod(this, "startRetrying", Qt::QueuedConnection);
    }
}

void WebTileLayer::startRetrying()
{
    if (loader && !retryTimer.isActive()) {
        retryTimer.start();
    }
}

void WebTileLayer::retry()
{
    if (!loader || !loader->attempts.isWaiting()) {
        retryTimer.stop();
        return;
    }
    if (isVisible() && !source->health.isPaused() && loader->attempts.takeDue()) {
        view.askAgain();
    }
}

TiledView::Waiting WebTileLayer::lookWhileWaiting()
{
    if (source->health.isPaused()) {
        return TiledView::Waiting::GiveUp;
    }
    return loader->attempts.takeDue() ? TiledView::Waiting::AskAgain : TiledView::Waiting::GoOn;
}

QString WebTileLayer::getTileUrl(unsigned int level, unsigned int tx, unsigned int ty, unsigned int,
                                 unsigned int, double, double, double, double)
{
    return source ? source->urls.urlOf({loader->zoomOf(level), tx, ty}) : QString();
}

ITileRequest* WebTileLayer::createTileRequest(const QString& key, const QString&,
                                              unsigned int level, unsigned int tx, unsigned int ty,
                                              double tlx, double tly, double brx, double bry)
{
    const TileId tile{level, tx, ty};
    if (loader->zoomOf(level) < source->minZoom || loader->attempts.isEmpty(tile)) {
        loader->exchange.deliver(tile, loader->emptyTile(tile));
        return nullptr;
    }
    if (!loader->attempts.mayAsk(tile)) {
        return nullptr;
    }
    loader->exchange.ask(tile);
    return new WebTileRequest(this, loader, key, tile, static_cast<unsigned int>(source->tileSize),
                              tlx, tly, brx, bry);
}

void WebTileLayer::paint(GeoPainter& painter, QRectF* world, QRect* device)
{
    TiledRasterLayer::paint(painter, world, device);
    if (source && !attribution.isEmpty()) {
        paintAttribution(painter, *device);
    }
}

void WebTileLayer::paintAttribution(GeoPainter& painter, const QRect& device) const
{
    painter.save();
    QFont font = painter.font();
    font.setPixelSize(attributionPixels);
    painter.setFont(font);
    const QFontMetrics metrics(font);
    const int room = std::max(device.width() - 2 * attributionMargin, 0);
    const QString text = metrics.elidedText(attribution, Qt::ElideRight, room);
    QRect box(0, 0, metrics.horizontalAdvance(text) + 2 * attributionMargin, metrics.height());
    box.moveBottomRight(device.bottomRight());
    painter.fillRect(box, QColor(255, 255, 255, 180)); // readable on any map
    painter.setPen(QColor(50, 50, 50));
    painter.drawText(box, Qt::AlignCenter, text);
    painter.restore();
}

} // namespace Corvane::Map
