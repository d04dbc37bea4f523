#include <plugins/webtiles/WebTileLayer.h>

#include <tests/plugins/LayerProbe.h>
#include <tests/plugins/WebTileTools.h>

#include <plugins/webtiles/TileCache.h>

#include <ogr_spatialref.h>

#include <QDir>
#include <QDomDocument>
#include <QLoggingCategory>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtTest>

#include <cmath>
#include <memory>
#include <set>

using namespace Corvane;
using namespace Corvane::Map;
using namespace Corvane::Tests;

namespace {

constexpr double edge = 20037508.342789244;
constexpr int tileEdge = 256;

// The view of tiles (x, y) to (x + across, y + down) of a zoom, pixel by pixel.
PixelView viewOf(WebTileLayer& layer, int zoom, int x, int y, int across, int down)
{
    const int reduction = 1 << (layer.getMaxZoom() - zoom);
    // a pixel less on all sides: a view that ends where a tile ends may look into the next one
    return {across * tileEdge - 2, down * tileEdge - 2, (x * tileEdge + 1) * reduction,
            (y * tileEdge + 1) * reduction, double(reduction)};
}

QRgb middleOf(const QImage& picture, int column, int row)
{
    return picture.pixel(column * tileEdge + tileEdge / 2, row * tileEdge + tileEdge / 2);
}

} // namespace

/// What a web tile layer asks for, where it lies and what it paints, against a real server.
class WebTileLayerTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanup();

    void aUrlWithPlacesIsOpenAtOnce();
    void otherSourcesAreRefusedWithoutAWord_data();
    void otherSourcesAreRefusedWithoutAWord();
    void aUrlThatCannotNameTilesFailsWithOneLine();
    void theWorldIsTheSquareOfWebMercator();
    void thePyramidEndsAtTheFinestZoomThatFits_data();
    void thePyramidEndsAtTheFinestZoomThatFits();
    void tilesLieWhereTheProjectionPutsTheirCorners_data();
    void tilesLieWhereTheProjectionPutsTheirCorners();

    void theTilesOfTheViewArePainted_data();
    void theTilesOfTheViewArePainted();
    void eachTileIsFetchedOnce();
    void picturesForFineScreensKeepTheirPixels();
    void picturesOfAnotherSizeAreNone();
    void zoomsThatTheServerLacksAreEmptyAndNotAskedFor();
    void whatTheServerHasNotIsEmptyAndRemembered_data();
    void whatTheServerHasNotIsEmptyAndRemembered();
    void theServerSeesWhoAsks();
    void theAttributionStandsInTheLowerRightCorner();
    void transparencyFadesTheTiles();
    void atMostEightConnectionsAreOpened();

    void settingsSurviveADocument();
    void aLayerThatIsNotOpenSavesNoMadeUpSettings();
    void aPresetFileOpens();
    void aPresetFileThatIsNoneFails_data();
    void aPresetFileThatIsNoneFails();
    void whatIsSetGoesBeforeThePreset();
    void capabilitiesOpenInTheBackground();
    void capabilitiesThatDoNotComeFailLater();

private:
    QTemporaryDir folder;
};

void WebTileLayerTest::initTestCase()
{
    QVERIFY(folder.isValid());
    TileCache::instance().setFolder(QString(), 0);
}

void WebTileLayerTest::cleanup()
{
    QVERIFY(QThreadPool::globalInstance()->waitForDone(60000));
}

void WebTileLayerTest::aUrlWithPlacesIsOpenAtOnce()
{
    WebTileLayer layer;
    QCOMPARE(layer.getSourceState(), QString("not open: "));
    QVERIFY(layer.setDataSource("https://tiles.example.org/{z}/{x}/{y}.png"));
    QVERIFY(layer.isValid());
    QCOMPARE(layer.getSourceState(), QString("ready"));
    QCOMPARE(layer.getProtocol(), QString("https"));
    QCOMPARE(layer.getDescription(), QString("tiles.example.org"));
    QCOMPARE(layer.getMinZoom(), 0);
    QCOMPARE(layer.getMaxZoom(), 19);
    QCOMPARE(layer.getTileSize(), 256);
    QCOMPARE(layer.getHosts(), QString("a,b,c"));
    QCOMPARE(layer.getLastError(), QString());
    QVERIFY(qobject_cast<ITiledLayer*>(&layer));
}

