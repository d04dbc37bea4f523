#pragma once

#include <viewer/editing/LayerStack.h>

#include <QHash>
#include <QObject>
#include <QVector>

class QUndoStack;

namespace Corvane::Viewer {

class MapDocument;

/// Remembers what was done to the layers of one map, whoever did it, for taking it back: deletions,
/// moves, and what the user switched on and off. A layer that takes the place of another one takes
/// its past as well. The last steps only. GUI thread only.
class LayerHistory : public QObject
{
    Q_OBJECT
public:
    static constexpr int longest = 20; ///< steps

    /// The window becomes the parent.
    explicit LayerHistory(MapWindow* mapWindow);
    ~LayerHistory() override;

    QUndoStack* getSteps() const;

    /// Layers tell nobody when they are switched on or off: who lets the user do so notes the state
    /// before and has the difference recorded after.
    void noteVisibility();
    void recordVisibility(const QUuid& layer);

signals:
    /// A layer could not be brought back.
    void failed(const QString& layer, const QString& reason);

private:
    void onLayerAdded(Map::Layer* layer);
    void onLayerDeleted(Map::Layer* layer);
    void onLayerMoved(Map::Layer* layer);

    MapDocument* document; // of the window
    QPointer<Map::MapView> view;
    QPointer<Map::Layer> replacement; // of the layer that is deleted next
    LayerStack layers;
    QUndoStack* steps;  // goes before the layers that it works on
    QVector<int> known; // the order, the lowest first
    QHash<int, bool> visible;
    int turn = 0; // of the event loop, counted where something is deleted
    bool turnIsOpen = false;
};

} // namespace Corvane::Viewer
