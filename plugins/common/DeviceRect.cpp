#include <plugins/common/DeviceRect.h>

#include <corvane/core/Integer.h>

#include <QRect>

#include <algorithm>

namespace Corvane::Map {

QRect deviceRect(const WorldCorners& world, const QRect& device, const WorldCorners& area)
{
    const double w = device.x() + device.width();
    const double h = device.y() + device.height();
    const auto column = [&](double x) {
        return Util::roundAwayFromZero((x - world.tlx) / (world.brx - world.tlx) * w + device.x());
    };
    const auto row = [&](double y) {
        return Util::roundAwayFromZero((y - world.tly) / (world.bry - world.tly) * h + device.y());
    };
    const int left = std::max(column(area.tlx), device.left());
    const int top = std::max(row(area.tly), device.top());
    const int right = std::min(column(area.brx), device.left() + device.width());
    const int bottom = std::min(row(area.bry), device.top() + device.height());
    return right > left && bottom > top ? QRect(QPoint(left, top), QPoint(right - 1, bottom - 1))
                                        : QRect();
}

} // namespace Corvane::Map