void WebTileLayerTest::otherSourcesAreRefusedWithoutAWord_data()
{
    QTest::addColumn<QString>("source");
    QTest::newRow("nothing") << QString();
    QTest::newRow("an image file") << "/data/image.tif";
    QTest::newRow("an image on a server") << "https://example.org/image.tif";
    QTest::newRow("a file with braces") << "/data/{z}/{x}/{y}.png";
    QTest::newRow("another protocol") << "ftp://example.org/{z}/{x}/{y}.png";
}

void WebTileLayerTest::otherSourcesAreRefusedWithoutAWord()
{
    QFETCH(QString, source);
    LogLines log;
    WebTileLayer layer;
    QVERIFY(!layer.setDataSource(source));
    QVERIFY(!layer.isValid());
    QCOMPARE(log.holding("").size(), 0);
    QCOMPARE(layer.getBounds(), QRectF());
}

void WebTileLayerTest::aUrlThatCannotNameTilesFailsWithOneLine()
{
    LogLines log;
    WebTileLayer layer;
    QVERIFY(!layer.setDataSource("http://example.org/{z}/{x}.png"));
    QVERIFY(!layer.isValid());
    QVERIFY(!layer.getLastError().isEmpty());
    QCOMPARE(log.holding("example.org").size(), 1);
}

void WebTileLayerTest::theWorldIsTheSquareOfWebMercator()
{
    WebTileLayer layer;
    layer.setMaxZoom(3);
    QVERIFY(layer.setDataSource("http://example.org/{z}/{x}/{y}"));
    QCOMPARE(layer.getBounds(), QRectF(-edge, edge, 2 * edge, -2 * edge));
    QCOMPARE(layer.getSize(), QSize(2048, 2048));
    QCOMPARE(layer.getCellSizeX(), 2 * edge / 2048);
    QCOMPARE(layer.getCellSizeY(), -2 * edge / 2048);
    QCOMPARE(layer.getSpatialRef().epsg, 3857);
}

void WebTileLayerTest::thePyramidEndsAtTheFinestZoomThatFits_data()
{
    QTest::addColumn<int>("tileSize");
    QTest::addColumn<int>("wanted");
    QTest::addColumn<int>("zoom");
    QTest::addColumn<int>("side");
    QTest::newRow("zoom 0") << 256 << 0 << 0 << 256;
    QTest::newRow("zoom 22 fits") << 256 << 22 << 22 << (1 << 30);
    QTest::newRow("zoom 23 does not") << 256 << 23 << 22 << (1 << 30);
    QTest::newRow("zoom 22 does not fit with large tiles") << 512 << 22 << 21 << (1 << 30);
}

void WebTileLayerTest::thePyramidEndsAtTheFinestZoomThatFits()
{
    QFETCH(int, tileSize);
    QFETCH(int, wanted);
    QFETCH(int, zoom);
    QFETCH(int, side);
    WebTileLayer layer;
    layer.setTileSize(tileSize);
    layer.setMaxZoom(wanted);
    QVERIFY(layer.setDataSource("http://example.org/{z}/{x}/{y}"));
    QCOMPARE(layer.getMaxZoom(), zoom);
    QCOMPARE(layer.getWidth(), side);
    QCOMPARE(layer.getHeight(), side);
    QCOMPARE(layer.getBounds().width() / layer.getCellSizeX(), double(side));
}

