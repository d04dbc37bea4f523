#include <tests/viewer/support/ReferencedLayer.h>

#include <viewer/places/MapReference.h>
#include <viewer/places/UtmGrid.h>

#include <corvane/core/Application.h>
#include <corvane/map/MapView.h>

#include <QtTest>

#include <cmath>

using namespace Corvane;
using namespace Corvane::Viewer;

namespace {

const char* const gaussKruger =
    "PROJCS[\"DHDN / 3-degree Gauss-Kruger zone 3\",GEOGCS[\"DHDN\","
    "DATUM[\"Deutsches_Hauptdreiecksnetz\",SPHEROID[\"Bessel 1841\",6377397.155,299.1528128]],"
    "PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]],"
    "PROJECTION[\"Transverse_Mercator\"],PARAMETER[\"latitude_of_origin\",0],"
    "PARAMETER[\"central_meridian\",9],PARAMETER[\"scale_factor\",1],"
    "PARAMETER[\"false_easting\",3500000],PARAMETER[\"false_northing\",0],"
    "UNIT[\"metre\",1],AXIS[\"Northing\",NORTH],AXIS[\"Easting\",EAST],"
    "AUTHORITY[\"EPSG\",\"31467\"]]";
const char* const shifted =
    "PROJCS[\"shifted\",GEOGCS[\"with a shift\",DATUM[\"d\",SPHEROID[\"Bessel 1841\",6377397.155,"
    "299.1528128],TOWGS84[598.1,73.7,418.2,0.202,0.045,-2.455,6.7]],PRIMEM[\"Greenwich\",0],"
    "UNIT[\"degree\",0.0174532925199433]],PROJECTION[\"Transverse_Mercator\"],"
    "PARAMETER[\"latitude_of_origin\",0],PARAMETER[\"central_meridian\",9],"
    "PARAMETER[\"scale_factor\",1],PARAMETER[\"false_easting\",3500000],"
    "PARAMETER[\"false_northing\",0],UNIT[\"metre\",1]]";
const char* const localGrid = "LOCAL_CS[\"grid\",UNIT[\"metre\",1]]";

bool isNear(const QPointF& a, const QPointF& b, double tolerance)
{
    return std::abs(a.x() - b.x()) < tolerance && std::abs(a.y() - b.y()) < tolerance;
}

QByteArray text(const QPointF& point)
{
    return QStringLiteral("%1 %2").arg(point.x(), 0, 'f', 9).arg(point.y(), 0, 'f', 9).toUtf8();
}

} // namespace

class MapReferenceTest : public QObject
{
    Q_OBJECT
private slots:
    void unitsComeFromTheDefinition_data();
    void unitsComeFromTheDefinition();
    void placesAreFoundOnWgs84_data();
    void placesAreFoundOnWgs84();
    void ownDegreesStayOnTheDatum();
    void aShiftInTheDefinitionIsUsed();
    void whatLiesBeyondTheReferenceIsNoPlace();
    void theEllipsoidIsNamed();
    void theBottomLayerThatIsValidDecides();
    void theCodeStandsInForAMissingText();
    void utmZones_data();
    void utmZones();
    void utmReadsAsOnAMap();
};

void MapReferenceTest::unitsComeFromTheDefinition_data()
{
    QTest::addColumn<QString>("definition");
    QTest::addColumn<int>("kind");
    QTest::addColumn<double>("metres");
    QTest::addColumn<QString>("title");

    QTest::newRow("no text") << "" << int(MapUnits::Unknown) << 1.0 << "";
    QTest::newRow("no reference at all") << "nonsense" << int(MapUnits::Unknown) << 1.0 << "";
    QTest::newRow("no reference but an ellipsoid")
        << "EPSG:7030" << int(MapUnits::Unknown) << 1.0 << "";
    QTest::newRow("degrees") << "EPSG:4326" << int(MapUnits::Degrees) << 1.0 << "EPSG:4326";
    QTest::newRow("metres") << "EPSG:32633" << int(MapUnits::Length) << 1.0 << "EPSG:32633";
    QTest::newRow("metres of a text")
        << gaussKruger << int(MapUnits::Length) << 1.0 << "EPSG:31467";
    QTest::newRow("a text without a code") << shifted << int(MapUnits::Length) << 1.0 << "shifted";
    QTest::newRow("feet") << "EPSG:2263" << int(MapUnits::Length) << 1200.0 / 3937.0 << "EPSG:2263";
    QTest::newRow("a height besides")
        << "EPSG:2263+5703" << int(MapUnits::Length) << 1200.0 / 3937.0 << "EPSG:2263";
    QTest::newRow("a height alone") << "EPSG:5703" << int(MapUnits::Unknown) << 1.0 << "EPSG:5703";
    QTest::newRow("a local grid") << localGrid << int(MapUnits::Unknown) << 1.0 << "grid";
}

