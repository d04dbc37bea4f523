#include <viewer/maps/MapOverlay.h>

#include <corvane/map/MapView.h>

#include <QEvent>

namespace Corvane::Viewer {

MapOverlay::MapOverlay(Map::MapView* coveredView) : QWidget(coveredView), view(coveredView)
{
    setAttribute(Qt::WA_NoSystemBackground);
    setGeometry(view->rect());
    view->installEventFilter(this);
    connect(view, &Map::MapView::mapExtentsChanged, this, QOverload<>::of(&QWidget::update));
}

// The view's last pixel is its far corner.
QPointF MapOverlay::toDevice(const QPointF& world) const
{
    const QRectF bounds = view->getBounds();
    return QPointF((world.x() - bounds.x()) / bounds.width() * (view->width() - 1),
                   (world.y() - bounds.y()) / bounds.height() * (view->height() - 1));
}

QPointF MapOverlay::toWorld(const QPointF& device) const
{
    const QRectF bounds = view->getBounds();
    return QPointF(bounds.x() + device.x() / (view->width() - 1) * bounds.width(),
                   bounds.y() + device.y() / (view->height() - 1) * bounds.height());
}

bool MapOverlay::eventFilter(QObject* watched, QEvent* event)
{
    // a view that is being destroyed sends events, and is no map view any more
    if (event->type() == QEvent::Resize && qobject_cast<Map::MapView*>(watched)) {
        setGeometry(view->rect());
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace Corvane::Viewer
