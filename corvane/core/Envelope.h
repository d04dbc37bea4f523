#pragma once

#include <corvane/core/Export.h>

#include <QPointF>

class QPoint;
class QString;

namespace Corvane::Util::Map {

/// A world rectangle by its top-left and bottom-right corners, y growing north. Any thread, as a
/// value.
class CORVANE_EXPORT Envelope
{
public:
    /// All zero, and so not valid.
    Envelope();
    /// The corners as they are given.
    Envelope(QPointF& topLeft, QPointF& bottomRight);
    /// The corners as they are given, in world units.
    Envelope(double tlx, double tly, double brx, double bry);

    /// The corner as it was given.
    const QPointF& topLeft() const;
    /// The corner as it was given.
    const QPointF& bottomRight() const;
    /// Negative where the right edge lies left of the left one.
    double width() const;
    /// Negative where the top lies below the bottom.
    double height() const;
    /// These four are right for either orientation.
    double minX() const;
    /// The larger x of the two corners.
    double maxX() const;
    /// The smaller y of the two corners.
    double minY() const;
    /// The larger y of the two corners.
    double maxY() const;

    /// Not upside down, not mirrored, and no corner at exactly (0, 0).
    bool isValid() const;
    /// Whether the point lies inside or on an edge of a valid envelope.
    bool contains(QPoint& point) const;
    /// For envelopes with y growing downward, edges not counting; false for any two valid ones.
    bool intersects(Envelope& other) const;
    /// Grows by other's top-left corner alone; see the source for the rule.
    Envelope unite(Envelope& other) const;
    /// An empty element "envelope" with the attributes tlx, tly, brx and bry, 6 digits each.
    QString toXMLElement() const;

private:
    QPointF topLeftCorner;
    QPointF bottomRightCorner;
};

} // namespace Corvane::Util::Map
