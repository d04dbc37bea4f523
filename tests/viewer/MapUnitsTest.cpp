#include <viewer/MapUnits.h>

#include <corvane/core/Application.h>
#include <corvane/map/MapView.h>

#include <tests/map/TestLayers.h>

#include <QLocale>
#include <QtTest>

using namespace Corvane;
using namespace Corvane::Viewer;

namespace {

const char* const utm =
    "PROJCS[\"UTM 33N\",GEOGCS[\"WGS 84\",DATUM[\"d\",SPHEROID[\"s\",6378137,298.25]],"
    "PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]],"
    "PROJECTION[\"Transverse_Mercator\"],PARAMETER[\"scale_factor\",0.9996],"
    "UNIT[\"metre\",1,AUTHORITY[\"EPSG\",\"9001\"]]]";
const char* const feet =
    "PROJCS[\"State plane\",GEOGCS[\"NAD83\",UNIT[\"degree\",0.0174532925199433]],"
    "PROJECTION[\"Lambert\"],UNIT[\"US survey foot\",0.304800609601219]]";
const char* const feet2019 =
    "PROJCRS[\"State plane\",BASEGEOGCRS[\"NAD83\",ELLIPSOID[\"e\",6378137,298,"
    "LENGTHUNIT[\"metre\",1]]],CONVERSION[\"c\",METHOD[\"m\"],PARAMETER[\"easting\",1,"
    "LENGTHUNIT[\"metre\",1]]],CS[Cartesian,2],AXIS[\"x\",east],"
    "LENGTHUNIT[\"US survey foot\", 0.304800609601219]]";

} // namespace

/// A raster layer with a spatial reference in well-known text, as the plugins' have one.
class ReferencedLayer : public TestRasterLayer
{
    Q_OBJECT
    Q_PROPERTY(QString Wkt READ getWkt)
public:
    QString getWkt() { return wkt; }

    QString wkt;
};

class MapUnitsTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { QLocale::setDefault(QLocale("en_US")); }
    void unitsComeFromTheWellKnownText_data();
    void unitsComeFromTheWellKnownText();
    void unitsFallBackOnTheCode();
    void coordinatesHaveTheDigitsOfAPixel_data();
    void coordinatesHaveTheDigitsOfAPixel();
    void scaleSaysWhatIsHonest_data();
    void scaleSaysWhatIsHonest();
    void anEmptyMapHasNoScale();
};

void MapUnitsTest::unitsComeFromTheWellKnownText_data()
{
    QTest::addColumn<QString>("wkt");
    QTest::addColumn<int>("kind");
    QTest::addColumn<double>("metres");

    QTest::newRow("no text") << "" << int(MapUnits::Unknown) << 1.0;
    QTest::newRow("degrees of the older generation")
        << "GEOGCS[\"WGS 84\",UNIT[\"degree\",0.0174532925199433]]" << int(MapUnits::Degrees)
        << 1.0;
    QTest::newRow("degrees of the newer generation")
        << "GEOGCRS[\"WGS 84\",CS[ellipsoidal,2]]" << int(MapUnits::Degrees) << 1.0;
    QTest::newRow("metres") << utm << int(MapUnits::Length) << 1.0;
    QTest::newRow("feet of the older generation")
        << feet << int(MapUnits::Length) << 0.304800609601219;
    QTest::newRow("feet of the newer generation")
        << feet2019 << int(MapUnits::Length) << 0.304800609601219;
    QTest::newRow("feet below a height reference")
        << QString("COMPD_CS[\"both\",%1,VERT_CS[\"h\",UNIT[\"metre\",1]]]").arg(feet)
        << int(MapUnits::Length) << 0.304800609601219;
    QTest::newRow("a local reference")
        << "LOCAL_CS[\"grid\",UNIT[\"metre\",1]]" << int(MapUnits::Unknown) << 1.0;
}

void MapUnitsTest::unitsComeFromTheWellKnownText()
{
    QFETCH(QString, wkt);
    const MapUnits units = MapUnits::ofWkt(wkt);
    QTEST(int(units.kind), "kind");
    QTEST(units.metresPerUnit, "metres");
}

