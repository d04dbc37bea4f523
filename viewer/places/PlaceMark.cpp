#include <viewer/places/PlaceMark.h>

#include <corvane/map/MapView.h>

#include <QPainter>

namespace Corvane::Viewer {
namespace {

constexpr int milliseconds = 3000;
constexpr double ringRadius = 18.0; // pixels, as the next
constexpr double armLength = 10.0;
constexpr double haloWidth = 5.0;
constexpr double lineWidth = 2.0;
constexpr double fadeFrom = 0.5; // of the time that is left

} // namespace

PlaceMark* PlaceMark::showAt(Map::MapView* view, const QPointF& world)
{
    qDeleteAll(view->findChildren<PlaceMark*>(QString(), Qt::FindDirectChildrenOnly));
    auto* const mark = new PlaceMark(view, world);
    mark->setVisible(true);
    mark->raise();
    return mark;
}

PlaceMark::PlaceMark(Map::MapView* markedView, const QPointF& world)
    : MapOverlay(markedView),
      place(world)
{
    setObjectName("placeMark");
    setAttribute(Qt::WA_TransparentForMouseEvents);
    fading.setStartValue(1.0);
    fading.setEndValue(0.0);
    fading.setDuration(milliseconds);
    connect(&fading, &QVariantAnimation::valueChanged, this, QOverload<>::of(&QWidget::update));
    connect(&fading, &QVariantAnimation::finished, this, &QObject::deleteLater);
    fading.start();
}

PlaceMark::~PlaceMark()
{
    disconnect(&fading, nullptr, this, nullptr);
}

void PlaceMark::paintEvent(QPaintEvent* event)
{
    Q_UNUSED(event)
    const QPointF centre = toDevice(place);
    const double reach = ringRadius + armLength;
    if (!QRectF(rect()).adjusted(-reach, -reach, reach, reach).contains(centre)) {
        return;
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(qMin(1.0, fading.currentValue().toDouble() / fadeFrom));
    for (const QPen& pen :
         {QPen(QColor(255, 255, 255, 220), haloWidth, Qt::SolidLine, Qt::RoundCap),
          QPen(QColor(210, 0, 60), lineWidth, Qt::SolidLine, Qt::RoundCap)})
    {
        painter.setPen(pen);
        painter.drawEllipse(centre, ringRadius, ringRadius);
        for (const QPointF& arm : {QPointF(1, 0), QPointF(-1, 0), QPointF(0, 1), QPointF(0, -1)}) {
            painter.drawLine(centre + arm * (ringRadius - armLength), centre + arm * reach);
        }
    }
}

} // namespace Corvane::Viewer
