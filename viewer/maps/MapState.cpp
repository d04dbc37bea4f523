#include <viewer/maps/MapState.h>

#include <viewer/maps/MapDocumentWriter.h>

#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>

#include <QDomDocument>
#include <QDomElement>

#include <memory>

namespace Corvane::Viewer {

MapState MapState::of(Map::MapView& view)
{
    const std::unique_ptr<QDomDocument> document(view.saveMapXML());
    return of(view, *document);
}

MapState MapState::of(Map::MapView& view, QDomDocument& document)
{
    QDomElement root = document.documentElement();
    QDomElement bounds = root.firstChildElement("bounds");
    for (const char* corner : {"tlx", "tly", "brx", "bry"}) {
        bounds.removeAttribute(corner);
    }

    MapState state;
    QDomElement stack = root.firstChildElement("layers");
    QDomElement element = stack.firstChildElement();
    for (Map::Layer* layer : view.getLayers()) {
        if (layer) {
            state.layers.append({layer->getUid(), mapElementText(element)});
            element = element.nextSiblingElement();
        }
    }
    root.removeChild(stack);
    state.settings = mapElementText(root);
    return state;
}

bool MapState::operator==(const MapState& other) const
{
    return settings == other.settings && layers == other.layers;
}

void MapState::takeLayer(const QUuid& uid, const MapState& from)
{
    for (LayerState& layer : layers) {
        for (const LayerState& other : from.layers) {
            if (layer.uid == uid && other.uid == uid) {
                layer.settings = other.settings;
            }
        }
    }
}

void MapState::takeBack(const QUuid& gone, const QByteArray& layerSettings, const QUuid& back)
{
    for (LayerState& layer : layers) {
        if (layer.uid == gone && layer.settings == layerSettings) {
            layer.uid = back;
        }
    }
}

} // namespace Corvane::Viewer
