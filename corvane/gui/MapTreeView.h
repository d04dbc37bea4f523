#pragma once

#include <corvane/core/Export.h>

#include <QMenu>
#include <QPointer>
#include <QTreeWidget>

class QAction;
class QMdiSubWindow;

namespace Corvane::Map {

class Layer;
class MapView;

/// The panel that lists the active map and its layers, the topmost first. It switches layers on and
/// off, renames, moves, deletes and adds them, and announces which layer or map the user works on.
/// It follows no signal of the map: whoever changes the map elsewhere calls setMapView again.
/// Its end unloads the plugins, so every map and whatever else came from them must be gone by then.
/// GUI thread only.
class CORVANE_EXPORT MapTreeView : public QTreeWidget
{
    Q_OBJECT
public:
    /// An empty tree. The parent owns it; it may be null.
    explicit MapTreeView(QWidget* parent = nullptr);
    /// Ends the plugin manager.
    ~MapTreeView() override;

    /// The menu of a layer, and that of the map; owned here.
    const QMenu* getLayerMenu();
    /// The menu of the map as a whole; owned here.
    const QMenu* getMapContextMenu();
    /// What is known of the layer, as rich text; empty for null.
    QString getLayerToolTip(Map::Layer* layer);

signals:
    /// The layer that the user works on; null for none.
    void layerActivated(Map::Layer* layer);
    /// The map, where the user works on it as a whole; null while it is a layer.
    void mapActivated(Map::MapView* mapView);

public slots:
    /// Lists this map and makes its top layer the active one; the view is not owned. Null empties
    /// the tree without a signal.
    void setMapView(Map::MapView* view);
    /// Lists the map of the window; without one the tree is empty. Null counts while the program
    /// is in front.
    void onSubWindowActivated(QMdiSubWindow* window);
    /// Tells which layer, or map, the user works on.
    void onItemActivated(QTreeWidgetItem* item, int column);
    /// Shows or hides the layer as its box is checked.
    void onItemChanged(QTreeWidgetItem* item, int column);
    /// Tells which layer, or map, the user works on.
    void onItemSelectionChanged();
    /// Makes a layer of the class, with the plugin's dialogs, and puts it on top.
    void onAddLayer(QString className);
    /// These work on the selected item.
    void doProperties();
    /// One place towards the top of the stack.
    void moveLayerUp();
    /// One place towards the bottom of the stack.
    void moveLayerDown();
    /// Above all other layers.
    void moveLayerToTop();
    /// Beneath all other layers.
    void moveLayerToBottom();
    /// Takes the layer out of the map and deletes it.
    void deleteLayer();
    /// Shows the whole of the layer.
    void zoomToLayer();
    /// One device pixel becomes one cell of the layer.
    void zoomToLayer1To1();
    /// Needs a map.
    void zoomToAll();

protected slots:
    /// Gives the layer or the map its new name.
    void commitData(QWidget* editor) override;

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    /// Adds the files to the map.
    void dropEvent(QDropEvent* event) override;

private:
    void createActions();
    QAction* createAction(const QString& icon, const QString& label, void (MapTreeView::*slot)());
    void initSelection();
    void setLayerMenuEnabled(bool enabled);
    void announce(QTreeWidgetItem* item);
    QTreeWidgetItem* createItem(Map::Layer* layer);
    void addFile(const QString& path);
    QTreeWidgetItem* selectedItem() const;
    QTreeWidgetItem* itemOf(const QString& uid) const;
    Map::Layer* layerOf(const QTreeWidgetItem* item) const;
    int layerIndexOf(const QTreeWidgetItem* item) const;
    void moveLayer(QTreeWidgetItem* item, int from, int to, int position);

    QPointer<MapView> mapView;           // null once it is gone
    QTreeWidgetItem* rootItem = nullptr; // of the tree; not read while there is no map view
    QMenu layerMenu;
    QMenu mapContextMenu;
    QAction* addLayerAction = nullptr; // addAction is what a host calls
    QAction* deleteAction = nullptr;
    QAction* moveToTopAction = nullptr;
    QAction* moveUpAction = nullptr;
    QAction* moveDownAction = nullptr;
    QAction* moveToBottomAction = nullptr;
    QAction* zoomToAllAction = nullptr;
    QAction* zoomToLayerAction = nullptr;
    QAction* zoomOneToOneAction = nullptr;
    QAction* propertiesAction = nullptr;
};

} // namespace Corvane::Map
