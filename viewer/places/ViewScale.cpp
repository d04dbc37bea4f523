#include <viewer/places/ViewScale.h>

#include <viewer/places/MapReference.h>
#include <viewer/places/NumberText.h>

#include <corvane/map/MapView.h>
#include <corvane/map/RasterLayer.h>

#include <QCoreApplication>
#include <QLocale>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace Corvane::Viewer {
namespace {

constexpr double metresPerInch = 0.0254;
constexpr double mostLatitude = 89.9; // nearer to a pole a parallel has no length to speak of
constexpr double usualDenominators[] = {500,     1000,    2500,    5000,     10000,
                                        25000,   50000,   100000,  250000,   500000,
                                        1000000, 2500000, 5000000, 10000000, 50000000};
constexpr double usualPercents[] = {10, 25, 50, 100, 200, 400, 800};

QString noScale()
{
    return QCoreApplication::translate(
        "ViewScale",
        "\"%1\" is no scale. A scale is written like 1:25 000, 2 m per pixel or 50 %.");
}

/// Grouped by blanks, which are no decimal sign anywhere.
QString groupedText(double value)
{
    if (value < 10.0) {
        return QString::number(value, 'g', 3);
    }
    QString digits = QString::number(value, 'f', 0);
    for (int i = digits.size() - 3; i > 0; i -= 3) {
        digits.insert(i, QLatin1Char(' '));
    }
    return digits;
}

QString percentText(double percent)
{
    return QLocale().toString(percent, percent >= 10.0 ? 'f' : 'g', percent >= 10.0 ? 0 : 2);
}

/// Of longitude, at a latitude.
double metresPerDegreeAt(const Ellipsoid& ellipsoid, double latitude)
{
    if (!(std::abs(latitude) <= mostLatitude)) {
        return 0.0;
    }
    const double radians = latitude * M_PI / 180.0;
    const double flatness = ellipsoid.flattening * (2.0 - ellipsoid.flattening);
    const double sine = std::sin(radians);
    const double acrossRadius = ellipsoid.semiMajorAxis / std::sqrt(1.0 - flatness * sine * sine);
    return acrossRadius * std::cos(radians) * M_PI / 180.0;
}

double metresPerUnitOf(const MapReference& reference, const QPointF& centre)
{
    switch (reference.getUnits().kind) {
    case MapUnits::Length:
        return reference.getUnits().metresPerUnit;
    case MapUnits::Degrees:
        return metresPerDegreeAt(reference.getEllipsoid(), centre.y());
    case MapUnits::Unknown:
        break;
    }
    return 0.0;
}

double cellOf(Map::MapView& view)
{
    const auto& layers = view.getLayers();
    const auto found = std::find_if(layers.begin(), layers.end(),
                                    [](Map::Layer* layer) { return layer->isValid(); });
    auto* const raster = found == layers.end() ? nullptr : qobject_cast<Map::RasterLayer*>(*found);
    return raster ? std::abs(raster->getCellSizeX()) : 0.0;
}

/// Of "m", "ft" and the like; 0 for none that is known.
double metresOf(const QString& unit)
{
    const struct
    {
        const char* name;
        double metres;
    } known[] = {{"mm", 0.001},  {"cm", 0.01},     {"m", 1.0},    {"km", 1000.0},
                 {"ft", 0.3048}, {"mi", 1609.344}, {"nm", 1852.0}};
    for (const auto& entry : known) {
        if (unit == QLatin1String(entry.name)) {
            return entry.metres;
        }
    }
    return 0.0;
}

double readRatio(const QString& digits, const ViewScale& scale, QString* error)
{
    double denominator = 0.0;
    if (!readNumber(digits, LoneSeparator::GroupsThousands, &denominator) || denominator <= 0.0) {
        *error = noScale();
        return 0.0;
    }
    if (scale.metresPerUnit <= 0.0 || scale.dotsPerMetre <= 0.0) {
        *error = QCoreApplication::translate(
                     "ViewScale",
                     "The map has no reference that tells what 1:%2 is here. A scale in percent of "
                     "its cells, or of a pixel like 1 px = 2, can be shown.")
                     .replace("%2", groupedText(denominator));
        return 0.0;
    }
    return denominator / scale.dotsPerMetre / scale.metresPerUnit;
}

double readPercent(const QString& digits, const ViewScale& scale, QString* error)
{
    double percent = 0.0;
    if (scale.cell <= 0.0) {
        *error = QCoreApplication::translate(
            "ViewScale", "The map has no raster whose cells a percentage could be of.");
        return 0.0;
    }
    if (!readNumber(digits, LoneSeparator::IsDecimal, &percent) || percent <= 0.0) {
        *error = noScale();
        return 0.0;
    }
    return scale.cell * 100.0 / percent;
}

double readPixel(const QString& digits, const QString& unit, const ViewScale& scale, QString* error)
{
    double size = 0.0;
    const bool isMapUnit =
        unit.isEmpty() || (scale.kind == MapUnits::Degrees && unit == QString::fromUtf8("°"));
    const double metres = isMapUnit ? 0.0 : metresOf(unit);
    if (!readNumber(digits, LoneSeparator::IsDecimal, &size) || size <= 0.0 ||
        (!isMapUnit && metres <= 0.0))
    {
        *error = noScale();
        return 0.0;
    }
    if (isMapUnit) {
        return size;
    }
    if (scale.metresPerUnit <= 0.0) {
        *error = QCoreApplication::translate(
                     "ViewScale", "The map has no reference that tells how long %2 is here.")
                     .replace("%2", unit);
        return 0.0;
    }
    return size * metres / scale.metresPerUnit;
}

} // namespace

