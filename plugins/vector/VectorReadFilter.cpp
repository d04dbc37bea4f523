#include <plugins/vector/VectorReadFilter.h>

#include <plugins/common/GdalReadFilter.h>

#include <gdal.h>

#include <QStringList>

namespace Corvane::Map {

QString vectorReadFilter()
{
    const QStringList images = gdalExtensions(GDAL_DCAP_RASTER);
    return gdalReadFilter(GDAL_DCAP_VECTOR, [&images](const QString& extension) {
        return extension == QLatin1String("xml") ||
               (images.contains(extension) && !isChieflyVector(extension));
    });
}

} // namespace Corvane::Map
