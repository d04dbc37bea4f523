#pragma once

#include <corvane/core/Export.h>

class QRect;
class QRectF;

namespace Corvane {

class GeoPainter;

namespace Map {

class IRendererClient;

/// What a view calls on whoever draws the map. The order of the operations is part of the
/// contract. GUI thread only.
class CORVANE_EXPORT IRenderer
{
public:
    /// An interactive change of view starts; zoom is false for roaming.
    virtual void beginUpdate(bool zoom) = 0;
    /// The interactive change is over.
    virtual void endUpdate() = 0;
    /// The view is width by height pixels and shows this world rectangle, in map units.
    virtual void setView(int width, int height, double tlx, double tly, double brx, double bry) = 0;
    /// Draws what is there of the world rectangle into the device rectangle; never waits.
    virtual void paint(GeoPainter& painter, QRectF* world, QRect* device) = 0;
    /// The client is not owned.
    virtual void setClient(IRendererClient* client) = 0;
    /// The client that was set last, or null.
    virtual IRendererClient* getClient() = 0;

protected:
    ~IRenderer() = default;
};

} // namespace Map
} // namespace Corvane
