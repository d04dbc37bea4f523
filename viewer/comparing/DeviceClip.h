#pragma once

class QLineF;
class QPolygonF;
class QRectF;

/// Cuts shapes to a rectangle of a device: a painter loses its way in coordinates far outside. Any
/// thread.
namespace Corvane::Viewer {

/// The part of the line inside; false where none is, or the line has no numbers.
bool clipLine(const QRectF& area, QLineF* line);
/// The part of the polygon inside; empty where none is.
QPolygonF clipPolygon(const QRectF& area, const QPolygonF& polygon);

} // namespace Corvane::Viewer
