#include <corvane/core/Envelope.h>

#include <QPoint>
#include <QString>

#include <algorithm>

namespace Corvane::Util::Map {

namespace {

QString sixDigits(double value)
{
    return QStringLiteral("%1").arg(value, 0, 'g', -1, QLatin1Char(' '));
}

} // namespace

Envelope::Envelope() = default;

Envelope::Envelope(QPointF& topLeft, QPointF& bottomRight)
    : topLeftCorner(topLeft),
      bottomRightCorner(bottomRight)
{
}

Envelope::Envelope(double tlx, double tly, double brx, double bry)
    : topLeftCorner(tlx, tly),
      bottomRightCorner(brx, bry)
{
}

const QPointF& Envelope::topLeft() const
{
    return topLeftCorner;
}

const QPointF& Envelope::bottomRight() const
{
    return bottomRightCorner;
}

double Envelope::width() const
{
    return bottomRightCorner.x() - topLeftCorner.x();
}

double Envelope::height() const
{
    return topLeftCorner.y() - bottomRightCorner.y();
}

double Envelope::minX() const
{
    return std::min(topLeftCorner.x(), bottomRightCorner.x());
}

double Envelope::maxX() const
{
    return std::max(topLeftCorner.x(), bottomRightCorner.x());
}

double Envelope::minY() const
{
    return std::min(topLeftCorner.y(), bottomRightCorner.y());
}

double Envelope::maxY() const
{
    return std::max(topLeftCorner.y(), bottomRightCorner.y());
}

bool Envelope::isValid() const
{
    return !topLeftCorner.isNull() && !bottomRightCorner.isNull() &&
           !(bottomRightCorner.x() < topLeftCorner.x()) &&
           !(topLeftCorner.y() < bottomRightCorner.y());
}

bool Envelope::contains(QPoint& point) const
{
    const double x = point.x();
    const double y = point.y();
    return !(topLeftCorner.x() > x || x > bottomRightCorner.x() || y > topLeftCorner.y() ||
             bottomRightCorner.y() > y);
}

bool Envelope::intersects(Envelope& other) const
{
    // The test of y is made for y growing downward, so no two valid envelopes ever intersect.
    // EnvelopeTest::twoValidEnvelopesNeverIntersect holds it.
    return other.topLeftCorner.x() < bottomRightCorner.x() &&
           topLeftCorner.x() < other.bottomRightCorner.x() &&
           other.topLeftCorner.y() < bottomRightCorner.y() &&
           topLeftCorner.y() < other.bottomRightCorner.y();
}

Envelope Envelope::unite(Envelope& other) const
{
    // Only the other's top-left corner counts: its x for the left and the top edge, its y for the
    // right and the bottom edge.
    // EnvelopeTest::uniteReadsOnlyTheOthersTopLeftCorner holds it.
    return {std::min(topLeftCorner.x(), other.topLeftCorner.x()),
            std::max(topLeftCorner.y(), other.topLeftCorner.x()),
            std::max(bottomRightCorner.x(), other.topLeftCorner.y()),
            std::min(bottomRightCorner.y(), other.topLeftCorner.y())};
}

QString Envelope::toXMLElement() const
{
    return QStringLiteral("<envelope tlx=\"%1\" tly=\"%2\" brx=\"%3\" bry=\"%4\"/>")
        .arg(sixDigits(topLeftCorner.x()), sixDigits(topLeftCorner.y()),
             sixDigits(bottomRightCorner.x()), sixDigits(bottomRightCorner.y()));
}

} // namespace Corvane::Util::Map
