#include <tests/plugins/TestRasters.h>

#include <ogr_srs_api.h>

namespace Corvane::Tests {

double plainValue(int band, int x, int y)
{
    return (x * (band + 1) + y * (4 - band % 4) * 3) % 251;
}

bool makeRaster(const QString& path, const RasterRecipe& recipe)
{
    GDALAllRegister();
    std::vector<QByteArray> texts;
    for (const QString& option : recipe.options) {
        texts.push_back(option.toUtf8());
    }
    std::vector<char*> options;
    for (QByteArray& text : texts) {
        options.push_back(text.data());
    }
    options.push_back(nullptr);
    const int width = recipe.size.width();
    const int height = recipe.size.height();
    Dataset dataset(GDALCreate(GDALGetDriverByName("GTiff"), qPrintable(path), width, height,
                               recipe.bands, recipe.type, options.data()));
    if (!dataset) {
        return false;
    }
    if (!recipe.transform.empty()) {
        std::array<double, 6> transform{};
        std::copy(recipe.transform.begin(), recipe.transform.end(), transform.begin());
        GDALSetGeoTransform(dataset.get(), transform.data());
    }
    if (recipe.epsg > 0) {
        OGRSpatialReferenceH system = OSRNewSpatialReference(nullptr);
        OSRImportFromEPSG(system, recipe.epsg);
        GDALSetSpatialRef(dataset.get(), system);
        OSRDestroySpatialReference(system);
    }
    std::vector<double> row(static_cast<std::size_t>(width));
    for (int band = 1; band <= recipe.bands; ++band) {
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                row[static_cast<std::size_t>(x)] =
                    recipe.value ? recipe.value(band, x, y) : plainValue(band, x, y);
            }
            if (GDALRasterIO(GDALGetRasterBand(dataset.get(), band), GF_Write, 0, y, width, 1,
                             row.data(), width, 1, GDT_Float64, 0, 0) != CE_None)
            {
                return false;
            }
        }
    }
    if (recipe.finish) {
        recipe.finish(dataset.get());
    }
    std::vector<int> factors = recipe.overviews;
    return factors.empty() ||
           GDALBuildOverviews(dataset.get(), recipe.resampling, static_cast<int>(factors.size()),
                              factors.data(), 0, nullptr, nullptr, nullptr) == CE_None;
}

Dataset openRaster(const QString& path)
{
    GDALAllRegister();
    return Dataset(
        GDALOpenEx(qPrintable(path), GDAL_OF_READONLY | GDAL_OF_RASTER, nullptr, nullptr, nullptr));
}

std::vector<double> readBand(GDALDatasetH dataset, int band, int x, int y, int width, int height)
{
    std::vector<double> values(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    if (GDALRasterIO(GDALGetRasterBand(dataset, band), GF_Read, x, y, width, height, values.data(),
                     width, height, GDT_Float64, 0, 0) != CE_None)
    {
        values.clear();
    }
    return values;
}

} // namespace Corvane::Tests
