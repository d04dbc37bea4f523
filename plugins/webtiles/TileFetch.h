#pragma once

#include <QImage>
#include <QString>
#include <QtGlobal>

#include <functional>

namespace Corvane::Map {

struct WebTile;
struct WebTileSource;

/// What became of a tile.
struct TileAnswer
{
    enum class Kind
    {
        Picture,
        Empty,  // the server has nothing there
        Failed, // for now
        Dropped // nobody wants it any more
    };
    Kind kind = Kind::Failed;
    QImage picture;
    QString failure;
    bool fromServer = false; // it was asked, and answered
    qint64 retryAt = 0;      // when the server wants to be asked again, 0 where it does not say
};

/// The tile from the disk cache, as long as it is fresh there, else from the server, which says
/// whether a stale one still holds. A URL is asked for once at a time: whoever wants the same waits
/// for what the first brings. On a pool thread.
TileAnswer fetchTile(const WebTileSource& source, const WebTile& tile,
                     const std::function<bool()>& isUnwanted);

/// From the disk cache alone; failed where it is not there, or stale. Any thread.
TileAnswer findTile(const WebTileSource& source, const WebTile& tile);

} // namespace Corvane::Map
