#include <plugins/vector/OgrVectorLayer.h>
#include <plugins/vector/VectorFacts.h>

#include <tests/plugins/LayerProbe.h>
#include <tests/plugins/TestVectors.h>
#include <tests/plugins/VectorProbe.h>

#include <corvane/map/MapCanvas.h>
#include <corvane/map/MapView.h>

#include <QDomDocument>
#include <QFile>
#include <QLoggingCategory>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <limits>
#include <memory>

using namespace Corvane;
using namespace Corvane::Map;
using namespace Corvane::Tests;

Q_DECLARE_METATYPE(OGRwkbGeometryType)

namespace {

constexpr int roundings = 3; // of 255, between two ways to the same pixel

} // namespace

/// The layer as the canvas sees it: which files it opens, what it says of them, what it refuses.
class VectorLayerTest : public QObject
{
    Q_OBJECT
private slots:
    void opensWhatOgrOpens_data();
    void opensWhatOgrOpens();
    void opensTablesOfCoordinates_data();
    void opensTablesOfCoordinates();
    void tellsWhatItKnowsOfASource();
    void takesTheFirstLayerWithGeometry();
    void showsTheLayerThatIsChosen();
    void choosingAnotherLayerOpensItAtOnce();
    void takesTheOnlyLayerUnderAnyName();
    void opensAFileWithinAnArchive();
    void refusesWhatIsNoVectorSource_data();
    void refusesWhatIsNoVectorSource();
    void leavesSourcesOfOtherPluginsAloneWithoutAWord();
    void refusesALayerThatIsNotThere();
    void anEmptyLayerIsValidAndShowsNothing();
    void aLonePointHasSpaceAround_data();
    void aLonePointHasSpaceAround();
    void leavesOutWhatCannotBeDrawn_data();
    void leavesOutWhatCannotBeDrawn();
    void leavesNumbersThatAreNoneOut();
    void emptyMembersOfACollectionAreNowhere_data();
    void emptyMembersOfACollectionAreNowhere();
    void countsWhatIsLeftOutInOneLine();
    void readsOnlyWhenItIsLookedAt();
    void readsNoMoreThanItsMemoryHolds();
    void keepsWhatItShowsWhereItCannotBeReadAgain();
    void asksForARepaintUntilAllIsDrawn();
    void aHiddenLayerTakesTheViewWhenItIsShown();
    void changesOfStyleAskForARepaint();
    void settingsStayWithinTheirRanges();

    void bringsShapesToTheMapsReference();
    void followsTheMapWhenItsReferenceChanges();
    void staysWhereItIsWithoutAReference();
    void leavesOutWhatHasNoPlaceInTheMap();
    void endsWhereTheMapsReferenceEnds();
    void spansTheWorldInDegreesWhereItCrossesTheDateLine();
    void goesOnBeyondTheDateLine_data();
    void goesOnBeyondTheDateLine();
    void saysWhyAReferenceCannotBeReached();

    void aLayerElementHoldsPenAndBrush();
    void aDocumentGivesTheLayerBackAsItWas();
    void aDocumentKeepsTheNameOfWhatDoesNotOpen_data();
    void aDocumentKeepsTheNameOfWhatDoesNotOpen();

private:
    QString file(const QString& name) const { return folder.filePath(name); }
    QString made(const QString& name, const VectorRecipe& recipe) const;
    static bool open(OgrVectorLayer& layer, const QString& path);

    QTemporaryDir folder;
};

QString VectorLayerTest::made(const QString& name, const VectorRecipe& recipe) const
{
    const QString path = file(name);
    return makeVectors(path, recipe) ? path : QString();
}

bool VectorLayerTest::open(OgrVectorLayer& layer, const QString& path)
{
    return layer.setDataSource(path) && QTest::qWaitFor([&layer] { return layer.isValid(); });
}

void VectorLayerTest::opensWhatOgrOpens_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("driver");
    QTest::addColumn<OGRwkbGeometryType>("type");
    QTest::addColumn<int>("epsg");
    QTest::addColumn<QString>("geometryType");
    QTest::newRow("a GeoPackage") << "a.gpkg"
                                  << "GPKG" << wkbPolygon << 32633 << "Polygon";
    QTest::newRow("a shapefile") << "a.shp"
                                 << "ESRI Shapefile" << wkbPolygon << 32633 << "Polygon";
    QTest::newRow("GeoJSON") << "a.geojson"
                             << "GeoJSON" << wkbUnknown << 4326 << "Polygon";
    QTest::newRow("FlatGeobuf") << "a.fgb"
                                << "FlatGeobuf" << wkbPolygon << 32633 << "Polygon";
    QTest::newRow("GML") << "a.gml"
                         << "GML" << wkbPolygon << 32633 << "Polygon";
    QTest::newRow("a name beyond ASCII")
        << QString::fromUtf8("Fl\303\274sse.gpkg") << "GPKG" << wkbPolygon << 32633 << "Polygon";
}

