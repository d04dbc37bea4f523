#include <corvane/map/ViewManager.h>

#include <corvane/core/Integer.h>
#include <corvane/map/DeviceSpan_p.h>
#include <corvane/map/EachThatStays_p.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

namespace Corvane::Map {

namespace {

constexpr double zoomPerPixel = 1.015;
constexpr double smallestZoomOut = 1e-5;
constexpr double aspectTolerance = std::numeric_limits<float>::epsilon();

// a far corner that fits no int wraps round
int wrappedSum(int a, int b)
{
    return static_cast<int>(static_cast<std::int64_t>(a) + b);
}

} // namespace

ViewManager::ViewManager(IClient* client)
{
    setWorldExtents(-180.0, 90.0, 180.0, -90.0, true);
    extentsInitialised = true;
    masterClient = client;
    attach(client);
}

ViewManager::~ViewManager() = default;

void ViewManager::init(int left, int top, int right, int bottom, double worldLeft, double worldTop,
                       double worldRight, double worldBottom)
{
    // The height is tested against left: a device whose bottom lies at its left is ignored.
    // ViewManagerTest::initComparesTheBottomWithTheLeft holds it.
    if (right == left || bottom == left) {
        return;
    }
    deviceLeft = left;
    deviceTop = top;
    deviceRight = right;
    deviceBottom = bottom;
    tlx = worldLeft;
    tly = worldTop;
    brx = worldRight;
    bry = worldBottom;
    setWorldExtents(worldLeft, worldTop, worldRight, worldBottom, true);
    extentsInitialised = true;
}

void ViewManager::resize(int left, int top, int width, int height)
{
    if (!extentsInitialised || width == 0 || height == 0) {
        return;
    }
    const double sx = worldPerPixelX();
    const double sy = worldPerPixelY();
    const double dx = deviceSpan(deviceLeft, left);
    const double dy = deviceSpan(deviceTop, top);
    init(left, top, wrappedSum(left, width), wrappedSum(top, height), dx * sx + tlx, dy * sy + tly,
         (dx + width) * sx + tlx, (dy + height) * sy + tly);
    fireExtentChange();
}

void ViewManager::setDeviceExtents(int left, int top, int width, int height)
{
    deviceLeft = left;
    deviceTop = top;
    deviceRight = wrappedSum(left, width);
    deviceBottom = wrappedSum(top, height);
}

bool ViewManager::setWorldExtents(double worldLeft, double worldTop, double worldRight,
                                  double worldBottom, bool fire)
{
    if (worldLeft == worldRight && worldTop == worldBottom) {
        return false;
    }
    const double deviceAspect =
        std::fabs(deviceSpan(deviceLeft, deviceRight) / deviceSpan(deviceTop, deviceBottom));
    tlx = worldLeft;
    tly = worldTop;
    brx = worldRight;
    bry = worldBottom;
    const double width = std::fabs(brx - tlx);
    const double height = std::fabs(bry - tly);
    const double worldAspect = width / height;

    const bool fits = std::fabs(worldAspect - deviceAspect) < aspectTolerance;
    if (!fits && worldAspect > deviceAspect) {
        growHeight(width, deviceAspect);
    } else if (!fits && deviceAspect > worldAspect) {
        growWidth(height, deviceAspect);
    }
    if (fire) {
        fireExtentChange();
    }
    return true;
}

// The half by which both edges move is taken from the absolute edges, not from their distance: the
// centre stays only while old and new edge lie on the same side of zero. Views and saved maps
// depend on it; ViewManagerTest::theAspectRuleGrowsTheWorld holds it.
void ViewManager::growHeight(double width, double deviceAspect)
{
    const double aspect = tly > bry ? -deviceAspect : deviceAspect;
    const double newBottom = width / aspect + tly;
    const double half = 0.5 * std::fabs(std::fabs(newBottom) - std::fabs(bry));
    bry = newBottom + half;
    tly = tly + half;
}

void ViewManager::growWidth(double height, double deviceAspect)
{
    const double newRight = height * deviceAspect + tlx;
    const double half = 0.5 * std::fabs(std::fabs(newRight) - std::fabs(brx));
    brx = newRight - half;
    tlx = tlx - half;
}

void ViewManager::getWorldExtents(double* worldLeft, double* worldTop, double* worldRight,
                                  double* worldBottom)
{
    *worldLeft = tlx;
    *worldTop = tly;
    *worldRight = brx;
    *worldBottom = bry;
}

double ViewManager::worldPerPixelX() const
{
    return (brx - tlx) / deviceSpan(deviceLeft, deviceRight);
}

double ViewManager::worldPerPixelY() const
{
    return (bry - tly) / deviceSpan(deviceTop, deviceBottom);
}

void ViewManager::convertDeviceToWorld(int x, int y, double* wx, double* wy)
{
    *wx = worldPerPixelX() * deviceSpan(deviceLeft, x) + tlx;
    *wy = worldPerPixelY() * deviceSpan(deviceTop, y) + tly;
}

void ViewManager::convertWorldToDevice(double wx, double wy, int* x, int* y) const
{
    *x = Util::roundToInt(deviceSpan(deviceLeft, deviceRight) / (brx - tlx) * (wx - tlx) +
                          deviceLeft);
    *y = Util::roundToInt(deviceSpan(deviceTop, deviceBottom) / (bry - tly) * (wy - tly) +
                          deviceTop);
}

void ViewManager::setRotation(double newRotation)
{
    rotation = newRotation;
    fireExtentChange();
}

void ViewManager::setPointerMode(IClient::PointerMode mode)
{
    pointerMode = mode;
}

IClient::PointerMode ViewManager::getPointerMode()
{
    return pointerMode;
}

void ViewManager::setMasterClient(IClient* client)
{
    masterClient = client;
}

IClient* ViewManager::getMasterClient()
{
    return masterClient;
}

bool ViewManager::attach(IClient* client)
{
    if (clients.contains(client)) {
        return false;
    }
    clients.append(client);
    client->onExtentChange(tlx, tly, brx, bry, false);
    return true;
}

void ViewManager::detach(IClient* client)
{
    clients.removeOne(client);
    client->setGeolinkMode(IClient::GeolinkNone);
}

void ViewManager::beginClientUpdate()
{
    const bool zoom = pointerMode == IClient::Zoom || pointerMode == IClient::ZoomBox;
    callEachThatStays(clients, [zoom](IClient* client) { client->beginClientUpdate(zoom); });
}

void ViewManager::endClientUpdate()
{
    callEachThatStays(clients, [](IClient* client) { client->endClientUpdate(); });
}

void ViewManager::fireExtentChange()
{
    callEachThatStays(clients, [this](IClient* client) {
        client->onExtentChange(tlx, tly, brx, bry, false); // read afresh for each
    });
}

void ViewManager::pointerDown(int x, int y)
{
    zoomFactor = 1.0;
    downX = lastX = x;
    downY = lastY = y;
    if (pointerModeMovesTheView()) {
        beginClientUpdate();
    }
}

void ViewManager::pointerMove(int x, int y)
{
    if (pointerMode == IClient::Roam) {
        roamBy(deviceSpan(lastX, x), deviceSpan(lastY, y));
    } else if (pointerMode == IClient::Zoom) {
        zoomBy(deviceSpan(lastY, y));
    }
    lastX = x;
    lastY = y;
}

void ViewManager::pointerUp(int x, int y)
{
    upX = lastX = x;
    upY = lastY = y;
    if (pointerMode == IClient::ZoomBox) {
        zoomToBox();
    }
    if (pointerModeMovesTheView()) {
        endClientUpdate();
    }
}

bool ViewManager::pointerModeMovesTheView() const
{
    return pointerMode == IClient::Roam || pointerMode == IClient::Zoom ||
           pointerMode == IClient::ZoomBox;
}

void ViewManager::roamBy(double dx, double dy)
{
    const double sx = worldPerPixelX();
    const double sy = worldPerPixelY();
    const double right = (deviceSpan(deviceLeft, deviceRight) - dx) * sx + tlx;
    const double bottom = (deviceSpan(deviceTop, deviceBottom) - dy) * sy + tly;
    tlx = tlx - dx * sx;
    tly = tly - dy * sy;
    brx = right;
    bry = bottom;
    fireExtentChange();
}

void ViewManager::zoomBy(double dy)
{
    // One multiplication or division per pixel, no power function: the same drag gives the same
    // extents to the last bit. A factor that no longer changes has reached the end of the doubles.
    double before = std::numeric_limits<double>::quiet_NaN();
    for (double pixel = dy; pixel < 0.0 && zoomFactor != before; ++pixel) {
        before = zoomFactor;
        zoomFactor *= zoomPerPixel;
    }
    for (double pixel = dy; pixel > 0.0 && zoomFactor != before; --pixel) {
        before = zoomFactor;
        zoomFactor /= zoomPerPixel;
    }
    if (dy < 0.0) {
        zoomFactor = std::max(zoomFactor, smallestZoomOut);
    }
    if (zoomFactor == 0.0) {
        return;
    }
    double anchorX = 0.0;
    double anchorY = 0.0;
    convertDeviceToWorld(downX, downY, &anchorX, &anchorY);
    const double factor = zoomFactor;
    zoomFactor = 1.0;
    setWorldExtents((tlx - anchorX) * factor + anchorX, (tly - anchorY) * factor + anchorY,
                    (brx - anchorX) * factor + anchorX, (bry - anchorY) * factor + anchorY, true);
}

void ViewManager::zoomToBox()
{
    if (downX == upX && downY == upY) {
        return;
    }
    double left = 0.0;
    double top = 0.0;
    double right = 0.0;
    double bottom = 0.0;
    convertDeviceToWorld(std::min(downX, upX), std::min(downY, upY), &left, &top);
    convertDeviceToWorld(std::max(downX, upX), std::max(downY, upY), &right, &bottom);
    setWorldExtents(left, top, right, bottom, true);
}

} // namespace Corvane::Map
