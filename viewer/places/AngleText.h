#pragma once

class QPointF;
class QString;

namespace Corvane::Viewer {

enum class AngleReading
{
    NotAngles, ///< nothing tells that these are latitude and longitude
    Wrong,     ///< they are meant as such, and are not
    Angles
};

/// Reads latitude and longitude with hemisphere letters, signs of degrees, or "lat" and "lon", in
/// degrees, degrees and minutes, or down to seconds: longitude x, latitude y. Without letters the
/// latitude comes first. Where they are wrong, error says why. Any thread.
AngleReading readAngles(const QString& text, QPointF* degrees, QString* error);

} // namespace Corvane::Viewer
