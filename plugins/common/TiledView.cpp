#include <plugins/common/TiledView.h>

#include <plugins/common/DeviceRect.h>
#include <plugins/common/MarkedTile.h>
#include <plugins/common/TileExchange.h>
#include <plugins/common/UnderlayPainter.h>

#include <corvane/map/GeoImage.h>
#include <corvane/map/GeoPainter.h>
#include <corvane/tiles/ITiledLayer.h>
#include <corvane/tiles/LayerLevel.h>
#include <corvane/tiles/LayerLevels.h>

#include <QElapsedTimer>
#include <QRect>

#include <algorithm>
#include <cmath>
#include <unordered_set>
#include <utility>
#include <vector>

namespace Corvane::Map {

namespace {

constexpr int restMilliseconds = 100; // without a new view: the full level is fetched and smoothed
constexpr int waitSliceMilliseconds = 100;
constexpr double ownResolution = 0.998; // device pixels for each pixel of a level
// Levels from the view's own to the coarsest below which fetching that one first is not worth it:
// it would come hardly sooner than the view itself.
constexpr unsigned int leastUnderlayDistance = 2;
// So many times the tiles of the view's own pixels are more than the cells of any image need that are
// longer one way than the other: the view's world is torn out of shape, and a coarser level will do.
constexpr double mostTilesForOne = 64.0;

bool isIn(const TileRange& range, const TileId& tile)
{
    return !range.isEmpty() && range.contains(tile);
}

} // namespace

TiledView::TiledView(ITiledLayer* tiledLayer, LayerLevels* pyramid)
    : layer(tiledLayer),
      levels(pyramid),
      shelf(tiledLayer, pyramid)
{
    roamTimer.setSingleShot(true);
    roamTimer.setInterval(restMilliseconds);
    QObject::connect(&roamTimer, &QTimer::timeout, &roamTimer, [this] { request(false); });
    moveTimer.setSingleShot(true);
    moveTimer.setInterval(restMilliseconds);
    QObject::connect(&moveTimer, &QTimer::timeout, &moveTimer, [this] { smoothAtRest(); });
    TileBudget::instance().add(this);
}

TiledView::~TiledView()
{
    TileBudget::instance().remove(this);
}

void TiledView::start(std::shared_ptr<TileExchange> newExchange, unsigned int tileSize, bool cheap)
{
    stop();
    exchange = std::move(newExchange);
    coarsestIsCheap = cheap;
    shelf.clear(tileSize);
    levels->init(layer, tileSize, layer->getBounds(), layer->getWorldPerPixelX(),
                 layer->getWorldPerPixelY());
}

void TiledView::stop()
{
    moveTimer.stop();
    owesSmoothing = false;
    exchange.reset();
    shelf.clear(0);
    forgetView();
}

void TiledView::forgetView()
{
    roamTimer.stop();
    viewSet = false;
    owesFullLevel = false;
    gaveUpWaiting = false;
    chosen = TileRange();
    coarser = TileRange();
    underlay = TileRange();
}

void TiledView::carryOn(std::shared_ptr<TileExchange> newExchange, bool cheap,
                        const std::function<bool(unsigned int level)>& stays)
{
    exchange = std::move(newExchange);
    coarsestIsCheap = cheap;
    shelf.renew(stays, [this](const TileId& tile) { return wants(tile); });
}

void TiledView::setView(int newWidth, int newHeight, double newTlx, double newTly, double newBrx,
                        double newBry)
{
    takeDelivered();
    width = newWidth;
    height = newHeight;
    tlx = newTlx;
    tly = newTly;
    brx = newBrx;
    bry = newBry;
    viewSet = true;
    moveTimer.start();
    TileBudget::instance().viewed(this);
    request(updating && adaptiveRoam && progressive);
    if (progressive) {
        gaveUpWaiting = false;
    } else {
        waitForView();
    }
}

bool TiledView::showsView(int otherWidth, int otherHeight, const QRectF& world) const
{
    return viewSet && otherWidth == width && otherHeight == height && world == getWorld();
}

bool TiledView::wants(const TileId& tile) const
{
    return viewSet && (isIn(chosen, tile) || isIn(underlay, tile));
}

void TiledView::askAgain()
{
    if (viewSet) {
        takeDelivered();
        request(owesFullLevel && updating);
    }
}

void TiledView::beginUpdate()
{
    updating = true;
}

void TiledView::endUpdate()
{
    updating = false;
    if (owesFullLevel) {
        takeDelivered();
        request(false);
    }
}

void TiledView::takeDelivered()
{
    if (!exchange) {
        return;
    }
    std::vector<DeliveredTile> tiles = exchange->takeDelivered();
    for (DeliveredTile& tile : tiles) {
        shelf.add(tile.tile, std::move(tile.image));
    }
    if (shelf.hasOutdated() && viewSet && shelf.countMissing(chosen) == 0) {
        shelf.dropOutdated();
    }
    if (!tiles.empty()) {
        gaveUpWaiting = false;
        TileBudget::instance().enforce();
    }
}

void TiledView::updateRanges()
{
    chosen = TileRange();
    coarser = TileRange();
    underlay = TileRange();
    const int level = levelFor(width, height, getWorld());
    if (level < 0) {
        return;
    }
    const auto number = static_cast<unsigned int>(level);
    const auto last = static_cast<unsigned int>(levels->size() - 1);
    chosen = shelf.rangeOf(number, tlx, tly, brx, bry);
    coarser = shelf.rangeOf(std::min(number + 1, last), tlx, tly, brx, bry);
    underlay = shelf.rangeOf(last, tlx, tly, brx, bry);
}

// The wanted ranges are named before anything is asked for: a request that runs at once finds
// itself wanted.
void TiledView::request(bool roaming)
{
    roamTimer.stop();
    owesFullLevel = false;
    if (!exchange || !viewSet) {
        return;
    }
    updateRanges();
    if (chosen.isEmpty()) {
        return;
    }
    const bool missing = shelf.countMissing(chosen) > 0;
    const bool viaCoarser = roaming && missing && coarser.level != chosen.level;
    std::vector<TileRange> wanted = {chosen};
    if (coarsestIsCheap) {
        wanted.push_back(underlay);
    }
    if (viaCoarser) {
        wanted.push_back(coarser);
    }
    exchange->setWanted(std::move(wanted));

    if (missing && progressive) {
        requestUnderlay();
    }
    if (viaCoarser) {
        owesFullLevel = true;
        requestCoarser();
        roamTimer.start();
    } else {
        askForChosen();
    }
    exchange->endAsking();
}

// Only beneath what is missing of the level of the view.
void TiledView::requestCoarser()
{
    const TileRange part = shelf.missingPart(chosen);
    LayerLevel* const fine = levels->at(static_cast<int>(chosen.level));
    const double halfX = fine->getWorldPerTileX() / 2;
    const double halfY = fine->getWorldPerTileY() / 2;
    const QPointF origin = layer->getBounds().topLeft();
    const double left = origin.x() + part.left * 2 * halfX + halfX;
    const double top = origin.y() + part.top * 2 * halfY + halfY;
    const double right = origin.x() + part.right * 2 * halfX + halfX;
    const double bottom = origin.y() + part.bottom * 2 * halfY + halfY;
    const TileRange under = shelf.rangeOf(coarser.level, left, top, right, bottom);
    if (shelf.countMissing(under) > 0) {
        levels->at(static_cast<int>(coarser.level))->setView(left, top, right, bottom);
    }
}

void TiledView::requestUnderlay()
{
    const bool helps = underlay.level >= chosen.level + leastUnderlayDistance;
    if (coarsestIsCheap && helps && shelf.countMissing(underlay) > 0) {
        levels->at(static_cast<int>(underlay.level))->setView(tlx, tly, brx, bry);
    }
}

// Blocks the layer's thread, without an event loop: printing wants the whole view at once.
void TiledView::waitForView()
{
    QElapsedTimer sinceLastTile;
    sinceLastTile.start();
    const int slice =
        waitLimit > 0 ? std::min(waitLimit, waitSliceMilliseconds) : waitSliceMilliseconds;
    for (int missing = shelf.countMissing(chosen); exchange && missing > 0 && !gaveUpWaiting;) {
        const auto half = static_cast<std::size_t>(missing + 1) / 2;
        const bool askAgainNow = exchange->waitForNews(half, slice);
        takeDelivered();
        const int stillMissing = shelf.countMissing(chosen);
        if (stillMissing < missing) {
            sinceLastTile.start();
        }
        missing = stillMissing;
        const Waiting waiting = whileWaiting ? whileWaiting() : Waiting::GoOn;
        if (waiting == Waiting::GiveUp) {
            return;
        }
        if (askAgainNow || waiting == Waiting::AskAgain) {
            askForChosen();
        }
        gaveUpWaiting = missing > 0 && waitLimit > 0 && sinceLastTile.elapsed() >= waitLimit;
    }
}

void TiledView::askForChosen()
{
    if (chosen.level == static_cast<unsigned int>(levelByWidth(width, getWorld()))) {
        levels->setView(width, height, tlx, tly, brx, bry);
    } else {
        levels->at(static_cast<int>(chosen.level))->setView(tlx, tly, brx, bry);
    }
}

// The pyramid's own choice, for which only the width counts.
int TiledView::levelByWidth(int deviceWidth, const QRectF& world) const
{
    LayerLevel* const level =
        levels->getLayerLevel(deviceWidth, 0, world.left(), world.top(),
                              world.left() + world.width(), world.top() + world.height());
    return level ? static_cast<int>(level->getLevel()) : -1;
}

// A view without pixels shows no level.
int TiledView::levelFor(int deviceWidth, int deviceHeight, const QRectF& world) const
{
    if (deviceWidth <= 0 || deviceHeight <= 0 || levels->isEmpty()) {
        return -1;
    }
    const double edge = shelf.edge();
    const double most = mostTilesForOne * (deviceWidth / edge + 2.0) * (deviceHeight / edge + 2.0);
    int level = levelByWidth(deviceWidth, world);
    while (level + 1 < levels->size() &&
           static_cast<double>(shelf
                                   .rangeOf(static_cast<unsigned int>(level), world.left(),
                                            world.top(), world.left() + world.width(),
                                            world.top() + world.height())
                                   .count()) > most)
    {
        ++level;
    }
    return level;
}

// While the view moves, or tiles are on their way, it is painted again and again: on the screen
// smoothing waits for rest, lest painting take the time from reading and from the next frame.
// At about its own resolution a level stays crisp: dropping one pixel in hundreds costs less, to the
// eye and in time, than blurring all of them.
void TiledView::setRenderHints(GeoPainter& painter, const QRectF& world, const QRect& device,
                               int level, bool loading)
{
    const double devicePerPixel =
        layer->getWorldPerPixelX() * std::ldexp(1.0, level) * device.width() / world.width();
    const bool smoothable = smooth && devicePerPixel <= ownResolution;
    const bool onScreen = painter.device()->devType() == QInternal::Widget;
    const bool waits = onScreen && progressive && (loading || moveTimer.isActive());
    if (onScreen) {
        owesSmoothing = smoothable && waits && !loading;
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform, smoothable && !waits);
}

void TiledView::smoothAtRest()
{
    if (owesSmoothing && repaint) {
        repaint();
    }
}

// Printing sets strips of the page's width with its left edge, and paints the page.
bool TiledView::isStripOf(const QRectF& world, const QRect& device) const
{
    return !progressive && viewSet && width == device.width() && tlx == world.left() &&
           world != getWorld();
}

QRect TiledView::shownPart(const QRectF& world, const QRect& device) const
{
    return isStripOf(world, device)
               ? deviceRect({world.left(), world.top(), world.left() + world.width(),
                             world.top() + world.height()},
                            device, {tlx, tly, brx, bry})
               : device;
}

void TiledView::paint(GeoPainter& painter, QRectF* world, QRect* device)
{
    takeDelivered();
    const QRect part = shownPart(*world, *device);
    const bool isStrip = isStripOf(*world, *device);
    const int level = isStrip ? static_cast<int>(chosen.level)
                              : levelFor(device->width(), device->height(), *world);
    if (level < 0 || part.isEmpty()) {
        return;
    }
    const TileRange range = isStrip ? chosen
                                    : shelf.rangeOf(static_cast<unsigned int>(level), world->left(),
                                                    world->top(), world->right(), world->bottom());
    const bool loading = shelf.countMissing(range) > 0;
    painter.save();
    if (isStrip) {
        painter.setClipRect(part, Qt::IntersectClip);
    }
    setRenderHints(painter, *world, *device, level, loading);
    if (loading) {
        UnderlayPainter underlayPainter(shelf, *world, *device, layer->getBounds());
        const auto tileBounds = [this](const TileId& tile) {
            double left = 0.0;
            double top = 0.0;
            double right = 0.0;
            double bottom = 0.0;
            levels->at(static_cast<int>(tile.level))
                ->getTileCoords(tile.x, tile.y, &left, &top, &right, &bottom);
            return QRectF(left, top, right - left, bottom - top);
        };
        underlayPainter.paint(painter, range, static_cast<unsigned int>(levels->size()),
                              tileBounds);
    }
    if (isStrip || level != levelByWidth(device->width(), *world)) {
        paintImages(painter, range, *world, *device);
    } else {
        levels->paint(painter, world, device);
    }
    painter.restore();
}

// Of the strip's own level, or that of a view out of shape: the pyramid's choice may differ.
void TiledView::paintImages(GeoPainter& painter, const TileRange& range, const QRectF& world,
                            const QRect& device) const
{
    shelf.visit(range, [&](const TileId&, GeoImage* image) {
        image->paint(painter, device.x(), device.y(), device.x() + device.width(),
                     device.y() + device.height(), world.left(), world.top(),
                     world.left() + world.width(), world.top() + world.height());
    });
}

int TiledView::percentComplete()
{
    takeDelivered();
    const std::uint64_t all = chosen.count();
    if (!viewSet || all == 0) {
        return 100;
    }
    const auto missing = static_cast<std::uint64_t>(shelf.countMissing(chosen));
    return static_cast<int>((all - missing) * 100 / all);
}

TileRange TiledView::missingTiles() const
{
    return viewSet ? shelf.missingPart(chosen) : TileRange();
}

TileRange TiledView::unreadableTiles() const
{
    TileRange range;
    range.level = chosen.level;
    shelf.visit(chosen, [&range](const TileId& tile, GeoImage* image) {
        if (isMarkedTile(*image)) {
            const bool first = range.isEmpty();
            range.left = first ? tile.x : std::min(range.left, tile.x);
            range.right = first ? tile.x : std::max(range.right, tile.x);
            range.top = first ? tile.y : std::min(range.top, tile.y);
            range.bottom = first ? tile.y : std::max(range.bottom, tile.y);
        }
    });
    return range;
}

// Whole levels go, those farthest from the level in view first; what lies beneath the view stays.
qint64 TiledView::giveBackOtherLevels(qint64 wanted)
{
    std::vector<unsigned int> others;
    for (int i = 0; i < levels->size(); ++i) {
        if (!viewSet || static_cast<unsigned int>(i) != chosen.level) {
            others.push_back(static_cast<unsigned int>(i));
        }
    }
    const auto distance = [this](unsigned int level) {
        return level > chosen.level ? level - chosen.level : chosen.level - level;
    };
    std::sort(others.begin(), others.end(),
              [&distance](unsigned int a, unsigned int b) { return distance(a) > distance(b); });
    qint64 freed = 0;
    for (const unsigned int level : others) {
        if (freed >= wanted) {
            break;
        }
        freed += shelf.giveBack(level, [this](const TileId& tile) {
            return isIn(underlay, tile) || (owesFullLevel && isIn(coarser, tile));
        });
    }
    return freed;
}

qint64 TiledView::giveBackOutOfView(qint64 wanted)
{
    const double middleX = (static_cast<double>(chosen.left) + chosen.right) / 2;
    const double middleY = (static_cast<double>(chosen.top) + chosen.bottom) / 2;
    const auto distance = [=](const TileId& tile) {
        return std::hypot(tile.x - middleX, tile.y - middleY);
    };
    std::vector<TileId> candidates = shelf.tilesOf(chosen.level);
    std::sort(candidates.begin(), candidates.end(),
              [&distance](const TileId& a, const TileId& b) { return distance(a) > distance(b); });
    std::unordered_set<TileId, TileIdHash> leaving;
    qint64 freed = 0;
    for (const TileId& tile : candidates) {
        if (freed >= wanted) {
            break;
        }
        if (!isIn(chosen, tile) && !isIn(underlay, tile)) {
            freed += shelf.bytesOf(tile);
            leaving.insert(tile);
        }
    }
    if (leaving.empty()) {
        return 0;
    }
    return shelf.giveBack(chosen.level,
                          [&leaving](const TileId& tile) { return leaving.count(tile) == 0; });
}

} // namespace Corvane::Map
