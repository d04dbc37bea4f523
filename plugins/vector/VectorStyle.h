#pragma once

#include <QBrush>
#include <QColor>
#include <QFont>
#include <QPen>

namespace Corvane::Map {

enum class PointSymbol
{
    Circle,
    Square,
    Triangle,
    Cross
};

/// How the shapes of a layer look. Sizes are in pixels of a screen of 96 dots per inch.
struct VectorStyle
{
    QPen pen;
    QBrush brush;
    PointSymbol symbol = PointSymbol::Circle;
    double pointSize = 7.0; // across
    bool antialiasing = true;
    QFont labelFont; // of a size in pixels
    QColor labelColor;

    bool operator==(const VectorStyle& other) const
    {
        return pen == other.pen && brush == other.brush && symbol == other.symbol &&
               pointSize == other.pointSize && antialiasing == other.antialiasing &&
               labelFont == other.labelFont && labelColor == other.labelColor;
    }
    bool operator!=(const VectorStyle& other) const { return !(*this == other); }
};

} // namespace Corvane::Map
