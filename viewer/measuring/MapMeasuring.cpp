#include <viewer/measuring/MapMeasuring.h>

#include <viewer/maps/CrosshairMark.h>
#include <viewer/measuring/MeasureOverlay.h>
#include <viewer/measuring/MeasurePanel.h>
#include <viewer/places/MapReference.h>

#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>
#include <corvane/map/ViewManager.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QMouseEvent>

namespace Corvane::Viewer {
namespace {

constexpr int usualStep = 10; // pixels, as the next
constexpr int fineStep = 1;
constexpr int wideStep = 50;
constexpr int panelMargin = 8;

QPoint stepOf(const QKeyEvent& event)
{
    const int length = event.modifiers().testFlag(Qt::ControlModifier) ? fineStep
                       : event.modifiers().testFlag(Qt::ShiftModifier) ? wideStep
                                                                       : usualStep;
    switch (event.key()) {
    case Qt::Key_Left:
        return QPoint(-length, 0);
    case Qt::Key_Right:
        return QPoint(length, 0);
    case Qt::Key_Up:
        return QPoint(0, -length);
    case Qt::Key_Down:
        return QPoint(0, length);
    default:
        return QPoint();
    }
}

} // namespace

MapMeasuring::MapMeasuring(Map::MapView* measuredView, QAction* cursorSwitch)
    : QObject(measuredView),
      view(measuredView),
      otherCursor(cursorSwitch),
      overlay(new MeasureOverlay(measuredView)),
      panel(new MeasurePanel(measuredView))
{
    view->installEventFilter(this);
    view->setMouseTracking(true);
    view->setCursor(Qt::CrossCursor);
    connect(panel, &MeasurePanel::chosen, this, &MapMeasuring::refresh);
    connect(panel, &MeasurePanel::copyRequested, this, &MapMeasuring::copy);
    connect(panel, &MeasurePanel::closeRequested, this, &MapMeasuring::leave);
    if (otherCursor) {
        connect(otherCursor, &QAction::toggled, this, [this](bool on) {
            if (on) {
                delete cursor; // one crosshair is enough
            }
        });
    }
    // the reference is that of a layer; later, as one that goes is still there now
    connect(view, &Map::MapView::layerAdded, this, &MapMeasuring::refresh);
    connect(view, &Map::MapView::layerMoved, this, &MapMeasuring::refresh);
    connect(view, &Map::MapView::layerDeleted, this, &MapMeasuring::refresh, Qt::QueuedConnection);
    refresh();
    overlay->show();
    panel->move(panelMargin, panelMargin);
    panel->show();
}

MapMeasuring* MapMeasuring::of(Map::MapView* view)
{
    return view ? view->findChild<MapMeasuring*>(QString(), Qt::FindDirectChildrenOnly) : nullptr;
}

void MapMeasuring::leave()
{
    view->removeEventFilter(this);
    view->setPointerMode(view->getViewManager()->getPointerMode()); // its cursor
    setParent(nullptr);
    const bool hadFocus = panel->isAncestorOf(QApplication::focusWidget());
    overlay->hide();
    overlay->deleteLater();
    panel->hide();
    panel->deleteLater(); // one of its buttons may have said this
    delete cursor;
    if (hadFocus) {
        view->setFocus();
    }
    emit left();
    deleteLater();
}

bool MapMeasuring::eventFilter(QObject* watched, QEvent* event)
{
    if (!qobject_cast<Map::MapView*>(watched)) {
        return false; // a view that is being destroyed sends events, and is no map view any more
    }
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseMove:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
        return !isReplaying && onMouse(*static_cast<QMouseEvent*>(event));
    case QEvent::Leave:
        pointerIsKnown = false;
        refresh();
        return false;
    case QEvent::ShortcutOverride:
        if (isOwn(*static_cast<QKeyEvent*>(event))) {
            event->accept();
            return true;
        }
        return false;
    case QEvent::KeyPress:
        return onKey(*static_cast<QKeyEvent*>(event));
    default:
        return QObject::eventFilter(watched, event);
    }
}

/// Whether the view must not see it.
bool MapMeasuring::onMouse(const QMouseEvent& event)
{
    switch (event.type()) {
    case QEvent::MouseButtonPress:
        return onPress(event);
    case QEvent::MouseMove:
        return onMove(event);
    case QEvent::MouseButtonRelease:
        return onRelease(event);
    default:
        if (event.button() == Qt::LeftButton) {
            end(); // the first of its two clicks has put the point
        }
        return event.button() == Qt::LeftButton;
    }
}

bool MapMeasuring::onPress(const QMouseEvent& event)
{
    if (event.button() != Qt::LeftButton) {
        return false;
    }
    pressed = event.pos();
    isPressed = true;
    isDragging = false;
    return true;
}