void WebTileLayerTest::tilesLieWhereTheProjectionPutsTheirCorners_data()
{
    QTest::addColumn<int>("zoom");
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    QTest::newRow("the north-east quarter") << 1 << 1 << 0;
    QTest::newRow("the middle of the world") << 2 << 2 << 2;
    QTest::newRow("the south-west corner") << 3 << 0 << 7;
    QTest::newRow("Europe") << 5 << 16 << 10;
    QTest::newRow("the Alps") << 8 << 133 << 89;
    QTest::newRow("the Andes") << 9 << 155 << 285;
    QTest::newRow("a street in London") << 16 << 32744 << 21792;
    QTest::newRow("a street in Sydney") << 17 << 120581 << 78665;
    QTest::newRow("the last column") << 18 << 262143 << 100000;
    QTest::newRow("the finest zoom") << 22 << 2097153 << 1400001;
}

void WebTileLayerTest::tilesLieWhereTheProjectionPutsTheirCorners()
{
    QFETCH(int, zoom);
    QFETCH(int, x);
    QFETCH(int, y);
    TileServer server;
    WebTileLayer layer;
    layer.setMaxZoom(zoom);
    QVERIFY(layer.setDataSource(server.tiles()));
    complete(layer, viewOf(layer, zoom, x, y, 1, 1));
    const TileId id{0, unsigned(x), unsigned(y)};
    const GeoImage* const tile = layer.tiles().find(id);
    QVERIFY(tile);
    QCOMPARE(tile->pixel(5, 5), (TileNumbers{zoom, unsigned(x), unsigned(y)}.colour()));

    OGRSpatialReference degrees;
    OGRSpatialReference metres;
    degrees.importFromEPSG(4326);
    metres.importFromEPSG(3857);
    degrees.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    const std::unique_ptr<OGRCoordinateTransformation> projection(
        OGRCreateCoordinateTransformation(&degrees, &metres));
    QVERIFY(projection);
    const auto corner = [&](int column, int row) {
        const double count = std::exp2(zoom);
        double longitude = column / count * 360.0 - 180.0;
        double latitude = std::atan(std::sinh(M_PI * (1.0 - 2.0 * row / count))) * 180.0 / M_PI;
        projection->Transform(1, &longitude, &latitude);
        return QPointF(longitude, latitude);
    };
    constexpr double tolerance = 1e-3; // metres
    QVERIFY(std::abs(tile->tlx - corner(x, y).x()) < tolerance);
    QVERIFY(std::abs(tile->tly - corner(x, y).y()) < tolerance);
    QVERIFY(std::abs(tile->bry - corner(x + 1, y + 1).y()) < tolerance);
    QVERIFY(std::abs(tile->brx - tile->tlx - 2 * edge / std::exp2(zoom)) < tolerance);
}

void WebTileLayerTest::theTilesOfTheViewArePainted_data()
{
    QTest::addColumn<int>("zoom");
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    QTest::newRow("the full resolution") << 6 << 30 << 17;
    QTest::newRow("a coarser level") << 4 << 5 << 9;
    QTest::newRow("the coarsest level") << 1 << 0 << 0;
}

void WebTileLayerTest::theTilesOfTheViewArePainted()
{
    QFETCH(int, zoom);
    QFETCH(int, x);
    QFETCH(int, y);
    TileServer server;
    WebTileLayer layer;
    layer.setMaxZoom(6);
    QVERIFY(layer.setDataSource(server.tiles()));
    const QImage picture = complete(layer, viewOf(layer, zoom, x, y, 2, 2));
    QCOMPARE(int(layer.getPercentComplete()), 100);
    for (int column = 0; column < 2; ++column) {
        for (int row = 0; row < 2; ++row) {
            const TileNumbers tile{zoom, unsigned(x + column), unsigned(y + row)};
            QCOMPARE(middleOf(picture, column, row), tile.colour());
        }
    }
}

