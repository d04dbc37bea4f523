#include <viewer/comparing/DeviceClip.h>
#include <viewer/places/MapReference.h>
#include <viewer/measuring/MeasureText.h>
#include <viewer/measuring/Measurement.h>

#include <corvane/core/Application.h>

#include <QLineF>
#include <QLocale>
#include <QPolygonF>
#include <QtTest>

#include <cmath>

using namespace Corvane;
using namespace Corvane::Viewer;

namespace {

const MapReference& reference(const char* definition)
{
    return *MapReference::ofDefinition(definition);
}

Measurement distance(const char* definition, const QVector<QPointF>& points,
                     MeasureSurface surface = MeasureSurface::Ellipsoid)
{
    return measure(MeasureKind::Distance, points, reference(definition), surface);
}

Measurement area(const char* definition, const QVector<QPointF>& points,
                 MeasureSurface surface = MeasureSurface::Ellipsoid)
{
    return measure(MeasureKind::Area, points, reference(definition), surface);
}

const QPointF kennedy(-73.8, 40.6);
const QPointF heathrow(-0.5, 51.6);

} // namespace

class MeasurementTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { QLocale::setDefault(QLocale("en_US")); }
    void knownGeodesicsAreExact();
    void knownAreasAreExact();
    void theTurnOfTheCornersIsNoMatter();
    void theEllipsoidIsThatOfTheMap();
    void aProjectedMapMeasuresOnItsEllipsoid();
    void thePlaneIsMeasuredWhereTheUserWantsIt();
    void feetAreTurnedToMetres();
    void whatIsNotKnownIsSaid_data();
    void whatIsNotKnownIsSaid();
    void linesOfFewPointsHaveNoLength();
    void aLineAddsItsSegments();
    void geodesicsBendOnTheMap();
    void geodesicsRoundTheBackAreStraight();
    void lengthsHaveUnits_data();
    void lengthsHaveUnits();
    void areasHaveUnits_data();
    void areasHaveUnits();
    void theTextHasEverything();
    void linesAreCutToTheDevice();
    void areasAreCutToTheDevice();
};

/// Published results: of the geodesic between the two airports, of a quarter of a meridian and of a
/// degree of the equator.
void MeasurementTest::knownGeodesicsAreExact()
{
    const Measurement flight = distance("EPSG:4326", {kennedy, heathrow});
    QCOMPARE(flight.unit, Measurement::Metres);
    QCOMPARE(flight.basis, QString("on the ellipsoid WGS 84"));
    QVERIFY2(std::abs(flight.length - 5551759.400) < 0.001,
             qPrintable(QString::number(flight.length, 'f', 4)));
    const double quarter = distance("EPSG:4326", {QPointF(7.0, 0.0), QPointF(7.0, 90.0)}).length;
    QVERIFY(std::abs(quarter - 10001965.729) < 0.001);
    const double degree = distance("EPSG:4326", {QPointF(0.0, 0.0), QPointF(1.0, 0.0)}).length;
    QVERIFY(std::abs(degree - 111319.4908) < 0.001);
}

void MeasurementTest::knownAreasAreExact()
{
    const QVector<QPointF> square = {{0.0, 0.0}, {1.0, 0.0}, {1.0, 1.0}, {0.0, 1.0}};
    const Measurement degree = area("EPSG:4326", square);
    QVERIFY2(std::abs(degree.area - 12308778361.469) < 1.0,
             qPrintable(QString::number(degree.area, 'f', 3)));
    QVERIFY(std::abs(degree.length - 443770.917) < 0.001);
    // an eighth of the Earth
    const Measurement octant = area("EPSG:4326", {{0.0, 0.0}, {90.0, 0.0}, {0.0, 90.0}});
    QVERIFY(std::abs(octant.area - 510065621724088.44 / 8.0) < 1.0);
}

void MeasurementTest::theTurnOfTheCornersIsNoMatter()
{
    QVector<QPointF> corners = {{0.0, 0.0}, {1.0, 0.0}, {1.0, 1.0}, {0.0, 1.0}};
    const double one = area("EPSG:4326", corners).area;
    const double plane = area("", corners).area;
    std::reverse(corners.begin(), corners.end());
    QCOMPARE(area("EPSG:4326", corners).area, one);
    QCOMPARE(area("", corners).area, plane);
    QCOMPARE(plane, 1.0);
}

void MeasurementTest::theEllipsoidIsThatOfTheMap()
{
    const QVector<QPointF> degree = {{0.0, 0.0}, {1.0, 0.0}};
    const Measurement bessel = distance("EPSG:4314", degree);
    QCOMPARE(bessel.basis, QString("on the ellipsoid Bessel 1841"));
    QVERIFY(std::abs(bessel.length - 6377397.155 * M_PI / 180.0) < 0.001);
    QCOMPARE(distance("EPSG:4258", degree).basis, QString("on the ellipsoid GRS 1980"));
}

