#include <viewer/frame/TreeFollower.h>

#include <viewer/maps/MapWindow.h>

#include <corvane/gui/MapTreeView.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapCanvas.h>
#include <corvane/map/MapView.h>

#include <QLineEdit>
#include <QMetaProperty>
#include <QStringList>

namespace Corvane::Viewer {
namespace {

// A layer that opens off the GUI thread announces it with this signal.
const char* const openedSignature = "sourceOpened(bool)";
constexpr int waitForEditor = 200; // milliseconds

QString uidOf(const QTreeWidgetItem& item)
{
    return item.data(0, Qt::UserRole).toString();
}

QStringList uidsIn(const QTreeWidgetItem* root)
{
    QStringList uids;
    for (int i = 0; root && i < root->childCount(); ++i) {
        uids << uidOf(*root->child(i));
    }
    return uids;
}

bool shows(const QTreeWidgetItem& item, Map::Layer& layer)
{
    const bool ticked = layer.isVisible() && layer.isValid();
    return uidOf(item) == layer.getUid().toString() && item.text(0) == layer.getDescription() &&
           (item.checkState(0) == Qt::Checked) == ticked;
}

} // namespace

TreeFollower::TreeFollower(Map::MapTreeView* followingTree, QObject* parent)
    : QObject(parent),
      tree(followingTree)
{
    timer.setSingleShot(true);
    connect(&timer, &QTimer::timeout, this, &TreeFollower::catchUp);
}

void TreeFollower::setMapWindow(MapWindow* newWindow)
{
    Map::MapView* const newView = newWindow ? newWindow->getView() : nullptr;
    if (view != newView) {
        if (view) {
            disconnect(view, nullptr, this, nullptr);
        }
        view = newView;
        if (view) {
            connect(view, &Map::MapView::layerAdded, this, &TreeFollower::look);
            connect(view, &Map::MapView::layerDeleted, this, &TreeFollower::look);
            connect(view, &Map::MapView::layerMoved, this, &TreeFollower::look);
            connect(view, &Map::MapView::layerPropertyChanged, this, &TreeFollower::look);
            connect(view, &Map::MapView::mapPropertyChanged, this, &TreeFollower::look);
            connect(view, &QObject::destroyed, this, &TreeFollower::look);
        }
    }
    look();
}

// Later, because a layer that is deleted is still there while that is announced.
void TreeFollower::look()
{
    if (!timer.isActive()) {
        timer.start(0);
    }
}

void TreeFollower::catchUp()
{
    if (!tree) {
        return;
    }
    if (!view) {
        if (tree->topLevelItemCount() > 0) {
            tree->setMapView(nullptr);
        }
        return;
    }
    if (isBeingEdited()) { // a rebuild would take the editor away
        timer.start(waitForEditor);
        return;
    }
    for (Map::Layer* layer : view->getLayers()) {
        follow(layer);
    }
    if (!isInStep(*view)) {
        rebuild();
    }
    QTreeWidgetItem* const selected = tree->selectedItems().value(0);
    if (selected && !tree->currentItem()) { // the tree selects without moving the keyboard there
        tree->setCurrentItem(selected, 0, QItemSelectionModel::NoUpdate);
    }
}

void TreeFollower::follow(Map::Layer* layer)
{
    if (layer->metaObject()->indexOfSignal(openedSignature) >= 0) {
        connect(layer, SIGNAL(sourceOpened(bool)), this, SLOT(look()), Qt::UniqueConnection);
    }
}

bool TreeFollower::isInStep(Map::MapView& shown) const
{
    const QTreeWidgetItem* const root = tree->topLevelItem(0);
    const QVector<Map::Layer*>& layers = shown.getLayers();
    if (!root || root->text(0) != shown.getDescription() || root->childCount() != layers.size()) {
        return false;
    }
    for (int i = 0; i < layers.size(); ++i) {
        if (!shows(*root->child(layers.size() - 1 - i), *layers.at(i))) {
            return false;
        }
    }
    return true;
}

bool TreeFollower::isBeingEdited() const
{
    return tree->viewport()->findChild<QLineEdit*>() != nullptr;
}

/// A new layer becomes the active one; otherwise the selection stays.
void TreeFollower::rebuild()
{
    const QStringList before = uidsIn(tree->topLevelItem(0));
    const QTreeWidgetItem* const selected = tree->selectedItems().value(0);
    const bool rootSelected = selected && !selected->parent();
    const QString uid = selected ? uidOf(*selected) : QString();
    tree->setMapView(view);

    QTreeWidgetItem* const root = tree->topLevelItem(0);
    const QStringList now = uidsIn(root);
    for (const QString& one : now) {
        if (!before.contains(one)) {
            return;
        }
    }
    if (rootSelected) {
        tree->setCurrentItem(root);
    } else if (now.contains(uid)) {
        tree->setCurrentItem(root->child(now.indexOf(uid)));
    }
}

} // namespace Corvane::Viewer
