#include <plugins/vector/VectorPicture.h>

#include <QPainter>

#include <cmath>

namespace Corvane::Map {

namespace {

constexpr double sameSize = 0.05;  // pixels of difference over the whole picture
constexpr double samePlace = 0.02; // pixels

bool isWhole(double value)
{
    return std::abs(value - std::round(value)) < samePlace;
}

} // namespace

std::shared_ptr<const VectorPicture> VectorPicture::make(const PictureOrder& order,
                                                         const std::atomic<bool>& abandoned)
{
    auto picture = std::make_shared<VectorPicture>();
    picture->frame = order.frame;
    picture->madeFor = order.view;
    picture->style = order.style;
    picture->data = order.data;
    const QRect area = order.frame.device.toRect();
    picture->image = QImage(area.size(), QImage::Format_ARGB32_Premultiplied);
    if (picture->image.isNull()) {
        return picture;
    }
    picture->image.fill(Qt::transparent);
    QPainter painter(&picture->image);
    ShapePainter shapes(&painter, order.frame, area, order.style, 1.0);
    return shapes.draw(order.chunks, abandoned) ? picture : nullptr;
}

QRectF VectorPicture::placeOn(const ViewFrame& view) const
{
    return QRectF(QPointF(view.toDeviceX(frame.tlx), view.toDeviceY(frame.tly)),
                  QPointF(view.toDeviceX(frame.brx), view.toDeviceY(frame.bry)));
}

bool VectorPicture::covers(const ViewFrame& view) const
{
    const QRectF place = placeOn(view);
    return std::abs(place.width() - frame.device.width()) < sameSize &&
           std::abs(place.height() - frame.device.height()) < sameSize &&
           place.adjusted(-samePlace, -samePlace, samePlace, samePlace).contains(view.device);
}

bool VectorPicture::fits(const ViewFrame& view) const
{
    const QRectF place = placeOn(view);
    return covers(view) && isWhole(place.left()) && isWhole(place.top());
}

void VectorPicture::paint(QPainter& painter, const ViewFrame& view) const
{
    const QRectF place = placeOn(view);
    const QRectF part = place & view.device;
    if (image.isNull() || part.isEmpty()) {
        return;
    }
    const bool sameScale = std::abs(place.width() - frame.device.width()) < sameSize &&
                           std::abs(place.height() - frame.device.height()) < sameSize;
    if (sameScale) {
        painter.drawImage(QPointF(std::round(place.left()), std::round(place.top())), image);
        return;
    }
    const double scaleX = frame.device.width() / place.width();
    const double scaleY = frame.device.height() / place.height();
    painter.drawImage(part, image,
                      QRectF((part.left() - place.left()) * scaleX,
                             (part.top() - place.top()) * scaleY, part.width() * scaleX,
                             part.height() * scaleY));
}

} // namespace Corvane::Map
