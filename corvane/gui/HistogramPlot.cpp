#include "HistogramPlot_p.h"

#include <corvane/core/Integer.h>

#include <QBrush>
#include <QColor>
#include <QPainter>
#include <QPen>
#include <QPolygon>
#include <QRect>

#include <algorithm>

namespace Corvane::Gui {

namespace {

constexpr int opaque = 255;
constexpr int fillAlpha = 50;
constexpr double tallestCurve =
    1e6; // pixels; what a layer counts beyond its own peak stays drawable

double share(unsigned long long count, unsigned long long scale)
{
    return scale == 0 ? 0.0 : static_cast<double>(count) / static_cast<double>(scale);
}

} // namespace

QColor colourOfBand(const QString& bandName)
{
    // Any name that holds the word counts: a band called Infrared is drawn red, too.
    if (bandName.contains(QLatin1String("red"), Qt::CaseInsensitive)) {
        return QColor(255, 0, 0, opaque);
    }
    if (bandName.contains(QLatin1String("green"), Qt::CaseInsensitive)) {
        return QColor(0, 255, 0, opaque);
    }
    if (bandName.contains(QLatin1String("blue"), Qt::CaseInsensitive)) {
        return QColor(0, 0, 255, opaque);
    }
    return QColor(128, 128, 128, opaque);
}

void drawHistogram(QPainter& painter, const Map::HistogramT<unsigned long long>& histogram,
                   const QColor& colour, const QRect& plot, unsigned long long scale)
{
    QColor fill = colour;
    fill.setAlpha(fillAlpha);
    painter.setPen(QPen(colour, 1));
    painter.setBrush(QBrush(fill, Qt::SolidPattern));
    painter.setRenderHint(QPainter::Antialiasing, true);

    const unsigned int bins = histogram.counts ? histogram.numberOfBins : 0;
    QPolygon area;
    area.append(QPoint(plot.x(), plot.y() + plot.height()));
    for (unsigned int bin = 0; bin < bins; ++bin) {
        const double across = static_cast<double>(bin) / bins * plot.width();
        const double up = plot.height() * share(histogram.counts[bin], scale);
        area.append(
            QPoint(Util::truncateToInt(across) + plot.x(),
                   plot.height() - Util::truncateToInt(std::min(up, tallestCurve)) + plot.y()));
    }
    area.append(QPoint(plot.x() + plot.width(), plot.y() + plot.height()));
    painter.drawPolygon(area, Qt::OddEvenFill);
}

} // namespace Corvane::Gui
