#pragma once

#include <QPointF>
#include <QString>

namespace Corvane::Map {
class MapView;
}

namespace Corvane::Viewer {

/// Where a written coordinate lies in a map.
struct FoundPlace
{
    bool isFound = false;
    QPointF world; ///< in the map's coordinates
    QString
        explanation; ///< what was understood, or why nothing was; empty while nothing is written
};

/// GUI thread only.
FoundPlace findPlace(const QString& written, Map::MapView& view);

} // namespace Corvane::Viewer
