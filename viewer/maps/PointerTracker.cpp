#include <viewer/maps/PointerTracker.h>

#include <corvane/map/MapView.h>
#include <corvane/map/ViewManager.h>

#include <QMouseEvent>
#include <QPointF>

namespace Corvane::Viewer {

PointerTracker::PointerTracker(Map::MapView* newView) : QObject(newView), view(newView)
{
    view->setMouseTracking(true);
    view->installEventFilter(this);
    connect(view, &Map::MapView::mapExtentsChanged, this, &PointerTracker::announce);
}

bool PointerTracker::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Leave) {
        inside = false;
        emit left();
    } else if (event->type() == QEvent::MouseMove) {
        const auto mouse = static_cast<QMouseEvent*>(event);
        position = mouse->pos();
        inside = true;
        announce();
        // The view draws its box on every move that it sees in this mode, also between two drags.
        const bool boxMode = view->getViewManager()->getPointerMode() == Map::IClient::ZoomBox;
        if (boxMode && mouse->buttons() == Qt::NoButton) {
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

void PointerTracker::announce()
{
    if (!inside) {
        return;
    }
    double x = 0.0;
    double y = 0.0;
    view->getViewManager()->convertDeviceToWorld(position.x(), position.y(), &x, &y);
    emit moved(QPointF(x, y));
}

} // namespace Corvane::Viewer
