#include <plugins/common/MapTarget.h>

#include <plugins/common/TiledRasterLayer.h>

#include <corvane/core/Application.h>
#include <corvane/map/MapView.h>

#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>

namespace Corvane::Map {

MapView* activeMapView()
{
    QMainWindow* const window =
        Application::instance() ? Application::instance()->getMainWindow() : nullptr;
    if (!window) {
        return nullptr;
    }
    const auto* const area = window->findChild<QMdiArea*>();
    QMdiSubWindow* const active = area ? area->activeSubWindow() : nullptr;
    return active ? active->findChild<MapView*>() : window->findChild<MapView*>();
}

void addToView(MapView* view, TiledRasterLayer* layer)
{
    const bool isFirst = view->getNumberOfLayers() == 0;
    view->addLayer(layer, -1);
    if (isFirst && !layer->isValid()) { // it has no extent yet that could be shown whole
        QObject::connect(layer, &TiledRasterLayer::sourceOpened, view, [view, layer](bool ok) {
            if (ok) {
                view->zoomToLayer(layer);
            }
        });
    }
}

} // namespace Corvane::Map
