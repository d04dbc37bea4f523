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
    enum class State
    {
        Unasked,
        Reachable,
        Slow, // it answers, and takes seconds
        Failing,
        Waiting // it is left alone for now
    };
    struct Report
    {
        State state = State::Unasked;
        QString reason;          // of the last failure, where it fails or waits
        qint64 waitingUntil = 0; // milliseconds since 1970, where it waits
        qint64 answerTime = 0;   // milliseconds that an answer takes, where there was one
    };

    /// name stands in the log line.
    explicit SourceHealth(QString name);

    /// It answered after so many milliseconds.
    void succeeded(qint64 answerTime);
    /// retryAt is when the server itself wants to be asked again, 0 where it does not say.
    void failed(const TileId& tile, const QString& reason, qint64 retryAt);
    /// It may be asked at once, and has as many chances as at first.
    void forgive();
    /// Nothing is to be asked of the server now.
    bool isPaused() const;
    Report report() const;
    /// "ready", or what is wrong.
    QString stateText() const;
    /// Why the last tile that failed did; empty once one has come again.
    QString lastFailure() const;

private:
    static constexpr qint64 never = -1;

    QString name;
    mutable std::mutex mutex;                           // guards what follows
    std::unordered_set<TileId, TileIdHash> failedTiles; // since the last success
    int failures = 0;                                   // the same, repeated ones counted
    int pauses = 0;                                     // the same
    qint64 pausedUntil = 0;
    QString reason;
    qint64 meanAnswerTime = never;
    bool wasLogged = false;
};

} // namespace Corvane::Map
