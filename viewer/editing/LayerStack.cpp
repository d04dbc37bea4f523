#include <viewer/editing/LayerStack.h>

#include <viewer/maps/MapDocument.h>
#include <viewer/maps/MapDocumentWriter.h>
#include <viewer/maps/MapWindow.h>

#include <corvane/map/Layer.h>
#include <corvane/map/MapCanvas.h>
#include <corvane/map/MapView.h>

#include <QCoreApplication>
#include <QDir>
#include <QMetaProperty>

#include <algorithm>
#include <utility>

namespace Corvane::Viewer {
namespace {

/// Above the nearest of those that should lie below, or else below the nearest that should lie above.
int indexIn(const QVector<int>& present, int key, const QVector<int>& wanted)
{
    const int place = wanted.indexOf(key);
    for (int i = place - 1; i >= 0; --i) {
        const int below = present.indexOf(wanted.at(i));
        if (below >= 0) {
            return below + 1;
        }
    }
    for (int i = place + 1; i < wanted.size(); ++i) {
        const int above = present.indexOf(wanted.at(i));
        if (above >= 0) {
            return above;
        }
    }
    return std::clamp(place, 0, present.size());
}

QDomElement elementOf(const QDomDocument& document)
{
    return document.documentElement().firstChildElement("layers").firstChildElement("layer");
}

} // namespace

/// As long as it lives, the changes are our own.
class LayerStack::Work
{
public:
    explicit Work(int* depthOfWork) : depth(depthOfWork) { ++*depth; }
    ~Work() { --*depth; }

private:
    Q_DISABLE_COPY(Work)
    int* depth;
};

LayerStack::LayerStack(MapWindow* mapWindow) : window(mapWindow), view(mapWindow->getView()) {}

int LayerStack::keyOf(Map::Layer* layer)
{
    if (!layer) {
        return 0;
    }
    const int known = keys.value(layer);
    if (known > 0 && layers.value(known) == layer) {
        return known;
    }
    bind(++lastKey, layer);
    return lastKey;
}

void LayerStack::bind(int key, Map::Layer* layer)
{
    layers.insert(key, layer);
    keys.insert(layer, key);
}

Map::Layer* LayerStack::layerOf(int key) const
{
    return layers.value(key);
}

QVector<int> LayerStack::order()
{
    QVector<int> all;
    if (view) {
        for (Map::Layer* layer : view->getLayers()) {
            all << keyOf(layer);
        }
    }
    return all;
}

void LayerStack::place(int key, const QVector<int>& wanted)
{
    QVector<int> present = order();
    const int from = present.indexOf(key);
    if (from < 0) {
        return;
    }
    present.remove(from);
    const int to = indexIn(present, key, wanted);
    if (to != from) {
        const Work work(&depth);
        view->moveLayer(from, to);
    }
}

/// A layer that was hidden while the view moved has not heard of it.
void LayerStack::show(int key, bool visible)
{
    Map::Layer* const layer = layerOf(key);
    if (!layer || !view) {
        return;
    }
    const Work work(&depth);
    layer->setVisible(visible);
    if (visible && layer->isValid()) {
        const QRectF bounds = view->getBounds();
        layer->setView(view->width(), view->height(), bounds.left(), bounds.top(), bounds.right(),
                       bounds.bottom());
    }
    view->QWidget::update();
    QMetaProperty property =
        layer->metaObject()->property(layer->metaObject()->indexOfProperty("Visible"));
    QVariant value = visible;
    emit view->layerPropertyChanged(layer, &property, value);
}

KeptLayer LayerStack::keep(Map::Layer* layer)
{
    KeptLayer kept{keyOf(layer), layer->getDescription(), layer->getUid(), QDomDocument("map")};
    QDomElement root = kept.document.createElement("mapcanvas");
    QDomElement stack = kept.document.createElement("layers");
    QDomElement element = kept.document.createElement("layer");
    element.setAttribute("class", layer->metaObject()->className());
    layer->writeXML(element, kept.document);
    stack.appendChild(element);
    root.appendChild(stack);
    kept.document.appendChild(root);
    return kept;
}

bool LayerStack::remove(int key, KeptLayer* kept)
{
    Map::Layer* const layer = layerOf(key);
    if (!layer || !view) {
        return false;
    }
    const Work work(&depth);
    *kept = keep(layer);
    QString uid = layer->getUid().toString();
    view->deleteLayer(uid);
    view->QWidget::update(); // a single deletion asks for no repaint by itself
    return true;
}

bool LayerStack::bringBack(const KeptLayer& kept, const QVector<int>& wanted, QString* reason)
{
    if (!view) {
        return false;
    }
    Map::MapCanvas canvas(nullptr);
    QDir folder = QDir::current(); // as when the source was named first
    QDomDocument document = kept.document;
    canvas.loadMapXML(document, folder, reason);
    const QVector<Map::Layer*> made = std::exchange(canvas.getLayers(), {});
    if (made.isEmpty()) {
        return false;
    }
    reason->clear(); // what a layer has to say of its source it shows itself
    addBack(made.first(), kept, wanted);
    return true;
}

void LayerStack::addBack(Map::Layer* layer, const KeptLayer& kept, const QVector<int>& wanted)
{
    const Work work(&depth);
    const QVector<int> present = order();
    const QRectF bounds = view->getBounds();
    bind(kept.key, layer);
    view->addLayer(layer, indexIn(present, kept.key, wanted));
    if (present.isEmpty()) { // the first layer of a map shows itself whole
        view->setBounds(bounds);
    }
    if (window) {
        window->getDocument()->takeBack(kept.uid, mapElementText(elementOf(kept.document)), layer);
    }
}

bool LayerStack::isAtWork() const
{
    return depth > 0;
}

} // namespace Corvane::Viewer
