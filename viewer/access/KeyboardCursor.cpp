#include <viewer/access/KeyboardCursor.h>

#include <viewer/frame/Commands.h>
#include <viewer/maps/CrosshairMark.h>
#include <viewer/maps/MapWindow.h>

#include <corvane/map/MapView.h>

#include <QAction>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>

namespace Corvane::Viewer {
namespace {

constexpr int usualStep = 10; // pixels
constexpr int fineStep = 1;
constexpr int wideStep = 50;

int stepOf(Qt::KeyboardModifiers modifiers)
{
    if (modifiers.testFlag(Qt::ControlModifier)) {
        return fineStep;
    }
    return modifiers.testFlag(Qt::ShiftModifier) ? wideStep : usualStep;
}

} // namespace

KeyboardCursor::KeyboardCursor(QWidget* owner)
    : QObject(owner),
      toggle(addSwitch(owner, "actionKeyboardCursor", [this](bool on) { setOn(on); }))
{
    toggle->setEnabled(false);
}

KeyboardCursor::~KeyboardCursor() = default;

void KeyboardCursor::setMapWindow(MapWindow* newWindow)
{
    Map::MapView* const newView = newWindow ? newWindow->getView() : nullptr;
    if (newView != view) {
        setOn(false);
    }
    window = newWindow;
    toggle->setEnabled(newView);
    toggle->setChecked(isOn()); // the crosshair goes with a map that was closed
}

bool KeyboardCursor::isOn() const
{
    return mark;
}

void KeyboardCursor::setOn(bool on)
{
    if (on == isOn()) {
        return;
    }
    if (!on) {
        if (isHeld) {
            hold(false);
        }
        delete mark;
        if (view) {
            view->removeEventFilter(this);
        }
        view = nullptr;
    } else if (window && window->getView()) {
        view = window->getView();
        view->installEventFilter(this);
        view->setFocus(Qt::ShortcutFocusReason);
        mark = new CrosshairMark(view);
        mark->show();
        moveTo(view->rect().center());
    }
    toggle->setChecked(isOn());
}

bool KeyboardCursor::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == view && event->type() == QEvent::KeyPress &&
        takeKey(*static_cast<QKeyEvent*>(event)))
    {
        event->accept();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

/// Whether the key was for the cursor.
bool KeyboardCursor::takeKey(const QKeyEvent& event)
{
    const int step = stepOf(event.modifiers());
    switch (event.key()) {
    case Qt::Key_Left:
        return moveBy(QPoint(-step, 0));
    case Qt::Key_Right:
        return moveBy(QPoint(step, 0));
    case Qt::Key_Up:
        return moveBy(QPoint(0, -step));
    case Qt::Key_Down:
        return moveBy(QPoint(0, step));
    case Qt::Key_Return:
    case Qt::Key_Enter:
        click(event.modifiers().testFlag(Qt::ControlModifier));
        return true;
    case Qt::Key_Space:
        hold(!isHeld);
        return true;
    case Qt::Key_Escape:
        setOn(false);
        return true;
    default:
        return false;
    }
}

/// False at the edge: the key is the map's then, which moves on.
bool KeyboardCursor::moveBy(const QPoint& step)
{
    const QRect area = view->rect();
    const QPoint wanted = position + step;
    const QPoint place(qBound(area.left(), wanted.x(), area.right()),
                       qBound(area.top(), wanted.y(), area.bottom()));
    if (place == position) {
        return false;
    }
    moveTo(place);
    return true;
}

void KeyboardCursor::moveTo(const QPoint& place)
{
    position = place;
    mark->setCenter(position);
    mark->raise();
    send(QEvent::MouseMove, Qt::NoButton);
    emit moved(position);
}

void KeyboardCursor::click(bool twice)
{
    send(QEvent::MouseButtonPress, Qt::LeftButton);
    send(QEvent::MouseButtonRelease, Qt::LeftButton);
    if (twice) {
        send(QEvent::MouseButtonDblClick, Qt::LeftButton);
        send(QEvent::MouseButtonRelease, Qt::LeftButton);
    }
}

void KeyboardCursor::hold(bool down)
{
    isHeld = down;
    if (mark) {
        mark->setHeld(down);
    }
    send(down ? QEvent::MouseButtonPress : QEvent::MouseButtonRelease, Qt::LeftButton);
}

// What a click does may close the map.
void KeyboardCursor::send(QEvent::Type type, Qt::MouseButton button)
{
    if (!view) {
        return;
    }
    const bool isDown = isHeld || (button != Qt::NoButton && type != QEvent::MouseButtonRelease);
    QMouseEvent event(type, position, view->mapToGlobal(position), button,
                      isDown ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(view, &event);
}

} // namespace Corvane::Viewer
