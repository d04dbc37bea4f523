#pragma once

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QRectF>
#include <QSize>
#include <QString>
#include <QStringList>

/// Small georeferenced images that the tests write and read through GDAL itself.
namespace TestImages {

/// How a file is laid out.
struct Layout
{
    QSize size = {1024, 768};
    QPointF origin = {500000.0, 4650000.0}; ///< world position of the top-left corner
    double cell = 2.0;
    int epsg = 32633;    ///< 0 for none
    QStringList options; ///< of the GeoTIFF driver
    bool overviews = false;
    bool noise = false; ///< sharp detail instead of slow waves
};

/// Writes an RGB GeoTIFF; aborts the test program where GDAL cannot.
void writeRgb(const QString& fileName, const Layout& layout);

/// GDAL's own rendering of a window of the file at this size.
QImage read(const QString& fileName, const QRectF& window, const QSize& size);

/// The mean difference of two pictures in grey levels over all channels; 256 where the sizes differ.
double meanError(const QImage& a, const QImage& b);

} // namespace TestImages