void VectorLayerTest::opensWhatOgrOpens()
{
    QFETCH(QString, name);
    QFETCH(QString, driver);
    QFETCH(OGRwkbGeometryType, type);
    QFETCH(int, epsg);
    VectorRecipe recipe = shapes({"POLYGON((10 20,30 20,30 60,10 60,10 20))"});
    const QByteArray driverName = driver.toLatin1();
    recipe.driver = driverName.constData();
    recipe.type = type;
    recipe.epsg = epsg;
    recipe.layer = "a";
    const QString path = made(name, recipe);
    QVERIFY(!path.isEmpty());

    OgrVectorLayer layer;
    QVERIFY(open(layer, path));
    QCOMPARE(layer.getDriver(), driver);
    QCOMPARE(layer.getBounds(), QRectF(10.0, 60.0, 20.0, -40.0));
    QCOMPARE(layer.getFeatureCount(), 1);
    QTEST(layer.getGeometryType(), "geometryType");
    QCOMPARE(layer.getEpsg(), epsg);
    QCOMPARE(layer.getSpatialRef().epsg, epsg);
    QCOMPARE(layer.getLastError(), QString());
    QVERIFY(inked(complete(layer, WorldView())) > 100);
    QCOMPARE(int(layer.getPercentComplete()), 100);
}

void VectorLayerTest::opensTablesOfCoordinates_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("lon and lat") << QByteArray("lon,lat,name\n10,20,a\n30,60,b\n");
    QTest::newRow("X and Y") << QByteArray("name,X,Y\na,10,20\nb,30,60\n");
    QTest::newRow("easting and northing")
        << QByteArray("name,Easting,Northing\na,10,20\nb,30,60\n");
    QTest::newRow("a column of well-known text")
        << QByteArray("WKT,name\nPOINT(10 20),a\nPOINT(30 60),b\n");
    QTest::newRow("rows without a place") << QByteArray("lon,lat,name\n10,20,a\n,,c\n30,60,b\n");
}

void VectorLayerTest::opensTablesOfCoordinates()
{
    QFETCH(QByteArray, text);
    QFile table(file("table.csv"));
    QVERIFY(table.open(QIODevice::WriteOnly | QIODevice::Truncate));
    table.write(text);
    table.close();
    OgrVectorLayer layer;
    QVERIFY(open(layer, table.fileName()));
    QCOMPARE(layer.getBounds(), QRectF(10.0, 60.0, 20.0, -40.0));
    QVERIFY(inked(complete(layer, WorldView())) > 10);
    QCOMPARE(layer.getLeftOut(), 0);
}

void VectorLayerTest::tellsWhatItKnowsOfASource()
{
    VectorRecipe recipe = shapes({"LINESTRING(0 0,10 10)", "LINESTRING(5 0,10 50)"});
    recipe.fields = QStringList({"name", "kind", "class"});
    recipe.type = wkbLineString25D;
    const QString path = made("facts.gpkg", recipe);
    OgrVectorLayer layer;
    QVERIFY(open(layer, path));
    QCOMPARE(layer.getDataSource(), path);
    QCOMPARE(layer.getDescription(), QString("facts.gpkg"));
    QCOMPARE(layer.getFormat(), QString("GeoPackage"));
    QCOMPARE(layer.getProtocol(), QString("file"));
    QCOMPARE(layer.getFields(), QStringList({"name", "kind", "class"}));
    QCOMPARE(layer.getFeatureCount(), 2);
    QCOMPARE(layer.getGeometryType(), QString("3D Line String"));
    QCOMPARE(layer.getLayerNames(), QStringList({"shapes"}));
    QCOMPARE(layer.getCoordSysName(), QString("WGS 84 / UTM zone 33N"));
    QVERIFY(layer.getWkt().startsWith("PROJCS"));
    QVERIFY(!layer.getIcon().isNull());
}

void VectorLayerTest::takesTheFirstLayerWithGeometry()
{
    VectorRecipe table;
    table.layer = "table";
    table.type = wkbNone;
    table.features = {{QString(), {"x"}, {}}};
    const QString path = made("mixed.gpkg", table);
    VectorRecipe recipe = shapes({"POINT(10 20)", "POINT(30 60)"});
    recipe.append = true;
    QVERIFY(makeVectors(path, recipe));
    OgrVectorLayer layer;
    QVERIFY(open(layer, path));
    QCOMPARE(layer.getLayerNames(), QStringList({"shapes"}));
    QCOMPARE(layer.getLayerName(), QString("shapes"));
}

void VectorLayerTest::showsTheLayerThatIsChosen()
{
    VectorRecipe first = shapes({"POINT(10 20)", "POINT(30 60)"});
    first.layer = "first";
    const QString path = made("two.gpkg", first);
    VectorRecipe second = shapes({"POINT(110 120)", "POINT(130 160)"});
    second.layer = QString::fromUtf8("zweite \303\234bersicht");
    second.append = true;
    QVERIFY(makeVectors(path, second));

    OgrVectorLayer layer;
    layer.setLayerName(second.layer);
    QVERIFY(open(layer, path));
    QCOMPARE(layer.getLayerNames(), QStringList({"first", second.layer}));
    QCOMPARE(layer.getLayerName(), second.layer);
    QCOMPARE(layer.getBounds(), QRectF(110.0, 160.0, 20.0, -40.0));
}

void VectorLayerTest::choosingAnotherLayerOpensItAtOnce()
{
    const QString path = file("two.gpkg");
    OgrVectorLayer layer;
    QVERIFY(open(layer, path));
    QCOMPARE(layer.getLayerName(), QString("first"));
    complete(layer, WorldView());
    layer.setLayerName(layer.getLayerNames().last());
    QTRY_VERIFY(layer.isValid());
    QCOMPARE(layer.getBounds(), QRectF(110.0, 160.0, 20.0, -40.0));
    QCOMPARE(inked(complete(layer, WorldView())), 0); // nothing is left of the other
}

void VectorLayerTest::takesTheOnlyLayerUnderAnyName()
{
    const QString path = made("renamed.gpkg", shapes({"POINT(10 20)", "POINT(30 60)"}));
    OgrVectorLayer layer;
    layer.setLayerName("as it was called before");
    QVERIFY(open(layer, path));
    QCOMPARE(layer.getLayerName(), QString("shapes"));
}