void MapReferenceTest::unitsComeFromTheDefinition()
{
    QFETCH(QString, definition);
    QFETCH(double, metres);
    const auto reference = MapReference::ofDefinition(definition);
    QTEST(int(reference->getUnits().kind), "kind");
    QVERIFY(std::abs(reference->getUnits().metresPerUnit - metres) < 1e-12);
    QTEST(reference->getTitle(), "title");
    QCOMPARE(reference->isOnEarth(), reference->getUnits().kind != MapUnits::Unknown);
    QCOMPARE(MapReference::ofDefinition(definition), reference); // made once
}

void MapReferenceTest::placesAreFoundOnWgs84_data()
{
    QTest::addColumn<QString>("definition");
    QTest::addColumn<QPointF>("world");
    QTest::addColumn<QPointF>("degrees");

    QTest::newRow("degrees stay") << "EPSG:4326" << QPointF(13.3777, 52.5163)
                                  << QPointF(13.3777, 52.5163);
    QTest::newRow("a longitude beyond the seam comes round")
        << "EPSG:4326" << QPointF(190.0, 52.0) << QPointF(-170.0, 52.0);
    QTest::newRow("metres of the north")
        << "EPSG:25833" << QPointF(389917.832635, 5819701.918941) << QPointF(13.3777, 52.5163);
    QTest::newRow("metres of the south")
        << "EPSG:32719" << QPointF(360505.619897, 6303362.287124) << QPointF(-70.5, -33.4);
    QTest::newRow("feet") << "EPSG:2263" << QPointF(984250.0, 194305.338941)
                          << QPointF(-74.0, 40.7);
    QTest::newRow("axes told north first are east first")
        << gaussKruger << QPointF(3500074.920630, 5540407.239515) << QPointF(9.0, 50.0);
}

void MapReferenceTest::placesAreFoundOnWgs84()
{
    QFETCH(QString, definition);
    QFETCH(QPointF, world);
    QFETCH(QPointF, degrees);
    const auto reference = MapReference::ofDefinition(definition);
    QPointF found;
    QVERIFY(reference->toDegrees(world, &found));
    QVERIFY2(isNear(found, degrees, 2e-8), text(found));
    if (std::abs(world.x()) <= 180.0 || reference->getUnits().kind == MapUnits::Length) {
        QPointF back;
        QVERIFY(reference->fromDegrees(degrees, &back));
        QVERIFY2(isNear(back, world, 0.002), text(back));
    }
}

void MapReferenceTest::ownDegreesStayOnTheDatum()
{
    const auto reference = MapReference::ofDefinition(gaussKruger);
    QPointF own;
    QVERIFY(reference->toOwnDegrees(QPointF(3520000.0, 5540000.0), &own));
    QVERIFY2(isNear(own, QPointF(9.278974260, 49.997151145), 1e-8), text(own));
}

void MapReferenceTest::aShiftInTheDefinitionIsUsed()
{
    const auto reference = MapReference::ofDefinition(shifted);
    QPointF own;
    QPointF earth;
    QVERIFY(reference->toOwnDegrees(QPointF(3500000.0, 5540000.0), &own));
    QVERIFY2(std::abs(own.x() - 9.0) < 1e-9, text(own));
    QVERIFY(reference->toDegrees(QPointF(3500000.0, 5540000.0), &earth));
    QVERIFY2(isNear(earth, QPointF(8.998955, 49.996339), 2e-5), text(earth));
}

void MapReferenceTest::whatLiesBeyondTheReferenceIsNoPlace()
{
    QPointF untouched(1.0, 2.0);
    const auto utm = MapReference::ofDefinition("EPSG:32633");
    QVERIFY(!utm->toDegrees(QPointF(1e9, 1e9), &untouched));
    QVERIFY(!utm->toDegrees(QPointF(qQNaN(), 0.0), &untouched));
    QVERIFY(!utm->toDegrees(QPointF(qInf(), 0.0), &untouched));
    QVERIFY(!utm->fromDegrees(QPointF(15.0, 95.0), &untouched));
    const auto mercator = MapReference::ofDefinition("EPSG:3857");
    QVERIFY(!mercator->toDegrees(QPointF(3e7, 0.0), &untouched)); // a second time round the world
    const auto north = MapReference::ofDefinition("+proj=gnom +lat_0=90 +datum=WGS84 +type=crs");
    QVERIFY(north->isOnEarth());
    QVERIFY(!north->fromDegrees(QPointF(0.0, -45.0), &untouched));
    const auto degrees = MapReference::ofDefinition("EPSG:4326");
    QVERIFY(!degrees->toDegrees(QPointF(0.0, 90.5), &untouched));
    const auto none = MapReference::ofDefinition(QString());
    QVERIFY(!none->toDegrees(QPointF(1.0, 1.0), &untouched));
    QVERIFY(!none->toOwnDegrees(QPointF(1.0, 1.0), &untouched));
    QVERIFY(!none->fromDegrees(QPointF(1.0, 1.0), &untouched));
    QCOMPARE(untouched, QPointF(1.0, 2.0));
}