/// The same two places, in degrees and in the metres of three projections.
void MeasurementTest::aProjectedMapMeasuresOnItsEllipsoid()
{
    const QVector<QPointF> degrees = {{13.3777, 52.5163}, {13.4094, 52.5208}};
    const double expected = distance("EPSG:4326", degrees).length;
    for (const char* definition : {"EPSG:32633", "EPSG:3857", "EPSG:32631"}) {
        QVector<QPointF> points(2);
        QVERIFY(reference(definition).fromDegrees(degrees[0], &points[0]));
        QVERIFY(reference(definition).fromDegrees(degrees[1], &points[1]));
        const Measurement measured = distance(definition, points);
        QCOMPARE(measured.basis, QString("on the ellipsoid WGS 84"));
        QVERIFY2(std::abs(measured.length - expected) < 0.001,
                 qPrintable(QString::number(measured.length, 'f', 4)));
    }
}

void MeasurementTest::thePlaneIsMeasuredWhereTheUserWantsIt()
{
    const QVector<QPointF> square = {
        {400000.0, 5800000.0}, {401000.0, 5800000.0}, {401000.0, 5801000.0}, {400000.0, 5801000.0}};
    const Measurement plane = area("EPSG:25833", square, MeasureSurface::Plane);
    QCOMPARE(plane.basis, QString("in the plane of EPSG:25833"));
    QCOMPARE(plane.unit, Measurement::Metres);
    QCOMPARE(plane.area, 1e6);
    QCOMPARE(plane.length, 4000.0);
    const Measurement ground = area("EPSG:25833", square);
    QVERIFY(ground.area > 1.0003e6 && ground.area < 1.001e6); // the plane shrinks there
    // degrees are no plane
    QCOMPARE(distance("EPSG:4326", {kennedy, heathrow}, MeasureSurface::Plane).basis,
             QString("on the ellipsoid WGS 84"));
}

void MeasurementTest::feetAreTurnedToMetres()
{
    const Measurement plane =
        distance("EPSG:2263", {{984250.0, 200000.0}, {987250.0, 204000.0}}, MeasureSurface::Plane);
    QVERIFY(std::abs(plane.length - 5000.0 * 1200.0 / 3937.0) < 1e-6);
    const Measurement block =
        area("EPSG:2263", {{0.0, 0.0}, {3937.0, 0.0}, {3937.0, 3937.0}}, MeasureSurface::Plane);
    QVERIFY(std::abs(block.area - 1200.0 * 1200.0 / 2.0) < 1e-6);
}

void MeasurementTest::whatIsNotKnownIsSaid_data()
{
    QTest::addColumn<QString>("definition");
    QTest::addColumn<QPointF>("far");
    QTest::addColumn<int>("unit");
    QTest::addColumn<QString>("basis");
    QTest::newRow("no reference") << "" << QPointF(3.0, 4.0) << int(Measurement::MapUnits)
                                  << "in map units: the map has no reference";
    QTest::newRow("a local grid") << "LOCAL_CS[\"quarry\",UNIT[\"metre\",1]]" << QPointF(3.0, 4.0)
                                  << int(Measurement::MapUnits) << "in map units of quarry";
    QTest::newRow("degrees beyond the pole")
        << "EPSG:4326" << QPointF(0.0, 95.0) << int(Measurement::Degrees)
        << "in degrees: not all points are places on Earth";
    QTest::newRow("metres beyond the world")
        << "EPSG:3857" << QPointF(9e7, 0.0) << int(Measurement::Metres)
        << "in the plane of EPSG:3857";
}

void MeasurementTest::whatIsNotKnownIsSaid()
{
    QFETCH(QString, definition);
    QFETCH(QPointF, far);
    const Measurement measured = distance(definition.toUtf8(), {QPointF(0.0, 0.0), far});
    QTEST(int(measured.unit), "unit");
    QTEST(measured.basis, "basis");
    QCOMPARE(measured.length, QLineF(QPointF(), far).length());
}

void MeasurementTest::linesOfFewPointsHaveNoLength()
{
    for (const char* definition : {"EPSG:4326", "EPSG:25833", ""}) {
        for (const QVector<QPointF>& points : {QVector<QPointF>(), QVector<QPointF>{kennedy}}) {
            QCOMPARE(distance(definition, points).length, 0.0);
            QCOMPARE(area(definition, points).area, 0.0);
        }
    }
    const Measurement edge = area("EPSG:4326", {kennedy, heathrow});
    QCOMPARE(edge.area, 0.0);
    QVERIFY(std::abs(edge.length - 5551759.4) < 0.1);
}

