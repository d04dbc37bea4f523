#pragma once

#include <gdal.h>

#include <QSize>
#include <QString>
#include <QStringList>

#include <array>
#include <functional>
#include <memory>
#include <vector>

namespace Corvane::Tests {

struct CloseDataset
{
    void operator()(GDALDatasetH dataset) const { GDALClose(dataset); }
};
using Dataset = std::unique_ptr<void, CloseDataset>;

/// What a test file is made of. The defaults give a small RGB GeoTIFF in tiles of 256.
struct RasterRecipe
{
    QSize size = QSize(600, 500);
    int bands = 3;
    GDALDataType type = GDT_Byte;
    QStringList options = {"TILED=YES", "BLOCKXSIZE=256", "BLOCKYSIZE=256"};
    /// North-up with cells of 2 by 2; empty for none.
    std::vector<double> transform = {1000.0, 2.0, 0.0, 5000.0, 0.0, -2.0};
    int epsg = 32633;
    std::vector<int> overviews; ///< factors
    const char* resampling = "AVERAGE";
    /// The value of a band's pixel; x, y from the top left, band from 1.
    std::function<double(int band, int x, int y)> value;
    /// Called before the file is written out, after the pixels.
    std::function<void(GDALDatasetH)> finish;
};

/// Smooth in both directions and different in each band, so that a shift by one pixel shows.
double plainValue(int band, int x, int y);

/// Writes a GeoTIFF. False where GDAL refuses.
bool makeRaster(const QString& path, const RasterRecipe& recipe);
/// Read-only; null where it does not open.
Dataset openRaster(const QString& path);
/// The pixels of a window of one band as GDAL itself reads them.
std::vector<double> readBand(GDALDatasetH dataset, int band, int x, int y, int width, int height);

} // namespace Corvane::Tests
