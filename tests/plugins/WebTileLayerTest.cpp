#include <plugins/webtiles/WebTileLayer.h>

#include <tests/plugins/LayerProbe.h>
#include <tests/plugins/WebTileTools.h>

#include <plugins/common/TileCache.h>

#include <cpl_string.h>
#include <cpl_vsi.h>
#include <gdal.h>
#include <ogr_srs_api.h>

#include <QDir>
#include <QDomDocument>
#include <QLoggingCategory>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtTest>

#include <array>
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

struct GdalTile
{
    QSize size;
    std::array<double, 6> transform{};
};

/// A picture of a few millionths of a degree around the place.
GDALDatasetH speckAt(double longitude, double latitude)
{
    constexpr double cell = 1e-7; // degrees
    constexpr int cells = 8;
    const GDALDatasetH speck =
        GDALCreate(GDALGetDriverByName("MEM"), "", cells, cells, 1, GDT_Byte, nullptr);
    std::array<double, 6> transform{longitude - cells / 2 * cell, cell, 0.0,
                                    latitude + cells / 2 * cell,  0.0,  -cell};
    GDALSetGeoTransform(speck, transform.data());
    const OGRSpatialReferenceH degrees = OSRNewSpatialReference(SRS_WKT_WGS84_LAT_LONG);
    OSRSetAxisMappingStrategy(degrees, OAMS_TRADITIONAL_GIS_ORDER);
    GDALSetSpatialRef(speck, degrees);
    OSRDestroySpatialReference(degrees);
    return speck;
}

/// The tile in GDAL's own matrix of this grid that holds a place: what GDAL writes of the place into
/// a file that it aligns with its tiles.
GdalTile gdalsTileAt(double longitude, double latitude, int zoom)
{
    const char* const file = "/vsimem/tile.tif";
    const QByteArray level = "ZOOM_LEVEL=" + QByteArray::number(zoom);
    CPLStringList options;
    options.AddString("TILING_SCHEME=GoogleMapsCompatible");
    options.AddString(level.constData());
    options.AddString("ADD_ALPHA=NO");
    const GDALDatasetH speck = speckAt(longitude, latitude);
    const GDALDatasetH aligned = GDALCreateCopy(GDALGetDriverByName("COG"), file, speck, FALSE,
                                                options.List(), nullptr, nullptr);
    GdalTile tile;
    if (aligned) {
        tile.size = QSize(GDALGetRasterXSize(aligned), GDALGetRasterYSize(aligned));
        GDALGetGeoTransform(aligned, tile.transform.data());
        GDALClose(aligned);
        VSIUnlink(file);
    }
    GDALClose(speck);
    return tile;
}

/// Capabilities with one layer of the zooms 0 and 1.
QByteArray chartOf(const QByteArray& address, const QByteArray& limits = QByteArray())
{
    return "<Capabilities xmlns=\"http://www.opengis.net/wmts/1.0\" "
           "xmlns:ows=\"http://www.opengis.net/ows/1.1\"><Contents><Layer>"
           "<ows:Title>Chart</ows:Title><ows:Identifier>chart</ows:Identifier>"
           "<Style isDefault=\"true\"><ows:Identifier>default</ows:Identifier></Style>"
           "<Format>image/png</Format><TileMatrixSetLink><TileMatrixSet>web</TileMatrixSet>" +
           limits +
           "</TileMatrixSetLink><ResourceURL format=\"image/png\" resourceType=\"tile\" template=\"" +
           address +
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
    void tilesLieWhereGdalsTileMatrixHasThem_data();
    void tilesLieWhereGdalsTileMatrixHasThem();

    void theTilesOfTheViewArePainted_data();
    void theTilesOfTheViewArePainted();
    void eachTileIsFetchedOnce();
    void aPictureOfAnotherSizeCoversItsPartOfTheTile_data();
    void aPictureOfAnotherSizeCoversItsPartOfTheTile();
    void zoomsThatTheServerLacksAreEmptyAndNotAskedFor();
    void whatTheServerHasNotIsEmptyAndRemembered_data();
    void whatTheServerHasNotIsEmptyAndRemembered();
    void theServerSeesWhoAsks();
    void theAttributionStandsInTheLowerRightCorner();
    void transparencyFadesTheTiles();
    void atMostEightConnectionsAreOpened();
    void aViewTornOutOfShapeIsShownCoarserAndNotInMillionsOfTiles();

    void settingsSurviveADocument();
    void aLayerThatIsNotOpenSavesNoMadeUpSettings();
    void aPresetFileOpens();
    void aPresetFileThatIsNoneFails_data();
    void aPresetFileThatIsNoneFails();
    void namesOfAServerAreCutToWhatCanBeShown();
    void aDocumentKeepsTheNameOfAPresetThatIsMissing();
    void whatIsSetGoesBeforeThePreset();
    void settingsThatMakeNoSourceCanBeMended();
    void capabilitiesOpenInTheBackground();
    void tilesBeyondTheLimitsOfALayerAreEmptyAndNotAskedFor();
    void capabilitiesThatDoNotComeFailLater();
    void namesInCapabilitiesReachTheServerWhole_data();
    void namesInCapabilitiesReachTheServerWhole();

private:
    QTemporaryDir folder;
};

