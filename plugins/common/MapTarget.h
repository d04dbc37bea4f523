#pragma once

namespace Corvane::Map {

class MapView;
class TiledRasterLayer;

/// The map that the user works with: that of the main window's active child window, else its only
/// one; null without any. GUI thread only.
MapView* activeMapView();

/// Puts the layer on top, which the view then owns; the first layer of a view is shown whole, later
/// on where it is still opening. GUI thread only.
void addToView(MapView* view, TiledRasterLayer* layer);

} // namespace Corvane::Map
