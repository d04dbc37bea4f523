#pragma once

#include <corvane/map/MapView.h>

#include <QObject>

namespace Corvane::Map {

/// The map that the user works with: that of the main window's active child window, else its only
/// one; null without any. GUI thread only.
MapView* activeMapView();

/// Puts the layer on top, which the view then owns; the first layer of a view is shown whole, later
/// on where it is still opening. GUI thread only.
template <typename OpeningLayer>
void addToView(MapView* view, OpeningLayer* layer)
{
    const bool isFirst = view->getNumberOfLayers() == 0;
    view->addLayer(layer, -1);
    if (isFirst && !layer->isValid()) { // it has no extent yet that could be shown whole
        QObject::connect(layer, &OpeningLayer::sourceOpened, view, [view, layer](bool ok) {
            if (ok) { // the first time: later the user may look elsewhere
                QObject::disconnect(layer, &OpeningLayer::sourceOpened, view, nullptr);
                view->zoomToLayer(layer);
            }
        });
    }
}

} // namespace Corvane::Map