void WebTileLayerTest::eachTileIsFetchedOnce()
{
    TileServer server;
    WebTileLayer layer;
    layer.setMaxZoom(6);
    QVERIFY(layer.setDataSource(server.tiles()));
    const PixelView view = viewOf(layer, 6, 10, 20, 6, 5);
    for (int i = 0; i < 20; ++i) {
        view.set(layer);
    }
    QTRY_COMPARE_WITH_TIMEOUT(int(layer.getPercentComplete()), 100, 60000);
    view.set(layer);
    QVERIFY(QThreadPool::globalInstance()->waitForDone(60000));
    std::set<std::string> targets;
    for (const HttpRequest& request : server.requests()) {
        QVERIFY2(targets.insert(request.target).second, request.target.c_str());
    }
    QVERIFY(targets.size() >= 30);
}

void WebTileLayerTest::picturesForFineScreensKeepTheirPixels()
{
    TileServer server;
    server.onTile([](const TileNumbers& tile) { return tileReply(tile, 512); });
    WebTileLayer layer;
    layer.setMaxZoom(4);
    QVERIFY(layer.setDataSource(server.tiles()));
    const QImage picture = complete(layer, viewOf(layer, 4, 3, 3, 1, 1));
    QCOMPARE(middleOf(picture, 0, 0), (TileNumbers{4, 3, 3}.colour()));
    const GeoImage* const tile = layer.tiles().find({0, 3, 3});
    QVERIFY(tile);
    QCOMPARE(tile->size(), QSize(512, 512));
    QCOMPARE(tile->brx - tile->tlx, 2 * edge / 16);
}

void WebTileLayerTest::picturesOfAnotherSizeAreNone()
{
    TileServer server;
    server.onTile([](const TileNumbers& tile) { return tileReply(tile, 200); });
    WebTileLayer layer;
    layer.setMaxZoom(4);
    QVERIFY(layer.setDataSource(server.tiles()));
    viewOf(layer, 4, 3, 3, 1, 1).set(layer);
    QTRY_COMPARE(layer.getLastError(),
                 QString("the picture has 200 x 200 pixels instead of 256 x 256"));
    QVERIFY(!layer.tiles().has({0, 3, 3}));
}

void WebTileLayerTest::zoomsThatTheServerLacksAreEmptyAndNotAskedFor()
{
    TileServer server;
    WebTileLayer layer;
    layer.setMaxZoom(6);
    layer.setMinZoom(4);
    QVERIFY(layer.setDataSource(server.tiles()));
    const QImage picture = complete(layer, viewOf(layer, 3, 2, 2, 2, 2));
    QCOMPARE(int(layer.getPercentComplete()), 100);
    QCOMPARE(server.requestCount(), 0);
    QCOMPARE(qAlpha(middleOf(picture, 0, 0)), 0);
    complete(layer, viewOf(layer, 4, 4, 4, 1, 1));
    QCOMPARE(server.requestCount(), 1);
}

void WebTileLayerTest::whatTheServerHasNotIsEmptyAndRemembered_data()
{
    QTest::addColumn<int>("status");
    QTest::newRow("not found") << 404;
    QTest::newRow("gone") << 410;
    QTest::newRow("no content") << 204;
}

void WebTileLayerTest::whatTheServerHasNotIsEmptyAndRemembered()
{
    QFETCH(int, status);
    TileServer server;
    server.onTile([status](const TileNumbers& tile) {
        return tile.x == 1 ? HttpReply::withStatus(status) : tileReply(tile);
    });
    WebTileLayer layer;
    layer.setMaxZoom(4);
    QVERIFY(layer.setDataSource(server.tiles()));
    TileBudget::instance().setLimit(1); // keeps nothing that is out of view
    const QImage picture = complete(layer, viewOf(layer, 4, 0, 2, 2, 1));
    QCOMPARE(int(layer.getPercentComplete()), 100);
    QCOMPARE(middleOf(picture, 0, 0), (TileNumbers{4, 0, 2}.colour()));
    QCOMPARE(qAlpha(middleOf(picture, 1, 0)), 0);
    complete(layer, viewOf(layer, 4, 9, 9, 2, 2));
    complete(layer, viewOf(layer, 4, 0, 2, 2, 1));
    QCOMPARE(int(layer.getPercentComplete()), 100);
    QCOMPARE(server.requestCount("/4/1/2.png"), 1);
    QCOMPARE(layer.getSourceState(), QString("ready"));
}

