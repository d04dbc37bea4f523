#pragma once

#include <corvane/core/Export.h>

#include <QtGlobal>

namespace Corvane::Map {

/// What a ViewManager calls on whoever follows the view. The order of the operations is part of
/// the contract. GUI thread only.
class CORVANE_EXPORT IClient
{
public:
    /// What a press and a drag of the pointer do.
    enum PointerMode : qint32
    {
        Roam = 0,    ///< dragging moves the world under the pointer
        Zoom = 1,    ///< vertical dragging zooms about the point where the drag began
        ZoomBox = 2, ///< dragging marks a rectangle that becomes the new extent on release
        Point = 3    ///< the pointer reads coordinates, extents do not change
    };

    /// How a map window follows others; maps with the same mode are linked.
    enum GeolinkMode : qint32
    {
        GeolinkNone = 0,
        GeolinkWindow = 1,
        GeolinkScreen = 2
    };

    /// An interactive change of extent starts; zoom is false for roaming.
    virtual void beginClientUpdate(bool zoom) = 0;
    /// The interactive change is over.
    virtual void endClientUpdate() = 0;
    /// The world extents are now these, in map units. The flag is false at every call.
    virtual void onExtentChange(double tlx, double tly, double brx, double bry, bool flag) = 0;
    /// The mode that was set last.
    virtual GeolinkMode getGeolinkMode() = 0;
    /// A plain store.
    virtual void setGeolinkMode(GeolinkMode mode) = 0;

protected:
    ~IClient() = default;
};

} // namespace Corvane::Map