void VectorLayerTest::opensAFileWithinAnArchive()
{
    VectorRecipe recipe = shapes({"POLYGON((10 20,30 20,30 60,10 60,10 20))"});
    recipe.driver = "GeoJSON";
    recipe.epsg = 4326;
    const QString path = "/vsizip/" + file("packed.zip") + "/inner/a.geojson";
    QVERIFY(makeVectors(path, recipe));
    OgrVectorLayer layer;
    QVERIFY(open(layer, path));
    QCOMPARE(layer.getDataSource(), path);
    QCOMPARE(layer.getBounds(), QRectF(10.0, 60.0, 20.0, -40.0));
    QVERIFY(inked(complete(layer, WorldView())) > 0);
    OgrVectorLayer missing;
    QVERIFY(!open(missing, "/vsizip/" + file("packed.zip") + "/inner/b.geojson"));
    QVERIFY(!missing.getLastError().isEmpty());
}

void VectorLayerTest::refusesWhatIsNoVectorSource_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("reason");
    const auto write = [this](const char* name, const QByteArray& bytes) {
        QFile target(file(name));
        target.open(QIODevice::WriteOnly);
        target.write(bytes);
        return target.fileName();
    };
    QTest::newRow("nothing") << ""
                             << "no data source";
    QTest::newRow("a file that is not there") << file("none.gpkg") << "the file does not exist";
    QTest::newRow("a text") << write("text.gpkg", "no GeoPackage at all")
                            << "not recognized as a supported file format";
    QTest::newRow("an empty file") << write("empty.shp", QByteArray()) << "empty.shp";
    QTest::newRow("half of a GeoJSON")
        << write("half.geojson", "{\"type\":\"FeatureCollection\",\"features\":[{\"ty")
        << "Unterminated string";
    VectorRecipe table;
    table.type = wkbNone;
    table.features = {{QString(), {"x"}, {}}};
    QTest::newRow("a table without places")
        << made("table.gpkg", table) << "it has no layer with geometry";
}

void VectorLayerTest::refusesWhatIsNoVectorSource()
{
    QFETCH(QString, source);
    QFETCH(QString, reason);
    const LogLines log;
    OgrVectorLayer layer;
    layer.setProgressive(false); // in this call
    QVERIFY(!layer.setDataSource(source));
    QVERIFY(!layer.isValid());
    QVERIFY2(layer.getLastError().contains(reason), qPrintable(layer.getLastError()));
    QCOMPARE(log.holding("cannot open " + source + ": " + layer.getLastError()).size(), 1);
    QCOMPARE(layer.getBounds(), QRectF());
    QCOMPARE(inked(complete(layer, WorldView())), 0);
    QCOMPARE(int(layer.getPercentComplete()), 100);
}

void VectorLayerTest::leavesSourcesOfOtherPluginsAloneWithoutAWord()
{
    const LogLines log;
    OgrVectorLayer layer;
    layer.setProgressive(false); // in this call
    QVERIFY(!layer.setDataSource("http://127.0.0.1:1/{z}/{x}/{y}.pbf"));
    QCOMPARE(layer.getLastError(), QString("this is the address of tiles"));
    QVERIFY(!layer.setDataSource("http://127.0.0.1:1/a.tif|ann|secret"));
    QCOMPARE(layer.getDataSource(), QString());
    QCOMPARE(log.holding("127.0.0.1").size(), 0);
}

void VectorLayerTest::refusesALayerThatIsNotThere()
{
    OgrVectorLayer layer;
    layer.setProgressive(false);
    layer.setLayerName("third");
    QVERIFY(!layer.setDataSource(file("two.gpkg")));
    QCOMPARE(layer.getLastError(), QString("it has no layer \"third\""));
    layer.setLayerName("first"); // and another may be
    QVERIFY(layer.isValid());
}

void VectorLayerTest::anEmptyLayerIsValidAndShowsNothing()
{
    OgrVectorLayer layer;
    QVERIFY(open(layer, made("none.gpkg", VectorRecipe())));
    QCOMPARE(layer.getBounds(), QRectF());
    QCOMPARE(layer.getFeatureCount(), 0);
    QCOMPARE(inked(complete(layer, WorldView())), 0);
    QCOMPARE(int(layer.getPercentComplete()), 100);
}

void VectorLayerTest::aLonePointHasSpaceAround_data()
{
    QTest::addColumn<QString>("wkt");
    QTest::addColumn<QRectF>("bounds");
    QTest::newRow("in degrees") << "POINT(10 20)" << QRectF(9.995, 20.005, 0.01, -0.01);
    QTest::newRow("in metres") << "POINT(500000 4000000)"
                               << QRectF(499500.0, 4000500.0, 1000.0, -1000.0);
    QTest::newRow("a level line needs none")
        << "LINESTRING(10 20,30 20)" << QRectF(10.0, 20.0, 20.0, 0.0);
}

void VectorLayerTest::aLonePointHasSpaceAround()
{
    QFETCH(QString, wkt);
    QFETCH(QRectF, bounds);
    OgrVectorLayer layer;
    QVERIFY(open(layer, made(QString("lone%1.gpkg").arg(wkt.size()), shapes({wkt}))));
    const QRectF own = layer.getBounds();
    QVERIFY(std::abs(own.left() - bounds.left()) < 1e-9);
    QVERIFY(std::abs(own.top() - bounds.top()) < 1e-9);
    QVERIFY(std::abs(own.width() - bounds.width()) < 1e-9);
    QVERIFY(std::abs(own.height() - bounds.height()) < 1e-9);
}

