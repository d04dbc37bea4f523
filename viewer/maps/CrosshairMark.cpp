#include <viewer/maps/CrosshairMark.h>

#include <QPainter>

namespace Corvane::Viewer {
namespace {

constexpr int reach = 16; // pixels from the middle
constexpr int gap = 4;
constexpr qreal haloWidth = 3.0;
constexpr qreal lineWidth = 1.0;
constexpr qreal heldWidth = 2.0;

} // namespace

CrosshairMark::CrosshairMark(QWidget* view) : QWidget(view)
{
    setObjectName("crosshairMark");
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFixedSize(2 * reach + 1, 2 * reach + 1);
}

void CrosshairMark::setCenter(const QPoint& center)
{
    move(center - QPoint(reach, reach));
}

void CrosshairMark::setHeld(bool held)
{
    isHeld = held;
    update();
}

void CrosshairMark::paintEvent(QPaintEvent*)
{
    const QVector<QLine> arms = {
        {0, reach, reach - gap, reach},
        {reach + gap, reach, 2 * reach, reach},
        {reach, 0, reach, reach - gap},
        {reach, reach + gap, reach, 2 * reach},
    };
    QPainter painter(this);
    painter.setPen(QPen(Qt::white, haloWidth + (isHeld ? heldWidth : lineWidth)));
    painter.drawLines(arms);
    painter.setPen(QPen(Qt::black, isHeld ? heldWidth : lineWidth));
    painter.drawLines(arms);
}

} // namespace Corvane::Viewer
