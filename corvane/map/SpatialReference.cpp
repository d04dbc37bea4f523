#include <corvane/map/SpatialReference.h>

#include <QString>

namespace Corvane::Map {

bool SpatialReference::setEpsg(int code)
{
    epsg = code;
    return true;
}

QString SpatialReference::toString()
{
    return QStringLiteral("epsg:%1").arg(epsg);
}

} // namespace Corvane::Map