ViewScale ViewScale::ofView(Map::MapView& view)
{
    ViewScale scale;
    const double unitsPerPixel = std::abs(view.getBounds().width()) / view.width();
    const auto& layers = view.getLayers();
    if (!std::isfinite(unitsPerPixel) ||
        std::none_of(layers.begin(), layers.end(),
                     [](Map::Layer* layer) { return layer->isValid(); }))
    {
        return scale;
    }
    const auto reference = MapReference::ofView(view);
    scale.kind = reference->getUnits().kind;
    scale.unitsPerPixel = unitsPerPixel;
    scale.metresPerUnit = metresPerUnitOf(*reference, view.getBounds().center());
    scale.dotsPerMetre = view.logicalDpiX() / metresPerInch;
    scale.cell = cellOf(view);
    return scale;
}

QString scaleText(const ViewScale& scale)
{
    if (scale.unitsPerPixel <= 0.0) {
        return QString();
    }
    if (scale.metresPerUnit > 0.0) {
        return QStringLiteral("1:") +
               groupedText(scale.unitsPerPixel * scale.metresPerUnit * scale.dotsPerMetre);
    }
    if (scale.cell > 0.0) {
        return QStringLiteral("%1 %").arg(percentText(100.0 * scale.cell / scale.unitsPerPixel));
    }
    return pixelText(scale);
}

QString zoomText(const ViewScale& scale)
{
    if (scale.cell <= 0.0 || scale.unitsPerPixel <= 0.0) {
        return QString();
    }
    return QCoreApplication::translate("ViewScale", "zoom %1 %")
        .arg(percentText(100.0 * scale.cell / scale.unitsPerPixel));
}

QString pixelText(const ViewScale& scale)
{
    if (scale.unitsPerPixel <= 0.0) {
        return QString();
    }
    QString size = QString::number(scale.unitsPerPixel, 'g', 3);
    if (scale.kind == MapUnits::Degrees) {
        size += QString::fromUtf8("°");
    } else if (scale.metresPerUnit > 0.0) {
        size = QString::number(scale.unitsPerPixel * scale.metresPerUnit, 'g', 3) + " m";
    }
    return QStringLiteral("1 px = %1").arg(size);
}

QStringList usualScales(const ViewScale& scale)
{
    QStringList usual;
    if (scale.metresPerUnit > 0.0) {
        for (const double denominator : usualDenominators) {
            usual << "1:" + groupedText(denominator);
        }
    } else if (scale.cell > 0.0) {
        for (const double percent : usualPercents) {
            usual << QStringLiteral("%1 %").arg(percentText(percent));
        }
    }
    return usual;
}

double readScale(const QString& typed, const ViewScale& scale, QString* error)
{
    static const QRegularExpression ratio(
        "^(?:1\\s*[:/]\\s*)?([-+0-9., '\\x{a0}\\x{202f}\\x{2019}]+)$");
    static const QRegularExpression percent("^(?:zoom\\s*)?([0-9.,]+)\\s*%$");
    static const QRegularExpression pixel(
        QString::fromUtf8("^(?:1\\s*px\\s*=\\s*)([0-9.,e+-]+)\\s*(°|[a-z]*)$"));
    static const QRegularExpression resolution(
        QString::fromUtf8("^([0-9.,e+-]+)\\s*(°|[a-z]*)\\s*(?:(?:per|/|a)\\s*(?:px|pixel))?$"));
    const QString wanted = typed.trimmed().toLower();
    double result = 0.0;
    QString reason;
    if (const auto match = percent.match(wanted); match.hasMatch()) {
        result = readPercent(match.captured(1), scale, &reason);
    } else if (const auto ofRatio = ratio.match(wanted); ofRatio.hasMatch()) {
        result = readRatio(ofRatio.captured(1), scale, &reason);
    } else if (const auto ofPixel = pixel.match(wanted); ofPixel.hasMatch()) {
        result = readPixel(ofPixel.captured(1), ofPixel.captured(2), scale, &reason);
    } else if (const auto ofSize = resolution.match(wanted); ofSize.hasMatch()) {
        result = readPixel(ofSize.captured(1), ofSize.captured(2), scale, &reason);
    } else {
        reason = noScale();
    }
    if (result <= 0.0 || !std::isfinite(result)) {
        *error = reason.replace("%1", typed.trimmed());
        return 0.0;
    }
    return result;
}

} // namespace Corvane::Viewer
