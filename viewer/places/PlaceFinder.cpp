#include <viewer/places/PlaceFinder.h>

#include <viewer/places/CoordinateForm.h>
#include <viewer/places/DegreesText.h>
#include <viewer/places/MapReference.h>
#include <viewer/places/PlaceText.h>

#include <corvane/map/MapCanvas.h>
#include <corvane/map/MapView.h>
#include <corvane/map/RasterLayer.h>

#include <QCoreApplication>

#include <cmath>

namespace Corvane::Viewer {
namespace {

constexpr double angleResolution = 1e-6; // degrees: a decimetre

FoundPlace missed(const QString& why)
{
    FoundPlace place;
    place.explanation = why;
    return place;
}

FoundPlace found(const QPointF& world, const QString& explanation)
{
    FoundPlace place;
    place.isFound = true;
    place.world = world;
    place.explanation = explanation;
    return place;
}

FoundPlace findDegrees(const QPointF& degrees, const MapReference& reference)
{
    const QString angles = latitudeLongitudeText(degrees, AngleForm::Seconds, angleResolution);
    if (!reference.isOnEarth()) {
        return missed(QCoreApplication::translate(
                          "PlaceFinder", "The map has no reference that tells where %1 is.")
                          .arg(angles));
    }
    QPointF world;
    if (!reference.fromDegrees(degrees, &world)) {
        return missed(QCoreApplication::translate("PlaceFinder", "%1 does not reach %2.")
                          .arg(reference.getTitle(), angles));
    }
    return found(world, QCoreApplication::translate("PlaceFinder", "%1 (WGS 84)").arg(angles));
}

FoundPlace findMap(const QPointF& world, const MapReference& reference)
{
    const int digits = reference.getUnits().kind == MapUnits::Degrees ? 6 : 2;
    const QString x = QString::number(world.x(), 'f', digits);
    const QString y = QString::number(world.y(), 'f', digits);
    return found(
        world, reference.getTitle().isEmpty()
                   ? QCoreApplication::translate("PlaceFinder", "X: %1, Y: %2 of the map").arg(x, y)
                   : QCoreApplication::translate("PlaceFinder", "X: %1, Y: %2 in %3")
                         .arg(x, y, reference.getTitle()));
}

FoundPlace findCell(const QPointF& cell, Map::MapView& view)
{
    Map::RasterLayer* const raster = rasterOf(view);
    if (!raster) {
        return missed(QCoreApplication::translate(
            "PlaceFinder", "The map has no raster layer whose cells could be counted."));
    }
    const QSize size = raster->getSize();
    const double column = std::floor(cell.x());
    const double row = std::floor(cell.y());
    if (size.isEmpty() || column < 0.0 || row < 0.0 || column >= size.width() ||
        row >= size.height()) {
        return missed(
            QCoreApplication::translate("PlaceFinder", "%1 has columns 0 to %2 and rows 0 to %3.")
                .arg(raster->getDescription())
                .arg(size.width() - 1)
                .arg(size.height() - 1));
    }
    const QRectF bounds = raster->getBounds();
    const QPointF world(bounds.x() + (column + 0.5) / size.width() * bounds.width(),
                        bounds.y() + (row + 0.5) / size.height() * bounds.height());
    return found(world, QCoreApplication::translate("PlaceFinder", "Column %1, row %2 of %3")
                            .arg(column, 0, 'f', 0)
                            .arg(row, 0, 'f', 0)
                            .arg(raster->getDescription()));
}

bool isInside(const QPointF& world, Map::MapView& view)
{
    return view.getMapCanvas()->getMaxBounds().normalized().contains(world);
}

} // namespace

FoundPlace findPlace(const QString& coordinate, Map::MapView& view)
{
    const auto reference = MapReference::ofView(view);
    const WrittenPlace written = readPlace(coordinate, reference->isOnEarth());
    FoundPlace place;
    switch (written.kind) {
    case WrittenPlace::None:
        return missed(written.error);
    case WrittenPlace::Degrees:
        place = findDegrees(written.position, *reference);
        break;
    case WrittenPlace::Map:
        place = findMap(written.position, *reference);
        break;
    case WrittenPlace::Cell:
        place = findCell(written.position, view);
        break;
    }
    if (place.isFound && !isInside(place.world, view)) {
        place.explanation = QCoreApplication::translate("PlaceFinder", "%1, outside of all layers")
                                .arg(place.explanation);
    }
    return place;
}

} // namespace Corvane::Viewer
