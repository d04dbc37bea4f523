#include <viewer/sources/SourceWatch.h>

#include <viewer/frame/Workspace.h>
#include <viewer/maps/MapWindow.h>

#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>

namespace Corvane::Viewer {
namespace {

constexpr int lookInterval = 1000; // milliseconds

} // namespace

SourceWatch::SourceWatch(Workspace* workspace) : QObject(workspace), window(workspace)
{
    timer.setInterval(lookInterval);
    connect(&timer, &QTimer::timeout, this, &SourceWatch::look);
    connect(window, &Workspace::mapWindowAdded, this, &SourceWatch::follow);
    connect(window, &Workspace::activeMapChanged, this, &SourceWatch::look);
}

// Later, so that many layers of a document are one look.
void SourceWatch::follow(MapWindow* added)
{
    const auto lookSoon = [this] {
        if (!timer.isActive()) {
            timer.start();
        }
    };
    connect(added->getView(), &Map::MapView::layerAdded, this, lookSoon);
    connect(added->getView(), &Map::MapView::layerDeleted, this, lookSoon);
}

Map::SourceReport SourceWatch::reportOf(Map::Layer* layer)
{
    auto* const source = qobject_cast<Map::ILayerSource*>(layer);
    return source ? source->getSourceReport() : Map::SourceReport();
}

void SourceWatch::look()
{
    sources.clear();
    for (MapWindow* mapWindow : window->getMapWindows()) {
        Map::MapView* const view = mapWindow->getView();
        const QVector<Map::Layer*> layers = view ? view->getLayers() : QVector<Map::Layer*>();
        for (int i = layers.size() - 1; i >= 0; --i) {
            const Map::SourceReport report = reportOf(layers.at(i));
            if (report.state != Map::SourceReport::State::Local) {
                sources.append({layers.at(i), mapWindow, layers.at(i)->getDescription(),
                                mapWindow->getName(), report});
            }
        }
    }
    if (sources.isEmpty()) {
        timer.stop();
    } else if (!timer.isActive()) {
        timer.start();
    }
    emit looked();
}

void SourceWatch::tryAgain(Map::Layer* layer)
{
    if (auto* const source = qobject_cast<Map::ILayerSource*>(layer)) {
        source->retrySource();
    }
    look();
}

void SourceWatch::tryAll()
{
    for (const WatchedSource& source : sources) {
        auto* const asked = qobject_cast<Map::ILayerSource*>(source.layer.data());
        if (asked && source.report.isTrouble()) {
            asked->retrySource();
        }
    }
    look();
}

} // namespace Corvane::Viewer
