#include <corvane/map/ZoomBox.h>

#include <QPainter>

#include <algorithm>
#include <cstdlib>

namespace Corvane::Map {

namespace {

constexpr int noCoordinate = -1;
constexpr int frameWidth = 2; // pixels

} // namespace

ZoomBox::ZoomBox()
    : brush(QColor(255, 255, 255, 50)),
      pen(QBrush(QColor(225, 0, 0, 255)), frameWidth)
{
}

ZoomBox::~ZoomBox() = default;

void ZoomBox::paint(QPainter& painter, QWidget* widget)
{
    Q_UNUSED(widget)
    if (x0 == noCoordinate || y0 == noCoordinate || x1 == noCoordinate || y1 == noCoordinate) {
        return;
    }
    const int left = std::min(x0, x1);
    const int top = std::min(y0, y1);
    const int width = std::abs(x1 - x0);
    const int height = std::abs(y1 - y0);

    // The brush stays set for the frame, so the inside is veiled twice.
    // ZoomBoxTest::paintsTheInsideTwice holds it.
    painter.setBrush(brush);
    painter.fillRect(left, top, width, height, brush);
    painter.setPen(pen);
    painter.drawRect(left, top, width, height);
}

void ZoomBox::setRect(int newX0, int newY0, int newX1, int newY1)
{
    x0 = newX0;
    y0 = newY0;
    x1 = newX1;
    y1 = newY1;
}

} // namespace Corvane::Map
