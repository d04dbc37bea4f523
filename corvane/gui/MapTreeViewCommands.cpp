// What the user does with the layers: the other half of MapTreeView.

#include <corvane/gui/MapTreeView.h>

#include <corvane/core/PluginManager.h>
#include <corvane/gui/LayerProperties.h>
#include <corvane/gui/MapProperties.h>
#include <corvane/map/MapCanvas.h>
#include <corvane/map/MapView.h>
#include <corvane/map/RasterLayer.h>

#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QDragLeaveEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QMessageBox>
#include <QMimeData>
#include <QUrl>

#include <memory>

namespace Corvane::Map {

// Up is towards the top of the stack. There is no guard here against the root, whose index is -1:
// the canvas takes no such move, and the menu does not offer it.
void MapTreeView::moveLayerUp()
{
    QTreeWidgetItem* const item = selectedItem();
    if (!item || !mapView) {
        return;
    }
    const int index = layerIndexOf(item);
    if (index < mapView->getNumberOfLayers() - 1) {
        moveLayer(item, index, index + 1, rootItem->indexOfChild(item) - 1);
    }
}

void MapTreeView::moveLayerDown()
{
    QTreeWidgetItem* const item = selectedItem();
    if (!item || !mapView) {
        return;
    }
    const int index = layerIndexOf(item);
    if (index > 0) {
        moveLayer(item, index, index - 1, rootItem->indexOfChild(item) + 1);
    }
}

void MapTreeView::moveLayerToTop()
{
    QTreeWidgetItem* const item = selectedItem();
    if (!item || !mapView) {
        return;
    }
    const int index = layerIndexOf(item);
    if (index >= 0) {
        moveLayer(item, index, mapView->getNumberOfLayers() - 1, 0);
    }
}

void MapTreeView::moveLayerToBottom()
{
    QTreeWidgetItem* const item = selectedItem();
    if (!item || !mapView) {
        return;
    }
    const int index = layerIndexOf(item);
    if (index >= 0) {
        moveLayer(item, index, 0, mapView->getNumberOfLayers() - 1);
    }
}

/// Moves the layer in the stack and its item in step with it.
void MapTreeView::moveLayer(QTreeWidgetItem* item, int from, int to, int position)
{
    const QString uid = item->data(0, Qt::UserRole).toString();
    mapView->moveLayer(from, to);
    item = itemOf(uid);
    if (!item) {
        return;
    }
    rootItem->removeChild(item);
    rootItem->insertChild(position, item);
    setCurrentItem(item, 0, QItemSelectionModel::NoUpdate); // where the arrow keys go on from
    clearSelection();
    item->setSelected(true);
}

void MapTreeView::deleteLayer()
{
    QTreeWidgetItem* const item = selectedItem();
    Layer* const layer = item ? layerOf(item) : nullptr;
    if (layer) {
        QString uid = layer->getUid().toString();
        mapView->deleteLayer(uid);
        setItemWidget(currentItem(), 0, nullptr);
        delete itemOf(uid);
        if (mapView) {
            mapView->QWidget::update(); // a single deletion asks for no repaint by itself
        }
    }
    const QTreeWidgetItem* const remaining = selectedItem();
    emit layerActivated(remaining ? layerOf(remaining) : nullptr);
}

void MapTreeView::doProperties()
{
    const QTreeWidgetItem* const item = selectedItem();
    if (!item || !mapView) {
        return;
    }
    if (item->data(0, Qt::UserRole).toString().isEmpty()) {
        // it stays a child of the tree until the tree goes
        auto* const dialog = new Gui::MapProperties(mapView->getMapCanvas(), this);
        dialog->exec();
        if (mapView) { // the map's setters store and ask for no repaint
            mapView->QWidget::update();
        }
        return;
    }
    Gui::LayerProperties dialog(this);
    const int index = layerIndexOf(item);
    if (Layer* const layer = index >= 0 ? mapView->getLayerAt(index) : nullptr) {
        dialog.setLayer(layer);
        dialog.exec();
    }
}

void MapTreeView::zoomToLayer()
{
    const QTreeWidgetItem* const item = selectedItem();
    if (item && mapView && !item->data(0, Qt::UserRole).toString().isEmpty()) {
        mapView->zoomToLayer(layerIndexOf(item));
    }
}

/// With the map selected, to the lowest raster layer.
void MapTreeView::zoomToLayer1To1()
{
    const QTreeWidgetItem* const item = selectedItem();
    if (!item || !mapView) {
        return;
    }
    QString uid = item->data(0, Qt::UserRole).toString();
    if (uid.isEmpty()) {
        for (Layer* layer : mapView->getMapCanvas()->getLayers()) {
            if (qobject_cast<RasterLayer*>(layer)) {
                uid = layer->getUid().toString();
                break;
            }
        }
    }
    if (!uid.isEmpty()) {
        mapView->zoomOneToOne(mapView->getLayerIndex(uid));
    }
}

void MapTreeView::zoomToAll()
{
    mapView->zoomToAllLayers(true);
}

void MapTreeView::onAddLayer(QString className)
{
    std::unique_ptr<Layer> layer(PluginManager::createLayer(className, true));
    if (layer && mapView) {
        mapView->getMapCanvas()->addLayer(layer.release(), -1);
        setMapView(mapView);
    }
}

// The menu is that of the selection, whatever lies below the pointer.
void MapTreeView::contextMenuEvent(QContextMenuEvent* event)
{
    const QList<QTreeWidgetItem*> items = selectedItems();
    if (items.size() != 1 || !mapView) {
        return;
    }
    const bool isRoot = items.first()->data(0, Qt::UserRole).toString().isEmpty();
    QMenu& menu = isRoot ? mapContextMenu : layerMenu;
    menu.exec(mapToGlobal(event->pos()));
}

void MapTreeView::dragEnterEvent(QDragEnterEvent* event)
{
    event->acceptProposedAction();
}

void MapTreeView::dragMoveEvent(QDragMoveEvent* event)
{
    if (mapView && event->mimeData()) {
        event->acceptProposedAction();
    }
}

void MapTreeView::dragLeaveEvent(QDragLeaveEvent* event)
{
    event->accept();
}

void MapTreeView::dropEvent(QDropEvent* event)
{
    if (!mapView) {
        QMessageBox::warning(this, tr("MapView"),
                             tr("Open a map window before dropping files on the workspace."),
                             QMessageBox::Ok);
        return;
    }
    const QMimeData* const files = event->mimeData();
    const QList<QUrl> urls = files ? files->urls() : QList<QUrl>();
    for (const QUrl& url : urls) {
        addFile(url.toLocalFile());
    }
    event->acceptProposedAction();
    setMapView(mapView);
}

void MapTreeView::addFile(const QString& path)
{
    const QString className = PluginManager::findLayerClassname(QFileInfo(path).suffix());
    if (className.isEmpty()) {
        QMessageBox::warning(this, tr("MapView"), tr("Unknown data type."), QMessageBox::Ok);
    } else if (mapView) { // it may go while the box is open
        mapView->addLayer(className, path, QString(), QString(), -1);
    }
}

} // namespace Corvane::Map
