#include <plugins/common/TiledRasterLayer.h>

#include <plugins/common/DeviceRect.h>
#include <plugins/common/LayerElement.h>
#include <plugins/common/LinkedTileRequest.h>
#include <plugins/common/OpeningPatience.h>
#include <plugins/common/PrintedPicture.h>
#include <plugins/common/TileLink.h>

#include <corvane/core/Integer.h>
#include <corvane/map/GeoImage.h>
#include <corvane/map/GeoPainter.h>

#include <QDomElement>
#include <QRect>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Corvane::Map {

namespace {

constexpr double millisecondsPerSecond = 1000.0;

QString newTileLayerId(const char* prefix)
{
    static int count = 0;
    return QStringLiteral("%1%2").arg(QLatin1String(prefix)).arg(++count);
}

} // namespace

TiledRasterLayer::TiledRasterLayer(IRendererClient* client)
    : RasterLayer(client),
      view(this, &levels),
      pacer([this] { refreshAll(); })
{
    view.repaint = [this] { refreshAll(); };
}

TiledRasterLayer::~TiledRasterLayer() = default;

// Tiles under way keep their old keys, so the new ones get keys of their own.
void TiledRasterLayer::startTiles(std::shared_ptr<TileLink> newLink, const char* idPrefix,
                                  unsigned int tileSize, bool coarsestIsCheap)
{
    if (link) {
        link->close();
    }
    link = std::move(newLink);
    tileLayerId = newTileLayerId(idPrefix);
    tileEdge = tileSize;
    view.start(std::shared_ptr<TileExchange>(link, &link->exchange), tileSize, coarsestIsCheap);
}

void TiledRasterLayer::carryOnTiles(std::shared_ptr<TileLink> newLink, const char* idPrefix,
                                    bool coarsestIsCheap,
                                    const std::function<bool(unsigned int level)>& stays)
{
    view.takeDelivered();
    if (link) {
        link->close();
    }
    link = std::move(newLink);
    tileLayerId = newTileLayerId(idPrefix);
    view.carryOn(std::shared_ptr<TileExchange>(link, &link->exchange), coarsestIsCheap, stays);
    if (visible) {
        view.askAgain();
    } else {
        view.forgetView();
    }
}

void TiledRasterLayer::stopTiles()
{
    if (link) {
        link->close();
        link.reset();
    }
    view.stop();
}

void TiledRasterLayer::refreshAll()
{
    const QRectF bounds = getBounds();
    refresh(bounds.left(), bounds.top(), bounds.right(), bounds.bottom());
}

bool TiledRasterLayer::isVisible()
{
    return visible;
}

void TiledRasterLayer::setVisible(bool v)
{
    viewMayBeStale = viewMayBeStale || (v && !visible);
    visible = v;
    refreshAll();
}

void TiledRasterLayer::setView(int width, int height, double tlx, double tly, double brx,
                               double bry)
{
    viewMayBeStale = !visible;
    if (visible) {
        view.setView(width, height, tlx, tly, brx, bry);
    }
}

void TiledRasterLayer::setViewAgain()
{
    if (link) {
        link->viewCallHeard();
    }
    view.askAgain();
}

void TiledRasterLayer::showArrived()
{
    if (link) {
        link->repaintCallHeard();
        pacer.tilesArrived(view.percentComplete() == 100);
    }
}

void TiledRasterLayer::beginUpdate(bool)
{
    view.beginUpdate();
}

void TiledRasterLayer::endUpdate()
{
    view.endUpdate();
}

// A layer that was not valid, or hidden, has not been told of the view: it takes the painter's.
void TiledRasterLayer::paint(GeoPainter& painter, QRectF* world, QRect* device)
{
    if (!link) {
        return;
    }
    const bool outdated =
        viewMayBeStale && !view.showsView(device->width(), device->height(), *world);
    if (!view.hasView() || outdated) {
        setView(device->width(), device->height(), world->left(), world->top(),
                world->left() + world->width(), world->top() + world->height());
    }
    viewMayBeStale = false;
    const double opacity = painter.opacity();
    painter.setOpacity(opacity * (1.0 - transparency));
    if (isPrinting(painter)) {
        const QRectF bounds = getBounds();
        const QRect covered =
            deviceRect({world->left(), world->top(), world->left() + world->width(),
                        world->top() + world->height()},
                       *device, {bounds.left(), bounds.top(), bounds.right(), bounds.bottom()});
        paintPrintedPicture(painter, *world, *device, view.shownPart(*world, *device) & covered,
                            [&](GeoPainter& page) { view.paint(page, world, device); });
    } else {
        view.paint(painter, world, device);
    }
    painter.setOpacity(opacity);
}

