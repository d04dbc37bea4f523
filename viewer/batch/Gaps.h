#pragma once

#include <QStringList>

namespace Corvane::Map {
class MapView;
}

namespace Corvane::Viewer {

/// What the picture of the present view lacks, a line each: which layer, what is missing of it and
/// in which part of the world. Layers that are hidden, or out of the view's scale, lack nothing.
/// GUI thread only.
QStringList gapsOf(Map::MapView& view);

} // namespace Corvane::Viewer
