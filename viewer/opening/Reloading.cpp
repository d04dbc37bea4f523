#include <viewer/opening/Reloading.h>

#include <viewer/frame/Commands.h>
#include <viewer/frame/NoticeBar.h>
#include <viewer/frame/Panels.h>
#include <viewer/frame/Workspace.h>
#include <viewer/maps/LateLayers.h>
#include <viewer/maps/LayerOpener.h>
#include <viewer/maps/MapDocument.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/opening/FileWatch.h>
#include <viewer/opening/OpenFailures.h>

#include <corvane/core/PluginManager.h>
#include <corvane/gui/MapTreeView.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>

#include <QAction>
#include <QDir>
#include <QDomDocument>
#include <QSet>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace Corvane::Viewer {

/// An old layer and the one that is to take its place.
struct Reloading::Change
{
    QPointer<MapWindow> map;
    const MapWindow* key = nullptr; // the map as well, to tell it while it goes
    QPointer<Map::Layer> old;
    std::unique_ptr<Map::Layer> fresh;
};

Reloading::Reloading(Workspace* newWindow)
    : QObject(newWindow),
      window(newWindow),
      failures(new OpenFailures(newWindow)),
      files(new FileWatch(this)),
      late(new LateLayers(this))
{
    reloadAction = addCommand(window, "actionReload", [this] { reloadActive(); });
    reloadAllAction = addCommand(window, "actionReloadAll", [this] { reloadAll(map); });
    connect(window, &Workspace::activeMapChanged, this, &Reloading::setMapWindow);
    connect(window, &Workspace::mapWindowAdded, this, &Reloading::follow);
    connect(window->getPanels()->getTree(), &Map::MapTreeView::layerActivated, this,
            [this](Map::Layer* layer) { activeLayer = layer; });
    connect(files, &FileWatch::changed, this, &Reloading::offer);
    connect(late, &LateLayers::ended, this, &Reloading::onOpened);
    setMapWindow(nullptr);
}

Reloading::~Reloading() = default;

void Reloading::setMapWindow(MapWindow* newMap)
{
    map = newMap;
    reloadAction->setEnabled(map != nullptr);
    reloadAllAction->setEnabled(map != nullptr);
}

/// Of a map in which no layer is active, all.
void Reloading::reloadActive()
{
    if (map && map->getView() && map->getView()->getLayers().contains(activeLayer)) {
        reload(map, activeLayer);
    } else {
        reloadAll(map);
    }
}

void Reloading::reloadAll(MapWindow* whole)
{
    if (!whole || !whole->getView()) {
        return;
    }
    const QVector<Map::Layer*> layers = whole->getView()->getLayers();
    for (Map::Layer* layer : layers) {
        reload(whole, layer);
    }
}

void Reloading::reload(MapWindow* of, Map::Layer* layer)
{
    const bool isUnderWay =
        std::any_of(changes.begin(), changes.end(),
                    [layer](const auto& change) { return change->old == layer; });
    if (isUnderWay) {
        return;
    }
    const char* const forget = "forgetSource"; // what is kept of a server's answers
    if (layer->metaObject()->indexOfMethod("forgetSource()") >= 0) {
        QMetaObject::invokeMethod(layer, forget, Qt::DirectConnection);
    }
    QDomDocument document;
    QDomElement element = document.createElement("layer");
    layer->writeXML(element, document);
    auto change = std::make_unique<Change>();
    change->map = of;
    change->key = of;
    change->old = layer;
    change->fresh.reset(PluginManager::createLayer(layer->metaObject()->className(), false));
    if (!change->fresh) {
        return; // its plugin has been switched off
    }
    QDir anywhere;
    QString messages;
    const bool read = change->fresh->readXML(element, anywhere, &messages);
    if (read && late->follow(change->fresh.get())) {
        changes.push_back(std::move(change));
    } else {
        const bool ok = read && change->fresh->isValid();
        finish(std::move(change), ok);
    }
}

void Reloading::onOpened(Map::Layer* layer, bool ok)
{
    const auto found = std::find_if(changes.begin(), changes.end(), [layer](const auto& change) {
        return change->fresh.get() == layer;
    });
    if (found != changes.end()) {
        std::unique_ptr<Change> change = std::move(*found);
        changes.erase(found);
        finish(std::move(change), ok);
    }
}

/// The new layer comes before the old one goes, so that the view stays.
void Reloading::finish(std::unique_ptr<Change> change, bool ok)
{
    Map::Layer* const fresh = change->fresh.release();
    Map::MapView* const view = change->map ? change->map->getView() : nullptr;
    const int place = view && change->old ? view->getLayers().indexOf(change->old) : -1;
    if (!ok && place >= 0) {
        failures->add(LayerOpener::withoutCredentials(fresh->getDataSource()),
                      fresh->getLastError());
    }
    if (!ok || place < 0) {
        fresh->deleteLater(); // it may be the sender
        return;
    }
    const bool wasActive = activeLayer == change->old;
    MapDocument* const document = change->map->getDocument();
    document->beginReplacing();
    view->addLayer(fresh, place);
    view->deleteLayer(change->old.data());
    document->endReplacing();
    if (wasActive) {
        activeLayer = fresh;
    }
    emit reloaded(fresh);
}

void Reloading::follow(MapWindow* added)
{
    const auto soon = [this] {
        if (!watchesSoon) {
            watchesSoon = true;
            QTimer::singleShot(0, this, &Reloading::watchFiles);
        }
    };
    connect(added->getView(), &Map::MapView::layerAdded, this, soon);
    connect(added->getView(), &Map::MapView::layerDeleted, this, soon);
    connect(added, &QObject::destroyed, this, soon);
    connect(added, &QObject::destroyed, this, [this, added] { giveUp(added); });
}

/// The plugins end after the last map, and no layer may outlive its plugin.
void Reloading::giveUp(const MapWindow* closed)
{
    const auto isOfMap = [closed](const auto& change) { return change->key == closed; };
    changes.erase(std::remove_if(changes.begin(), changes.end(), isOfMap), changes.end());
}

void Reloading::watchFiles()
{
    watchesSoon = false;
    QSet<QString> sources;
    for (MapWindow* each : window->getMapWindows()) {
        if (each->getView()) {
            for (Map::Layer* layer : each->getView()->getLayers()) {
                sources.insert(layer->getDataSource());
            }
        }
    }
    files->watch(sources);
}

/// One notice for all that have changed by now.
void Reloading::offer(const QString& file)
{
    if (!changedFiles.contains(file)) {
        changedFiles << file;
    }
    const auto bar = new NoticeBar(
        window, "changedNotice",
        changedFiles.size() == 1 ? tr("%1 has changed.").arg(LayerOpener::nameOf(file))
                                 : tr("%n files have changed.", nullptr, changedFiles.size()));
    bar->offer("reloadChanged", tr("&Reload"), [this] {
        for (const QString& changed : std::exchange(changedFiles, {})) {
            reloadFrom(changed);
        }
    });
    connect(bar, &NoticeBar::dismissed, this, [this] { changedFiles.clear(); });
}

void Reloading::reloadFrom(const QString& file)
{
    for (MapWindow* each : window->getMapWindows()) {
        if (!each->getView()) {
            continue;
        }
        const QVector<Map::Layer*> layers = each->getView()->getLayers();
        for (Map::Layer* layer : layers) {
            if (layer->getDataSource() == file) {
                reload(each, layer);
            }
        }
    }
}

} // namespace Corvane::Viewer
