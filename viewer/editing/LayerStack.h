#pragma once

#include <QDomDocument>
#include <QHash>
#include <QPointer>
#include <QUuid>
#include <QVector>

namespace Corvane::Map {
class Layer;
class MapView;
} // namespace Corvane::Map

namespace Corvane::Viewer {

class MapWindow;

/// What is left of a layer that was deleted: its element of a map document, in memory alone.
struct KeptLayer
{
    int key = 0;
    QString name;
    QUuid uid; ///< that it had
    QDomDocument document;
};

/// The layers of a map by keys that outlive them: a layer that comes back is another object, with
/// another uid, under the same key. Places are told as an order of keys, from the bottom up, and
/// found again by the neighbours that are still there. GUI thread only.
class LayerStack
{
public:
    explicit LayerStack(MapWindow* mapWindow);

    /// Key 0 stands for a place without a layer.
    int keyOf(Map::Layer* layer);
    /// From now on the layer has this key.
    void bind(int key, Map::Layer* layer);
    /// Null while the layer is deleted.
    Map::Layer* layerOf(int key) const;
    QVector<int> order();

    /// Moves the layer to where it stands in that order.
    void place(int key, const QVector<int>& wanted);
    void show(int key, bool visible);
    KeptLayer keep(Map::Layer* layer);
    /// Deletes the layer; false where there is none.
    bool remove(int key, KeptLayer* kept);
    /// Makes the layer again, where it stands in that order. False, with the reason, where that
    /// cannot be done; a layer whose source does not open is there all the same.
    bool bringBack(const KeptLayer& kept, const QVector<int>& wanted, QString* reason);
    /// Whether what the map tells of now is our own doing.
    bool isAtWork() const;

private:
    class Work;
    void addBack(Map::Layer* layer, const KeptLayer& kept, const QVector<int>& wanted);

    QPointer<MapWindow> window;
    QPointer<Map::MapView> view;
    QHash<int, QPointer<Map::Layer>> layers;
    QHash<const Map::Layer*, int> keys; // where the layer is gone, not to be trusted
    int lastKey = 0;
    int depth = 0; // of our own changes
};

} // namespace Corvane::Viewer
