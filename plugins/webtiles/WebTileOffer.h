#pragma once

#include <plugins/webtiles/TileTemplate.h>

#include <QHash>
#include <QRect>
#include <QString>
#include <QStringList>

#include <atomic>
#include <memory>
#include <optional>

namespace Corvane::Map {

struct WebTileSettings;

/// What a data source says of its tiles; what it leaves open is for the layer's settings.
struct WebTileOffer
{
    QString url; // with places for the numbers
    QStringList zoomNames;
    QStringList hosts;
    std::optional<int> minZoom;
    std::optional<int> maxZoom;
    std::optional<int> tileSize; // pixels
    QHash<int, QRect> limits;    // by zoom: the columns and rows that there are, where it says so
    QString attribution;
    QString title;
};

/// Whether the text can be a source of web tiles: a URL with places, a preset file (*.webtiles), or
/// the URL of WMTS capabilities.
bool isWebTileSource(const QString& dataSource);

/// Whether it is the second of these.
bool isPreset(const QString& dataSource);

/// Asks the data source on the settings' terms; null with the reason in error, and in mayPass, which
/// may be null, whether the source may answer later. Reads a file or goes
/// to the network, where it stops once abandoned is true. On a pool thread, save for a URL with
/// places.
std::shared_ptr<WebTileOffer> askForOffer(const QString& dataSource,
                                          const WebTileSettings& settings,
                                          const std::atomic<bool>& abandoned, QString* error,
                                          bool* mayPass = nullptr);

} // namespace Corvane::Map
