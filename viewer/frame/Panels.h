#pragma once

#include <QList>
#include <QObject>
#include <QPointer>

#include <functional>

class QAction;
class QDockWidget;
class QMainWindow;
class QMdiArea;
class QString;
class QWidget;

namespace Corvane::Map {
class Layer;
class MapTreeView;
} // namespace Corvane::Map

namespace Corvane::Viewer {

class MapWindow;
class TreeFollower;

/// The panels beside the maps, each in a dock of its own, those of the plugins among them. They
/// follow the active map window, and the layer tree tells them of the active layer. GUI thread only.
class Panels : public QObject
{
    Q_OBJECT
public:
    /// Adds the docks to the window; area holds the map windows.
    Panels(QMainWindow* mainWindow, QMdiArea* mapArea);
    /// Ends the plugins with the tree: the maps must be gone.
    ~Panels() override;

    /// A dock around a panel, hidden until the user or the layout of the last run shows it. Owns the
    /// panel.
    QDockWidget* addPanel(const QString& name, const QString& title, QWidget* panel,
                          Qt::DockWidgetArea where);
    Map::MapTreeView* getTree() const;
    /// Show and hide the panels, in order.
    QList<QAction*> getToggleActions() const;
    /// The window that the panels are about; null for none.
    void setMapWindow(MapWindow* newWindow);
    /// Something may have changed while a dialog was open.
    void refresh();

private:
    void addPluginPanels();
    void feedWhileVisible(QDockWidget* dock, const std::function<void(Map::Layer*)>& feed);
    void onLayerActivated(Map::Layer* layer);

    QMainWindow* window; // not owned
    QMdiArea* area;      // not owned
    QList<QDockWidget*> docks;
    QList<QPointer<QWidget>> pluginWidgets; // docks and tool bars, owned by the window
    QPointer<Map::MapTreeView> tree;        // in the first dock
    TreeFollower* follower = nullptr;
    QPointer<Map::Layer> activeLayer;
};

} // namespace Corvane::Viewer