void VectorLayerTest::leavesOutWhatCannotBeDrawn_data()
{
    QTest::addColumn<QString>("wkt");
    QTest::addColumn<int>("leftOut");
    QTest::newRow("no geometry") << "" << 0;
    QTest::newRow("an empty polygon") << "POLYGON EMPTY" << 0;
    QTest::newRow("an empty collection") << "GEOMETRYCOLLECTION EMPTY" << 0;
    QTest::newRow("beyond what any reference reaches") << "POINT(1e300 -1e300)" << 1;
    QTest::newRow("a line of one usable vertex") << "LINESTRING(10 10,1e300 20)" << 1;
    QTest::newRow("a ring of two usable vertices")
        << "POLYGON((10 10,20 10,1e299 1e299,10 10))" << 1;
}

void VectorLayerTest::leavesOutWhatCannotBeDrawn()
{
    QFETCH(QString, wkt);
    OgrVectorLayer layer;
    const QString path = made(QString("out%1.gpkg").arg(qHash(wkt)), shapes({wkt, "POINT(50 50)"}));
    QVERIFY(!path.isEmpty());
    QVERIFY(open(layer, path));
    const QImage picture = complete(layer, WorldView());
    QVERIFY(inked(picture) > 0);
    QVERIFY(inked(picture) < 100); // the other feature only
    QTEST(int(layer.getLeftOut()), "leftOut");
    QCOMPARE(layer.getBounds().center(), QPointF(50.0, 50.0));
}

void VectorLayerTest::leavesNumbersThatAreNoneOut()
{
    const double none = std::nan("");
    const double endless = std::numeric_limits<double>::infinity();
    VectorRecipe recipe = shapes({"", "", ""});
    recipe.features[0].line = {{none, none}, {endless, 5.0}};
    recipe.features[1].line = {
        {10.0, 10.0}, {none, 10.0}, {20.0, 10.0}, {-endless, 0.0}, {20.0, 20.0}};
    recipe.features[2].line = {{none, 1.0}, {2.0, none}, {3.0, 3.0}};
    OgrVectorLayer layer;
    QVERIFY(open(layer, made("nan.gpkg", recipe)));
    const QImage picture = complete(layer, WorldView());
    QVERIFY(difference(picture, drawn(layer, WorldView(), [](QPainter& painter) {
                           const QPointF corners[] = {WorldView().toPixel(10.0, 10.0),
                                                      WorldView().toPixel(20.0, 10.0),
                                                      WorldView().toPixel(20.0, 20.0)};
                           painter.drawPolyline(corners, 3);
                       })) <= roundings);
    QCOMPARE(layer.getBounds(), QRectF(10.0, 20.0, 10.0, -10.0));
    QCOMPARE(layer.getLeftOut(), 2);
}

void VectorLayerTest::emptyMembersOfACollectionAreNowhere_data()
{
    QTest::addColumn<QString>("wkt");
    QTest::newRow("a point among points") << "MULTIPOINT(EMPTY,(50 60))";
    QTest::newRow("a point beside a line")
        << "GEOMETRYCOLLECTION(POINT EMPTY,LINESTRING(50 60,50 60))";
    QTest::newRow("a line among lines") << "MULTILINESTRING(EMPTY,(50 60,50 60))";
    QTest::newRow("a polygon among polygons")
        << "MULTIPOLYGON(EMPTY,((50 60,50 60,50 60,50 60)),((50 60,51 60,50 61,50 60)))";
    QTest::newRow("a point with heights and measures") << "MULTIPOINT ZM(EMPTY,(50 60 7 8))";
}

// From text: binary formats have other numbers there.
void VectorLayerTest::emptyMembersOfACollectionAreNowhere()
{
    QFETCH(QString, wkt);
    QFile table(file(QString("members%1.csv").arg(qHash(wkt))));
    QVERIFY(table.open(QIODevice::WriteOnly));
    table.write("id,wkt\n1,\"" + wkt.toUtf8() + "\"\n");
    table.close();
    OgrVectorLayer layer;
    QVERIFY(open(layer, table.fileName()));
    complete(layer, WorldView());
    QCOMPARE(int(layer.getLeftOut()), 0);
    const QRectF bounds = layer.getBounds();
    QVERIFY2(bounds.left() > 49.9 && bounds.bottom() > 59.9, // a lone point has space around
             qPrintable(QString("%1 %2").arg(bounds.left()).arg(bounds.bottom())));
}

void VectorLayerTest::countsWhatIsLeftOutInOneLine()
{
    const QString path =
        made("counted.gpkg", shapes({"POINT(1e300 0)", "POINT(0 1e300)", "POINT(50 50)"}));
    const LogLines log;
    OgrVectorLayer layer;
    QVERIFY(open(layer, path));
    complete(layer, WorldView());
    QCOMPARE(layer.getLeftOut(), 2);
    QCOMPARE(log.holding("geometry"),
             QStringList({"2 features of " + path + " have no usable geometry"}));
}

void VectorLayerTest::readsOnlyWhenItIsLookedAt()
{
    OgrVectorLayer layer;
    QVERIFY(open(layer, made("unread.gpkg", shapes({"LINESTRING(0 0,90 90)"}))));
    QCOMPARE(layer.getBytes(), 0);
    QCOMPARE(int(layer.getPercentComplete()), 100);
    complete(layer, WorldView());
    QVERIFY(layer.getBytes() > 0);
}

