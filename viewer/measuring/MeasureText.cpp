#include <viewer/measuring/MeasureText.h>

#include <QCoreApplication>
#include <QLocale>
#include <QStringList>

namespace Corvane::Viewer {
namespace {

constexpr double metresPerFoot = 0.3048;
constexpr double metresPerMile = 1609.344;
constexpr double metresPerNauticalMile = 1852.0;
constexpr double squareMetresPerAcre = 4046.8564224;
constexpr double squareMetresPerHectare = 10000.0;
constexpr double acresPerSquareMile = 640.0;
constexpr int pointDigits = 10; // in all

/// With grouped thousands and this many decimals.
QString number(double value, int decimals)
{
    return QLocale().toString(value, 'f', decimals);
}

QString plainText(double value)
{
    return QLocale().toString(value, 'g', 7);
}

} // namespace

QString lengthText(double length, Measurement::Unit unit, MeasureUnits wanted)
{
    if (unit == Measurement::Degrees) {
        return QString::fromUtf8("%1°").arg(plainText(length));
    }
    if (unit == Measurement::MapUnits) {
        return QCoreApplication::translate("MeasureText", "%1 units").arg(plainText(length));
    }
    switch (wanted) {
    case MeasureUnits::Imperial:
        return length < metresPerMile
                   ? QStringLiteral("%1 ft").arg(number(length / metresPerFoot, 1))
                   : QStringLiteral("%1 mi").arg(number(length / metresPerMile, 3));
    case MeasureUnits::Nautical:
        return QStringLiteral("%1 NM").arg(number(length / metresPerNauticalMile, 3));
    case MeasureUnits::Metric:
        break;
    }
    return length < 1000.0 ? QStringLiteral("%1 m").arg(number(length, 2))
                           : QStringLiteral("%1 km").arg(number(length / 1000.0, 3));
}

QString areaText(double area, Measurement::Unit unit, MeasureUnits wanted)
{
    if (unit == Measurement::Degrees) {
        return QCoreApplication::translate("MeasureText", "%1 square degrees").arg(plainText(area));
    }
    if (unit == Measurement::MapUnits) {
        return QCoreApplication::translate("MeasureText", "%1 square units").arg(plainText(area));
    }
    const double acres = area / squareMetresPerAcre;
    switch (wanted) {
    case MeasureUnits::Imperial:
        return acres < 1.0 ? QString::fromUtf8("%1 ft²").arg(
                                 number(area / (metresPerFoot * metresPerFoot), 1))
               : acres < acresPerSquareMile
                   ? QCoreApplication::translate("MeasureText", "%1 acres").arg(number(acres, 3))
                   : QString::fromUtf8("%1 mi²").arg(number(acres / acresPerSquareMile, 3));
    case MeasureUnits::Nautical:
        return QString::fromUtf8("%1 NM²").arg(
            number(area / (metresPerNauticalMile * metresPerNauticalMile), 3));
    case MeasureUnits::Metric:
        break;
    }
    return area < squareMetresPerHectare ? QString::fromUtf8("%1 m²").arg(number(area, 1))
           : area < 1e6 ? QStringLiteral("%1 ha").arg(number(area / squareMetresPerHectare, 3))
                        : QString::fromUtf8("%1 km²").arg(number(area / 1e6, 3));
}

QString measurementText(MeasureKind kind, const Measurement& measurement, MeasureUnits wanted,
                        const QVector<QPointF>& points)
{
    const QString length = lengthText(measurement.length, measurement.unit, wanted);
    QStringList lines;
    if (kind == MeasureKind::Area) {
        lines << QCoreApplication::translate("MeasureText", "Area: %1")
                     .arg(areaText(measurement.area, measurement.unit, wanted))
              << QCoreApplication::translate("MeasureText", "Perimeter: %1").arg(length);
    } else {
        lines << QCoreApplication::translate("MeasureText", "Distance: %1").arg(length);
    }
    lines << measurement.basis;
    for (const QPointF& point : points) {
        lines << QStringLiteral("%1\t%2")
                     .arg(point.x(), 0, 'g', pointDigits)
                     .arg(point.y(), 0, 'g', pointDigits);
    }
    return lines.join('\n') + '\n';
}

} // namespace Corvane::Viewer
