#include <viewer/MapUnits.h>

#include <corvane/map/MapView.h>
#include <corvane/map/RasterLayer.h>

#include <QCoreApplication>
#include <QLocale>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace Corvane::Viewer {
namespace {

// At 96 dots per inch, as the canvas counts it for the scale range of its layers.
constexpr double dotsPerMetre = 9600.0 / 2.54;
constexpr int mostDigits = 10;
// A pixel of 0.9 units needs no more digits than one of 1: views are rarely round.
constexpr double digitTolerance = 0.05;

int digitsFor(double unitsPerPixel)
{
    if (!(std::isfinite(unitsPerPixel) && unitsPerPixel > 0.0)) {
        return 0;
    }
    return std::clamp(int(std::ceil(-std::log10(unitsPerPixel) - digitTolerance)), 0, mostDigits);
}

QString percentText(double percent)
{
    return QLocale().toString(percent, percent >= 10.0 ? 'f' : 'g', percent >= 10.0 ? 0 : 2);
}

Map::Layer* firstValidLayer(Map::MapView& view)
{
    const auto& layers = view.getLayers();
    const auto found = std::find_if(layers.begin(), layers.end(),
                                    [](Map::Layer* layer) { return layer->isValid(); });
    return found == layers.end() ? nullptr : *found;
}

/// How many pixels of the screen make one cell of the layer, as a percentage; empty without cells.
QString cellText(Map::Layer* layer, double unitsPerPixel)
{
    const auto raster = qobject_cast<Map::RasterLayer*>(layer);
    const double cell = raster ? std::abs(raster->getCellSizeX()) : 0.0;
    if (cell <= 0.0) {
        return QString();
    }
    return QCoreApplication::translate("MapUnits", "zoom %1 %")
        .arg(percentText(100.0 * cell / unitsPerPixel));
}

} // namespace

MapUnits MapUnits::ofLayer(Map::Layer& layer)
{
    const QString wkt = layer.property("Wkt").toString();
    if (!wkt.isEmpty()) {
        return ofWkt(wkt);
    }
    // Without a text: the geographic references of the common datums lie in this range.
    const int epsg = layer.getSpatialRef().epsg;
    if (epsg == 0) {
        return {};
    }
    return {epsg >= 4001 && epsg <= 4398 ? Degrees : Length, 1.0};
}

MapUnits MapUnits::ofWkt(const QString& wkt)
{
    if (!wkt.contains("PROJCS[") && !wkt.contains("PROJCRS[")) {
        const bool geographic = wkt.contains("GEOGCS[") || wkt.contains("GEOGCRS[");
        return {geographic ? Degrees : Unknown, 1.0};
    }
    // the unit of the base reference's angles stands before this
    const int from = std::max(wkt.indexOf("PROJECTION["), wkt.indexOf("CS[Cartesian"));
    const QRegularExpression unit("UNIT\\[\"[^\"]*\",\\s*([-+0-9.eE]+)");
    const double metres = unit.match(wkt, std::max(from, 0)).captured(1).toDouble();
    return {Length, metres > 0.0 ? metres : 1.0};
}

QString coordinateText(const MapUnits& units, double x, double y, double unitsPerPixel)
{
    const int digits = digitsFor(unitsPerPixel);
    const QString text = units.kind == MapUnits::Degrees ? QStringLiteral("X: %1°  Y: %2°")
                                                         : QStringLiteral("X: %1  Y: %2");
    return text.arg(x, 0, 'f', digits).arg(y, 0, 'f', digits);
}

QString scaleText(Map::MapView& view)
{
    Map::Layer* layer = firstValidLayer(view);
    const double unitsPerPixel = view.getBounds().width() / view.width();
    if (!layer || !std::isfinite(unitsPerPixel) || unitsPerPixel <= 0.0) {
        return {};
    }

    QStringList parts;
    const MapUnits units = MapUnits::ofLayer(*layer);
    if (units.kind == MapUnits::Length) {
        parts << "1 : " +
                     QLocale().toString(unitsPerPixel * units.metresPerUnit * dotsPerMetre, 'f', 0);
    }
    if (units.kind == MapUnits::Degrees) {
        parts << QStringLiteral("1 px = %1°").arg(unitsPerPixel, 0, 'g', 3);
    }
    parts << cellText(layer, unitsPerPixel);
    parts.removeAll(QString());
    return parts.join("   ");
}

MapUnits unitsOf(Map::MapView& view)
{
    Map::Layer* layer = firstValidLayer(view);
    return layer ? MapUnits::ofLayer(*layer) : MapUnits();
}

} // namespace Corvane::Viewer
