#include <plugins/raster/ReadFilter.h>

#include <plugins/common/GdalReadFilter.h>

#include <gdal.h>

namespace Corvane::Map {

QString rasterReadFilter()
{
    return gdalReadFilter(GDAL_DCAP_RASTER, isChieflyVector);
}

} // namespace Corvane::Map
