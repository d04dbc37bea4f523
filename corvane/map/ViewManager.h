#pragma once

#include <corvane/core/Export.h>
#include <corvane/map/IClient.h>

#include <QList>

namespace Corvane::Map {

/// The one mapping between world coordinates (map units) and device coordinates (pixels) of a map
/// view, the pointer gestures, and the list of clients that follow the view. It never paints.
/// The mapping is a scale and an offset on each axis; in a north-up map tly is above bry.
/// Nothing clamps or normalises the extents. GUI thread only.
class CORVANE_EXPORT ViewManager
{
public:
    /// Starts with the world of degrees on a 100 by 100 device and attaches client, which is not
    /// owned and is called back at once: it must be able to take the extents by then.
    explicit ViewManager(IClient* client);
    ViewManager(const ViewManager& other) = default;
    ViewManager& operator=(const ViewManager& other) = default;
    virtual ~ViewManager();

    /// Sets device and world rectangles at once and tells the clients; ignores a collapsed device.
    void init(int left, int top, int right, int bottom, double tlx, double tly, double brx,
              double bry);
    /// New device rectangle, same world per pixel; the clients are told twice.
    void resize(int left, int top, int width, int height);
    /// Stores the device rectangle and tells nobody.
    void setDeviceExtents(int left, int top, int width, int height);
    /// Grows the rectangle to the device's shape and stores it; fire tells the clients.
    /// False, with nothing changed, where both corners are the same point.
    bool setWorldExtents(double tlx, double tly, double brx, double bry, bool fire);
    /// In map units. No pointer may be null.
    void getWorldExtents(double* tlx, double* tly, double* brx, double* bry);
    /// Pixels to map units. No pointer may be null.
    void convertDeviceToWorld(int x, int y, double* wx, double* wy);
    /// Map units to pixels, rounded; halves go up. No pointer may be null.
    void convertWorldToDevice(double wx, double wy, int* x, int* y) const;
    /// Stores the value and tells the clients; no conversion applies it.
    void setRotation(double rotation);

    /// Read afresh at each of the three pointer calls.
    void setPointerMode(IClient::PointerMode mode);
    /// The mode that was set last.
    IClient::PointerMode getPointerMode();
    /// The view that leads in a geolink; stored, never called and not owned.
    void setMasterClient(IClient* client);
    /// The view that was set last; the constructor's client before that.
    IClient* getMasterClient();

    /// Appends the client and tells it the extents; false where it is attached already.
    bool attach(IClient* client);
    /// Removes the client and in any case takes it out of its geolink.
    void detach(IClient* client);
    /// Opens a bracket of interactive changes towards all clients.
    void beginClientUpdate();
    /// Closes it.
    void endClientUpdate();
    /// Tells all clients the extents, in the order in which they were attached.
    void fireExtentChange();

    /// A gesture starts at this pixel.
    void pointerDown(int x, int y);
    /// The gesture goes on; what it does depends on the pointer mode.
    void pointerMove(int x, int y);
    /// The gesture ends; a box zoom happens here.
    void pointerUp(int x, int y);

private:
    double worldPerPixelX() const;
    double worldPerPixelY() const;
    void growHeight(double width, double deviceAspect);
    void growWidth(double height, double deviceAspect);
    bool pointerModeMovesTheView() const;
    void roamBy(double dx, double dy);
    void zoomBy(double dy);
    void zoomToBox();

    IClient::PointerMode pointerMode = IClient::Roam;
    int deviceLeft = 0;
    int deviceTop = 0;
    int deviceRight = 100;
    int deviceBottom = 100;
    double tlx = 0.0;
    double tly = 0.0;
    double brx = 0.0;
    double bry = 0.0;
    QList<IClient*> clients; // not owned
    int lastX = -1;
    int lastY = -1;
    int downX = -1;
    int downY = -1;
    int upX = -1;
    int upY = -1;
    double zoomFactor = 1.0;
    double rotation = 0.0;
    bool extentsInitialised = false;
    IClient* masterClient = nullptr; // not owned
};

} // namespace Corvane::Map