bool MapMeasuring::onMove(const QMouseEvent& event)
{
    if (isPressed && !isDragging) {
        if ((event.pos() - pressed).manhattanLength() < QApplication::startDragDistance()) {
            return true;
        }
        // no click but a drag: the map gets it from its beginning
        isDragging = true;
        QMouseEvent press(QEvent::MouseButtonPress, pressed, view->mapToGlobal(pressed),
                          Qt::LeftButton, Qt::LeftButton, event.modifiers());
        isReplaying = true;
        QCoreApplication::sendEvent(view, &press);
        isReplaying = false;
    }
    pointer = worldOf(event.pos());
    pointerIsKnown = true;
    refresh();
    return false;
}

bool MapMeasuring::onRelease(const QMouseEvent& event)
{
    if (isDragging || event.button() != Qt::LeftButton) {
        isDragging = isDragging && event.button() != Qt::LeftButton;
        isPressed = isDragging;
        // after the view, which takes the cursor of its mode
        QMetaObject::invokeMethod(
            this, [this] { view->setCursor(Qt::CrossCursor); }, Qt::QueuedConnection);
        return false;
    }
    if (isPressed) {
        isPressed = false;
        addPoint(pressed);
    }
    return true;
}

bool MapMeasuring::isOwn(const QKeyEvent& event) const
{
    if (event.matches(QKeySequence::Copy)) {
        return points.size() > 1; // else something else may be copied
    }
    if (event.key() == Qt::Key_Backspace) {
        return true;
    }
    if (otherCursor && otherCursor->isChecked()) {
        return false;
    }
    return event.key() == Qt::Key_Escape || event.key() == Qt::Key_Return ||
           event.key() == Qt::Key_Enter || event.key() == Qt::Key_Space || !stepOf(event).isNull();
}

/// Whether the view must not see it.
bool MapMeasuring::onKey(const QKeyEvent& event)
{
    if (!isOwn(event)) {
        return false;
    }
    if (event.matches(QKeySequence::Copy)) {
        copy();
        return true;
    }
    switch (event.key()) {
    case Qt::Key_Backspace:
        removePoint();
        return true;
    case Qt::Key_Escape:
        leave();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        end();
        return true;
    case Qt::Key_Space:
        if (cursor) {
            addPoint(cursorPlace);
        } else {
            putCursor(view->rect().center());
        }
        return true;
    default:
        return moveCursor(event);
    }
}

/// False at the edge: the key is the map's then, which moves on.
bool MapMeasuring::moveCursor(const QKeyEvent& event)
{
    if (!cursor) {
        putCursor(view->rect().center());
        return true;
    }
    const QRect area = view->rect();
    const QPoint wanted = cursorPlace + stepOf(event);
    const QPoint place(qBound(area.left(), wanted.x(), area.right()),
                       qBound(area.top(), wanted.y(), area.bottom()));
    if (place == cursorPlace) {
        return false;
    }
    putCursor(place);
    return true;
}

void MapMeasuring::putCursor(const QPoint& place)
{
    if (!cursor) {
        cursor = new CrosshairMark(view);
        cursor->show();
    }
    cursorPlace = place;
    cursor->setCenter(place);
    cursor->raise();
    pointer = worldOf(place);
    pointerIsKnown = true;
    refresh();
}

void MapMeasuring::addPoint(const QPoint& place)
{
    if (ended) {
        points.clear();
        ended = false;
    }
    const QPointF world = worldOf(place);
    if (points.isEmpty() || points.last() != world)
    { // a second click at the same place adds nothing
        points << world;
    }
    pointer = world;
    pointerIsKnown = true;
    refresh();
}

/// Of an ended one too, which goes on then.
void MapMeasuring::removePoint()
{
    if (!points.isEmpty()) {
        points.removeLast();
    }
    ended = false;
    refresh();
}

void MapMeasuring::end()
{
    ended = points.size() > 1;
    refresh();
}

void MapMeasuring::copy()
{
    if (points.size() < 2) {
        return;
    }
    const auto reference = MapReference::ofView(*view);
    const Measurement firm = measure(panel->getKind(), points, *reference, panel->getSurface());
    QApplication::clipboard()->setText(
        measurementText(panel->getKind(), firm, panel->getUnits(), points));
}

void MapMeasuring::refresh()
{
    QVector<QPointF> shape = points;
    const bool moves = pointerIsKnown && !ended && !points.isEmpty() && pointer != points.last();
    if (moves) {
        shape << pointer;
    }
    const auto reference = MapReference::ofView(*view);
    measurement = measure(panel->getKind(), shape, *reference, panel->getSurface());
    overlay->setShape(panel->getKind(), shape, moves);
    panel->showMeasurement(measurement, points.size(),
                           reference->getUnits().kind == MapUnits::Length &&
                               reference->isOnEarth());
}

QPointF MapMeasuring::worldOf(const QPoint& place) const
{
    return overlay->toWorld(place);
}

} // namespace Corvane::Viewer
