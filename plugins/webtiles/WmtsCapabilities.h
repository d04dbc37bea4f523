#pragma once

#include <QByteArray>
#include <QString>

#include <memory>

namespace Corvane::Map {

struct WebTileOffer;

/// Looks in WMTS capabilities for a layer in the usual web grid: Web Mercator, the whole world in
/// the tile of zoom 0, each zoom twice as fine. layerName chooses a layer by its identifier; the
/// first that fits is taken where it is empty. Null with the reason in error. Any thread.
std::shared_ptr<WebTileOffer> readCapabilities(const QByteArray& document, const QString& layerName,
                                               QString* error);

} // namespace Corvane::Map