bool TiledRasterLayer::readXML(QDomNode& theNode, QDir& baseDir, QString* pErrorMessage)
{
    QDomNode node = withoutSourceProperty(theNode);
    const OpeningPatience::Document document;
    if (!RasterLayer::readXML(node, baseDir, pErrorMessage) && pErrorMessage) {
        tellWhyNotOpen(node, *this, pErrorMessage);
    }
    return true;
}

double TiledRasterLayer::getTransparency()
{
    return transparency;
}

void TiledRasterLayer::setTransparency(double newTransparency)
{
    // written so that a NaN becomes 0
    transparency = newTransparency > 0.0 ? std::min(newTransparency, 1.0) : 0.0;
    refreshAll();
}

int TiledRasterLayer::getWidth()
{
    return getSize().width();
}

QRectF TiledRasterLayer::getMissingArea()
{
    return areaOf(view.missingTiles());
}

QRectF TiledRasterLayer::getUnreadableArea()
{
    return areaOf(view.unreadableTiles());
}

/// The last tiles of a row or column end where the image ends.
QRectF TiledRasterLayer::areaOf(const TileRange& tiles)
{
    if (tiles.isEmpty()) {
        return QRectF();
    }
    const QRectF all = getBounds();
    const double scale = std::ldexp(double(tileEdge), int(tiles.level));
    const double tileWidth = getCellSizeX() * scale;
    const double tileHeight = getCellSizeY() * scale;
    const QPointF first(all.left() + tiles.left * tileWidth, all.top() + tiles.top * tileHeight);
    const QPointF last(std::min(all.left() + (tiles.right + 1.0) * tileWidth, all.right()),
                       std::max(all.top() + (tiles.bottom + 1.0) * tileHeight, all.bottom()));
    return QRectF(first, last);
}

int TiledRasterLayer::getHeight()
{
    return getSize().height();
}

double TiledRasterLayer::getWorldPerPixelX()
{
    return getCellSizeX();
}

double TiledRasterLayer::getWorldPerPixelY()
{
    return getCellSizeY();
}

// On a pool thread, inside the lifeline.
void TiledRasterLayer::tileReady(ITileRequest* request)
{
    auto* const own = static_cast<LinkedTileRequest*>(request);
    own->deliver(own->takeImage());
}

QString TiledRasterLayer::getTileLayerId()
{
    return tileLayerId;
}

bool TiledRasterLayer::isProgressive() const
{
    return view.progressive;
}

void TiledRasterLayer::setProgressive(bool progressive)
{
    view.progressive = progressive;
}

bool TiledRasterLayer::isAdaptiveRoam() const
{
    return view.adaptiveRoam;
}

void TiledRasterLayer::setAdaptiveRoam(bool adaptive)
{
    view.adaptiveRoam = adaptive;
}

bool TiledRasterLayer::isPixmapSmoothing() const
{
    return view.smooth;
}

void TiledRasterLayer::setPixmapSmoothing(bool smoothing)
{
    view.smooth = smoothing;
    refreshAll();
}

double TiledRasterLayer::getWaitLimit() const
{
    return view.waitLimit / millisecondsPerSecond;
}

void TiledRasterLayer::setWaitLimit(double seconds)
{
    constexpr double longest = 1.0e6; // seconds
    hasOwnWaitLimit = seconds >= 0.0; // not a NaN either
    view.waitLimit =
        hasOwnWaitLimit
            ? Util::roundToInt(std::ceil(std::min(seconds, longest) * millisecondsPerSecond))
            : sourceWaitLimit;
}

void TiledRasterLayer::setSourceWaitLimit(int milliseconds)
{
    sourceWaitLimit = milliseconds;
    if (!hasOwnWaitLimit) {
        view.waitLimit = milliseconds;
    }
}

} // namespace Corvane::Map
