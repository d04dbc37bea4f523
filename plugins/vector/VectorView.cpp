#include <plugins/vector/VectorView.h>

#include <corvane/core/Integer.h>
#include <corvane/map/GeoPainter.h>

#include <QGuiApplication>
#include <QPaintDevice>
#include <QPaintEngine>
#include <QScreen>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Corvane::Map {

namespace {

constexpr qint64 mostPicturePixels = 48 * 1024 * 1024;
constexpr int marginPart = 4; // of the view's longer side, on each side
constexpr int mostMargin = 512;
constexpr double leastReserve = 0.25; // of the margin, while the view moves
constexpr double usualDotsPerInch = 96.0;
constexpr double mostScaling = 2.0;
constexpr double leastOverlap = 0.5; // of the view

// How many pixels of the device make one of the screen; on paper they are many.
double pixelsPerScreenPixel(const QPaintDevice* device)
{
    const QScreen* const screen = QGuiApplication::primaryScreen();
    const double screenDots = screen ? screen->logicalDotsPerInchY() : usualDotsPerInch;
    return device ? std::max(1.0, device->logicalDpiY() / screenDots) : 1.0;
}

double areaOf(const ViewFrame& frame)
{
    return std::abs((frame.brx - frame.tlx) * (frame.bry - frame.tly));
}

} // namespace

VectorView::VectorView(std::function<void()> tellLayer) : tell(std::move(tellLayer)) {}

VectorView::~VectorView()
{
    abandonJob();
}

void VectorView::abandonJob()
{
    if (job) {
        job->abandon();
        job.reset();
    }
}

void VectorView::clear()
{
    abandonJob();
    chunks.clear();
    ++data;
    moreToCome = false;
    viewSet = false;
    picture.reset();
    wide.reset();
}

void VectorView::setChunks(ChunkList newChunks, bool more, bool fresh)
{
    chunks = std::move(newChunks);
    ++data;
    moreToCome = more;
    wide.reset();
    if (fresh) {
        abandonJob();
        picture.reset();
    }
    request();
}

bool VectorView::setStyle(const VectorStyle& newStyle)
{
    if (newStyle == style) {
        return false;
    }
    style = newStyle;
    wide.reset();
    request();
    return true;
}

void VectorView::setView(int width, int height, const QRectF& world)
{
    view = ViewFrame(QRectF(0.0, 0.0, width, height), world);
    viewSet = true;
    if (progressive) {
        request();
    } else {
        drawNow();
    }
}

bool VectorView::showsView(int width, int height, const QRectF& world) const
{
    return viewSet && view == ViewFrame(QRectF(0.0, 0.0, width, height), world);
}

void VectorView::beginUpdate()
{
    updating = true;
}

void VectorView::endUpdate()
{
    updating = false;
    request();
}

bool VectorView::isTooLarge() const
{
    return view.device.width() * view.device.height() > static_cast<double>(mostPicturePixels);
}

bool VectorView::isCurrent(const VectorPicture& candidate) const
{
    return candidate.getData() == data && candidate.getStyle() == style &&
           (candidate.isFor(view) || candidate.fits(view));
}

bool VectorView::isComplete() const
{
    return !viewSet || !view.isUsable() || isTooLarge() || (picture && isCurrent(*picture));
}

// While the view moves, a picture that still reaches beyond it needs no successor.
bool VectorView::isGoodForNow() const
{
    if (!updating || !picture || picture->getData() != data || picture->getStyle() != style) {
        return false;
    }
    return hasReserve();
}

// Whether what is being drawn will serve for a moment at least.
bool VectorView::isWorthFinishing() const
{
    const ViewFrame& coming = ordered.frame;
    if (ordered.style != style) {
        return false;
    }
    const double scaling = std::abs(coming.getScaleX() / view.getScaleX());
    const QRectF place(QPointF(view.toDeviceX(coming.tlx), view.toDeviceY(coming.tly)),
                       QPointF(view.toDeviceX(coming.brx), view.toDeviceY(coming.bry)));
    const QRectF shared = place & view.device;
    const double overlap =
        shared.width() * shared.height() / (view.device.width() * view.device.height());
    if (updating) {
        return scaling < mostScaling && scaling > 1.0 / mostScaling && overlap > leastOverlap;
    }
    return std::abs(scaling - 1.0) < 1e-6 && overlap > 1.0 - 1e-6;
}

void VectorView::request()
{
    if (!viewSet || !view.isUsable() || isTooLarge()) {
        return;
    }
    if (picture && isCurrent(*picture)) {
        widen();
    } else if (isGoodForNow()) {
        abandonJob();
    } else if (!job || !isWorthFinishing()) { // else takePicture goes on from there
        start(updating ? marginOfView() : 0);
    }
}

// The view comes first; what lies around it is drawn once nothing else is to be done.
void VectorView::widen()
{
    if (!progressive || moreToCome || hasReserve()) {
        abandonJob();
    } else if (!job || !isOrdered()) {
        start(marginOfView());
    }
}