void VectorLayerTest::readsNoMoreThanItsMemoryHolds()
{
    VectorRecipe recipe = shapes({"", "", "", "", ""});
    for (std::size_t i = 0; i < recipe.features.size(); ++i) {
        for (int v = 0; v < 30000; ++v) { // half a megabyte
            recipe.features[i].line.emplace_back(v / 300.0, 10.0 + 20.0 * static_cast<double>(i));
        }
    }
    const QString path = made("large.gpkg", recipe);
    QSettings* const settings = Application::instance()->getSettings();
    settings->setValue("Plugins/Vector/MemoryBudgetMB", 1);
    const LogLines log;
    OgrVectorLayer layer;
    QVERIFY(open(layer, path));
    const WorldView view;
    const QImage picture = complete(layer, view);
    settings->remove("Plugins/Vector/MemoryBudgetMB");
    QCOMPARE(layer.getLastError(), QString("only its first 3 features fit into 1 MB of memory"));
    QCOMPARE(log.holding("cannot read " + path + ": " + layer.getLastError()).size(), 1);
    QCOMPARE(int(layer.getPercentComplete()), 100);
    for (int i = 0; i < 5; ++i) {
        const int row = 180 - 40 * i;
        QCOMPARE(inked(picture.copy(100, row - 2, 1, 4)) > 0, i < 3);
    }
}

void VectorLayerTest::keepsWhatItShowsWhereItCannotBeReadAgain()
{
    const QString path =
        made("vanishes.gpkg", shapes({"POLYGON((10 10,90 10,90 90,10 90,10 10))"}));
    OgrVectorLayer layer;
    QVERIFY(open(layer, path));
    const QImage before = complete(layer, WorldView());
    const QRectF bounds = layer.getBounds();
    QVERIFY(inked(before) > 0);
    QVERIFY(QFile::remove(path));
    layer.setLabelField("name"); // which nobody has read
    QCOMPARE(complete(layer, WorldView()), before);
    QCOMPARE(layer.getBounds(), bounds);
    QVERIFY(!layer.getLastError().isEmpty());
    QVERIFY(layer.getBytes() > 0);
}

void VectorLayerTest::asksForARepaintUntilAllIsDrawn()
{
    OgrVectorLayer* const layer = new OgrVectorLayer;
    QVERIFY(open(*layer, made("asks.gpkg", shapes({"POLYGON((10 10,90 10,90 90,10 90,10 10))"}))));
    MapView view;
    view.setAttribute(Qt::WA_DeleteOnClose, false);
    view.resize(200, 200);
    view.show();
    view.addLayer(layer, -1);
    QTRY_COMPARE(int(layer->getPercentComplete()), 100);
    QTRY_VERIFY(inked(view.grab().toImage()) > 200);
}

void VectorLayerTest::aHiddenLayerTakesTheViewWhenItIsShown()
{
    OgrVectorLayer layer;
    QVERIFY(open(layer, made("hidden.gpkg", shapes({"POLYGON((10 10,90 10,90 90,10 90,10 10))"}))));
    complete(layer, WorldView());
    layer.setVisible(false);
    QVERIFY(!layer.isVisible());
    WorldView moved;
    moved.left = 50.0;
    layer.setVisible(true);
    const QImage shown = painted(layer, moved); // the canvas told it of no view
    QCOMPARE(shown, complete(layer, moved));
}

void VectorLayerTest::changesOfStyleAskForARepaint()
{
    OgrVectorLayer layer;
    QVERIFY(open(layer, made("style.gpkg", shapes({"POLYGON((10 10,90 10,90 90,10 90,10 10))"}))));
    const WorldView view;
    complete(layer, view);
    layer.setProgressive(true);
    QBrush brush(Qt::blue);
    layer.setBrush(brush); // without a word to the layer
    painted(layer, view);  // notices
    QTRY_COMPARE(int(layer.getPercentComplete()), 100);
    QCOMPARE(painted(layer, view).pixelColor(100, 100), QColor(Qt::blue));
    layer.setTransparency(0.5);
    const QColor half = painted(layer, view).pixelColor(100, 100);
    QVERIFY(half.red() > 120 && half.red() < 135 && half.blue() == 255);
}

void VectorLayerTest::settingsStayWithinTheirRanges()
{
    OgrVectorLayer layer;
    layer.setTransparency(7.0);
    QCOMPARE(layer.getTransparency(), 1.0);
    layer.setTransparency(std::nan(""));
    QCOMPARE(layer.getTransparency(), 0.0);
    layer.setPointSize(0.0);
    QCOMPARE(layer.getPointSize(), 1.0);
    layer.setPointSize(1e9);
    QCOMPARE(layer.getPointSize(), 100.0);
    layer.setLabelSize(0.0);
    QCOMPARE(layer.getLabelSize(), 4.0);
    layer.setPointSymbol("Square");
    layer.setPointSymbol("square");
    QCOMPARE(layer.getPointSymbol(), QString("Square"));
    layer.setLabelColor(QColor());
    QCOMPARE(layer.getLabelColor(), QColor(Qt::black));
    QCOMPARE(layer.getWaitLimit(), 60.0);
    layer.setWaitLimit(0.25);
    QCOMPARE(layer.getWaitLimit(), 0.25);
    layer.setWaitLimit(std::nan(""));
    QCOMPARE(layer.getWaitLimit(), 60.0);
    QVERIFY(!layer.setProperty("FeatureCount", 3));
}

