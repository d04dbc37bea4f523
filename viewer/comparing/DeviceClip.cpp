#include <viewer/comparing/DeviceClip.h>

#include <QLineF>
#include <QPolygonF>
#include <QRectF>

#include <algorithm>
#include <cmath>

namespace Corvane::Viewer {
namespace {

bool isFinite(const QPointF& point)
{
    return std::isfinite(point.x()) && std::isfinite(point.y());
}

/// How far inside of an edge of the area a point lies.
double insideOf(const QRectF& area, int edge, const QPointF& point)
{
    switch (edge) {
    case 0:
        return point.x() - area.left();
    case 1:
        return area.right() - point.x();
    case 2:
        return point.y() - area.top();
    default:
        return area.bottom() - point.y();
    }
}

constexpr int edgeCount = 4;

} // namespace

bool clipLine(const QRectF& area, QLineF* line)
{
    if (!isFinite(line->p1()) || !isFinite(line->p2())) {
        return false;
    }
    double begin = 0.0;
    double end = 1.0;
    for (int edge = 0; edge < edgeCount; ++edge) {
        const double first = insideOf(area, edge, line->p1());
        const double second = insideOf(area, edge, line->p2());
        if (first < 0.0 && second < 0.0) {
            return false;
        }
        if (first < 0.0) {
            begin = std::max(begin, first / (first - second));
        } else if (second < 0.0) {
            end = std::min(end, first / (first - second));
        }
    }
    if (begin > end) {
        return false;
    }
    *line = QLineF(line->pointAt(begin), line->pointAt(end));
    return true;
}

QPolygonF clipPolygon(const QRectF& area, const QPolygonF& polygon)
{
    QPolygonF rest;
    std::copy_if(polygon.begin(), polygon.end(), std::back_inserter(rest), isFinite);
    for (int edge = 0; edge < edgeCount; ++edge) {
        QPolygonF cut;
        for (int i = 0; i < rest.size(); ++i) {
            const QPointF& from = rest[i];
            const QPointF& to = rest[(i + 1) % rest.size()];
            const double first = insideOf(area, edge, from);
            const double second = insideOf(area, edge, to);
            if (first >= 0.0) {
                cut << from;
            }
            if ((first < 0.0) != (second < 0.0)) {
                cut << QLineF(from, to).pointAt(first / (first - second));
            }
        }
        rest = cut;
    }
    return rest;
}

} // namespace Corvane::Viewer
