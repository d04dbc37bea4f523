#include <bench/BareReader.h>

#include <gdal.h>

#include <QRectF>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <thread>

namespace Corvane::Bench {

BareReader::BareReader(const QString& file, int threads)
{
    GDALAllRegister();
    handles.resize(static_cast<std::size_t>(threads));
    std::vector<std::thread> openers;
    for (GDALDatasetH& handle : handles) {
        openers.emplace_back([&handle, &file] {
            handle = GDALOpenEx(qPrintable(file), GDAL_OF_READONLY | GDAL_OF_RASTER, nullptr,
                                nullptr, nullptr);
        });
    }
    for (std::thread& opener : openers) {
        opener.join();
    }
}

BareReader::~BareReader()
{
    for (GDALDatasetH handle : handles) {
        GDALClose(handle);
    }
}

bool BareReader::isOpen() const
{
    return std::all_of(handles.begin(), handles.end(), [](GDALDatasetH handle) { return handle; });
}

QSize BareReader::size() const
{
    return levelSize(0);
}

QSize BareReader::levelSize(int level) const
{
    GDALRasterBandH band = GDALGetRasterBand(handles.front(), 1);
    if (level > 0) {
        band = GDALGetOverview(band, level - 1);
    }
    return QSize(GDALGetRasterBandXSize(band), GDALGetRasterBandYSize(band));
}

int BareReader::tileSize() const
{
    int width = 0;
    int height = 0;
    GDALGetBlockSize(GDALGetRasterBand(handles.front(), 1), &width, &height);
    return width == height ? width : 256;
}

int BareReader::levelFor(double pixelsPerPixel) const
{
    const int overviews = GDALGetOverviewCount(GDALGetRasterBand(handles.front(), 1));
    int level = 0;
    while (level < overviews &&
           size().width() / static_cast<double>(levelSize(level + 1).width()) <=
               pixelsPerPixel * 1.01)
    {
        ++level;
    }
    return level;
}

std::vector<QRect> BareReader::tilesOf(int level, const QRectF& pixels) const
{
    const QSize extent = levelSize(level);
    const double factor = size().width() / static_cast<double>(extent.width());
    const int edge = tileSize();
    const auto tileAt = [edge, factor](double pixel, int length) {
        const int last = (length - 1) / edge;
        return std::clamp(static_cast<int>(std::floor(pixel / factor / edge)), 0, last);
    };
    std::vector<QRect> tiles;
    for (int x = tileAt(pixels.left(), extent.width()); x <= tileAt(pixels.right(), extent.width());
         ++x)
    {
        for (int y = tileAt(pixels.top(), extent.height());
             y <= tileAt(pixels.bottom(), extent.height()); ++y)
        {
            tiles.push_back(QRect(x * edge, y * edge, edge, edge) & QRect(QPoint(0, 0), extent));
        }
    }
    return tiles;
}

QImage BareReader::readTile(GDALDatasetH handle, int level, const QRect& tile)
{
    GDALDatasetH source = handle;
    if (level > 0) {
        source = GDALGetBandDataset(GDALGetOverview(GDALGetRasterBand(handle, 1), level - 1));
    }
    QImage image(tile.size(), QImage::Format_RGB32);
    image.fill(Qt::white);
    int blueToRed[] = {3, 2, 1};
    const CPLErr result = GDALDatasetRasterIO(
        source, GF_Read, tile.x(), tile.y(), tile.width(), tile.height(), image.bits(),
        tile.width(), tile.height(), GDT_Byte, 3, blueToRed, 4, image.bytesPerLine(), 1);
    return result == CE_None ? image : QImage();
}

std::vector<QImage> BareReader::read(int level, const std::vector<QRect>& tiles)
{
    std::vector<QImage> images(tiles.size());
    std::atomic<std::size_t> next{0};
    std::vector<std::thread> readers;
    for (GDALDatasetH handle : handles) {
        readers.emplace_back([&, handle] {
            for (std::size_t i = next++; i < tiles.size(); i = next++) {
                images[i] = readTile(handle, level, tiles[i]);
            }
        });
    }
    for (std::thread& reader : readers) {
        reader.join();
    }
    return images;
}

} // namespace Corvane::Bench
