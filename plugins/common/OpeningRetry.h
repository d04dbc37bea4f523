#pragma once

#include <QTimer>
#include <QtGlobal>

#include <functional>

namespace Corvane::Map {

/// When a remote source that did not open is tried again: after two seconds, then four and so on up
/// to two minutes. On the layer's thread.
class OpeningRetry
{
public:
    /// tryAgain is called from the event loop, with nothing awaited any more.
    explicit OpeningRetry(std::function<void()> tryAgain);
    OpeningRetry(const OpeningRetry&) = delete;
    OpeningRetry& operator=(const OpeningRetry&) = delete;

    /// It failed, and may be there later: begins the next pause.
    void failed();
    /// Nothing is awaited any more; the next pause is one step longer all the same.
    void stop();
    /// The source is open, or is another one: the next pause is the first.
    void reset();
    /// Milliseconds since 1970; 0 where nothing is awaited.
    qint64 getDue() const { return due; }
    /// Whether this is not the first failure since reset.
    bool hasFailedBefore() const { return pauses > 0; }

private:
    void look();

    std::function<void()> tryAgain;
    QTimer timer; // looks at the clock now and then, which may be set meanwhile
    qint64 due = 0;
    int pauses = 0;
};

} // namespace Corvane::Map