namespace {

/// A map whose first layer is the layer of that file.
std::unique_ptr<MapView> mapWith(OgrVectorLayer* first)
{
    auto view = std::make_unique<MapView>();
    view->setAttribute(Qt::WA_DeleteOnClose, false);
    view->resize(200, 200);
    view->show();
    view->addLayer(first, -1);
    return view;
}

bool isNear(const QPointF& a, const QPointF& b, double distance)
{
    return std::hypot(a.x() - b.x(), a.y() - b.y()) <= distance;
}

} // namespace

void VectorLayerTest::bringsShapesToTheMapsReference()
{
    auto* const base = new OgrVectorLayer;
    QVERIFY(open(*base, made("utm.gpkg", shapes({"POLYGON((400000 5000000,600000 5000000,600000 "
                                                 "5200000,400000 5200000,400000 5000000))"}))));
    VectorRecipe recipe = shapes({"POINT(15 46)", "POINT(15 46.5)"});
    recipe.epsg = 4326;
    auto* const layer = new OgrVectorLayer;
    QVERIFY(open(*layer, made("lonlat.gpkg", recipe)));
    QCOMPARE(layer->getBounds(), QRectF(15.0, 46.5, 0.0, -0.5));

    const std::unique_ptr<MapView> view = mapWith(base);
    view->addLayer(layer, -1);
    // 15 degrees east is the middle of the zone; the northing from the equator is 4999.. km times 0.9996
    QVERIFY(isNear(layer->getBounds().bottomLeft(), QPointF(500000.0, 5093904.0), 2000.0));
    QCOMPARE(layer->getSpatialRef().epsg, 32633);
    QCOMPARE(layer->getEpsg(), 4326); // of the source
    layer->setProgressive(false);
    view->zoomToLayer(layer);
    QTRY_COMPARE(int(layer->getPercentComplete()), 100);
    QCOMPARE(layer->getLeftOut(), 0);
    QVERIFY(std::abs(layer->getBounds().left() - 500000.0) < 1e-3);
    QVERIFY(std::abs(layer->getBounds().width()) < 1e-3);
    QVERIFY(layer->getBounds().height() < -55000.0 && layer->getBounds().height() > -56000.0);
}

void VectorLayerTest::followsTheMapWhenItsReferenceChanges()
{
    VectorRecipe recipe = shapes({"POINT(15 46)", "POINT(16 47)"});
    recipe.epsg = 4326;
    auto* const layer = new OgrVectorLayer;
    QVERIFY(open(*layer, made("follows.gpkg", recipe)));
    const std::unique_ptr<MapView> view = mapWith(layer);
    layer->setProgressive(false);
    QTRY_COMPARE(int(layer->getPercentComplete()), 100);
    QCOMPARE(layer->getBounds(), QRectF(15.0, 47.0, 1.0, -1.0));

    auto* const base = new OgrVectorLayer;
    QVERIFY(open(*base, file("utm.gpkg")));
    view->addLayer(base, 0); // beneath
    QVERIFY(std::abs(layer->getBounds().left() - 500000.0) < 1000.0);
    view->moveLayer(1, 0); // and what leads now keeps the map where it is
    QVERIFY(std::abs(layer->getBounds().left() - 500000.0) < 1000.0);
    QCOMPARE(view->getMapCanvas()->getSrs().epsg, 32633);

    SpatialReference degrees;
    degrees.setEpsg(4326);
    view->getMapCanvas()->setSrs(degrees);
    QCOMPARE(layer->getBounds(), QRectF(15.0, 47.0, 1.0, -1.0));
    // the other one is followed too
    QVERIFY(base->getBounds().left() > 13.0 && base->getBounds().left() < 14.0);
}

void VectorLayerTest::staysWhereItIsWithoutAReference()
{
    VectorRecipe recipe = shapes({"POINT(15 46)", "POINT(16 47)"});
    recipe.epsg = 0;
    recipe.driver = "ESRI Shapefile";
    recipe.type = wkbPoint;
    auto* const layer = new OgrVectorLayer;
    QVERIFY(open(*layer, made("nowhere.shp", recipe)));
    QCOMPARE(layer->getSpatialRef().epsg, 0);
    auto* const base = new OgrVectorLayer;
    QVERIFY(open(*base, file("utm.gpkg")));
    const std::unique_ptr<MapView> view = mapWith(base);
    view->addLayer(layer, -1);
    QCOMPARE(layer->getBounds(), QRectF(15.0, 47.0, 1.0, -1.0));
    QCOMPARE(layer->getSpatialRef().epsg, 0);
}

void VectorLayerTest::leavesOutWhatHasNoPlaceInTheMap()
{
    VectorRecipe recipe = shapes({"POINT(15 46)", "LINESTRING(15 46,400 -700)", "POINT(16 47)",
                                  "POLYGON((0 0,10 0,10 -4000,0 0))"});
    recipe.epsg = 4326;
    const QString path = made("outside.gpkg", recipe);
    const LogLines log;
    auto* const layer = new OgrVectorLayer;
    QVERIFY(open(*layer, path));
    auto* const base = new OgrVectorLayer;
    QVERIFY(open(*base, file("utm.gpkg")));
    const std::unique_ptr<MapView> view = mapWith(base);
    layer->setProgressive(false);
    view->addLayer(layer, -1);
    view->setBounds(400000.0, 5300000.0, 600000.0, 5000000.0);
    QCOMPARE(layer->getLeftOut(), 2);
    QCOMPARE(log.holding("no place"),
             QStringList({"2 features of " + path + " have no place in epsg:32633"}));
    QVERIFY(inked(painted(*layer, {200, 200, 400000.0, 5300000.0, 1500.0})) > 20);
}

