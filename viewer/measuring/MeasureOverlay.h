#pragma once

#include <viewer/maps/MapOverlay.h>
#include <viewer/measuring/Measurement.h>

#include <QVector>

class QPainter;

namespace Corvane::Viewer {

/// Draws a measured line or area over the map, along geodesics where they are known. The mouse
/// passes through it. GUI thread only.
class MeasureOverlay : public MapOverlay
{
    Q_OBJECT
public:
    explicit MeasureOverlay(Map::MapView* measuredView);

    /// In the map's coordinates. The last point still moves while the shape is not ended; an area is
    /// closed.
    void setShape(MeasureKind newKind, const QVector<QPointF>& newPoints, bool lastMoves);
    const QVector<QPointF>& getPoints() const { return points; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void drawArea(QPainter& painter) const;
    void drawEdge(QPainter& painter, int edge, const QPen& pen) const;

    MeasureKind kind = MeasureKind::Distance;
    QVector<QPointF> points;
    QVector<QVector<QPointF>> edges; // the closing one of an area last
    bool movesLast = false;
};

} // namespace Corvane::Viewer
