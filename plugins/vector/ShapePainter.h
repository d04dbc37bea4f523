#pragma once

#include <plugins/vector/DeviceLines.h>
#include <plugins/vector/LabelPlacer.h>
#include <plugins/vector/VectorStyle.h>
#include <plugins/vector/ViewFrame.h>

#include <QRect>

#include <atomic>
#include <memory>
#include <vector>

class QPainter;

namespace Corvane::Map {

class VectorChunk;
struct VectorShape;

using ChunkList = std::vector<std::shared_ptr<const VectorChunk>>;

/// Draws shapes with a pen and a brush: what lies in the clip, simplified to the pixel, labels last.
/// On any thread, one at a time.
class ShapePainter
{
public:
    /// clip: what is to be drawn, in the painter's pixels. unit: how many of them make a pixel of a
    /// screen. The painter's hints, pen, brush and clip are the caller's to restore.
    ShapePainter(QPainter* painter, const ViewFrame& frame, const QRect& clip,
                 const VectorStyle& style, double unit);
    ~ShapePainter();

    /// Draws all, or stops early once abandoned is true; false then.
    bool draw(const ChunkList& chunks, const std::atomic<bool>& abandoned);

private:
    bool drawChunk(const VectorChunk& chunk, const std::atomic<bool>& abandoned);
    void drawShape(const VectorChunk& chunk, std::uint32_t number);
    bool drawAsDot(const VectorShape& shape);
    void drawPolygon(const VectorChunk& chunk, const VectorShape& shape);
    void drawLines(const VectorChunk& chunk, const VectorShape& shape);
    void drawPoints(const VectorChunk& chunk, const VectorShape& shape);
    void drawSymbol(const QPointF& middle);
    bool takePixel(std::vector<bool>* taken, int x, int y) const;
    void noteAnchor(const QPointF& point, double weight);

    QPainter* painter; // not owned
    const ViewFrame frame;
    const QRect clip;
    const VectorStyle style;
    const double unit;
    QRectF outerClip; // by what a pen or a symbol reaches
    QColor dotColor;
    DevicePoints points;
    std::vector<bool> dotted;   // the pixels that hold a dot; empty until there is one
    std::vector<bool> symboled; // the pixels that are the middle of a symbol; likewise
    LabelPlacer labels;
    bool hasAnchor = false;
    QPointF anchor; // for the label of the shape that is being drawn
    double anchorWeight = 0.0;
};

} // namespace Corvane::Map
