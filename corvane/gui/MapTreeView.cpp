#include <corvane/gui/MapTreeView.h>

#include <corvane/core/PluginManager.h>
#include <corvane/map/Layer.h>
#include <corvane/map/LayerPointer_p.h>
#include <corvane/map/MapCanvas.h>
#include <corvane/map/MapView.h>

#include <QAction>
#include <QApplication>
#include <QHeaderView>
#include <QIcon>
#include <QLineEdit>
#include <QMdiSubWindow>

namespace Corvane::Map {
namespace {

const Qt::ItemFlags rootFlags =
    Qt::ItemIsSelectable | Qt::ItemIsEditable | Qt::ItemIsDragEnabled | Qt::ItemIsEnabled;
const Qt::ItemFlags layerFlags = rootFlags | Qt::ItemIsUserCheckable;

} // namespace

MapTreeView::MapTreeView(QWidget* parent)
    : QTreeWidget(parent),
      layerMenu(this),
      mapContextMenu(this)
{
    registerLayerPointer();
    qRegisterMetaType<MapView*>("Map::MapView*"); // as mapActivated spells it, for spies
    header()->hide();
    setAcceptDrops(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setSelectionBehavior(QAbstractItemView::SelectItems);
    setRootIsDecorated(true);

    auto* const addMenu = new QMenu(tr("Add layer..."), this);
    addMenu->addActions(PluginManager::getLayerPluginAddLayerActions());
    createActions();
    addLayerAction->setMenu(addMenu);

    layerMenu.addActions({addLayerAction, deleteAction, moveToTopAction, moveUpAction,
                          moveDownAction, moveToBottomAction, zoomToLayerAction,
                          zoomOneToOneAction});
    layerMenu.addSeparator();
    layerMenu.addAction(propertiesAction);
    mapContextMenu.addActions({addLayerAction, zoomToAllAction});
    mapContextMenu.addSeparator();
    mapContextMenu.addAction(propertiesAction);

    connect(this, &QTreeWidget::itemClicked, this, &MapTreeView::onItemActivated);
    connect(this, &QTreeWidget::itemSelectionChanged, this, &MapTreeView::onItemSelectionChanged);
    connect(this, &QTreeWidget::itemChanged, this, &MapTreeView::onItemChanged);
}

MapTreeView::~MapTreeView()
{
    PluginManager::fini();
}

void MapTreeView::createActions()
{
    addLayerAction = createAction("document_add.png", tr("Add layer"), nullptr);
    deleteAction =
        createAction("document_delete.png", tr("Delete Layer"), &MapTreeView::deleteLayer);
    moveToTopAction =
        createAction("navigate_up2.png", tr("Move Layer to Top"), &MapTreeView::moveLayerToTop);
    moveUpAction = createAction("navigate_up.png", tr("Move Layer Up"), &MapTreeView::moveLayerUp);
    moveDownAction =
        createAction("navigate_down.png", tr("Move Layer Down"), &MapTreeView::moveLayerDown);
    moveToBottomAction = createAction("navigate_down2.png", tr("Move Layer to Bottom"),
                                      &MapTreeView::moveLayerToBottom);
    zoomToLayerAction =
        createAction("fit_to_size.png", tr("Zoom to Layer"), &MapTreeView::zoomToLayer);
    zoomOneToOneAction =
        createAction("zoom_1_to_1.png", tr("Zoom to Layer 1:1"), &MapTreeView::zoomToLayer1To1);
    zoomToAllAction = createAction("fit_to_size.png", tr("Zoom to All"), &MapTreeView::zoomToAll);
    propertiesAction = createAction("prefs.png", tr("Properties"), &MapTreeView::doProperties);
}

QAction* MapTreeView::createAction(const QString& icon, const QString& label,
                                   void (MapTreeView::*slot)())
{
    auto* const action =
        new QAction(QIcon(QStringLiteral(":/resources/icons/24x24/") + icon), label, this);
    if (slot) {
        connect(action, &QAction::triggered, this, slot);
    }
    return action;
}

const QMenu* MapTreeView::getLayerMenu()
{
    return &layerMenu;
}

const QMenu* MapTreeView::getMapContextMenu()
{
    return &mapContextMenu;
}

void MapTreeView::setMapView(Map::MapView* view)
{
    clear();
    mapView = view;
    if (!mapView) {
        return;
    }
    setColumnCount(1);
    rootItem = new QTreeWidgetItem(QStringList(mapView->getDescription()));
    rootItem->setIcon(0, QIcon(QStringLiteral(":/resources/web.png")));
    insertTopLevelItem(0, rootItem);
    rootItem->setExpanded(true);
    rootItem->setFlags(rootFlags);

    QList<QTreeWidgetItem*> items;
    const QVector<Layer*> layers = mapView->getMapCanvas()->getLayers();
    for (auto layer = layers.crbegin(); layer != layers.crend(); ++layer) {
        items.append(createItem(*layer));
    }
    rootItem->insertChildren(0, items); // in one step, so that no itemChanged comes for them

    // the paragraph stays open
    rootItem->setToolTip(
        0, QStringLiteral("<p style='white-space:pre'><i><b>") + mapView->getDescription() +
               QStringLiteral("</b></i>") +
               tr("<br/><b>Number of layers:</b> %1").arg(mapView->getNumberOfLayers()));
    initSelection();
}

QTreeWidgetItem* MapTreeView::createItem(Map::Layer* layer)
{
    auto* const item = new QTreeWidgetItem(QStringList(layer->getDescription()));
    item->setFlags(layerFlags);
    item->setCheckState(0, layer->isVisible() && layer->isValid() ? Qt::Checked : Qt::Unchecked);
    item->setIcon(0, layer->getIcon());
    item->setToolTip(0, getLayerToolTip(layer));
    item->setData(0, Qt::UserRole, layer->getUid());
    return item;
}

/// The announcement comes twice for a layer: the selection makes the first.
void MapTreeView::initSelection()
{
    QTreeWidgetItem* const first =
        mapView && mapView->getNumberOfLayers() > 0 ? rootItem->child(0) : nullptr;
    QPointer<Layer> layer = first ? layerOf(first) : nullptr; // a host may delete it at the first
    if (layer) {
        first->setSelected(true);
    }
    emit layerActivated(layer);
}

QString MapTreeView::getLayerToolTip(Map::Layer* layer)
{
    if (!layer) {
        return QString();
    }
    return QStringLiteral("<p style='white-space:pre'><b><font size='+1' face='Helvetica' "
                          "color='black'>") +
           layer->getDescription() + QStringLiteral("</font></b>") +
           tr("<br/><b>Data Source:</b> %1").arg(layer->getDataSource()) +
           tr("<br/><b>Coordinate System:</b> %1").arg(layer->getCoordSysName()) +
           tr("<br/><b>Layer Type:</b> %1").arg(layer->getFormat()) +
           tr("<br/><b>Protocol:</b> %1").arg(layer->getProtocol()) +
           tr("<br/><i>%1</i>").arg(layer->getComments()) + tr("</p>");
}

void MapTreeView::onSubWindowActivated(QMdiSubWindow* window)
{
    if (window) {
        setEnabled(true);
        setMapView(qobject_cast<MapView*>(window->widget()));
    } else if (QApplication::activeWindow()) {
        // another program in front is no reason to forget the map
        setMapView(nullptr);
    }
}

void MapTreeView::onItemActivated(QTreeWidgetItem* item, int)
{
    if (item) {
        announce(item);
    }
}

void MapTreeView::onItemSelectionChanged()
{
    const QList<QTreeWidgetItem*> items = selectedItems();
    if (items.size() == 1) {
        announce(items.first());
    }
}

void MapTreeView::announce(QTreeWidgetItem* item)
{
    Layer* const layer = layerOf(item);
    if (layer) {
        emit layerActivated(layer);
        emit mapActivated(nullptr);
    } else {
        emit mapActivated(mapView);
        emit layerActivated(nullptr);
    }
    setLayerMenuEnabled(layer != nullptr);
}

void MapTreeView::setLayerMenuEnabled(bool enabled)
{
    addLayerAction->setEnabled(true);
    propertiesAction->setEnabled(true);
    for (QAction* action : {deleteAction, moveToTopAction, moveUpAction, moveDownAction,
                            moveToBottomAction, zoomToLayerAction, zoomOneToOneAction})
    {
        action->setEnabled(enabled);
    }
}

// An edited text comes here as well and changes nothing.
void MapTreeView::onItemChanged(QTreeWidgetItem* item, int)
{
    Layer* const layer = item ? layerOf(item) : nullptr;
    if (layer) {
        layer->setVisible(item->checkState(0) == Qt::Checked);
        mapView->QWidget::update();
    }
}

void MapTreeView::commitData(QWidget* editor)
{
    QTreeWidget::commitData(editor);
    const auto* const line = qobject_cast<QLineEdit*>(editor);
    QTreeWidgetItem* const item = selectedItem();
    if (!line || !item || !mapView) {
        return;
    }
    if (item == rootItem) {
        mapView->setDescription(line->text());
    } else if (Layer* const layer = layerOf(item)) {
        layer->setDescription(line->text());
    }
}

QTreeWidgetItem* MapTreeView::selectedItem() const
{
    const QList<QTreeWidgetItem*> items = selectedItems();
    return items.isEmpty() ? nullptr : items.first();
}

/// The root for an empty one; null where there is none. A host may make the tree anew at any signal
/// of the map, so no item outlives a change of it.
QTreeWidgetItem* MapTreeView::itemOf(const QString& uid) const
{
    if (!mapView) {
        return nullptr;
    }
    if (uid.isEmpty()) {
        return rootItem;
    }
    for (int i = 0; i < rootItem->childCount(); ++i) {
        if (rootItem->child(i)->data(0, Qt::UserRole).toString() == uid) {
            return rootItem->child(i);
        }
    }
    return nullptr;
}

/// Null for the root and for a layer that is gone.
Layer* MapTreeView::layerOf(const QTreeWidgetItem* item) const
{
    return mapView ? mapView->findLayer(item->data(0, Qt::UserRole).toString()) : nullptr;
}

int MapTreeView::layerIndexOf(const QTreeWidgetItem* item) const
{
    QString uid = item->data(0, Qt::UserRole).toString();
    return mapView->getLayerIndex(uid);
}

} // namespace Corvane::Map
