#pragma once

#include <corvane/core/PluginManager.h>
#include <corvane/map/Layer.h>
#include <tests/plugins/TestVectors.h>

#include <QRectF>
#include <QString>
#include <QtTest>

#include <memory>

namespace Corvane::Tests {

constexpr char rasterClass[] = "Corvane::Map::GdalRasterLayer";
constexpr char vectorClass[] = "Corvane::Map::OgrVectorLayer";

/// Where the default recipe of a raster lies.
const QRectF rasterWorld(QPointF(1000.0, 5000.0), QPointF(2200.0, 4000.0));

/// Writes a lake, a river and three villages that fill this rectangle of the world, named in the
/// field "name"; GeoJSON or a GeoPackage by the name of the file. False where OGR refuses.
inline bool makeLandscape(const QString& path, const QRectF& world = rasterWorld)
{
    const auto at = [&world](double x, double y) {
        return QStringLiteral("%1 %2")
            .arg(world.left() + x * world.width(), 0, 'f', 1)
            .arg(world.top() + y * world.height(), 0, 'f', 1);
    };
    VectorRecipe recipe;
    recipe.driver = path.endsWith(QStringLiteral(".geojson")) ? "GeoJSON" : "GPKG";
    recipe.layer = QStringLiteral("landscape");
    const QStringList lake = {at(0.1, 0.2), at(0.5, 0.1), at(0.6, 0.5), at(0.3, 0.7), at(0.1, 0.2)};
    const QStringList river = {at(0.0, 1.0), at(0.3, 0.7), at(0.6, 0.5), at(1.0, 0.0)};
    recipe.features = {
        {"POLYGON((" + lake.join(',') + "))", {"Long Lake"}, {}},
        {"LINESTRING(" + river.join(',') + ')', {"Slow River"}, {}},
        {"POINT(" + at(0.8, 0.4) + ')', {"Eastham"}, {}},
        {"POINT(" + at(0.2, 0.8) + ')', {"Westham"}, {}},
        {"POINT(" + at(0.7, 0.8) + ')', {"Southham"}, {}},
    };
    return makeVectors(path, recipe);
}

/// A layer of a plugin, once its file is open; null if it does not open.
inline std::unique_ptr<Map::Layer> openLayer(const char* className, const QString& path)
{
    std::unique_ptr<Map::Layer> layer(PluginManager::createLayer(QLatin1String(className), false));
    if (!layer || !layer->setDataSource(path) ||
        !QTest::qWaitFor([&layer] { return layer->isValid(); }))
    {
        return nullptr;
    }
    return layer;
}

} // namespace Corvane::Tests