void WebTileLayerTest::initTestCase()
{
    QVERIFY(folder.isValid());
    GDALAllRegister();
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

void WebTileLayerTest::tilesLieWhereGdalsTileMatrixHasThem_data()
{
    QTest::addColumn<int>("zoom");
    QTest::addColumn<double>("longitude");
    QTest::addColumn<double>("latitude");
    QTest::newRow("the north-east quarter of the world") << 1 << 40.0 << 60.0;
    QTest::newRow("south-east of its middle") << 2 << 0.1 << -0.1;
    QTest::newRow("its south-west corner") << 3 << -179.9 << -85.0;
    QTest::newRow("Europe") << 5 << 7.0 << 52.0;
    QTest::newRow("the Alps") << 8 << 7.65 << 46.0;
    QTest::newRow("the Andes") << 9 << -70.01 << -32.65;
    QTest::newRow("a street in London") << 16 << -0.1276 << 51.5072;
    QTest::newRow("a street in Sydney") << 17 << 151.2093 << -33.8688;
    QTest::newRow("the last column") << 18 << 179.9999 << 39.5;
    QTest::newRow("the finest zoom") << 22 << 0.00004 << 50.00004;
}

void WebTileLayerTest::tilesLieWhereGdalsTileMatrixHasThem()
{
    QFETCH(int, zoom);
    QFETCH(double, longitude);
    QFETCH(double, latitude);
    const GdalTile expected = gdalsTileAt(longitude, latitude, zoom);
    QCOMPARE(expected.size, QSize(tileEdge, tileEdge));
    const double* const place = expected.transform.data();
    const int x = qRound((place[0] + edge) / (place[1] * tileEdge));
    const int y = qRound((place[3] - edge) / (place[5] * tileEdge));

    TileServer server;
    WebTileLayer layer;
    layer.setMaxZoom(zoom);
    QVERIFY(layer.setDataSource(server.tiles()));
    complete(layer, viewOf(layer, zoom, x, y, 1, 1));
    const GeoImage* const tile = layer.tiles().find({0, unsigned(x), unsigned(y)});
    QVERIFY(tile);
    QCOMPARE(tile->pixel(5, 5), (TileNumbers{zoom, unsigned(x), unsigned(y)}.colour()));
    constexpr double rounding = 1e-7; // metres
    QVERIFY(std::abs(tile->tlx - place[0]) < rounding);
    QVERIFY(std::abs(tile->tly - place[3]) < rounding);
    QVERIFY(std::abs(tile->brx - (place[0] + place[1] * tileEdge)) < rounding);
    QVERIFY(std::abs(tile->bry - (place[3] + place[5] * tileEdge)) < rounding);
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

void WebTileLayerTest::aPictureOfAnotherSizeCoversItsPartOfTheTile_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QSize>("covered"); // pixels of a tile of 256
    QTest::newRow("twice as fine") << QSize(512, 512) << QSize(256, 256);
    QTest::newRow("four times as fine") << QSize(1024, 1024) << QSize(256, 256);
    QTest::newRow("as large as may be") << QSize(2048, 2048) << QSize(256, 256);
    QTest::newRow("a little finer") << QSize(300, 300) << QSize(256, 256);
    QTest::newRow("coarser") << QSize(128, 128) << QSize(256, 256);
    QTest::newRow("one pixel") << QSize(1, 1) << QSize(256, 256);
    QTest::newRow("short at the lower edge") << QSize(256, 100) << QSize(256, 100);
    QTest::newRow("short at the right edge") << QSize(64, 256) << QSize(64, 256);
    QTest::newRow("short at both edges") << QSize(200, 100) << QSize(200, 100);
    QTest::newRow("short and twice as fine") << QSize(512, 200) << QSize(256, 100);
}

void WebTileLayerTest::aPictureOfAnotherSizeCoversItsPartOfTheTile()
{
    QFETCH(QSize, size);
    QFETCH(QSize, covered);
    TileServer server;
    server.onTile([size](const TileNumbers& tile) {
        return HttpReply::data(pngOf(tile.colour(), size), "image/png");
    });
    WebTileLayer layer;
    layer.setMaxZoom(4);
    QVERIFY(layer.setDataSource(server.tiles()));
    const PixelView view{tileEdge, tileEdge, 3 * tileEdge, 3 * tileEdge, 1.0};
    const QImage picture = complete(layer, view);
    const GeoImage* const tile = layer.tiles().find({0, 3, 3});
    QVERIFY(tile);
    QCOMPARE(tile->size(), size);
    const double pixel = 2 * edge / 16 / tileEdge;
    QCOMPARE((tile->brx - tile->tlx) / pixel, double(covered.width()));
    QCOMPARE((tile->tly - tile->bry) / pixel, double(covered.height()));

    const QRgb colour = TileNumbers{4, 3, 3}.colour();
    for (int x = 2; x < tileEdge - 2; ++x) {
        for (int y = 2; y < tileEdge - 2; ++y) {
            const bool onEdge =
                std::abs(x - covered.width()) < 2 || std::abs(y - covered.height()) < 2;
            const bool inside = x < covered.width() && y < covered.height();
            if (!onEdge) {
                QCOMPARE(picture.pixel(x, y), inside ? colour : qRgba(0, 0, 0, 0));
            }
        }
    }
    QCOMPARE(layer.getSourceState(), QString("ready"));
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

// As wide as two pixels of the finest zoom and as high as the world, which is four million rows.
void WebTileLayerTest::aViewTornOutOfShapeIsShownCoarserAndNotInMillionsOfTiles()
{
    const TileServer server;
    WebTileLayer layer;
    layer.setMaxZoom(22);
    layer.setProgressive(false);
    QVERIFY(layer.setDataSource(server.tiles()));
    const QSize size(16, 256);
    const QRectF world(-edge, edge, 0.6, -2 * edge);
    layer.setView(size.width(), size.height(), world.left(), world.top(), world.right(),
                  world.bottom());
    QCOMPARE(int(layer.getPercentComplete()), 100);
    const int asked = server.requestCount();
    QVERIFY2(asked >= 256 && asked <= 2 * 64 * 3 * 2, qPrintable(QString::number(asked)));

    QImage picture(size, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QRectF painted = world;
    QRect device = picture.rect();
    GeoPainter painter(&picture, painted, device);
    layer.paint(painter, &painted, &device);
    painter.end();
    for (int y = 0; y < size.height(); ++y) {
        QCOMPARE(qAlpha(picture.pixel(8, y)), 255);
    }
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

// They are read on the GUI thread, where a million tags take long.
void WebTileLayerTest::namesOfAServerAreCutToWhatCanBeShown()
{
    QFile file(folder.filePath("endless.webtiles"));
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write("<webtiles url=\"http://example.org/{z}/{x}/{y}.png\" attribution=\"by " +
               QByteArray("&lt;b&gt;x ").repeated(60000) + "\" title=\"" +
               QByteArray("name ").repeated(20000) + "\"/>");
    file.close();
    WebTileLayer layer;
    layer.setProgressive(false);
    QVERIFY(layer.setDataSource(file.fileName()));
    QVERIFY(layer.isValid());
    QVERIFY(layer.getAttribution().startsWith("by x x x x"));
    QVERIFY(layer.getAttribution().size() <= 1000);
    QVERIFY(layer.getDescription().startsWith("name name name"));
    QVERIFY(layer.getDescription().size() <= 200);
}

void WebTileLayerTest::settingsThatMakeNoSourceCanBeMended()
{
    WebTileLayer layer;
    QVERIFY(layer.setDataSource("http://{s}.example.org/{z}/{x}/{y}.png"));
    QVERIFY(layer.isValid());
    layer.setHosts("not a host/?");
    QVERIFY(!layer.isValid());
    QVERIFY(!layer.getLastError().isEmpty());
    layer.setHosts("a");
    QVERIFY(layer.isValid());
    QCOMPARE(layer.getHosts(), QString("a"));
    layer.setHosts(" , ");
    QVERIFY(layer.isValid());
    QCOMPARE(layer.getTileUrl(19, 0, 0, 256, 256, 0, 0, 0, 0),
             QString("http://a.example.org/0/0/0.png"));
}

void WebTileLayerTest::aDocumentKeepsTheNameOfAPresetThatIsMissing()
{
    QDomDocument document;
    QVERIFY(document.setContent(
        QString("<layer><datasource value=\"maps/../gone.webtiles\"/></layer>")));
    QDomNode node = document.documentElement();
    QDir base(folder.path());
    QString errors;
    WebTileLayer layer;
    layer.setProgressive(false); // it is told before it returns
    QVERIFY(layer.readXML(node, base, &errors));
    QVERIFY(!layer.isValid());
    QCOMPARE(layer.getDataSource(), folder.filePath("gone.webtiles"));
    QCOMPARE(errors,
             QString("cannot open %1: %2").arg(layer.getDataSource(), layer.getLastError()));
    QVERIFY(!layer.getLastError().isEmpty());
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
    const QByteArray document = chartOf(server.url("").toUtf8());
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

void WebTileLayerTest::tilesBeyondTheLimitsOfALayerAreEmptyAndNotAskedFor()
{
    TileServer server;
    server.onTile([](const TileNumbers& tile) {
        return tile.x == 0 ? tileReply(tile) : HttpReply::withStatus(400, "TileOutOfRange");
    });
    const QByteArray limits = "<TileMatrixSetLimits><TileMatrixLimits><TileMatrix>1</TileMatrix>"
                              "<MinTileRow>0</MinTileRow><MaxTileRow>1</MaxTileRow>"
                              "<MinTileCol>0</MinTileCol><MaxTileCol>0</MaxTileCol>"
                              "</TileMatrixLimits></TileMatrixSetLimits>";
    server.on("/wmts.xml",
              HttpReply::data(chartOf(server.url("").toUtf8(), limits), "application/xml"));
    WebTileLayer layer;
    QVERIFY(layer.setDataSource(server.url("/wmts.xml")));
    QTRY_VERIFY(layer.isValid());
    const QImage picture = complete(layer, viewOf(layer, 1, 0, 0, 2, 2));
    QCOMPARE(int(layer.getPercentComplete()), 100);
    QCOMPARE(middleOf(picture, 0, 1), (TileNumbers{1, 0, 1}.colour()));
    QCOMPARE(qAlpha(middleOf(picture, 1, 0)), 0);
    QCOMPARE(layer.getLastError(), QString());
    for (const HttpRequest& request : server.requests()) {
        QVERIFY2(request.target.find("/1/1/") == std::string::npos, request.target.c_str());
    }
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

void WebTileLayerTest::namesInCapabilitiesReachTheServerWhole_data()
{
    QTest::addColumn<QByteArray>("access"); // how tiles are asked for; {} is where the server is
    QTest::addColumn<QString>("target");
    QTest::newRow("in a path") << QByteArray(
                                      "<ResourceURL format=\"image/png\" resourceType=\"tile\" "
                                      "template=\"{}/{Style}/{TileMatrixSet}/{TileMatrix}/{TileCol}"
                                      "/{TileRow}?style={Style}&amp;matrix={TileMatrix}\"/>")
                               << "/s%231%2B%26%25/w%20%26%2F/m%23%2B%26%25%20x/0/0"
                                  "?style=s%231%2B%26%25&matrix=m%23%2B%26%25%20x";
    QTest::newRow("in a query") << QByteArray()
                                << "/service?map=a%2Bb%26c&SERVICE=WMTS&REQUEST=GetTile"
                                   "&VERSION=1.0.0&LAYER=l%23%2B%26%25%20x&STYLE=s%231%2B%26%25"
                                   "&FORMAT=image/png&TILEMATRIXSET=w%20%26/"
                                   "&TILEMATRIX=m%23%2B%26%25%20x&TILECOL=0&TILEROW=0";
}

void WebTileLayerTest::namesInCapabilitiesReachTheServerWhole()
{
    QFETCH(QByteArray, access);
    QFETCH(QString, target);
    HttpTestServer server;
    server.onOther([](const HttpRequest&) { return tileReply({0, 0, 0}); });
    QByteArray document =
        "<Capabilities xmlns=\"http://www.opengis.net/wmts/1.0\" "
        "xmlns:ows=\"http://www.opengis.net/ows/1.1\" xmlns:xlink=\"http://www.w3.org/1999/xlink\">"
        "<ows:OperationsMetadata><ows:Operation name=\"GetTile\"><ows:DCP><ows:HTTP>"
        "<ows:Get xlink:href=\"{}/service?map=a%2Bb%26c\"/></ows:HTTP></ows:DCP></ows:Operation>"
        "</ows:OperationsMetadata><Contents><Layer><ows:Identifier>l#+&amp;% x</ows:Identifier>"
        "<Style isDefault=\"true\"><ows:Identifier>s#1+&amp;%</ows:Identifier></Style>"
        "<Format>image/png</Format><TileMatrixSetLink><TileMatrixSet>w &amp;/</TileMatrixSet>"
        "</TileMatrixSetLink>" +
        access +
        "</Layer><TileMatrixSet><ows:Identifier>w &amp;/</ows:Identifier>"
        "<ows:SupportedCRS>urn:ogc:def:crs:EPSG::3857</ows:SupportedCRS>"
        "<TileMatrix><ows:Identifier>m#+&amp;% x</ows:Identifier>"
        "<ScaleDenominator>559082264.0287178</ScaleDenominator>"
        "<TopLeftCorner>-20037508.342789 20037508.342789</TopLeftCorner>"
        "<TileWidth>256</TileWidth><TileHeight>256</TileHeight></TileMatrix>"
        "</TileMatrixSet></Contents></Capabilities>";
    document.replace("{}", server.url("").toUtf8());
    server.on("/wmts.xml", HttpReply::data(document, "application/xml"));
    WebTileLayer layer;
    QVERIFY(layer.setDataSource(server.url("/wmts.xml#layer=l%23+&%25 x")));
    QTRY_VERIFY(layer.isValid());
    complete(layer, viewOf(layer, 0, 0, 0, 1, 1));
    QCOMPARE(server.requestCount(), 2);
    QCOMPARE(QString::fromStdString(server.requests().back().target), target);
}

int main(int argc, char** argv)
{
    QLoggingCategory::setFilterRules("corvane.tiles.debug=false");
    Application application(argc, argv, "WebTileLayerTest");
    WebTileLayerTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "WebTileLayerTest.moc"