void VectorLayerTest::endsWhereTheMapsReferenceEnds()
{
    VectorRecipe recipe =
        shapes({"POLYGON((-180 -90,180 -90,180 -60,-180 -60,-180 -90))", "POINT(20 60)"});
    recipe.epsg = 4326;
    OgrVectorLayer layer;
    QVERIFY(open(layer, made("polar.gpkg", recipe)));
    SpatialReference mercator;
    mercator.setEpsg(3857);
    layer.setSpatialRef(mercator);
    const double edge = 20048966.1; // where its area of use ends, at 85.06 degrees
    QVERIFY(std::abs(layer.getBounds().bottom() + edge) < 100.0);
    QVERIFY(inked(complete(layer, {400, 400, -2e7, 2e7, 1e5})) > 300);
    QVERIFY(std::abs(layer.getBounds().bottom() + edge) < 100.0);
    QVERIFY(std::abs(layer.getBounds().top() - 8399737.9) < 100.0);
    QCOMPARE(layer.getLeftOut(), 0);
}

void VectorLayerTest::spansTheWorldInDegreesWhereItCrossesTheDateLine()
{
    VectorRecipe recipe = shapes({"POINT(2226389.8 0)", "POINT(4452779.6 0)"});
    recipe.epsg = 3832; // Mercator around 150 degrees east: these lie at 170 and -170
    OgrVectorLayer layer;
    QVERIFY(open(layer, made("pacific.gpkg", recipe)));
    SpatialReference degrees;
    degrees.setEpsg(4326);
    layer.setSpatialRef(degrees);
    QCOMPARE(layer.getBounds().left(), -180.0);
    QCOMPARE(layer.getBounds().right(), 180.0);
}

void VectorLayerTest::goesOnBeyondTheDateLine_data()
{
    QTest::addColumn<QString>("wkt");
    QTest::addColumn<int>("target");
    QTest::addColumn<double>("left");
    QTest::addColumn<double>("right");
    const double degree = 111319.490793;
    QTest::newRow("eastward to Mercator")
        << "POLYGON((170 10,190 10,190 20,170 20,170 10))" << 3857 << 170 * degree << 190 * degree;
    QTest::newRow("westward to Mercator") << "POLYGON((-190 10,-170 10,-170 20,-190 20,-190 10))"
                                          << 3857 << -190 * degree << -170 * degree;
    QTest::newRow("up to it") << "POLYGON((-180 10,180 10,180 20,-180 20,-180 10))" << 3857
                              << -180 * degree << 180 * degree;
    QTest::newRow("to other degrees")
        << "POLYGON((170 10,190 10,190 20,170 20,170 10))" << 4258 << 170.0 << 190.0;
}

// The shape stays as wide as it is: it does not run round the world the other way.
void VectorLayerTest::goesOnBeyondTheDateLine()
{
    QFETCH(QString, wkt);
    QFETCH(int, target);
    QFETCH(double, left);
    QFETCH(double, right);
    VectorRecipe recipe = shapes({wkt});
    recipe.epsg = 4326;
    OgrVectorLayer layer;
    QVERIFY(open(layer, made(QString("line%1%2.gpkg").arg(qHash(wkt)).arg(target), recipe)));
    SpatialReference reference;
    reference.setEpsg(target);
    layer.setSpatialRef(reference);
    layer.setProgressive(false);
    QBrush filled(Qt::black);
    layer.setBrush(filled);
    const double world = target == 3857 ? 4.2e7 : 400.0;
    const WorldView view{400, 400, -world / 2, world / 2, world / 400};
    const QImage picture = complete(layer, view);
    QCOMPARE(int(layer.getLeftOut()), 0);
    const double middle = target == 3857 ? 1689200.0 : 15.0; // of the latitudes
    const int row = int(view.toPixel(0.0, middle).y());
    for (int x = 5; x < 395; ++x) {
        const double place = view.left + (x + 0.5) * view.unitsPerPixel;
        const double slack = 4 * view.unitsPerPixel; // the line
        if (place > left + slack && place < right - slack) {
            QVERIFY(picture.pixel(x, row) != qRgb(255, 255, 255));
        } else if (place < left - slack || place > right + slack) {
            QCOMPARE(picture.pixel(x, row), qRgb(255, 255, 255));
        }
    }
}

void VectorLayerTest::saysWhyAReferenceCannotBeReached()
{
    OgrVectorLayer layer;
    QVERIFY(open(layer, made("unreached.gpkg", shapes({"POINT(15 46)"}))));
    SpatialReference unknown;
    unknown.setEpsg(987654);
    layer.setSpatialRef(unknown);
    QCOMPARE(layer.getBounds(), QRectF());
    QCOMPARE(inked(complete(layer, WorldView())), 0);
    QVERIFY2(layer.getLastError().startsWith("no way to epsg:987654: "),
             qPrintable(layer.getLastError()));
    QCOMPARE(int(layer.getPercentComplete()), 100);
}

