#include <corvane/map/MapView.h>

#include <corvane/core/Integer.h>
#include <corvane/map/MapView_p.h>
#include <corvane/map/ViewManager.h>

#include <QMouseEvent>
#include <QWheelEvent>

namespace Corvane::Map {

namespace {

constexpr int noCorner = -1;
constexpr int wheelUnitsPerPixel = 10; // a notch of 120 is a drag of 12 pixels

} // namespace

bool MapView::event(QEvent* event)
{
    return QWidget::event(event);
}

QPointF MapView::worldPosition(int x, int y) const
{
    QPointF world;
    viewManager->convertDeviceToWorld(x, y, &world.rx(), &world.ry());
    return world;
}

void MapView::mousePressEvent(QMouseEvent* event)
{
    savedPointerMode = viewManager->getPointerMode();
    if (useAnimation) {
        extentAnimation.stop();
    }
    if (savedPointerMode == Roam) {
        chooseDrag(event->buttons(), event->modifiers());
    }
    pointerX = event->x();
    pointerY = event->y();
    viewManager->pointerDown(pointerX, pointerY);
    if (viewManager->getPointerMode() == Point) {
        emit pointerCoordChanged(worldPosition(pointerX, pointerY));
    }
    event->accept();
}

/// From Roam a press may start another drag, for as long as the button is held.
void MapView::chooseDrag(Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers)
{
    if (modifiers & Qt::ShiftModifier) {
        viewManager->setPointerMode(Zoom);
        setCursor(Qt::CrossCursor);
    } else if (modifiers & Qt::ControlModifier) {
        viewManager->setPointerMode(ZoomBox);
        setCursor(Qt::CrossCursor);
    } else if (buttons & (Qt::LeftButton | Qt::MiddleButton)) {
        setCursor(Qt::ClosedHandCursor);
    } else if (buttons & Qt::RightButton) {
        viewManager->setPointerMode(Zoom);
        setCursor(Qt::CrossCursor);
    }
}

void MapView::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons() & (Qt::LeftButton | Qt::RightButton | Qt::MiddleButton)) {
        viewManager->pointerMove(event->x(), event->y());
    }
    const PointerMode mode = viewManager->getPointerMode();
    if (mode == ZoomBox) {
        boxX = event->x();
        boxY = event->y();
        QWidget::update();
    } else if (mode == Point) {
        pointerX = event->x();
        pointerY = event->y();
        emit pointerCoordChanged(worldPosition(pointerX, pointerY));
    }
    event->accept();
}

void MapView::mouseReleaseEvent(QMouseEvent* event)
{
    viewManager->pointerUp(event->x(), event->y());
    if (viewManager->getPointerMode() == ZoomBox) {
        boxX = noCorner; // boxY keeps its value: one of the two is enough
    }
    setPointerMode(savedPointerMode);
    event->accept();
}

void MapView::mouseDoubleClickEvent(QMouseEvent* event)
{
    const QRectF from = bounds;
    QRectF target = zoomedIn(from);
    // half the way from the old centre keeps the clicked point under the pointer
    const QPointF offset = worldPosition(event->x(), event->y()) - target.center();
    target.translate(offset.x() * 0.5, offset.y() * 0.5);
    if (useAnimation) {
        beginClientUpdate(true);
        animateBounds(from, target);
    } else {
        setBounds(target);
    }
    event->accept();
}

void MapView::wheelEvent(QWheelEvent* event)
{
    if (event->buttons() & (Qt::LeftButton | Qt::RightButton)) {
        event->ignore();
        return;
    }
    const int x = Util::truncateToInt(event->position().x());
    const int y = Util::truncateToInt(event->position().y());
    const int delta = event->angleDelta().y();
    if (useAnimation) {
        zoomByWheel(x, y, delta);
    } else {
        rollAsGesture(x, y, delta);
    }
    event->accept();
}

/// One factor of two for each event, whatever its delta, from where an animation stands.
void MapView::zoomByWheel(int x, int y, int delta)
{
    extentAnimation.stop();
    const QRectF from = bounds;
    const QPointF world = worldPosition(x, y);
    QRectF target;
    if (delta < 0) {
        target = zoomedOut(from);
        const QPointF offset = world - target.center();
        target.translate(offset.x() * -1.0, offset.y() * -1.0);
    } else {
        target = zoomedIn(from);
        const QPointF offset = world - from.center();
        target.translate(offset.x() * 0.5, offset.y() * 0.5);
    }
    beginClientUpdate(true);
    animateBounds(from, target);
}

void MapView::rollAsGesture(int x, int y, int delta)
{
    const int pixels = delta / wheelUnitsPerPixel;
    const PointerMode mode = viewManager->getPointerMode();
    viewManager->setPointerMode(Zoom);
    viewManager->pointerDown(x, y);
    viewManager->pointerMove(x + pixels, y + pixels);
    viewManager->pointerUp(x + pixels, y + pixels);
    viewManager->setPointerMode(mode);
    QWidget::update();
}

void MapView::resizeEvent(QResizeEvent* event)
{
    Q_UNUSED(event)
    viewManager->resize(0, 0, width() - 1, height() - 1);
}

void MapView::showEvent(QShowEvent* event)
{
    Q_UNUSED(event)
    viewManager->resize(0, 0, width() - 1, height() - 1);
}

void MapView::keyReleaseEvent(QKeyEvent* event)
{
    event->ignore();
}

void MapView::enterEvent(QEvent* event)
{
    event->ignore();
}

void MapView::leaveEvent(QEvent* event)
{
    event->ignore();
}

// Touch does what the mouse events do that Qt makes of it, and no more.

void MapView::panTriggered(QPanGesture* gesture)
{
    Q_UNUSED(gesture)
}

void MapView::pinchTriggered(QPinchGesture* gesture)
{
    Q_UNUSED(gesture)
}

void MapView::swipeTriggered(QSwipeGesture* gesture)
{
    Q_UNUSED(gesture)
}

} // namespace Corvane::Map