void WebTileLayerTest::theServerSeesWhoAsks()
{
    TileServer server;
    WebTileLayer layer;
    layer.setMaxZoom(1);
    layer.setUserAgentSuffix("survey@example.org\r\nX-Evil: yes");
    QVERIFY(layer.setDataSource(server.tiles()));
    complete(layer, viewOf(layer, 1, 0, 0, 1, 1));
    QCOMPARE(server.requestCount(), 1);
    QCOMPARE(server.requests().front().header("User-Agent"),
             QByteArray("Corvane/1.0 survey@example.org X-Evil: yes"));
    QVERIFY(server.requests().front().header("X-Evil").isNull());
}

void WebTileLayerTest::theAttributionStandsInTheLowerRightCorner()
{
    TileServer server;
    WebTileLayer layer;
    layer.setMaxZoom(3);
    QVERIFY(layer.setDataSource(server.tiles()));
    const PixelView view = viewOf(layer, 3, 2, 2, 2, 2);
    const QImage before = complete(layer, view);
    layer.setAttribution("&copy; <a href=\"https://example.org\">Map</a> makers");
    QCOMPARE(layer.getAttribution(), QString::fromUtf8("\u00a9 Map makers"));
    const QImage after = complete(layer, view);
    QVERIFY(before.copy(412, 500, 100, 12) != after.copy(412, 500, 100, 12));
    QCOMPARE(before.copy(0, 0, 512, 480), after.copy(0, 0, 512, 480));
    QCOMPARE(before.copy(0, 0, 300, 512), after.copy(0, 0, 300, 512));
}

void WebTileLayerTest::transparencyFadesTheTiles()
{
    TileServer server;
    WebTileLayer layer;
    layer.setMaxZoom(3);
    QVERIFY(layer.setDataSource(server.tiles()));
    layer.setTransparency(0.5);
    const QImage picture = complete(layer, viewOf(layer, 3, 2, 2, 1, 1));
    QVERIFY(std::abs(qAlpha(middleOf(picture, 0, 0)) - 128) <= 1);
}

void WebTileLayerTest::atMostEightConnectionsAreOpened()
{
    TileServer server;
    WebTileLayer layer;
    layer.setMaxZoom(7);
    QVERIFY(layer.setDataSource(server.tiles()));
    for (int i = 0; i < 8; ++i) {
        complete(layer, viewOf(layer, 7, 4 + 10 * i, 20, 8, 8));
    }
    QVERIFY(server.requestCount() >= 512);
    QVERIFY2(server.connectionCount() <= 8, qPrintable(QString::number(server.connectionCount())));
}

void WebTileLayerTest::settingsSurviveADocument()
{
    WebTileLayer layer;
    layer.setMinZoom(2);
    layer.setMaxZoom(12);
    layer.setTileSize(512);
    layer.setHosts("one,two");
    layer.setUserAgentSuffix("me");
    layer.setDeadline(7.5);
    layer.setAttribution("by somebody");
    layer.setTransparency(0.25);
    layer.setProgressive(false);
    QVERIFY(layer.setDataSource("HTTPS://{s}.example.org/{z}/{x}/{-y}.jpg?a=b&c=<d>"));
    QDomDocument document;
    QDomNode node = document.appendChild(document.createElement("layer"));
    QVERIFY(layer.writeXML(node, document));
    QDomDocument read;
    QVERIFY(read.setContent(document.toByteArray()));

    WebTileLayer again;
    QDomNode readNode = read.documentElement();
    QDir here(folder.path());
    QVERIFY(again.readXML(readNode, here, nullptr));
    QVERIFY(again.isValid());
    QCOMPARE(again.getDataSource(), layer.getDataSource());
    QCOMPARE(again.getMinZoom(), 2);
    QCOMPARE(again.getMaxZoom(), 12);
    QCOMPARE(again.getTileSize(), 512);
    QCOMPARE(again.getHosts(), QString("one,two"));
    QCOMPARE(again.getUserAgentSuffix(), QString("me"));
    QCOMPARE(again.getDeadline(), 7.5);
    QCOMPARE(again.getAttribution(), QString("by somebody"));
    QCOMPARE(again.getTransparency(), 0.25);
    QVERIFY(!again.isProgressive());
}

