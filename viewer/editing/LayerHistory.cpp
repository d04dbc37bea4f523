#include <viewer/editing/LayerHistory.h>

#include <viewer/editing/LayerSteps.h>
#include <viewer/maps/MapDocument.h>
#include <viewer/maps/MapWindow.h>

#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>

#include <QTimer>
#include <QUndoStack>

namespace Corvane::Viewer {
namespace {

/// The keys that are in both, in the order of the first.
QVector<int> common(const QVector<int>& one, const QVector<int>& other)
{
    QVector<int> keys;
    for (const int key : one) {
        if (other.contains(key)) {
            keys << key;
        }
    }
    return keys;
}

} // namespace

LayerHistory::LayerHistory(MapWindow* mapWindow)
    : QObject(mapWindow),
      document(mapWindow->getDocument()),
      view(mapWindow->getView()),
      layers(mapWindow),
      steps(new QUndoStack(this)),
      known(layers.order())
{
    steps->setUndoLimit(longest);
    connect(view, &Map::MapView::layerAdded, this, &LayerHistory::onLayerAdded);
    connect(view, &Map::MapView::layerDeleted, this, &LayerHistory::onLayerDeleted);
    connect(view, &Map::MapView::layerMoved, this, &LayerHistory::onLayerMoved);
    connect(steps, &QUndoStack::indexChanged, this, &LayerHistory::noteVisibility);
    noteVisibility();
}

LayerHistory::~LayerHistory()
{
    delete steps;
}

QUndoStack* LayerHistory::getSteps() const
{
    return steps;
}

/// A map may have thousands of layers, each of which comes by itself.
void LayerHistory::onLayerAdded(Map::Layer* layer)
{
    if (document->isReplacing()) {
        replacement = layer; // takes over the other one's key
        return;
    }
    const int index = view->getLayers().lastIndexOf(layer);
    if (index >= 0 && known.size() + 1 == view->getNumberOfLayers()) {
        known.insert(index, layers.keyOf(layer));
    } else {
        known = layers.order();
    }
}

/// The layer is still there.
void LayerHistory::onLayerDeleted(Map::Layer* layer)
{
    if (!layer || layers.isAtWork()) {
        return;
    }
    if (document->isReplacing()) {
        if (replacement) {
            layers.bind(layers.keyOf(layer), replacement);
        }
        return;
    }
    if (!turnIsOpen) {
        turnIsOpen = true;
        ++turn;
        QTimer::singleShot(0, this, [this] { turnIsOpen = false; });
    }
    steps->push(new DeleteLayersStep(
        &layers, layers.keep(layer), layers.order(), turn,
        [this](const QString& name, const QString& reason) { emit failed(name, reason); }));
}

/// The map also tells of moves that were none.
void LayerHistory::onLayerMoved(Map::Layer* layer)
{
    const QVector<int> before = known;
    known = layers.order();
    if (layer && !layers.isAtWork() && common(before, known) != common(known, before)) {
        steps->push(new MoveLayerStep(&layers, layers.keyOf(layer), before, known));
    }
}

void LayerHistory::noteVisibility()
{
    visible.clear();
    for (const int key : layers.order()) {
        if (Map::Layer* const layer = layers.layerOf(key)) {
            visible.insert(key, layer->isVisible());
        }
    }
}

void LayerHistory::recordVisibility(const QUuid& uid)
{
    for (const int key : layers.order()) {
        Map::Layer* const layer = layers.layerOf(key);
        if (layer && layer->getUid() == uid &&
            visible.value(key, layer->isVisible()) != layer->isVisible()) {
            steps->push(new ShowLayerStep(&layers, key, layer->isVisible()));
        }
    }
}

} // namespace Corvane::Viewer