void MeasurementTest::aLineAddsItsSegments()
{
    const Measurement way = distance("", {{0.0, 0.0}, {3.0, 4.0}, {3.0, 10.0}});
    QCOMPARE(way.length, 11.0);
    QCOMPARE(way.lastLength, 6.0);
    const Measurement flight = distance("EPSG:4326", {{0.0, 0.0}, {1.0, 0.0}, {3.0, 0.0}});
    QVERIFY(std::abs(flight.length - 3.0 * 111319.4908) < 0.01);
    QVERIFY(std::abs(flight.lastLength - 2.0 * 111319.4908) < 0.01);
}

void MeasurementTest::geodesicsBendOnTheMap()
{
    const QVector<QPointF> path = geodesicBetween(kennedy, heathrow, reference("EPSG:4326"));
    QVERIFY(path.size() > 20);
    QCOMPARE(path.first(), kennedy);
    QCOMPARE(path.last(), heathrow);
    const QPointF middle = path[path.size() / 2];
    QVERIFY2(middle.y() > 52.0, qPrintable(QString::number(middle.y()))); // north of both
    // what is short is straight
    QCOMPARE(geodesicBetween({13.0, 52.0}, {13.01, 52.0}, reference("EPSG:4326")).size(), 2);
    QCOMPARE(geodesicBetween({0.0, 0.0}, {9e6, 0.0}, reference("")).size(), 2);
    QCOMPARE(geodesicBetween(kennedy, kennedy, reference("EPSG:4326")).size(), 2);

    QVector<QPointF> mercator(2);
    QVERIFY(reference("EPSG:3857").fromDegrees(kennedy, &mercator[0]));
    QVERIFY(reference("EPSG:3857").fromDegrees(heathrow, &mercator[1]));
    const auto bent = geodesicBetween(mercator[0], mercator[1], reference("EPSG:3857"));
    QVERIFY(bent.size() > 20);
    QVERIFY(bent[bent.size() / 2].y() > mercator[1].y());
}

void MeasurementTest::geodesicsRoundTheBackAreStraight()
{
    const QVector<QPointF> seam = {{-170.0, 40.0}, {170.0, 40.0}};
    QCOMPARE(geodesicBetween(seam[0], seam[1], reference("EPSG:4326")), seam);
    QVector<QPointF> mercator(2);
    QVERIFY(reference("EPSG:3857").fromDegrees(seam[0], &mercator[0]));
    QVERIFY(reference("EPSG:3857").fromDegrees(seam[1], &mercator[1]));
    QCOMPARE(geodesicBetween(mercator[0], mercator[1], reference("EPSG:3857")), mercator);
    const QVector<QPointF> nowhere = {{0.0, 0.0}, {0.0, 95.0}};
    QCOMPARE(geodesicBetween(nowhere[0], nowhere[1], reference("EPSG:4326")), nowhere);
}

void MeasurementTest::lengthsHaveUnits_data()
{
    QTest::addColumn<double>("length");
    QTest::addColumn<int>("unit");
    QTest::addColumn<int>("wanted");
    QTest::addColumn<QString>("expected");
    const int metres = int(Measurement::Metres);
    const int metric = int(MeasureUnits::Metric);
    const int imperial = int(MeasureUnits::Imperial);
    const int nautical = int(MeasureUnits::Nautical);
    QTest::newRow("metres") << 12.345 << metres << metric << "12.35 m";
    QTest::newRow("nearly a kilometre") << 999.99 << metres << metric << "999.99 m";
    QTest::newRow("kilometres to the metre") << 5551759.4 << metres << metric << "5,551.759 km";
    QTest::newRow("feet") << 30.48 << metres << imperial << "100.0 ft";
    QTest::newRow("miles") << 1609344.0 << metres << imperial << "1,000.000 mi";
    QTest::newRow("nautical miles") << 1852.0 << metres << nautical << "1.000 NM";
    QTest::newRow("degrees") << 1.5 << int(Measurement::Degrees) << metric
                             << QString::fromUtf8("1.5°");
    QTest::newRow("units") << 11.0 << int(Measurement::MapUnits) << imperial << "11 units";
}

void MeasurementTest::lengthsHaveUnits()
{
    QFETCH(double, length);
    QFETCH(int, unit);
    QFETCH(int, wanted);
    QTEST(lengthText(length, Measurement::Unit(unit), MeasureUnits(wanted)), "expected");
}

