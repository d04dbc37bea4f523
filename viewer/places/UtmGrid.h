#pragma once

class QPointF;
class QString;

namespace Corvane::Viewer {

/// The Universal Transverse Mercator grid on WGS 84; longitude x, latitude y. GUI thread only.

/// The zone of a place, with the exceptions of Norway and Svalbard; 0 beyond 80° south and 84° north.
int utmZoneOf(const QPointF& degrees);
/// "33U 389017 E  5819704 N", to the metre; empty where the grid does not reach.
QString utmText(const QPointF& degrees);
/// From a place of a zone. False where it is none on Earth.
bool utmToDegrees(int zone, bool isNorth, const QPointF& place, QPointF* degrees);

} // namespace Corvane::Viewer
