#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>

#include <memory>
#include <vector>

class QAction;

namespace Corvane::Map {
class Layer;
class MapView;
} // namespace Corvane::Map

namespace Corvane::Viewer {

class FileWatch;
class LateLayers;
class MapWindow;
class OpenFailures;
class Workspace;

/// Opens layers anew whose source has changed: at the user's command, which a notice also offers when
/// a file changes. The new layer takes the old one's place with its settings once it is open; one
/// that does not open leaves the old one where it is. GUI thread only.
class Reloading : public QObject
{
    Q_OBJECT
public:
    /// The window is the parent; its panels tell of the active layer.
    explicit Reloading(Workspace* window);
    ~Reloading() override;

    void setMapWindow(MapWindow* newMap);
    void reload(MapWindow* map, Map::Layer* layer);
    /// Every layer of the map.
    void reloadAll(MapWindow* map);

signals:
    /// The new layer is in the place of the old one, which is gone.
    void reloaded(Corvane::Map::Layer* layer);

private:
    struct Change;

    void reloadActive();
    void follow(MapWindow* map);
    void watchFiles();
    void offer(const QString& file);
    void reloadFrom(const QString& file);
    void onOpened(Map::Layer* layer, bool ok);
    void finish(std::unique_ptr<Change> change, bool ok);
    void giveUp(const MapWindow* closed);

    Workspace* window; // the parent
    OpenFailures* failures;
    FileWatch* files;
    LateLayers* late;
    QPointer<MapWindow> map;
    QPointer<Map::Layer> activeLayer;
    QAction* reloadAction = nullptr;
    QAction* reloadAllAction = nullptr;
    std::vector<std::unique_ptr<Change>> changes; // whose new layer is opening
    QStringList changedFiles;                     // that the notice is about
    bool watchesSoon = false;
};

} // namespace Corvane::Viewer