void MeasurementTest::areasHaveUnits_data()
{
    QTest::addColumn<double>("area");
    QTest::addColumn<int>("unit");
    QTest::addColumn<int>("wanted");
    QTest::addColumn<QString>("expected");
    const int metres = int(Measurement::Metres);
    const int metric = int(MeasureUnits::Metric);
    const int imperial = int(MeasureUnits::Imperial);
    const int nautical = int(MeasureUnits::Nautical);
    const auto utf8 = [](const char* source) { return QString::fromUtf8(source); };
    QTest::newRow("square metres") << 123.44 << metres << metric << utf8("123.4 m²");
    QTest::newRow("hectares") << 12346.0 << metres << metric << "1.235 ha";
    QTest::newRow("square kilometres")
        << 12308778361.469 << metres << metric << utf8("12,308.778 km²");
    QTest::newRow("square feet") << 9.290304 << metres << imperial << utf8("100.0 ft²");
    QTest::newRow("acres") << 40468.564224 << metres << imperial << "10.000 acres";
    QTest::newRow("square miles") << 2589988.110336 << metres << imperial << utf8("1.000 mi²");
    QTest::newRow("square nautical miles") << 3429904.0 << metres << nautical << utf8("1.000 NM²");
    QTest::newRow("square degrees")
        << 2.25 << int(Measurement::Degrees) << metric << "2.25 square degrees";
    QTest::newRow("square units") << 6.0 << int(Measurement::MapUnits) << metric
                                  << "6 square units";
}

void MeasurementTest::areasHaveUnits()
{
    QFETCH(double, area);
    QFETCH(int, unit);
    QFETCH(int, wanted);
    QTEST(areaText(area, Measurement::Unit(unit), MeasureUnits(wanted)), "expected");
}

void MeasurementTest::theTextHasEverything()
{
    const QVector<QPointF> points = {kennedy, heathrow};
    QCOMPARE(measurementText(MeasureKind::Distance, distance("EPSG:4326", points),
                             MeasureUnits::Metric, points),
             QString("Distance: 5,551.759 km\non the ellipsoid WGS 84\n-73.8\t40.6\n-0.5\t51.6\n"));
    const QVector<QPointF> square = {{0.0, 0.0}, {1.0, 0.0}, {1.0, 1.0}, {0.0, 1.0}};
    QCOMPARE(measurementText(MeasureKind::Area, area("", square), MeasureUnits::Metric, square),
             QString("Area: 1 square units\nPerimeter: 4 units\n"
                     "in map units: the map has no reference\n0\t0\n1\t0\n1\t1\n0\t1\n"));
}

void MeasurementTest::linesAreCutToTheDevice()
{
    const QRectF device(0.0, 0.0, 100.0, 50.0);
    QLineF inside(10.0, 10.0, 90.0, 40.0);
    QVERIFY(clipLine(device, &inside));
    QCOMPARE(inside, QLineF(10.0, 10.0, 90.0, 40.0));
    QLineF through(-1e9, 25.0, 1e9, 25.0);
    QVERIFY(clipLine(device, &through));
    QVERIFY(std::abs(through.x1()) < 1e-5 && std::abs(through.x2() - 100.0) < 1e-5);
    QLineF leaving(50.0, 25.0, 50.0, 75.0);
    QVERIFY(clipLine(device, &leaving));
    QCOMPARE(leaving.p2(), QPointF(50.0, 50.0));
    for (QLineF outside : {QLineF(-5.0, -5.0, 200.0, -1.0), QLineF(-10.0, 5.0, 5.0, -10.0),
                           QLineF(qQNaN(), 0.0, 1.0, 1.0), QLineF(0.0, 0.0, qInf(), 1.0)})
    {
        QVERIFY(!clipLine(device, &outside));
    }
}

void MeasurementTest::areasAreCutToTheDevice()
{
    const QRectF device(0.0, 0.0, 100.0, 50.0);
    const QPolygonF around({{-1e7, -1e7}, {1e7, -1e7}, {1e7, 1e7}, {-1e7, 1e7}});
    const QRectF cut = clipPolygon(device, around).boundingRect();
    QVERIFY(QLineF(cut.topLeft(), device.topLeft()).length() < 1e-6);
    QVERIFY(QLineF(cut.bottomRight(), device.bottomRight()).length() < 1e-6);
    const QPolygonF inside({{10.0, 10.0}, {20.0, 10.0}, {20.0, 20.0}});
    QCOMPARE(clipPolygon(device, inside), inside);
    QVERIFY(
        clipPolygon(device, QPolygonF({{200.0, 10.0}, {220.0, 10.0}, {220.0, 20.0}})).isEmpty());
    QVERIFY(clipPolygon(device, QPolygonF()).isEmpty());
    QCOMPARE(clipPolygon(device, QPolygonF(inside) << QPointF(qQNaN(), 0.0)), inside);
}

int main(int argc, char** argv)
{
    Application application(argc, argv, "Corvane Viewer Test");
    MeasurementTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "MeasurementTest.moc"