void MapReferenceTest::theEllipsoidIsNamed()
{
    const Ellipsoid& bessel = MapReference::ofDefinition(gaussKruger)->getEllipsoid();
    QCOMPARE(bessel.name, QString("Bessel 1841"));
    QCOMPARE(bessel.semiMajorAxis, 6377397.155);
    QCOMPARE(bessel.flattening, 1.0 / 299.1528128);
    QCOMPARE(MapReference::ofDefinition("EPSG:25833")->getEllipsoid().name, QString("GRS 1980"));
    QCOMPARE(MapReference::ofDefinition("EPSG:3857")->getEllipsoid().name, QString("WGS 84"));
    // a sphere is not flattened
    QCOMPARE(MapReference::ofDefinition("EPSG:4047")->getEllipsoid().flattening, 0.0);
}

void MapReferenceTest::theBottomLayerThatIsValidDecides()
{
    Map::MapView view;
    QCOMPARE(MapReference::ofView(view)->getTitle(), QString());
    auto* const invalid = new ReferencedLayer("EPSG:2263");
    invalid->valid = false;
    view.addLayer(invalid);
    QCOMPARE(MapReference::ofView(view)->getTitle(), QString());
    view.addLayer(new ReferencedLayer("EPSG:25833"));
    view.addLayer(new ReferencedLayer("EPSG:4326"));
    QCOMPARE(MapReference::ofView(view)->getTitle(), QString("EPSG:25833"));
}

void MapReferenceTest::theCodeStandsInForAMissingText()
{
    ReferencedLayer layer;
    QCOMPARE(MapReference::ofLayer(layer)->getTitle(), QString());
    Map::SpatialReference code;
    code.setEpsg(32633);
    layer.setSpatialRef(code);
    QCOMPARE(MapReference::ofLayer(layer)->getTitle(), QString("EPSG:32633"));
    layer.wkt = gaussKruger;
    QCOMPARE(MapReference::ofLayer(layer)->getTitle(), QString("EPSG:31467"));
}

void MapReferenceTest::utmZones_data()
{
    QTest::addColumn<QPointF>("degrees");
    QTest::addColumn<int>("zone");
    QTest::newRow("the first") << QPointF(-180.0, 0.0) << 1;
    QTest::newRow("the last") << QPointF(179.9, 0.0) << 60;
    QTest::newRow("round the seam") << QPointF(180.0, 0.0) << 1;
    QTest::newRow("Berlin") << QPointF(13.4, 52.5) << 33;
    QTest::newRow("Bergen, which the zone was made wider for") << QPointF(5.3, 60.4) << 32;
    QTest::newRow("south of that") << QPointF(5.3, 55.9) << 31;
    QTest::newRow("Svalbard 31") << QPointF(8.9, 75.0) << 31;
    QTest::newRow("Svalbard 33") << QPointF(9.0, 75.0) << 33;
    QTest::newRow("Svalbard 35") << QPointF(21.0, 75.0) << 35;
    QTest::newRow("Svalbard 37") << QPointF(33.0, 75.0) << 37;
    QTest::newRow("east of Svalbard") << QPointF(42.0, 75.0) << 38;
    QTest::newRow("too far north") << QPointF(0.0, 84.1) << 0;
    QTest::newRow("too far south") << QPointF(0.0, -80.1) << 0;
}

void MapReferenceTest::utmZones()
{
    QFETCH(QPointF, degrees);
    QTEST(utmZoneOf(degrees), "zone");
}

void MapReferenceTest::utmReadsAsOnAMap()
{
    QCOMPARE(utmText(QPointF(13.3777, 52.5163)), QString("33U 389918 E  5819702 N"));
    QCOMPARE(utmText(QPointF(-70.5, -33.4)), QString("19H 360506 E  6303362 N"));
    QCOMPARE(utmText(QPointF(0.0, 84.0)).left(3), QString("31X"));
    QCOMPARE(utmText(QPointF(0.0, 89.0)), QString());
    QPointF degrees;
    QVERIFY(utmToDegrees(19, false, QPointF(360505.62, 6303362.29), &degrees));
    QVERIFY2(isNear(degrees, QPointF(-70.5, -33.4), 1e-6), text(degrees));
    QVERIFY(!utmToDegrees(61, true, QPointF(500000.0, 0.0), &degrees));
    QVERIFY(!utmToDegrees(0, true, QPointF(500000.0, 0.0), &degrees));
}

int main(int argc, char** argv)
{
    Application application(argc, argv, "Corvane Viewer Test");
    MapReferenceTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "MapReferenceTest.moc"
