#include <viewer/comparing/ComparedLayer.h>

#include <viewer/maps/MapWindow.h>

#include <corvane/map/Layer.h>
#include <corvane/map/MapCanvas.h>
#include <corvane/map/MapView.h>

#include <QMetaProperty>

namespace Corvane::Viewer {
namespace {

bool isShown(Map::Layer* layer)
{
    return layer && layer->isValid() && layer->isVisible();
}

} // namespace

ComparedLayer::ComparedLayer(QObject* parent) : QObject(parent)
{
    later.setSingleShot(true);
    later.setInterval(0);
    connect(&later, &QTimer::timeout, this, &ComparedLayer::look);
}

ComparedLayer::~ComparedLayer()
{
    stop();
}

void ComparedLayer::setMapWindow(MapWindow* newWindow)
{
    Map::MapView* const newView = newWindow ? newWindow->getView() : nullptr;
    window = newWindow;
    if (active && (!view || newView != view)) {
        stop();
        emit ended();
    }
}

bool ComparedLayer::start()
{
    stop();
    view = window ? window->getView() : nullptr;
    layer = choose();
    if (!layer) {
        view = nullptr;
        return false;
    }
    active = true;
    const auto laterLook = QOverload<>::of(&QTimer::start);
    connect(view, &Map::MapView::layerAdded, &later, laterLook);
    connect(view, &Map::MapView::layerDeleted, &later, laterLook);
    connect(view, &Map::MapView::layerMoved, &later, laterLook);
    connect(view, &Map::MapView::layerPropertyChanged, &later, laterLook);
    return true;
}

void ComparedLayer::stop()
{
    later.stop();
    if (view) {
        disconnect(view, nullptr, &later, nullptr);
        showWhole();
    }
    active = false;
    isWhole = true;
    view = nullptr;
    layer = nullptr;
}

Map::Layer* ComparedLayer::getLayer() const
{
    return layer;
}

Map::MapView* ComparedLayer::getView() const
{
    return view;
}

Map::Layer* ComparedLayer::choose() const
{
    if (!view) {
        return nullptr;
    }
    const QVector<Map::Layer*>& layers = view->getLayers();
    Map::Layer* const selected = view->getLayerSelection();
    if (layers.contains(selected) && isShown(selected)) { // a selection may outlive its layer
        return selected;
    }
    for (int i = layers.size() - 1; i >= 0; --i) {
        if (isShown(layers[i])) {
            return layers[i];
        }
    }
    return nullptr;
}

void ComparedLayer::look()
{
    if (!active) {
        return;
    }
    Map::Layer* const chosen = choose();
    if (!chosen) {
        stop();
        emit ended();
    } else if (chosen != layer) {
        layer = chosen;
        apply();
        emit changed();
    }
}

void ComparedLayer::setClip(const QRect& device)
{
    clip = device;
    isWhole = false;
    apply();
}

void ComparedLayer::showWhole()
{
    isWhole = true;
    apply();
}

void ComparedLayer::apply()
{
    if (view) {
        view->getMapCanvas()->setScreenClip(isWhole ? nullptr : layer.data(), clip);
        view->QWidget::update();
    }
}

} // namespace Corvane::Viewer
