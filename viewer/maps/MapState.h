#pragma once

#include <QByteArray>
#include <QUuid>
#include <QVector>

class QDomDocument;

namespace Corvane::Map {
class MapView;
}

namespace Corvane::Viewer {

/// What is worth saving of a map, for telling whether it has changed: its texts, its boxes and its
/// layers in their order. What part of the world it shows is none of it: looking is no change.
class MapState
{
public:
    static MapState of(Map::MapView& view);
    /// The same from the view's document, which is taken apart.
    static MapState of(Map::MapView& view, QDomDocument& document);

    bool operator==(const MapState& other) const;
    bool operator!=(const MapState& other) const { return !(*this == other); }
    /// Takes one layer's settings as they are in another state, where both have the layer.
    void takeLayer(const QUuid& uid, const MapState& from);
    /// A layer that had these settings is another object now.
    void takeBack(const QUuid& gone, const QByteArray& layerSettings, const QUuid& back);

private:
    struct LayerState
    {
        QUuid uid;
        QByteArray settings;
        bool operator==(const LayerState& other) const
        {
            return uid == other.uid && settings == other.settings;
        }
    };

    QByteArray settings;
    QVector<LayerState> layers;
};

} // namespace Corvane::Viewer
