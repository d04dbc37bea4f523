#pragma once

#include <corvane/core/Export.h>

#include <QtGlobal>

class QString;

namespace Corvane::Map {

/// A spatial reference as its EPSG code; 0 for none.
class CORVANE_EXPORT SpatialReference
{
public:
    virtual bool setEpsg(int code);
    /// "epsg:4326"
    virtual QString toString();

    qint32 epsg = 0;
};

} // namespace Corvane::Map
