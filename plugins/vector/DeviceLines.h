#pragma once

#include <plugins/vector/ViewFrame.h>

#include <QPointF>
#include <QRectF>

#include <cstdint>
#include <functional>
#include <vector>

namespace Corvane::Map {

class VectorChunk;

using DevicePoints = std::vector<QPointF>;

/// The vertices of a part on the device, without those that lie within half a pixel of the one
/// before; the last of a line stays.
void mapPart(const VectorChunk& chunk, std::uint32_t part, const ViewFrame& frame, bool closed,
             DevicePoints* points);

/// The area that the ring encloses inside the clip, as a ring again; edges may run along the clip's.
/// Painting far outside costs, and beyond some thousand pixels goes wrong.
void clipRing(const QRectF& clip, DevicePoints* ring);

/// Calls draw for each run of the line inside the clip.
void clipLine(const QRectF& clip, const DevicePoints& line,
              const std::function<void(const DevicePoints& run)>& draw);

/// A point inside the ring: the middle of its widest stretch at half its height.
QPointF innerPoint(const DevicePoints& ring);

} // namespace Corvane::Map
