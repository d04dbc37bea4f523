#include <plugins/common/MapTarget.h>

#include <corvane/core/Application.h>

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

} // namespace Corvane::Map
