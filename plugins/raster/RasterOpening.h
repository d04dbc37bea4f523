#pragma once

#include <plugins/common/LayerLifeline.h>

#include <QString>

#include <condition_variable>
#include <memory>
#include <mutex>

namespace Corvane::Map {

class GdalRasterLayer;
class RasterSource;

/// The opening of a source on a pool thread, before all tiles. Held by shared pointer: a layer that
/// loses interest leaves it to end by itself.
class RasterOpening : public std::enable_shared_from_this<RasterOpening>
{
public:
    /// layer is not owned; it calls abandon before it goes.
    RasterOpening(GdalRasterLayer* layer, QString dataSource);

    void start();
    /// On a pool thread.
    void open();
    /// Whether it has ended, after waiting for it; a negative time waits without end.
    bool waitFor(int milliseconds);
    /// Once it has ended: the source, or null with the reason in error.
    std::shared_ptr<RasterSource> result(QString* error);
    /// From now on the layer is told when it ends. False where it has ended before.
    bool startTelling();
    bool tellsLayer();
    /// The layer is not touched once this returns.
    void abandon();

private:
    GdalRasterLayer* layer; // not owned; touched inside the lifeline only
    QString dataSource;
    LayerLifeline lifeline;
    std::mutex mutex; // guards what follows
    std::condition_variable ended;
    bool isDone = false;
    bool telling = false;
    QString failure;
    std::shared_ptr<RasterSource> source;
};

} // namespace Corvane::Map