bool VectorView::isOrdered() const
{
    return ordered.view == view && ordered.data == data && ordered.style == style;
}

// Where numbers get too coarse to compare, what was drawn around this very view counts.
bool VectorView::hasReserve() const
{
    const double reserve = marginOfView() * leastReserve;
    const bool drawnAround = picture->isFor(view) && picture->getFrame().device.width() >=
                                                         view.device.width() + 2.0 * reserve;
    return drawnAround || picture->covers(view.grownBy(reserve));
}

void VectorView::start(int margin)
{
    abandonJob();
    PictureOrder order = orderFor(margin);
    ordered = order;
    ordered.chunks.clear();
    job = std::make_shared<PoolJob<const VectorPicture>>(
        [toDraw = std::move(order)](QString*, const std::atomic<bool>& abandoned) {
            return VectorPicture::make(toDraw, abandoned);
        },
        tell);
    job->startTelling();
    job->start();
}

void VectorView::drawNow()
{
    abandonJob();
    if (!view.isUsable() || isTooLarge() || (picture && isCurrent(*picture))) {
        return;
    }
    const std::atomic<bool> never{false};
    show(VectorPicture::make(orderFor(0), never));
}

int VectorView::marginOfView() const
{
    const double longer = std::max(view.device.width(), view.device.height());
    const int margin = std::min(Util::truncateToInt(longer) / marginPart, mostMargin);
    const double pixels =
        (view.device.width() + 2.0 * margin) * (view.device.height() + 2.0 * margin);
    return pixels > static_cast<double>(mostPicturePixels) ? 0 : margin;
}

PictureOrder VectorView::orderFor(int margin) const
{
    PictureOrder order;
    order.frame = view.grownBy(margin);
    order.frame.device.moveTopLeft(QPointF(0.0, 0.0));
    order.view = view;
    order.style = style;
    order.chunks = chunks;
    order.data = data;
    return order;
}

bool VectorView::takePicture()
{
    if (!job || !job->waitFor(0)) {
        return false;
    }
    QString unused;
    std::shared_ptr<const VectorPicture> made = job->result(&unused);
    job.reset();
    if (made) {
        show(std::move(made));
    }
    request();
    return true;
}

// The one with more of the world stays beneath, so that moving out of the other leaves no hole.
void VectorView::show(std::shared_ptr<const VectorPicture> made)
{
    if (picture && picture->getData() == made->getData() &&
        picture->getStyle() == made->getStyle() &&
        (!wide || areaOf(picture->getFrame()) > areaOf(wide->getFrame())))
    {
        wide = picture;
    }
    picture = std::move(made);
    if (wide && areaOf(wide->getFrame()) <= areaOf(picture->getFrame())) {
        wide.reset();
    }
}

bool VectorView::drawsShapes(GeoPainter& painter) const
{
    const QPaintEngine* const engine = painter.paintEngine();
    return isTooLarge() ||
           (engine && engine->type() != QPaintEngine::Raster &&
            engine->type() != QPaintEngine::OpenGL && engine->type() != QPaintEngine::OpenGL2);
}

void VectorView::paint(GeoPainter& painter, const QRectF& world, const QRect& device)
{
    const ViewFrame target{QRectF(device), world};
    if (!target.isUsable()) {
        return;
    }
    painter.save();
    if (drawsShapes(painter)) {
        paintShapes(painter, target);
    } else {
        paintPictures(painter, target);
    }
    painter.restore();
}

// A strip of a page is drawn with the whole page's mapping: the view tells which strip it is.
void VectorView::paintShapes(GeoPainter& painter, const ViewFrame& target)
{
    QRectF area = target.device;
    if (viewSet) {
        area &= QRectF(QPointF(target.toDeviceX(view.tlx), target.toDeviceY(view.tly)),
                       QPointF(target.toDeviceX(view.brx), target.toDeviceY(view.bry)))
                    .normalized();
    }
    const QRect clip = area.toAlignedRect();
    painter.setClipRect(clip, Qt::IntersectClip);
    const std::atomic<bool> never{false};
    const double unit = pixelsPerScreenPixel(painter.device());
    ShapePainter(&painter, target, clip, style, unit).draw(chunks, never);
}

void VectorView::paintPictures(GeoPainter& painter, const ViewFrame& target) const
{
    if (!picture) {
        return;
    }
    // a pixel around does: far beyond the view no integer may hold the picture's edges
    const QRectF near = target.device.adjusted(-1.0, -1.0, 1.0, 1.0);
    const QRect inside = (picture->placeOn(target) & near).toRect();
    if (wide && !inside.contains(target.device.toRect())) {
        painter.save();
        painter.setClipRegion(QRegion(target.device.toRect()) - inside, Qt::IntersectClip);
        wide->paint(painter, target);
        painter.restore();
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
    picture->paint(painter, target);
}

} // namespace Corvane::Map
