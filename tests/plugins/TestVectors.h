#pragma once

#include <ogr_core.h>

#include <QString>
#include <QStringList>

#include <utility>
#include <vector>

namespace Corvane::Tests {

struct FeatureRecipe
{
    QString wkt; ///< empty for no geometry
    QStringList values;
    /// The vertices of a line that no text can give, in place of wkt.
    std::vector<std::pair<double, double>> line;
};

/// What a test file is made of. The defaults give a GeoPackage in metres.
struct VectorRecipe
{
    const char* driver = "GPKG";
    QString layer = "shapes";
    OGRwkbGeometryType type = wkbUnknown;
    int epsg = 32633; ///< 0 for none
    QStringList fields = {"name"};
    std::vector<FeatureRecipe> features;
    QStringList layerOptions;
    bool append = false; ///< to the layers of a file that is there
};

/// Writes a layer. False where OGR refuses.
bool makeVectors(const QString& path, const VectorRecipe& recipe);

/// The recipe with one feature for each geometry, named "a", "b", ...
VectorRecipe shapes(const QStringList& wkts);

} // namespace Corvane::Tests
