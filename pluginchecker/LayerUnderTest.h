#pragma once

#include <corvane/map/IRendererClient.h>

#include <QImage>
#include <QRectF>
#include <QSize>
#include <QString>

#include <atomic>
#include <functional>
#include <memory>

namespace Corvane {

namespace Map {
class Layer;
}

namespace PluginChecker {

struct StepContext;

/// Whom a layer asks for repaints. It outlives its layer to hear what comes too late.
class WatchingClient final : public Map::IRendererClient
{
public:
    void onRendererUpdate(double tlx, double tly, double brx, double bry) override; ///< any thread
    void onRendererError(QString message) override;                                 ///< any thread

    /// The layer is gone: what comes from now on counts as late.
    void close() { closed = true; }
    int lateCalls() const { return late; }

private:
    std::atomic<bool> closed = false;
    std::atomic<int> late = 0;
};

/// A part of the world on so many pixels. The height of the world is negative where north is up.
struct View
{
    QSize size;
    QRectF world;

    void set(Map::Layer& layer) const;
    /// What the layer paints, on a transparent picture.
    QImage painted(Map::Layer& layer) const;
};

/// Handles the events of this thread until the condition holds, however long that takes.
void waitUntil(const std::function<bool()>& condition);
/// Handles the events that are there.
void handleEvents();
/// Handles events until the pool has nothing to do, which ends its threads.
void drainPool();

/// A layer of the plugin with a client. GUI thread only.
class LayerUnderTest
{
public:
    /// layer is null where the plugin makes none, which is recorded as a failure.
    explicit LayerUnderTest(StepContext& context);
    ~LayerUnderTest();
    LayerUnderTest(const LayerUnderTest&) = delete;
    LayerUnderTest& operator=(const LayerUnderTest&) = delete;

    bool exists() const { return layer != nullptr; }
    Map::Layer& operator*() const { return *layer; }
    Map::Layer* operator->() const { return layer.get(); }

    /// Sets the property where the layer has it.
    bool setProgressive(bool progressive);
    /// Sets the source and waits for it to open. False, with a failure recorded, where it does not.
    bool open();
    /// Waits for what the layer's view lacks.
    void waitForAll();
    /// The whole of the layer.
    View wholeView(const QSize& size) const;
    /// A quarter of the layer's width and height, from its middle.
    View innerView(const QSize& size) const;

    void destroy();
    std::shared_ptr<WatchingClient> client() const { return watching; }

private:
    StepContext& context;
    std::shared_ptr<WatchingClient> watching;
    std::unique_ptr<Map::Layer> layer;
};

} // namespace PluginChecker
} // namespace Corvane
