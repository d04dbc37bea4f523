#include <plugins/vector/LabelPlacer.h>

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <QPen>

#include <algorithm>
#include <cmath>

namespace Corvane::Map {

namespace {

constexpr std::size_t mostCandidates = 20000;
constexpr int mostLabels = 2000;
constexpr double cellSize = 64.0; // pixels
constexpr double gap = 2.0;       // pixels between labels, and between a point and its label
constexpr double haloPart = 0.25; // of the font's size

long long cellAt(double x, double y)
{
    const auto column = static_cast<long long>(std::floor(x / cellSize));
    const auto row = static_cast<long long>(std::floor(y / cellSize));
    return row * (1LL << 32) + column;
}

} // namespace

LabelPlacer::LabelPlacer(const QFont& labelFont, const QColor& labelColor)
    : font(labelFont),
      color(labelColor)
{
}

void LabelPlacer::add(const QString& text, const QPointF& anchor, double weight, bool beside)
{
    if (candidates.size() < mostCandidates) {
        candidates.push_back({text, anchor, weight, beside});
    }
}

QRectF LabelPlacer::placeOf(const Candidate& candidate) const
{
    const QFontMetricsF metrics(font);
    const QSizeF size(metrics.horizontalAdvance(candidate.text), metrics.height());
    QRectF place(QPointF(), size);
    place.moveCenter(candidate.anchor);
    if (candidate.beside) {
        place.moveLeft(candidate.anchor.x() + gap * 2.0);
    }
    return place;
}

bool LabelPlacer::takePlace(const QRectF& place)
{
    const QRectF wide = place.adjusted(-gap, -gap, gap, gap);
    std::vector<long long> cells;
    for (double y = wide.top(); y < wide.bottom() + cellSize; y += cellSize) {
        for (double x = wide.left(); x < wide.right() + cellSize; x += cellSize) {
            cells.push_back(cellAt(std::min(x, wide.right()), std::min(y, wide.bottom())));
        }
    }
    for (const long long cell : cells) {
        const std::vector<QRectF>& others = places[cell];
        if (std::any_of(others.begin(), others.end(),
                        [&wide](const QRectF& other) { return other.intersects(wide); }))
        {
            return false;
        }
    }
    for (const long long cell : cells) {
        places[cell].push_back(wide);
    }
    return true;
}

void LabelPlacer::draw(QPainter* painter, const QRectF& area)
{
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Candidate& a, const Candidate& b) { return a.weight > b.weight; });
    const QFontMetricsF metrics(font);
    const QPen halo(Qt::white, font.pixelSize() * haloPart, Qt::SolidLine, Qt::RoundCap,
                    Qt::RoundJoin);
    painter->setRenderHint(QPainter::Antialiasing, true);
    int drawn = 0;
    for (const Candidate& candidate : candidates) {
        const QRectF place = placeOf(candidate);
        if (!area.contains(place) || !takePlace(place)) {
            continue;
        }
        QPainterPath path;
        path.addText(place.left(), place.top() + metrics.ascent(), font, candidate.text);
        painter->strokePath(path, halo);
        painter->fillPath(path, color);
        if (++drawn == mostLabels) {
            break;
        }
    }
}

} // namespace Corvane::Map
