#include <plugins/vector/ShapePainter.h>

#include <plugins/vector/VectorChunk.h>

#include <corvane/core/Integer.h>

#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>

#include <algorithm>
#include <cmath>

namespace Corvane::Map {

namespace {

constexpr double smallest = 1.0;   // pixels of a screen, below which a dot does
constexpr double miterReach = 4.0; // pen widths that a sharp corner may stick out
constexpr double clipSlack = 4.0;  // pixels
constexpr qint64 mostTrackedPixels = 64 * 1024 * 1024;
constexpr unsigned int shapesBetweenLooks = 64; // at whether the picture is still wanted

QFont scaledFont(const VectorStyle& style, double unit)
{
    QFont font = style.labelFont;
    font.setPixelSize(std::max(1, Util::roundToInt(font.pixelSize() * unit)));
    return font;
}

QPen scaledPen(const VectorStyle& style, double unit)
{
    QPen pen = style.pen;
    pen.setWidthF(pen.widthF() * unit);
    return pen;
}

QColor colorOfDots(const VectorStyle& style)
{
    if (style.pen.style() != Qt::NoPen) {
        return style.pen.color();
    }
    return style.brush.style() != Qt::NoBrush ? style.brush.color() : QColor(Qt::transparent);
}

} // namespace

ShapePainter::ShapePainter(QPainter* onto, const ViewFrame& viewFrame, const QRect& area,
                           const VectorStyle& look, double unitPixels)
    : painter(onto),
      frame(viewFrame),
      clip(area),
      style(look),
      unit(unitPixels),
      dotColor(colorOfDots(look)),
      labels(scaledFont(look, unitPixels), look.labelColor)
{
    const double reach = std::max(style.pen.widthF() * miterReach, style.pointSize) * unit;
    outerClip = QRectF(clip).adjusted(-reach - clipSlack, -reach - clipSlack, reach + clipSlack,
                                      reach + clipSlack);
}

ShapePainter::~ShapePainter() = default;

bool ShapePainter::draw(const ChunkList& chunks, const std::atomic<bool>& abandoned)
{
    if (!frame.isUsable() || clip.isEmpty()) {
        return true;
    }
    painter->setRenderHint(QPainter::Antialiasing, style.antialiasing);
    painter->setPen(scaledPen(style, unit));
    painter->setBrush(style.brush);
    for (const auto& chunk : chunks) {
        if (!drawChunk(*chunk, abandoned)) {
            return false;
        }
    }
    labels.draw(painter, clip);
    return !abandoned;
}

bool ShapePainter::drawChunk(const VectorChunk& chunk, const std::atomic<bool>& abandoned)
{
    unsigned int count = 0;
    for (const std::uint32_t number : chunk.find(frame.worldOf(outerClip))) {
        if (++count % shapesBetweenLooks == 0 && abandoned) {
            return false;
        }
        drawShape(chunk, number);
    }
    return !abandoned;
}

void ShapePainter::drawShape(const VectorChunk& chunk, std::uint32_t number)
{
    const VectorShape& shape = chunk.getShapes()[number];
    if (drawAsDot(shape)) {
        return;
    }
    hasAnchor = false;
    switch (shape.kind) {
    case ShapeKind::Polygons:
        drawPolygon(chunk, shape);
        break;
    case ShapeKind::Lines:
        drawLines(chunk, shape);
        break;
    case ShapeKind::Points:
        drawPoints(chunk, shape);
        break;
    }
    if (hasAnchor && chunk.hasLabels()) {
        const QString text = chunk.labelOf(number);
        if (!text.isEmpty()) {
            labels.add(text, anchor, anchorWeight, shape.kind == ShapeKind::Points);
        }
    }
}

// A shape smaller than a pixel is one, and one that falls where another was drawn shows nothing new.
bool ShapePainter::drawAsDot(const VectorShape& shape)
{
    const double width = (shape.box.right - shape.box.left) * std::abs(frame.getScaleX());
    const double height = (shape.box.top - shape.box.bottom) * std::abs(frame.getScaleY());
    if (shape.kind == ShapeKind::Points || std::max(width, height) >= smallest * unit) {
        return false;
    }
    const double middleX = frame.toDeviceX((shape.box.left + shape.box.right) / 2.0);
    const double middleY = frame.toDeviceY((shape.box.top + shape.box.bottom) / 2.0);
    const int x = Util::truncateToInt(std::floor(middleX));
    const int y = Util::truncateToInt(std::floor(middleY));
    if (clip.contains(x, y) && takePixel(&dotted, x, y)) {
        const int size = std::max(1, Util::roundToInt(unit));
        painter->fillRect(x, y, size, size, dotColor);
    }
    return true;
}

// False where it is taken already. Of a very large area nothing is noted.
bool ShapePainter::takePixel(std::vector<bool>* taken, int x, int y) const
{
    const qint64 pixels = qint64(clip.width()) * clip.height();
    if (pixels > mostTrackedPixels) {
        return true;
    }
    taken->resize(static_cast<std::size_t>(pixels));
    const auto place =
        static_cast<std::size_t>(y - clip.top()) * static_cast<std::size_t>(clip.width()) +
        static_cast<std::size_t>(x - clip.left());
    if ((*taken)[place]) {
        return false;
    }
    (*taken)[place] = true;
    return true;
}

void ShapePainter::noteAnchor(const QPointF& point, double weight)
{
    if (!hasAnchor || weight > anchorWeight) {
        hasAnchor = true;
        anchor = point;
        anchorWeight = weight;
    }
}

void ShapePainter::drawPolygon(const VectorChunk& chunk, const VectorShape& shape)
{
    QPainterPath path;
    path.setFillRule(Qt::OddEvenFill);
    for (std::uint32_t part = shape.firstPart; part < shape.firstPart + shape.partCount; ++part) {
        mapPart(chunk, part, frame, true, &points);
        clipRing(outerClip, &points);
        if (points.empty()) {
            continue;
        }
        if (chunk.hasLabels()) {
            noteAnchor(
                innerPoint(points),
                QPolygonF(QVector<QPointF>(points.begin(), points.end())).boundingRect().width());
        }
        if (shape.partCount == 1) {
            painter->drawPolygon(points.data(), static_cast<int>(points.size()), Qt::OddEvenFill);
            return;
        }
        path.moveTo(points.front());
        for (std::size_t i = 1; i < points.size(); ++i) {
            path.lineTo(points[i]);
        }
        path.closeSubpath();
    }
    painter->drawPath(path);
}

void ShapePainter::drawLines(const VectorChunk& chunk, const VectorShape& shape)
{
    for (std::uint32_t part = shape.firstPart; part < shape.firstPart + shape.partCount; ++part) {
        mapPart(chunk, part, frame, false, &points);
        clipLine(outerClip, points, [this](const DevicePoints& run) {
            painter->drawPolyline(run.data(), static_cast<int>(run.size()));
            noteAnchor(run[run.size() / 2], static_cast<double>(run.size()));
        });
    }
}

void ShapePainter::drawPoints(const VectorChunk& chunk, const VectorShape& shape)
{
    for (std::uint32_t part = shape.firstPart; part < shape.firstPart + shape.partCount; ++part) {
        mapPart(chunk, part, frame, false, &points);
        const QPointF& middle = points.front();
        const QPoint pixel(Util::truncateToInt(std::floor(middle.x())),
                           Util::truncateToInt(std::floor(middle.y())));
        if (!outerClip.contains(middle) ||
            (clip.contains(pixel) && !takePixel(&symboled, pixel.x(), pixel.y())))
        {
            continue;
        }
        drawSymbol(middle);
        noteAnchor(middle + QPointF(style.pointSize * unit / 2.0, 0.0), 0.0);
    }
}

void ShapePainter::drawSymbol(const QPointF& middle)
{
    const double radius = style.pointSize * unit / 2.0;
    const QRectF box(middle.x() - radius, middle.y() - radius, radius * 2.0, radius * 2.0);
    switch (style.symbol) {
    case PointSymbol::Circle:
        painter->drawEllipse(box);
        break;
    case PointSymbol::Square:
        painter->drawRect(box);
        break;
    case PointSymbol::Triangle: {
        const QPointF corners[] = {QPointF(middle.x(), box.top()), box.bottomRight(),
                                   box.bottomLeft()};
        painter->drawPolygon(corners, 3);
        break;
    }
    case PointSymbol::Cross:
        painter->drawLine(box.topLeft(), box.bottomRight());
        painter->drawLine(box.bottomLeft(), box.topRight());
        break;
    }
}

} // namespace Corvane::Map
