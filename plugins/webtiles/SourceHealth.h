#pragma once

#include <plugins/common/TileId.h>

#include <QString>
#include <QtGlobal>

#include <mutex>
#include <unordered_set>

namespace Corvane::Map {

/// How a server is doing. One that fails several tiles in a row is left alone for a while, longer
/// each time, and one line of the log says so. Any thread.
class SourceHealth
{
public:
    /// name stands in the log line.
    explicit SourceHealth(QString name);

    void succeeded();
    /// retryAt is when the server itself wants to be asked again, 0 where it does not say.
    void failed(const TileId& tile, const QString& reason, qint64 retryAt);
    /// Nothing is to be asked of the server now.
    bool isPaused() const;
    /// "ready", or what is wrong.
    QString stateText() const;
    /// Why the last tile that failed did; empty once one has come again.
    QString lastFailure() const;

private:
    QString name;
    mutable std::mutex mutex;                           // guards what follows
    std::unordered_set<TileId, TileIdHash> failedTiles; // since the last success
    int failures = 0;                                   // the same, repeated ones counted
    int pauses = 0;                                     // the same
    qint64 pausedUntil = 0;
    QString reason;
    bool wasLogged = false;
};

} // namespace Corvane::Map
