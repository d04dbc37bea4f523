#pragma once

#include <plugins/common/SourceHealth.h>
#include <plugins/common/TileFetch.h>
#include <plugins/webtiles/TileTemplate.h>

#include <QByteArray>
#include <QHash>
#include <QRect>
#include <QString>

#include <memory>
#include <optional>

namespace Corvane::Map {

struct WebTileOffer;

/// What the user sets; empty for what the data source says, else for what is usual.
struct WebTileSettings
{
    std::optional<int> minZoom;
    std::optional<int> maxZoom;
    std::optional<int> tileSize; // 256 or 512 pixels
    QString attribution;
    QString hosts; // for {s}, separated by commas
    QString userAgentSuffix;
    double deadline = 20.0; // seconds for one answer

    int deadlineMilliseconds() const;
};

/// Where tiles come from and on what terms. Nothing changes but its health. Shared by the layer and
/// its requests. Any thread.
struct WebTileSource
{
    /// Null with the reason in error where offer and settings make no source. name stands in log
    /// lines.
    static std::shared_ptr<WebTileSource> make(const WebTileOffer& offer,
                                               const WebTileSettings& settings, const QString& name,
                                               QString* error);

    WebTileSource(TileTemplate tileUrls, const QString& name);

    TileOrder orderFor(const WebTile& tile) const;
    /// Whether the source says of itself that it has no such tile: many answer with an error there.
    bool lacks(const WebTile& tile) const;

    TileTemplate urls;
    int minZoom = 0; // tiles of coarser ones are empty
    int maxZoom = 19;
    int tileSize = 256;
    QHash<int, QRect> limits; // by zoom, in tiles
    QString hosts;
    QByteArray userAgent;
    int deadline = 20000; // milliseconds
    SourceHealth health;
};

/// Attributions come with links and entities: what is left without them, cut where it
/// would not end.
QString plainAttribution(const QString& text);

} // namespace Corvane::Map
