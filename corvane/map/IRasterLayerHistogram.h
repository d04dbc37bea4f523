#pragma once

#include <corvane/core/Export.h>
#include <corvane/map/HistogramT.h>

#include <QSize>
#include <QVector>
#include <QtPlugin>

namespace Corvane::Map {

/// A raster layer that can count its values. GUI thread only.
class CORVANE_EXPORT IRasterLayerHistogram
{
public:
    /// One histogram per band, in band order; empty where there is none. Blocks until counted.
    /// viewport counts what the view shows instead of the whole image; approximate counts an
    /// overview or a sample of about sampleSize pixels. The world rectangle names the viewport,
    /// NaN stands for the present view.
    virtual QVector<HistogramT<unsigned long long>> getHistograms(bool viewport, bool approximate,
                                                                  QSize sampleSize, double tlx,
                                                                  double tly, double brx,
                                                                  double bry) = 0;

protected:
    ~IRasterLayerHistogram() = default;
};

} // namespace Corvane::Map

Q_DECLARE_INTERFACE(Corvane::Map::IRasterLayerHistogram,
                    "com.corvane.viewer.IRasterLayerHistogram/1.0")
