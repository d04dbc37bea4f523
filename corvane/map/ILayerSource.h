#pragma once

#include <corvane/core/Export.h>

#include <QString>
#include <QtGlobal>
#include <QtPlugin>

namespace Corvane::Map {

/// How the source of a layer is doing.
struct SourceReport
{
    /// From well to failed.
    enum class State
    {
        Local,     ///< it lies on this machine
        Unasked,   ///< it is remote, and nothing was asked of it yet
        Opening,   ///< the first answer is due
        Reachable, ///< it answers, within two seconds on the mean of the last answers
        Slow,      ///< it answers, and takes longer than that
        Waiting,   ///< it failed, is left alone, and is asked again at waitingUntil
        Stale,     ///< it fails, and what is shown is older than it allows, from the disk cache
        Failed ///< it failed: it is asked now and then, or, without a source, by retrySource alone
    };

    State state = State::Local; ///< at this moment
    QString host;   ///< with the port where that is not the usual one; empty where it is local
    QString reason; ///< of the last failure, for people; empty without one
    qint64 waitingUntil = 0; ///< milliseconds since 1970; 0 where nothing is waited for
    qint64 answerTime = 0;   ///< milliseconds that an answer takes; 0 where none has come

    /// Whether it is remote and does not answer as it should.
    bool isTrouble() const
    {
        return state == State::Waiting || state == State::Stale || state == State::Failed;
    }
};

/// A layer that knows how its source is doing. A source that comes back is noticed by itself where
/// it did not answer; one that answered with a refusal waits for retrySource. GUI thread only.
class CORVANE_EXPORT ILayerSource
{
public:
    /// Cheap: may be asked several times a second.
    virtual SourceReport getSourceReport() = 0;
    /// Asks at once for what failed, whatever the pauses. Does nothing for a source that is well.
    virtual void retrySource() = 0;

protected:
    ~ILayerSource() = default;
};

} // namespace Corvane::Map

Q_DECLARE_INTERFACE(Corvane::Map::ILayerSource, "com.corvane.viewer.ILayerSource/1.0")
