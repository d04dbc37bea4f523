#include "TestImages.h"

#include <gdal.h>
#include <ogr_srs_api.h>

#include <QtGlobal>

#include <cmath>
#include <cstdlib>
#include <vector>

namespace TestImages {
namespace {

constexpr int bands = 3;

uchar waves(int x, int y, int band)
{
    const double phase = 2.0 * band;
    return uchar(
        std::lround(127.0 + 60.0 * std::sin(x / 57.0 + phase) + 60.0 * std::cos(y / 41.0 - phase)));
}

/// The same numbers on every machine, without a pattern.
uchar noise(int x, int y, int band)
{
    quint32 value = quint32(x) * 73856093u ^ quint32(y) * 19349663u ^ quint32(band + 1) * 83492791u;
    value ^= value >> 13;
    value *= 2654435761u;
    return uchar(value >> 24);
}

void require(bool ok, const char* what)
{
    if (!ok) {
        qFatal("TestImages: cannot %s: %s", what, CPLGetLastErrorMsg());
    }
}

void setReference(GDALDatasetH dataset, const Layout& layout)
{
    double transform[6] = {layout.origin.x(), layout.cell, 0.0,
                           layout.origin.y(), 0.0,         -layout.cell};
    require(GDALSetGeoTransform(dataset, transform) == CE_None, "set the transform");
    if (layout.epsg == 0) {
        return;
    }
    OGRSpatialReferenceH reference = OSRNewSpatialReference(nullptr);
    require(OSRImportFromEPSG(reference, layout.epsg) == OGRERR_NONE, "find the reference");
    require(GDALSetSpatialRef(dataset, reference) == CE_None, "set the reference");
    OSRDestroySpatialReference(reference);
}

void fillBand(GDALDatasetH dataset, const Layout& layout, int band)
{
    const int width = layout.size.width();
    std::vector<uchar> line(std::size_t(width), 0);
    for (int y = 0; y < layout.size.height(); ++y) {
        for (int x = 0; x < width; ++x) {
            line[std::size_t(x)] = layout.noise ? noise(x, y, band) : waves(x, y, band);
        }
        require(GDALRasterIO(GDALGetRasterBand(dataset, band + 1), GF_Write, 0, y, width, 1,
                             line.data(), width, 1, GDT_Byte, 0, 0) == CE_None,
                "write a line");
    }
}

} // namespace

void writeRgb(const QString& fileName, const Layout& layout)
{
    GDALAllRegister();
    std::vector<QByteArray> texts;
    for (const QString& option : layout.options) {
        texts.push_back(option.toLatin1());
    }
    std::vector<char*> options;
    for (QByteArray& text : texts) {
        options.push_back(text.data());
    }
    options.push_back(nullptr);

    GDALDatasetH dataset =
        GDALCreate(GDALGetDriverByName("GTiff"), fileName.toUtf8(), layout.size.width(),
                   layout.size.height(), bands, GDT_Byte, options.data());
    require(dataset != nullptr, "create the file");
    setReference(dataset, layout);
    for (int band = 0; band < bands; ++band) {
        fillBand(dataset, layout, band);
    }
    if (layout.overviews) {
        int factors[] = {2, 4};
        require(GDALBuildOverviews(dataset, "AVERAGE", 2, factors, 0, nullptr, nullptr, nullptr) ==
                    CE_None,
                "build overviews");
    }
    GDALClose(dataset);
}

QImage read(const QString& fileName, const QRectF& window, const QSize& size)
{
    GDALAllRegister();
    GDALDatasetH dataset = GDALOpen(fileName.toUtf8(), GA_ReadOnly);
    require(dataset != nullptr, "open the file");
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);

    GDALRasterIOExtraArg arguments;
    INIT_RASTERIO_EXTRA_ARG(arguments);
    arguments.eResampleAlg = GRIORA_Bilinear;
    arguments.bFloatingPointWindowValidity = TRUE;
    arguments.dfXOff = window.x();
    arguments.dfYOff = window.y();
    arguments.dfXSize = window.width();
    arguments.dfYSize = window.height();
    const QRect cells = window.toAlignedRect();
    int order[bands] = {3, 2, 1}; // blue first, as the pixels lie in memory
    require(GDALDatasetRasterIOEx(dataset, GF_Read, cells.x(), cells.y(), cells.width(),
                                  cells.height(), image.bits(), size.width(), size.height(),
                                  GDT_Byte, bands, order, 4, image.bytesPerLine(), 1,
                                  &arguments) == CE_None,
            "read the window");
    GDALClose(dataset);
    return image;
}

double meanError(const QImage& a, const QImage& b)
{
    if (a.size() != b.size() || a.isNull()) {
        return 256.0;
    }
    const QImage first = a.convertToFormat(QImage::Format_RGB32);
    const QImage second = b.convertToFormat(QImage::Format_RGB32);
    double sum = 0.0;
    for (int y = 0; y < first.height(); ++y) {
        const auto* one = reinterpret_cast<const QRgb*>(first.constScanLine(y));
        const auto* other = reinterpret_cast<const QRgb*>(second.constScanLine(y));
        for (int x = 0; x < first.width(); ++x) {
            sum += std::abs(qRed(one[x]) - qRed(other[x])) +
                   std::abs(qGreen(one[x]) - qGreen(other[x])) +
                   std::abs(qBlue(one[x]) - qBlue(other[x]));
        }
    }
    return sum / (3.0 * first.width() * first.height());
}

} // namespace TestImages
