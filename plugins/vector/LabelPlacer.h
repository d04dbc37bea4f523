#pragma once

#include <QColor>
#include <QFont>
#include <QPointF>
#include <QRectF>
#include <QString>

#include <unordered_map>
#include <vector>

class QPainter;

namespace Corvane::Map {

/// Draws the labels of a picture so that none overlaps another; the larger shapes have their choice
/// first. On any thread, one at a time.
class LabelPlacer
{
public:
    /// font: of a size in pixels.
    LabelPlacer(const QFont& font, const QColor& color);

    /// beside: to the right of a point, else in its middle.
    void add(const QString& text, const QPointF& anchor, double weight, bool beside);
    /// Draws those that have a place inside the area.
    void draw(QPainter* painter, const QRectF& area);

private:
    struct Candidate
    {
        QString text;
        QPointF anchor;
        double weight;
        bool beside;
    };

    QRectF placeOf(const Candidate& candidate) const;
    bool takePlace(const QRectF& place);

    const QFont font;
    const QColor color;
    std::vector<Candidate> candidates;
    std::unordered_map<long long, std::vector<QRectF>> places; // taken, by the cells they touch
};

} // namespace Corvane::Map
