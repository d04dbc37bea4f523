#pragma once

#include <plugins/vector/WorldBox.h>

#include <QString>
#include <QStringList>

namespace Corvane::Map {

/// What is known of a layer of a vector source once it is open, before its features are read.
struct VectorFacts
{
    QString driver;         // GDAL's short name
    QString format;         // its long name
    QStringList layerNames; // those with geometry
    QString layerName;      // the one that is shown
    QStringList fields;
    QString geometryType;     // "Polygon", "3D Multi Line String", ...
    qint64 featureCount = -1; // -1 where the source does not tell
    WorldBox extent;          // in the source's own reference; empty where the source does not tell
    QString coordSysName;
    QString wkt;  // empty where the source has no reference
    int epsg = 0; // 0 where the reference has no code
};

} // namespace Corvane::Map
