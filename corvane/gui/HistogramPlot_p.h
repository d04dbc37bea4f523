#pragma once

#include <corvane/map/HistogramT.h>

class QColor;
class QPainter;
class QRect;

namespace Corvane::Gui {

/// The colour in which a band of this name is drawn.
QColor colourOfBand(const QString& bandName);

/// Fills the area below the histogram's curve. plot is in device pixels; a count of scale reaches
/// its top.
void drawHistogram(QPainter& painter, const Map::HistogramT<unsigned long long>& histogram,
                   const QColor& colour, const QRect& plot, unsigned long long scale);

} // namespace Corvane::Gui
