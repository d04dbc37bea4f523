#pragma once

#include <corvane/core/Export.h>
#include <corvane/map/CellReading.h>

#include <QPointF>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>

namespace Corvane::Map {

/// A question for cells of a raster layer, and the way of its answer back to the GUI thread. Shared
/// between who asks and the thread that reads; either may let go first.
class CORVANE_EXPORT CellRequest : public std::enable_shared_from_this<CellRequest>
{
public:
    /// Takes the answer.
    using Done = std::function<void(const CellReading& reading)>;

    /// What to read.
    struct Window
    {
        QPointF world; ///< in map units; the cell that it lies in is the one in the middle
        int edge = 1;  ///< cells across and down; odd
        int band = 0;  ///< from 1; 0 for all
    };

    /// done is called once, on the GUI thread, from the event loop.
    static std::shared_ptr<CellRequest> make(const Window& window, const Done& done);

    /// As it was asked for.
    const Window& getWindow() const { return window; }

    /// Nobody waits for the answer: reading may end early, and done still comes. Any thread.
    void cancel() { cancelled = true; }
    /// Looked at between slow steps. Any thread.
    bool isCancelled() const { return cancelled; }
    /// cancel, and done does not come any more. GUI thread.
    void abandon();

    /// The answer; what comes after the first one is dropped. Any thread.
    void finish(CellReading answer);

private:
    CellRequest(const Window& wanted, const Done& whenDone) : window(wanted), done(whenDone) {}
    void deliver();

    const Window window;
    Done done; // GUI thread
    std::atomic<bool> cancelled{false};
    std::mutex mutex; // guards reading and hasAnswer
    CellReading reading;
    bool hasAnswer = false;
};

} // namespace Corvane::Map
