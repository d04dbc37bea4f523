#pragma once

#include <corvane/core/Export.h>

#include <QtGlobal>

class QString;

namespace Corvane::Map {

/// A spatial reference as its EPSG code; 0 for none.
class CORVANE_EXPORT SpatialReference
{
public:
    /// Stores the code; true.
    virtual bool setEpsg(int code);
    /// "epsg:4326"
    virtual QString toString();

    qint32 epsg = 0; ///< 0 where it is not known
};

} // namespace Corvane::Map