void WebTileLayerTest::aLayerThatIsNotOpenSavesNoMadeUpSettings()
{
    WebTileLayer layer;
    layer.setDataSource("nothing");
    QDomDocument document;
    QDomNode node = document.appendChild(document.createElement("layer"));
    QVERIFY(layer.writeXML(node, document));
    WebTileLayer again;
    QDir here(folder.path());
    again.readXML(node, here, nullptr);
    QVERIFY(again.setDataSource("http://example.org/{z}/{x}/{y}"));
    QCOMPARE(again.getMaxZoom(), 19);
    QCOMPARE(again.getTileSize(), 256);
    QCOMPARE(again.getHosts(), QString("a,b,c"));
}

void WebTileLayerTest::aPresetFileOpens()
{
    QFile file(folder.filePath("streets.webtiles"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("<?xml version=\"1.0\"?>\n<webtiles url=\"http://{s}.example.org/{z}/{x}/{y}.png\""
               " hosts=\"n,m\" minzoom=\"1\" maxzoom=\"14\" tilesize=\"512\" title=\"Streets\""
               " attribution=\"town office\"/>");
    file.close();
    WebTileLayer layer;
    QVERIFY(layer.setDataSource(file.fileName()));
    QTRY_VERIFY(layer.isValid());
    QCOMPARE(layer.getMinZoom(), 1);
    QCOMPARE(layer.getMaxZoom(), 14);
    QCOMPARE(layer.getTileSize(), 512);
    QCOMPARE(layer.getHosts(), QString("n,m"));
    QCOMPARE(layer.getAttribution(), QString("town office"));
    QCOMPARE(layer.getDescription(), QString("Streets"));
    QCOMPARE(layer.getProtocol(), QString("http"));
}

void WebTileLayerTest::aPresetFileThatIsNoneFails_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("no XML") << QByteArray("url=http://example.org/{z}/{x}/{y}");
    QTest::newRow("another document") << QByteArray("<mapcanvas/>");
    QTest::newRow("a number that is none")
        << QByteArray("<webtiles url=\"http://e.org/{z}/{x}/{y}\" maxzoom=\"far\"/>");
    QTest::newRow("no URL") << QByteArray("<webtiles maxzoom=\"3\"/>");
    QTest::newRow("cut off") << QByteArray("<webtiles url=\"http://e.org/{z}/{x}/{y}\">");
}

void WebTileLayerTest::aPresetFileThatIsNoneFails()
{
    QFETCH(QByteArray, content);
    QFile file(folder.filePath("broken.webtiles"));
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(content);
    file.close();
    LogLines log;
    WebTileLayer layer;
    layer.setDataSource(file.fileName());
    QTRY_VERIFY(!layer.getLastError().isEmpty());
    QVERIFY(!layer.isValid());
    QCOMPARE(log.holding("broken.webtiles").size(), 1);
}

void WebTileLayerTest::whatIsSetGoesBeforeThePreset()
{
    QFile file(folder.filePath("deep.webtiles"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("<webtiles url=\"http://example.org/{z}/{x}/{y}.png\" maxzoom=\"20\"/>");
    file.close();
    WebTileLayer layer;
    layer.setMaxZoom(5);
    layer.setProgressive(false);
    QVERIFY(layer.setDataSource(file.fileName()));
    QVERIFY(layer.isValid());
    QCOMPARE(layer.getMaxZoom(), 5);
    layer.setMaxZoom(-1);
    QCOMPARE(layer.getMaxZoom(), 20);
}

void WebTileLayerTest::capabilitiesOpenInTheBackground()
{
    TileServer server;
    const QByteArray document =
        "<Capabilities xmlns=\"http://www.opengis.net/wmts/1.0\" "
        "xmlns:ows=\"http://www.opengis.net/ows/1.1\"><Contents><Layer>"
        "<ows:Title>Chart</ows:Title><ows:Identifier>chart</ows:Identifier>"
        "<Style isDefault=\"true\"><ows:Identifier>default</ows:Identifier></Style>"
        "<Format>image/png</Format><TileMatrixSetLink><TileMatrixSet>web</TileMatrixSet>"
        "</TileMatrixSetLink><ResourceURL format=\"image/png\" resourceType=\"tile\" template=\"" +
        server.url("").toUtf8() +
        "/{TileMatrix}/{TileCol}/{TileRow}.png\"/></Layer><TileMatrixSet>"
        "<ows:Identifier>web</ows:Identifier>"
        "<ows:SupportedCRS>urn:ogc:def:crs:EPSG::3857</ows:SupportedCRS>"
        "<TileMatrix><ows:Identifier>0</ows:Identifier>"
        "<ScaleDenominator>559082264.0287178</ScaleDenominator>"
        "<TopLeftCorner>-20037508.342789 20037508.342789</TopLeftCorner>"
        "<TileWidth>256</TileWidth><TileHeight>256</TileHeight></TileMatrix>"
        "<TileMatrix><ows:Identifier>1</ows:Identifier>"
        "<ScaleDenominator>279541132.0143589</ScaleDenominator>"
        "<TopLeftCorner>-20037508.342789 20037508.342789</TopLeftCorner>"
        "<TileWidth>256</TileWidth><TileHeight>256</TileHeight></TileMatrix>"
        "</TileMatrixSet></Contents></Capabilities>";
    server.on("/wmts.xml", HttpReply::data(document, "application/xml").held());
    WebTileLayer layer;
    QSignalSpy opened(&layer, &WebTileLayer::sourceOpened);
    QVERIFY(layer.setDataSource(server.url("/wmts.xml#layer=chart")));
    QVERIFY(!layer.isValid());
    QCOMPARE(layer.getSourceState(), QString("opening"));
    server.release();
    QTRY_COMPARE(opened.size(), 1);
    QVERIFY(layer.isValid());
    QCOMPARE(layer.getMaxZoom(), 1);
    QCOMPARE(layer.getDescription(), QString("Chart"));
    const QImage picture = complete(layer, viewOf(layer, 1, 0, 0, 2, 2));
    QCOMPARE(middleOf(picture, 1, 0), (TileNumbers{1, 1, 0}.colour()));
}

void WebTileLayerTest::capabilitiesThatDoNotComeFailLater()
{
    TileServer server;
    server.on("/wmts.xml", HttpReply::withStatus(503).held());
    LogLines log;
    WebTileLayer layer;
    QSignalSpy opened(&layer, &WebTileLayer::sourceOpened);
    QVERIFY(layer.setDataSource(server.url("/wmts.xml")));
    server.release();
    QTRY_COMPARE(opened.size(), 1);
    QCOMPARE(opened.front().front().toBool(), false);
    QCOMPARE(layer.getLastError(), QString("the server answers with status 503"));
    QCOMPARE(log.holding("wmts.xml").size(), 1);
}

int main(int argc, char** argv)
{
    QLoggingCategory::setFilterRules("corvane.tiles.debug=false");
    Application application(argc, argv, "WebTileLayerTest");
    WebTileLayerTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "WebTileLayerTest.moc"