void MapUnitsTest::unitsFallBackOnTheCode()
{
    TestRasterLayer layer;
    QCOMPARE(MapUnits::ofLayer(layer).kind, MapUnits::Unknown);
    Map::SpatialReference reference;
    reference.setEpsg(4326);
    layer.setSpatialRef(reference);
    QCOMPARE(MapUnits::ofLayer(layer).kind, MapUnits::Degrees);
    reference.setEpsg(32633);
    layer.setSpatialRef(reference);
    QCOMPARE(MapUnits::ofLayer(layer).kind, MapUnits::Length);
}

void MapUnitsTest::coordinatesHaveTheDigitsOfAPixel_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<double>("unitsPerPixel");
    QTest::addColumn<QString>("text");

    const int length = MapUnits::Length;
    QTest::newRow("ten metres a pixel need none") << length << 10.0 << "X: 1235  Y: -987654";
    QTest::newRow("a metre a pixel needs none") << length << 1.0 << "X: 1235  Y: -987654";
    QTest::newRow("nearly a metre a pixel needs none") << length << 0.99 << "X: 1235  Y: -987654";
    QTest::newRow("a decimetre a pixel needs one") << length << 0.1 << "X: 1234.6  Y: -987654.3";
    QTest::newRow("a quarter of a metre needs one") << length << 0.25 << "X: 1234.6  Y: -987654.3";
    QTest::newRow("degrees say so")
        << int(MapUnits::Degrees) << 0.001 << QString::fromUtf8("X: 1234.568°  Y: -987654.321°");
    QTest::newRow("there is an end to digits")
        << length << 1e-30 << "X: 1234.5678000000  Y: -987654.3210000000";
    QTest::newRow("a collapsed view asks for none") << length << 0.0 << "X: 1235  Y: -987654";
}

void MapUnitsTest::coordinatesHaveTheDigitsOfAPixel()
{
    QFETCH(int, kind);
    QFETCH(double, unitsPerPixel);
    MapUnits units;
    units.kind = MapUnits::Kind(kind);
    QTEST(coordinateText(units, 1234.5678, -987654.321, unitsPerPixel), "text");
}

void MapUnitsTest::scaleSaysWhatIsHonest_data()
{
    QTest::addColumn<QString>("wkt");
    QTest::addColumn<double>("cell");
    QTest::addColumn<double>("worldWidth"); // of 400 pixels
    QTest::addColumn<QString>("text");

    // 1 m a pixel at 96 dots per inch: 96 / 0.0254
    QTest::newRow("metres give a scale") << utm << 1.0 << 400.0 << "1 : 3,780   zoom 100 %";
    QTest::newRow("feet are turned to metres") << feet << 0.5 << 400.0 << "1 : 1,152   zoom 50 %";
    QTest::newRow("degrees give the size of a pixel")
        << "GEOGCS[\"WGS 84\"]" << 0.0125 << 4.0 << QString::fromUtf8("1 px = 0.01°   zoom 125 %");
    QTest::newRow("no reference leaves the size of a cell") << "" << 1.0 << 32000.0 << "zoom 1.3 %";
    QTest::newRow("a layer without cells leaves nothing") << "" << 0.0 << 400.0 << "";
}

void MapUnitsTest::scaleSaysWhatIsHonest()
{
    QFETCH(QString, wkt);
    QFETCH(double, cell);
    QFETCH(double, worldWidth);

    Map::MapView view;
    view.resize(400, 400);
    view.setAttribute(Qt::WA_DontShowOnScreen);
    view.show();
    const auto layer = new ReferencedLayer;
    layer->wkt = wkt;
    layer->cellSizeX = cell;
    view.addLayer(layer);
    view.setBounds(0.0, worldWidth, worldWidth, 0.0);
    QTEST(scaleText(view), "text");
}

void MapUnitsTest::anEmptyMapHasNoScale()
{
    Map::MapView view;
    view.resize(400, 400);
    QCOMPARE(scaleText(view), QString());

    const auto layer = new TestRasterLayer;
    layer->valid = false;
    view.addLayer(layer);
    QCOMPARE(scaleText(view), QString());
    QCOMPARE(unitsOf(view).kind, MapUnits::Unknown);
}

int main(int argc, char** argv)
{
    Application application(argc, argv, "Corvane Viewer Test");
    MapUnitsTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "MapUnitsTest.moc"
