#include <plugins/raster/MaskedCopy.h>

#include <plugins/common/GdalAccess.h>
#include <plugins/raster/GdalSupport.h>

#include <gdal.h>

#include <QByteArray>
#include <QString>

namespace Corvane::Map {

namespace {

GDALRasterBandH firstBand(const DatasetPointer& dataset)
{
    return GDALGetRasterBand(dataset.get(), 1);
}

// The mean of a mask is above 0 where a pixel counts.
QByteArray maskSource(const QString& image, GDALDatasetH full, GDALDatasetH reduced)
{
    return QStringLiteral("<SimpleSource resampling=\"average\">"
                          "<SourceFilename relativeToVRT=\"0\">%1</SourceFilename>"
                          "<SourceBand>mask,1</SourceBand>"
                          "<SrcRect xOff=\"0\" yOff=\"0\" xSize=\"%2\" ySize=\"%3\"/>"
                          "<DstRect xOff=\"0\" yOff=\"0\" xSize=\"%4\" ySize=\"%5\"/>"
                          "</SimpleSource>")
        .arg(image.toHtmlEscaped())
        .arg(GDALGetRasterXSize(full))
        .arg(GDALGetRasterYSize(full))
        .arg(GDALGetRasterXSize(reduced))
        .arg(GDALGetRasterYSize(reduced))
        .toUtf8();
}

} // namespace

bool hasMask(const QString& image)
{
    QString error;
    const DatasetPointer dataset = openRasterDataset(image, false, &error);
    const int flags = dataset ? GDALGetMaskFlags(firstBand(dataset)) : 0;
    return (flags & GMF_PER_DATASET) != 0 && (flags & GMF_ALPHA) == 0;
}

bool writeMaskedCopy(const QString& copy, const QString& image, const QString& view, QString* error)
{
    const GdalErrors errors;
    const DatasetPointer reduced = openRasterDataset(copy, false, error);
    const DatasetPointer full = openRasterDataset(image, false, error);
    if (!reduced || !full) {
        return false;
    }
    const DatasetPointer written(GDALCreateCopy(GDALGetDriverByName("VRT"),
                                                view.toUtf8().constData(), reduced.get(), FALSE,
                                                nullptr, nullptr, nullptr));
    const bool isMade =
        written && GDALCreateDatasetMaskBand(written.get(), GMF_PER_DATASET) == CE_None &&
        GDALSetMetadataItem(GDALGetMaskBand(firstBand(written)), "source_0",
                            maskSource(image, full.get(), reduced.get()).constData(),
                            "new_vrt_sources") == CE_None;
    if (!isMade) {
        *error = errors.text();
    }
    return isMade;
}

} // namespace Corvane::Map
