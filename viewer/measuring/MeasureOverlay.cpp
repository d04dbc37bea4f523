#include <viewer/measuring/MeasureOverlay.h>

#include <viewer/comparing/DeviceClip.h>
#include <viewer/places/MapReference.h>

#include <corvane/map/MapView.h>

#include <QLineF>
#include <QPainter>
#include <QPolygonF>

namespace Corvane::Viewer {
namespace {

constexpr double haloWidth = 4.0; // pixels, as the next
constexpr double lineWidth = 2.0;
constexpr double pointRadius = 3.5;
constexpr double clipMargin = 20.0;
const QColor haloColor(255, 255, 255, 200);
const QColor lineColor(200, 0, 70);
const QColor fillColor(200, 0, 70, 45);

} // namespace

MeasureOverlay::MeasureOverlay(Map::MapView* measuredView) : MapOverlay(measuredView)
{
    setObjectName("measureOverlay");
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void MeasureOverlay::setShape(MeasureKind newKind, const QVector<QPointF>& newPoints,
                              bool lastMoves)
{
    kind = newKind;
    points = newPoints;
    movesLast = lastMoves;
    edges.clear();
    const auto reference = MapReference::ofView(*getView());
    for (int i = 1; i < points.size(); ++i) {
        edges << geodesicBetween(points[i - 1], points[i], *reference);
    }
    if (kind == MeasureKind::Area && points.size() > 2) {
        edges << geodesicBetween(points.last(), points.first(), *reference);
    }
    update();
}

void MeasureOverlay::drawArea(QPainter& painter) const
{
    if (kind != MeasureKind::Area || points.size() < 3) {
        return;
    }
    QPolygonF polygon;
    for (const QVector<QPointF>& edge : edges) {
        for (int i = 0; i + 1 < edge.size(); ++i) {
            polygon << toDevice(edge[i]);
        }
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(fillColor);
    painter.drawPolygon(clipPolygon(
        QRectF(rect()).adjusted(-clipMargin, -clipMargin, clipMargin, clipMargin), polygon));
    painter.setBrush(Qt::NoBrush);
}

void MeasureOverlay::drawEdge(QPainter& painter, int edge, const QPen& pen) const
{
    const QRectF area = QRectF(rect()).adjusted(-clipMargin, -clipMargin, clipMargin, clipMargin);
    const QVector<QPointF>& path = edges[edge];
    painter.setPen(pen);
    QPolygonF run; // in one piece, so that its dashes follow on one another
    for (int i = 1; i < path.size(); ++i) {
        QLineF line(toDevice(path[i - 1]), toDevice(path[i]));
        if (!clipLine(area, &line)) {
            continue;
        }
        if (run.isEmpty() || run.last() != line.p1()) {
            painter.drawPolyline(run);
            run = QPolygonF({line.p1()});
        }
        run << line.p2();
    }
    painter.drawPolyline(run);
}

void MeasureOverlay::paintEvent(QPaintEvent* event)
{
    Q_UNUSED(event)
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    drawArea(painter);
    const QPen halo(haloColor, haloWidth, Qt::SolidLine, Qt::RoundCap);
    const QPen firm(lineColor, lineWidth, Qt::SolidLine, Qt::RoundCap);
    const QPen moving(lineColor, lineWidth, Qt::DashLine, Qt::FlatCap);
    for (int i = 0; i < edges.size(); ++i) {
        drawEdge(painter, i, halo);
    }
    for (int i = 0; i < edges.size(); ++i) {
        drawEdge(painter, i, movesLast && i >= points.size() - 2 ? moving : firm);
    }
    painter.setPen(QPen(lineColor, lineWidth));
    painter.setBrush(Qt::white);
    const QRectF near = QRectF(rect()).adjusted(-clipMargin, -clipMargin, clipMargin, clipMargin);
    for (int i = 0; i < points.size() - (movesLast ? 1 : 0); ++i) {
        const QPointF center = toDevice(points[i]);
        if (near.contains(center)) {
            painter.drawEllipse(center, pointRadius, pointRadius);
        }
    }
}

} // namespace Corvane::Viewer
