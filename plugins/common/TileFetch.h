#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>
#include <QUrl>
#include <QtGlobal>

#include <functional>

namespace Corvane::Map {

/// Which tile to get, and on what terms.
struct TileOrder
{
    QUrl url;
    QByteArray userAgent;
    QByteArray authorization; // the header's value; empty for none
    int deadline = 20000;     // milliseconds for all of it
};

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
    QImage picture; // where it failed: what lies on disk past its time, and may stand in meanwhile
    QString failure;
    bool fromServer = false; // it was asked, and answered
    int status = 0;          // of its answer
    qint64 retryAt = 0;      // when the server wants to be asked again, 0 where it does not say
};

/// The tile from the disk cache, as long as it is fresh there, else from the server, which says
/// whether a stale one still holds. A URL is asked for once at a time: whoever wants the same waits
/// for what the first brings. On a pool thread.
TileAnswer fetchTile(const TileOrder& order, const std::function<bool()>& isUnwanted);

/// From the disk cache alone; failed where it is not there, or stale. Any thread.
TileAnswer findTile(const QUrl& url);

} // namespace Corvane::Map
