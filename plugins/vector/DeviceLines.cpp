#include <plugins/vector/DeviceLines.h>

#include <plugins/vector/VectorChunk.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace Corvane::Map {

namespace {

constexpr double tolerance = 0.5; // pixels

/// One side of the clip; the distance is positive on the inside.
struct ClipEdge
{
    double x;
    double y;
    double offset;

    double distance(const QPointF& point) const { return x * point.x() + y * point.y() + offset; }
};

std::array<ClipEdge, 4> edgesOf(const QRectF& clip)
{
    return {ClipEdge{1.0, 0.0, -clip.left()}, ClipEdge{-1.0, 0.0, clip.right()},
            ClipEdge{0.0, 1.0, -clip.top()}, ClipEdge{0.0, -1.0, clip.bottom()}};
}

QPointF between(const QPointF& a, const QPointF& b, double atA, double atB)
{
    return a + (b - a) * (atA / (atA - atB));
}

bool isInside(const QRectF& clip, const DevicePoints& points)
{
    return std::all_of(points.begin(), points.end(), [&clip](const QPointF& point) {
        return point.x() >= clip.left() && point.x() <= clip.right() && point.y() >= clip.top() &&
               point.y() <= clip.bottom();
    });
}

void clipRingAt(const ClipEdge& edge, const DevicePoints& ring, DevicePoints* kept)
{
    kept->clear();
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const QPointF& from = ring[i == 0 ? ring.size() - 1 : i - 1];
        const QPointF& to = ring[i];
        const double atFrom = edge.distance(from);
        const double atTo = edge.distance(to);
        if ((atFrom >= 0.0) != (atTo >= 0.0)) {
            kept->push_back(between(from, to, atFrom, atTo));
        }
        if (atTo >= 0.0) {
            kept->push_back(to);
        }
    }
}

// Whether something of the segment lies inside; then its ends are moved there.
bool clipSegment(const std::array<ClipEdge, 4>& edges, QPointF* from, QPointF* to)
{
    for (const ClipEdge& edge : edges) {
        const double atFrom = edge.distance(*from);
        const double atTo = edge.distance(*to);
        if (atFrom < 0.0 && atTo < 0.0) {
            return false;
        }
        if (atFrom < 0.0) {
            *from = between(*from, *to, atFrom, atTo);
        } else if (atTo < 0.0) {
            *to = between(*from, *to, atFrom, atTo);
        }
    }
    return true;
}

} // namespace

void mapPart(const VectorChunk& chunk, std::uint32_t part, const ViewFrame& frame, bool closed,
             DevicePoints* points)
{
    points->clear();
    const double scaleX = frame.getScaleX();
    const double scaleY = frame.getScaleY();
    const double* const xs = chunk.getXs();
    const double* const ys = chunk.getYs();
    const std::uint32_t begin = chunk.beginOf(part);
    const std::uint32_t end = chunk.endOf(part);
    double keptX = 0.0;
    double keptY = 0.0;
    for (std::uint32_t i = begin; i < end; ++i) {
        const double x = (xs[i] - frame.tlx) * scaleX + frame.device.left();
        const double y = (ys[i] - frame.tly) * scaleY + frame.device.top();
        const bool isEnd = i == begin || (!closed && i + 1 == end);
        if (isEnd || std::abs(x - keptX) >= tolerance || std::abs(y - keptY) >= tolerance) {
            points->emplace_back(x, y);
            keptX = x;
            keptY = y;
        }
    }
}

void clipRing(const QRectF& clip, DevicePoints* ring)
{
    if (isInside(clip, *ring)) {
        return;
    }
    DevicePoints kept;
    for (const ClipEdge& edge : edgesOf(clip)) {
        clipRingAt(edge, *ring, &kept);
        ring->swap(kept);
    }
}

void clipLine(const QRectF& clip, const DevicePoints& line,
              const std::function<void(const DevicePoints& run)>& draw)
{
    if (isInside(clip, line)) {
        draw(line);
        return;
    }
    const std::array<ClipEdge, 4> edges = edgesOf(clip);
    DevicePoints run;
    for (std::size_t i = 1; i < line.size(); ++i) {
        QPointF from = line[i - 1];
        QPointF to = line[i];
        if (!clipSegment(edges, &from, &to)) {
            continue;
        }
        if (run.empty() || run.back() != from) {
            if (!run.empty()) {
                draw(run);
                run.clear();
            }
            run.push_back(from);
        }
        run.push_back(to);
    }
    if (!run.empty()) {
        draw(run);
    }
}

QPointF innerPoint(const DevicePoints& ring)
{
    const auto byHeight = [](const QPointF& a, const QPointF& b) { return a.y() < b.y(); };
    const auto [highest, lowest] = std::minmax_element(ring.begin(), ring.end(), byHeight);
    const double y = (highest->y() + lowest->y()) / 2.0;
    std::vector<double> crossings;
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const QPointF& from = ring[i == 0 ? ring.size() - 1 : i - 1];
        const QPointF& to = ring[i];
        if ((from.y() > y) != (to.y() > y)) {
            crossings.push_back(between(from, to, from.y() - y, to.y() - y).x());
        }
    }
    if (crossings.size() < 2) { // it is flat
        return (*highest + *lowest) / 2.0;
    }
    std::sort(crossings.begin(), crossings.end());
    std::size_t widest = 0;
    for (std::size_t i = 2; i + 1 < crossings.size(); i += 2) {
        if (crossings[i + 1] - crossings[i] > crossings[widest + 1] - crossings[widest]) {
            widest = i;
        }
    }
    return QPointF((crossings[widest] + crossings[widest + 1]) / 2.0, y);
}

} // namespace Corvane::Map
