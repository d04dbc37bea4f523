#include <viewer/places/CoordinateForm.h>

#include <viewer/places/DegreesText.h>
#include <viewer/places/MapReference.h>
#include <viewer/places/UtmGrid.h>

#include <corvane/core/Integer.h>
#include <corvane/map/MapView.h>
#include <corvane/map/RasterLayer.h>

#include <QCoreApplication>

#include <cmath>

namespace Corvane::Viewer {
namespace {

struct FormTexts
{
    CoordinateForm form;
    const char* key;
    const char* title;
    const char* label;
};

constexpr const char* context = "CoordinateForm";
constexpr double shortNumber = 1e12;
constexpr int significantDigits = 7; // of a longer one

const FormTexts texts[] = {
    {CoordinateForm::Map, "map", QT_TRANSLATE_NOOP("CoordinateForm", "&East, North of the Map"),
     QT_TRANSLATE_NOOP("CoordinateForm", "Map")},
    {CoordinateForm::Cells, "cells",
     QT_TRANSLATE_NOOP("CoordinateForm", "&Column, Row of the Raster"),
     QT_TRANSLATE_NOOP("CoordinateForm", "Cell")},
    {CoordinateForm::Degrees, "degrees",
     QT_TRANSLATE_NOOP("CoordinateForm", "Latitude, Longitude in &Degrees"),
     QT_TRANSLATE_NOOP("CoordinateForm", "WGS 84")},
    {CoordinateForm::Minutes, "minutes",
     QT_TRANSLATE_NOOP("CoordinateForm", "Latitude, Longitude in Degrees and &Minutes"),
     QT_TRANSLATE_NOOP("CoordinateForm", "WGS 84")},
    {CoordinateForm::Seconds, "seconds",
     QT_TRANSLATE_NOOP("CoordinateForm", "Latitude, Longitude in Degrees, Minutes and &Seconds"),
     QT_TRANSLATE_NOOP("CoordinateForm", "WGS 84")},
    {CoordinateForm::Utm, "utm", QT_TRANSLATE_NOOP("CoordinateForm", "&UTM Zone, East and North"),
     QT_TRANSLATE_NOOP("CoordinateForm", "UTM")},
};

const FormTexts& textsOf(CoordinateForm form)
{
    for (const FormTexts& entry : texts) {
        if (entry.form == form) {
            return entry;
        }
    }
    return texts[0];
}

double unitsPerPixel(Map::MapView& view)
{
    return std::abs(view.getBounds().width()) / view.width();
}

/// With this many decimals, as long as there is room for all digits.
QString numberText(double number, int decimals)
{
    const bool isShort = std::abs(number) < shortNumber;
    return isShort ? QString::number(number, 'f', decimals)
                   : QString::number(number, 'g', significantDigits);
}

QString mapText(const MapUnits& units, const QPointF& world, double resolution)
{
    const int digits = digitsFor(resolution);
    const QString text = units.kind == MapUnits::Degrees ? QStringLiteral("X: %1°  Y: %2°")
                                                         : QStringLiteral("X: %1  Y: %2");
    return text.arg(numberText(world.x(), digits), numberText(world.y(), digits));
}

QString cellText(Map::MapView& view, const QPointF& world)
{
    Map::RasterLayer* const raster = rasterOf(view);
    QPoint cell;
    if (!raster || !cellAt(*raster, world, &cell)) {
        return QString();
    }
    return QCoreApplication::translate(context, "Column: %1  Row: %2").arg(cell.x()).arg(cell.y());
}

} // namespace

QList<CoordinateForm> coordinateForms()
{
    QList<CoordinateForm> forms;
    for (const FormTexts& entry : texts) {
        forms << entry.form;
    }
    return forms;
}

QString coordinateFormKey(CoordinateForm form)
{
    return QString::fromLatin1(textsOf(form).key);
}

CoordinateForm coordinateFormOf(const QString& key)
{
    for (const FormTexts& entry : texts) {
        if (key == QLatin1String(entry.key)) {
            return entry.form;
        }
    }
    return CoordinateForm::Map;
}

QString coordinateFormTitle(CoordinateForm form)
{
    return QCoreApplication::translate(context, textsOf(form).title);
}

QString coordinateFormLabel(CoordinateForm form)
{
    return QCoreApplication::translate(context, textsOf(form).label);
}

Map::RasterLayer* rasterOf(Map::MapView& view)
{
    const auto usable = [](Map::Layer* layer) {
        auto* const raster = qobject_cast<Map::RasterLayer*>(layer);
        return raster && raster->isValid() ? raster : nullptr;
    };
    Map::Layer* const selected = view.getLayerSelection();
    if (selected && view.getLayers().contains(selected)) {
        if (Map::RasterLayer* const raster = usable(selected)) {
            return raster;
        }
    }
    const auto& layers = view.getLayers();
    for (auto layer = layers.crbegin(); layer != layers.crend(); ++layer) {
        Map::RasterLayer* const raster = usable(*layer);
        if (raster && raster->isVisible()) {
            return raster;
        }
    }
    return nullptr;
}

bool cellAt(Map::RasterLayer& raster, const QPointF& world, QPoint* cell)
{
    const QRectF bounds = raster.getBounds();
    const QSize size = raster.getSize();
    if (bounds.width() == 0.0 || bounds.height() == 0.0) {
        return false;
    }
    const double column = std::floor((world.x() - bounds.x()) / bounds.width() * size.width());
    const double row = std::floor((world.y() - bounds.y()) / bounds.height() * size.height());
    if (!(column >= 0.0 && column < size.width() && row >= 0.0 && row < size.height())) {
        return false;
    }
    *cell = QPoint(Util::truncateToInt(column), Util::truncateToInt(row));
    return true;
}

QString whyNoCoordinates(CoordinateForm form, Map::MapView& view)
{
    if (form == CoordinateForm::Map) {
        return QString();
    }
    if (form == CoordinateForm::Cells) {
        return rasterOf(view) ? QString()
                              : QCoreApplication::translate(context, "the map has no raster layer");
    }
    return MapReference::ofView(view)->isOnEarth()
               ? QString()
               : QCoreApplication::translate(context, "the map has no reference");
}

QString coordinateText(CoordinateForm form, Map::MapView& view, const QPointF& world)
{
    const auto reference = MapReference::ofView(view);
    if (form == CoordinateForm::Map) {
        return mapText(reference->getUnits(), world, unitsPerPixel(view));
    }
    if (form == CoordinateForm::Cells) {
        return cellText(view, world);
    }
    QPointF degrees;
    if (!reference->toDegrees(world, &degrees)) {
        return QString();
    }
    if (form == CoordinateForm::Utm) {
        return utmText(degrees);
    }
    const MapUnits& units = reference->getUnits();
    const double degreesPerUnit =
        units.kind == MapUnits::Degrees ? 1.0 : units.metresPerUnit / metresPerDegree;
    const AngleForm angle = form == CoordinateForm::Degrees   ? AngleForm::Degrees
                            : form == CoordinateForm::Minutes ? AngleForm::Minutes
                                                              : AngleForm::Seconds;
    return latitudeLongitudeText(degrees, angle, unitsPerPixel(view) * degreesPerUnit);
}

} // namespace Corvane::Viewer
