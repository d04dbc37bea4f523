#pragma once

#include <plugins/common/LayerLifeline.h>
#include <plugins/common/TileExchange.h>

#include <atomic>

class QObject;

namespace Corvane::Map {

/// What a tiled layer and its requests share: where tiles are delivered, and how the layer is
/// reached while it is there. The layer is called by slot name: Qt then makes and frees the queued
/// call itself, on whichever thread. Held by shared pointer: it outlives the layer as long as requests
/// run. Any thread.
class TileLink
{
public:
    /// layer is not owned; it has the slots setViewAgain and showArrived, and its destructor calls
    /// close.
    explicit TileLink(QObject* layer);
    TileLink(const TileLink&) = delete;
    TileLink& operator=(const TileLink&) = delete;

    TileExchange exchange;
    LayerLifeline lifeline;

    /// Asks the layer to set its view again. The caller is inside the lifeline.
    void callForView();
    /// The layer has heard the call.
    void viewCallHeard() { viewCalled = false; }
    /// Tells the layer that tiles were delivered. The caller is inside the lifeline.
    void callForRepaint();
    /// Tells a layer with a slot startRetrying that something was put off. The caller is inside the
    /// lifeline.
    void callForRetry();
    void repaintCallHeard() { repaintCalled = false; }

    /// Nothing is delivered any more, and the layer is not touched once this returns.
    void close();

protected:
    ~TileLink();

private:
    QObject* layer; // not owned; touched inside the lifeline only
    std::atomic<bool> viewCalled{false};
    std::atomic<bool> repaintCalled{false};
};

} // namespace Corvane::Map
