#include <viewer/measuring/Measurement.h>

#include <viewer/places/MapReference.h>

#include <geodesic.h>

#include <QCoreApplication>
#include <QLineF>

#include <algorithm>
#include <cmath>

namespace Corvane::Viewer {
namespace {

constexpr double metresPerPart = 20000.0; // of a geodesic that is drawn
constexpr double fewestParts = 4.0;
constexpr double mostParts = 90.0;
// A part this much of the whole jumps from one side of the map to the other.
constexpr double mostOfTheWhole = 0.5;
constexpr double seamTolerance = 1e-6; // degrees

geod_geodesic geodesicOf(const Ellipsoid& ellipsoid)
{
    geod_geodesic geodesic;
    geod_init(&geodesic, ellipsoid.semiMajorAxis, ellipsoid.flattening);
    return geodesic;
}

double lengthBetween(const geod_geodesic& geodesic, const QPointF& a, const QPointF& b)
{
    double metres = 0.0;
    geod_inverse(&geodesic, a.y(), a.x(), b.y(), b.x(), &metres, nullptr, nullptr);
    return metres;
}

bool toPlaces(const QVector<QPointF>& points, const MapReference& reference,
              QVector<QPointF>* places)
{
    for (const QPointF& point : points) {
        QPointF degrees;
        if (!reference.toOwnDegrees(point, &degrees)) {
            return false;
        }
        *places << degrees;
    }
    return true;
}

void measureOnEllipsoid(MeasureKind kind, const QVector<QPointF>& places,
                        const Ellipsoid& ellipsoid, Measurement* result)
{
    const geod_geodesic geodesic = geodesicOf(ellipsoid);
    for (int i = 1; i < places.size(); ++i) {
        result->lastLength = lengthBetween(geodesic, places[i - 1], places[i]);
        result->length += result->lastLength;
    }
    if (kind == MeasureKind::Area && places.size() > 2) {
        geod_polygon polygon;
        geod_polygon_init(&polygon, 0);
        for (const QPointF& place : places) {
            geod_polygon_addpoint(&geodesic, &polygon, place.y(), place.x());
        }
        // signed, whichever way round the corners go: the area is the smaller side of the line
        geod_polygon_compute(&geodesic, &polygon, 0, 1, &result->area, &result->length);
        result->area = std::abs(result->area);
    }
}

void measureInPlane(MeasureKind kind, const QVector<QPointF>& points, double scale,
                    Measurement* result)
{
    for (int i = 1; i < points.size(); ++i) {
        result->lastLength = QLineF(points[i - 1], points[i]).length() * scale;
        result->length += result->lastLength;
    }
    if (kind == MeasureKind::Area && points.size() > 2) {
        result->length += QLineF(points.last(), points.first()).length() * scale;
        double twice = 0.0; // from the first corner, so that large coordinates cost no digits
        for (int i = 2; i < points.size(); ++i) {
            const QPointF a = points[i - 1] - points[0];
            const QPointF b = points[i] - points[0];
            twice += a.x() * b.y() - b.x() * a.y();
        }
        result->area = std::abs(twice) / 2.0 * scale * scale;
    }
}

} // namespace

Measurement measure(MeasureKind kind, const QVector<QPointF>& points, const MapReference& reference,
                    MeasureSurface surface)
{
    Measurement result;
    const MapUnits& units = reference.getUnits();
    QVector<QPointF> places;
    const bool inPlane = surface == MeasureSurface::Plane && units.kind == MapUnits::Length;
    if (reference.isOnEarth() && !inPlane && toPlaces(points, reference, &places)) {
        result.unit = Measurement::Metres;
        result.basis = QCoreApplication::translate("Measurement", "on the ellipsoid %1")
                           .arg(reference.getEllipsoid().name);
        measureOnEllipsoid(kind, places, reference.getEllipsoid(), &result);
        return result;
    }
    double scale = 1.0;
    if (units.kind == MapUnits::Length) {
        scale = units.metresPerUnit;
        result.unit = Measurement::Metres;
        result.basis = QCoreApplication::translate("Measurement", "in the plane of %1")
                           .arg(reference.getTitle());
    } else if (units.kind == MapUnits::Degrees) {
        result.unit = Measurement::Degrees;
        result.basis = QCoreApplication::translate(
            "Measurement", "in degrees: not all points are places on Earth");
    } else if (reference.getTitle().isEmpty()) {
        result.basis =
            QCoreApplication::translate("Measurement", "in map units: the map has no reference");
    } else {
        result.basis = QCoreApplication::translate("Measurement", "in map units of %1")
                           .arg(reference.getTitle());
    }
    measureInPlane(kind, points, scale, &result);
    return result;
}

QVector<QPointF> geodesicBetween(const QPointF& from, const QPointF& to,
                                 const MapReference& reference)
{
    const QVector<QPointF> straight = {from, to};
    QVector<QPointF> places;
    if (!reference.isOnEarth() || !toPlaces(straight, reference, &places)) {
        return straight;
    }
    const geod_geodesic geodesic = geodesicOf(reference.getEllipsoid());
    geod_geodesicline line;
    geod_inverseline(&line, &geodesic, places[0].y(), places[0].x(), places[1].y(), places[1].x(),
                     0);
    if (!(line.s13 > metresPerPart)) {
        return straight;
    }
    const double parts = std::clamp(std::ceil(line.s13 / metresPerPart), fewestParts, mostParts);
    QVector<QPointF> path = {from};
    double length = 0.0;
    double longest = 0.0;
    for (double part = 1.0; part <= parts; part += 1.0) {
        double latitude = 0.0;
        double longitude = 0.0;
        geod_genposition(&line, GEOD_LONG_UNROLL, line.s13 * part / parts, &latitude, &longitude,
                         nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
        QPointF point = to;
        if (part < parts && !reference.fromOwnDegrees(QPointF(longitude, latitude), &point)) {
            return straight;
        }
        const double step = QLineF(path.last(), point).length();
        length += step;
        longest = std::max(longest, step);
        path << point;
        const bool endsElsewhere = part == parts &&
                                   reference.getUnits().kind == MapUnits::Degrees &&
                                   std::abs(longitude - places[1].x()) > seamTolerance;
        if (endsElsewhere) {
            return straight;
        }
    }
    return longest > mostOfTheWhole * length ? straight : path;
}

} // namespace Corvane::Viewer
