#pragma once

class QRect;

namespace Corvane::Map {

/// A world rectangle by its corners, as the map engine hands it down: never normalised.
struct WorldCorners
{
    double tlx = 0.0;
    double tly = 0.0;
    double brx = 0.0;
    double bry = 0.0;
};

/// Where area lies on a device that shows world, cut off at the device's edges. Edges of neighbouring
/// areas fall together, and with those of images: rounded as GeoImage::paint rounds, with the far
/// corner as size like LayerLevel::paint. Null where nothing of it shows. Any thread.
QRect deviceRect(const WorldCorners& world, const QRect& device, const WorldCorners& area);

} // namespace Corvane::Map
