#include <viewer/comparing/SwipeDivider.h>

#include <corvane/core/Integer.h>

#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPen>

#include <algorithm>

namespace Corvane::Viewer {
namespace {

constexpr int reach = 5; // pixels on either side of the line where the pointer grips it
constexpr int step = 10; // pixels
constexpr int fineStep = 1;
constexpr int wideStep = 50;
constexpr int handleLength = 28;
constexpr int haloWidth = 3;
constexpr int focusedHaloWidth = 5;

int stepOf(Qt::KeyboardModifiers modifiers)
{
    if (modifiers.testFlag(Qt::ControlModifier)) {
        return fineStep;
    }
    return modifiers.testFlag(Qt::ShiftModifier) ? wideStep : step;
}

} // namespace

SwipeDivider::SwipeDivider(QWidget* view, Qt::Orientation firstOrientation)
    : QWidget(view),
      orientation(firstOrientation)
{
    setObjectName("swipeDivider");
    setAccessibleName(tr("Swipe divider"));
    setToolTip(tr("Drag, or use the arrow keys. Space turns the divider, Escape ends swiping."));
    setFocusPolicy(Qt::StrongFocus);
    view->installEventFilter(this);
    place();
}

void SwipeDivider::setOrientation(Qt::Orientation newOrientation)
{
    if (newOrientation != orientation) {
        orientation = newOrientation;
        place();
        emit turned(orientation);
        emit moved();
    }
}

int SwipeDivider::extent() const
{
    return isUpright() ? parentWidget()->width() : parentWidget()->height();
}

int SwipeDivider::along(const QPoint& point) const
{
    return isUpright() ? point.x() : point.y();
}

int SwipeDivider::getPosition() const
{
    return Util::roundToInt(share * extent());
}

void SwipeDivider::setPosition(int pixels)
{
    const int kept = std::clamp(pixels, 0, extent());
    if (extent() > 0 && kept != getPosition()) {
        share = static_cast<double>(kept) / extent();
        place();
        emit moved();
    }
}

QRect SwipeDivider::getFront() const
{
    return isUpright() ? QRect(0, 0, getPosition(), parentWidget()->height())
                       : QRect(0, 0, parentWidget()->width(), getPosition());
}

void SwipeDivider::place()
{
    const int thickness = 2 * reach + 1;
    const int corner = getPosition() - reach;
    setGeometry(isUpright() ? QRect(corner, 0, thickness, parentWidget()->height())
                            : QRect(0, corner, parentWidget()->width(), thickness));
    setCursor(isUpright() ? Qt::SplitHCursor : Qt::SplitVCursor);
    update();
}

bool SwipeDivider::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize && watched == parentWidget()) {
        place();
        emit moved();
    }
    return QWidget::eventFilter(watched, event);
}

// Dark on light, so that it shows on every ground.
void SwipeDivider::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QPoint middle = rect().center();
    const QLine line = isUpright() ? QLine(middle.x(), 0, middle.x(), height())
                                   : QLine(0, middle.y(), width(), middle.y());
    const int halo = hasFocus() ? focusedHaloWidth : haloWidth;
    painter.setPen(
        QPen(hasFocus() ? palette().color(QPalette::Highlight) : QColor(Qt::white), halo));
    painter.drawLine(line);
    painter.setPen(QPen(Qt::black, 1));
    painter.drawLine(line);
    const QSize size =
        isUpright() ? QSize(2 * reach, handleLength) : QSize(handleLength, 2 * reach);
    QRect handle(QPoint(0, 0), size);
    handle.moveCenter(middle);
    painter.setBrush(Qt::white);
    painter.drawRect(handle);
}

void SwipeDivider::mousePressEvent(QMouseEvent* event)
{
    grip = along(mapToParent(event->pos())) - getPosition();
    event->accept();
}

void SwipeDivider::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons().testFlag(Qt::LeftButton)) {
        setPosition(along(mapToParent(event->pos())) - grip);
    }
    event->accept();
}

void SwipeDivider::mouseDoubleClickEvent(QMouseEvent* event)
{
    setOrientation(isUpright() ? Qt::Horizontal : Qt::Vertical);
    event->accept();
}

// All arrows move it, whichever way it lies: right and down forward.
void SwipeDivider::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Up:
        setPosition(getPosition() - stepOf(event->modifiers()));
        break;
    case Qt::Key_Right:
    case Qt::Key_Down:
        setPosition(getPosition() + stepOf(event->modifiers()));
        break;
    case Qt::Key_Home:
        setPosition(0);
        break;
    case Qt::Key_End:
        setPosition(extent());
        break;
    case Qt::Key_Space:
        setOrientation(isUpright() ? Qt::Horizontal : Qt::Vertical);
        break;
    case Qt::Key_Escape:
        emit closed(); // which may be the end of this
        break;
    default:
        QWidget::keyPressEvent(event);
    }
}

void SwipeDivider::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    update();
}

void SwipeDivider::focusOutEvent(QFocusEvent* event)
{
    QWidget::focusOutEvent(event);
    update();
}

} // namespace Corvane::Viewer