void VectorLayerTest::aLayerElementHoldsPenAndBrush()
{
    OgrVectorLayer layer;
    QVERIFY(open(layer, made("xml.gpkg", shapes({"POINT(15 46)"}))));
    QPen pen(QColor(1, 2, 3), 4, Qt::DashLine, Qt::SquareCap, Qt::BevelJoin);
    layer.setPen(pen);
    QBrush brush(QColor(4, 5, 6), Qt::CrossPattern);
    layer.setBrush(brush);
    QDomDocument document;
    QDomElement element = document.createElement("layer");
    document.appendChild(element);
    QVERIFY(layer.writeXML(element, document));

    QDomElement penElement = element.firstChildElement("pen");
    QCOMPARE(penElement.attribute("style"), QString("DashLine"));
    QCOMPARE(penElement.attribute("width"), QString("4"));
    QCOMPARE(penElement.attribute("capstyle"), QString("SquareCap"));
    QCOMPARE(penElement.attribute("joinstyle"), QString("BevelJoin"));
    QCOMPARE(penElement.firstChildElement("brush").attribute("color"), QString("#010203"));
    QDomElement brushElement = element.firstChildElement("brush");
    QCOMPARE(brushElement.attribute("style"), QString("CrossPattern"));
    QCOMPARE(brushElement.attribute("color"), QString("#040506"));
    QCOMPARE(penElement.nextSiblingElement(), brushElement);
    QVERIFY(brushElement.nextSiblingElement().isNull());
    QStringList stored;
    for (QDomElement param = element.firstChildElement("param"); !param.isNull();
         param = param.nextSiblingElement("param"))
    {
        stored.append(param.attribute("name"));
    }
    QCOMPARE(stored,
             QStringList({"DataSource", "Description", "Visible", "MinScale", "MaxScale", "pen",
                          "brush", "LayerName", "Transparency", "PointSymbol", "PointSize",
                          "LabelField", "LabelSize", "LabelColor", "Antialiasing", "Progressive"}));
}

void VectorLayerTest::aDocumentGivesTheLayerBackAsItWas()
{
    OgrVectorLayer layer;
    layer.setLayerName(QString::fromUtf8("zweite \303\234bersicht"));
    QVERIFY(open(layer, file("two.gpkg")));
    QPen pen(QColor(1, 2, 3), 4, Qt::DashDotLine, Qt::FlatCap, Qt::MiterJoin);
    layer.setPen(pen);
    QBrush brush(QColor(4, 5, 6));
    layer.setBrush(brush);
    layer.setTransparency(0.25);
    layer.setPointSymbol("Triangle");
    layer.setPointSize(12.5);
    layer.setLabelField("name");
    layer.setLabelSize(14.0);
    layer.setLabelColor(QColor("#a0b0c0"));
    layer.setAntialiasing(false);
    layer.setComments("of the second kind");
    layer.setDescription("Overview");
    QDomDocument document;
    QDomElement element = document.createElement("layer");
    document.appendChild(element);
    layer.writeXML(element, document);
    QDomDocument read;
    QVERIFY(read.setContent(document.toByteArray()));

    const LogLines log;
    OgrVectorLayer copy;
    QDomNode node = read.documentElement();
    QDir base(folder.path());
    QString error;
    QVERIFY(copy.readXML(node, base, &error));
    QTRY_VERIFY(copy.isValid());
    QCOMPARE(copy.getLayerName(), layer.getLayerName());
    QCOMPARE(copy.getPen().color(), pen.color());
    QCOMPARE(copy.getPen().style(), pen.style());
    QCOMPARE(copy.getPen().width(), 4);
    QCOMPARE(copy.getBrush(), brush);
    QCOMPARE(copy.getTransparency(), 0.25);
    QCOMPARE(copy.getPointSymbol(), QString("Triangle"));
    QCOMPARE(copy.getPointSize(), 12.5);
    QCOMPARE(copy.getLabelField(), QString("name"));
    QCOMPARE(copy.getLabelSize(), 14.0);
    QCOMPARE(copy.getLabelColor(), QColor("#a0b0c0"));
    QVERIFY(!copy.isAntialiasing());
    QCOMPARE(copy.getComments(), QString("of the second kind"));
    QCOMPARE(copy.getDescription(), QString("Overview"));
    QCOMPARE(log.holding("unknown XML element"), QStringList());
    const WorldView around = {200, 200, 60.0, 200.0, 0.7};
    QVERIFY(difference(complete(copy, around), complete(layer, around)) <= roundings);
}

void VectorLayerTest::aDocumentKeepsTheNameOfWhatDoesNotOpen_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("kept");
    QTest::newRow("a missing relative file") << "gone.gpkg" << file("gone.gpkg");
    QTest::newRow("a missing file elsewhere")
        << "a/../../gone.gpkg" << QDir::cleanPath(file("../gone.gpkg"));
    QTest::newRow("a name that only OGR understands") << "ESRIJSON:gone"
                                                      << "ESRIJSON:gone";
}

void VectorLayerTest::aDocumentKeepsTheNameOfWhatDoesNotOpen()
{
    QFETCH(QString, source);
    QFETCH(QString, kept);
    QDomDocument document;
    QVERIFY(document.setContent("<layer><datasource value=\"" + source + "\"/></layer>"));
    QDomNode node = document.documentElement();
    QDir base(folder.path());
    QString errors = "first line";
    OgrVectorLayer layer;
    layer.setProgressive(false);
    QVERIFY(layer.readXML(node, base, &errors)); // the map keeps it
    QVERIFY(!layer.isValid());
    QCOMPARE(layer.getDataSource(), kept);
    QCOMPARE(errors, QString("first line\ncannot open %1: %2").arg(kept, layer.getLastError()));
    QVERIFY(!layer.getLastError().isEmpty());
    QVERIFY(layer.readXML(node, base, nullptr));
}

int main(int argc, char** argv)
{
    QLoggingCategory::setFilterRules("corvane.tiles.debug=false\ndefault.debug=false");
    Application application(argc, argv, "VectorLayerTest");
    VectorLayerTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "VectorLayerTest.moc"
