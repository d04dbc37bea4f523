#include <tests/plugins/TestRasters.h>
#include <tests/server/ServerProcess.h>

#include <QDir>
#include <QDomDocument>
#include <QImage>
#include <QJsonArray>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using namespace Corvane::Tests;

namespace {

const QByteArray pictures("/tavro-krs/tavro/raxion?request=image&cache=true");
const QByteArray details("/tavro-krs/tavro/raxion?request=dsinfo&verbose=true");

QDomElement first(const ServerAnswer& answer, const char* tag)
{
    QDomDocument document;
    document.setContent(answer.body);
    return document.elementsByTagName(tag).at(0).toElement();
}

/// Name and value of each attribute, in order of name.
QStringList attributesOf(const QDomElement& element)
{
    QStringList lines;
    const QDomNamedNodeMap all = element.attributes();
    for (int i = 0; i < all.size(); ++i) {
        const QDomAttr attribute = all.item(i).toAttr();
        lines.append(attribute.name() + '=' + attribute.value());
    }
    lines.sort();
    return lines;
}

QImage imageOf(const ServerAnswer& answer)
{
    return answer.status == 200 ? QImage::fromData(answer.body) : QImage();
}

} // namespace

/// Pictures, details and tiles, against the pixels that GDAL reads.
class ServedImagesTest : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void aPictureFitsIntoItsBox_data();
    void aPictureFitsIntoItsBox();
    void aSmallImageIsNotEnlarged();
    void theOldPathGivesTheSamePicture();
    void pictureSizesThatAreNoneAreRefused_data();
    void pictureSizesThatAreNoneAreRefused();
    void aPictureIsKeptOnlyWhereTheClientMayKeepIt();
    void theDetailsSayWhatTheImageIs();
    void theDetailsOfAnImageWithOpacityAndDegrees();
    void theDetailsOfAnImageWithoutAPlace();
    void unknownImagesAndRequestsAreRefused();
    void theGridIsThatOfTheRaster();
    void theGridEndsWhereOneTileHoldsTheImage();
    void everyPixelOfTheFullResolutionComes();
    void aCoarseLevelIsTheOverview();
    void aJpegTileIsSmallerAndClose();
    void imagesThatCanBeTransparentGiveNoJpeg();
    void tilesOutsideAreNotThere_data();
    void tilesOutsideAreNotThere();
    void whatTheClientHasIsNotSentAgain_data();
    void whatTheClientHasIsNotSentAgain();
    void aTileOfAVersionIsForEverAndOthersAreAskedForAgain();
    void theAddressInTheGridIsThatOfTheTiles();
    void headSaysWhatGetWouldBring();
    void partsOfTilesAreNotServed();
    void everyFormatOfValuesGivesAPicture_data();
    void everyFormatOfValuesGivesAPicture();

private:
    QString file(const char* name) const { return base->filePath(name); }

    std::unique_ptr<QTemporaryDir> base;
};

void ServedImagesTest::init()
{
    base = std::make_unique<QTemporaryDir>();
}

void ServedImagesTest::aPictureFitsIntoItsBox_data()
{
    QTest::addColumn<QByteArray>("size");
    QTest::addColumn<QSize>("expected");
    QTest::newRow("wide box") << QByteArray("&sizex=168&sizey=48") << QSize(57, 48);
    QTest::newRow("narrow box") << QByteArray("&sizex=60&sizey=200") << QSize(60, 50);
    QTest::newRow("a pixel") << QByteArray("&sizex=1&sizey=1") << QSize(1, 1);
    QTest::newRow("no size") << QByteArray() << QSize(256, 213);
    QTest::newRow("larger than anybody needs")
        << QByteArray("&sizex=999999&sizey=999999") << QSize(600, 500);
}

void ServedImagesTest::aPictureFitsIntoItsBox()
{
    QFETCH(QByteArray, size);
    QFETCH(QSize, expected);
    QVERIFY(makeRaster(file("a.tif"), RasterRecipe()));
    ServerProcess server(base->path());
    const ServerAnswer answer = server.ask(pictures + "&layers=/a.tif" + size);
    QCOMPARE(answer.header("Content-Type"), QByteArray("image/png"));
    QCOMPARE(imageOf(answer).size(), expected);
}

void ServedImagesTest::aSmallImageIsNotEnlarged()
{
    RasterRecipe recipe;
    recipe.size = QSize(40, 30);
    recipe.options.clear();
    QVERIFY(makeRaster(file("a.tif"), recipe));
    ServerProcess server(base->path());
    const QImage picture = imageOf(server.ask(pictures + "&layers=/a.tif&sizex=168&sizey=100"));
    QCOMPARE(picture.size(), QSize(40, 30));
    QCOMPARE(qRed(picture.pixel(7, 5)), int(plainValue(1, 7, 5)));
    QCOMPARE(qBlue(picture.pixel(39, 29)), int(plainValue(3, 39, 29)));
}

void ServedImagesTest::theOldPathGivesTheSamePicture()
{
    QVERIFY(makeRaster(file("a.tif"), RasterRecipe()));
    ServerProcess server(base->path());
    const QByteArray items("cache=true&layers=/a.tif&sizex=100&sizey=100");
    const QImage expected = imageOf(server.ask("/tavro-krs/tavro/raxion?request=image&" + items));
    QCOMPARE(expected.size(), QSize(100, 83));
    QCOMPARE(imageOf(server.ask("/zwtp/raxion.dll%3Fimage?" + items)), expected);
    QCOMPARE(imageOf(server.ask("/zwtp/raxion.dll?image&" + items)), expected);
    // an empty service is the usual one
    QCOMPARE(imageOf(server.ask("/tavro-krs/tavro/raxion?service=&request=image&" + items)),
             expected);
}

void ServedImagesTest::pictureSizesThatAreNoneAreRefused_data()
{
    QTest::addColumn<QByteArray>("size");
    for (const char* const size : {"0", "-2", "many", "", "1.5", "99999999999"}) {
        QTest::newRow(size) << QByteArray(size);
    }
}

void ServedImagesTest::pictureSizesThatAreNoneAreRefused()
{
    QFETCH(QByteArray, size);
    QVERIFY(makeRaster(file("a.tif"), RasterRecipe()));
    ServerProcess server(base->path());
    const ServerAnswer answer =
        server.ask(pictures + "&layers=/a.tif&sizex=" + size + "&sizey=100");
    QCOMPARE(answer.status, 400);
    QCOMPARE(answer.body, QByteArray("sizex and sizey are numbers of pixels above 0\n"));
}

void ServedImagesTest::aPictureIsKeptOnlyWhereTheClientMayKeepIt()
{
    QVERIFY(makeRaster(file("a.tif"), RasterRecipe()));
    ServerProcess server(base->path());
    const QByteArray path("/tavro-krs/tavro/raxion?request=image&layers=/a.tif&cache=");
    QCOMPARE(server.ask(path + "true").header("Cache-Control"), QByteArray("max-age=60"));
    QCOMPARE(server.ask(path + "false").header("Cache-Control"), QByteArray("no-store"));
}

void ServedImagesTest::theDetailsSayWhatTheImageIs()
{
    QVERIFY(makeRaster(file("a.tif"), RasterRecipe()));
    ServerProcess server(base->path());
    const ServerAnswer answer = server.ask(details + "&layers=/a.tif");
    QCOMPARE(attributesOf(first(answer, "DSINFO")),
             QStringList({"colorspace=RGB", "height=500", "layers=1", "name=/a.tif", "width=600"}));
    QCOMPARE(attributesOf(first(answer, "COORDSPACE")),
             QStringList({"epsg=32633", "name=WGS 84 / UTM zone 33N", "units=METERS"}));
    QCOMPARE(attributesOf(first(answer, "BBOX")),
             QStringList(
                 {"brX=2200", "brY=4000", "cellsizeX=2", "cellsizeY=2", "tlX=1000", "tlY=5000"}));
    QCOMPARE(attributesOf(first(answer, "LAYER")), QStringList({"celltype=UINT8", "name=a.tif"}));
    QCOMPARE(attributesOf(first(answer, "Bands")), QStringList({"HasAllOpacity=false", "num=3"}));
}

void ServedImagesTest::theDetailsOfAnImageWithOpacityAndDegrees()
{
    RasterRecipe recipe;
    recipe.bands = 4;
    recipe.type = GDT_UInt16;
    recipe.epsg = 4326;
    recipe.transform = {-20.0, 0.01, 0.0, 60.0, 0.0, -0.01};
    recipe.options += "ALPHA=YES";
    QVERIFY(makeRaster(file("a.tif"), recipe));
    ServerProcess server(base->path());
    const ServerAnswer answer = server.ask(details + "&layers=/a.tif");
    QCOMPARE(first(answer, "COORDSPACE").attribute("units"), QString("DEGREES"));
    QCOMPARE(first(answer, "LAYER").attribute("celltype"), QString("UINT16"));
    QCOMPARE(attributesOf(first(answer, "Bands")), QStringList({"HasAllOpacity=true", "num=4"}));
    QCOMPARE(first(answer, "DSINFO").attribute("colorspace"), QString("RGB"));
}

void ServedImagesTest::theDetailsOfAnImageWithoutAPlace()
{
    RasterRecipe recipe;
    recipe.bands = 1;
    recipe.epsg = 0;
    recipe.transform.clear();
    QVERIFY(makeRaster(file("a.tif"), recipe));
    ServerProcess server(base->path());
    const ServerAnswer answer = server.ask(details + "&layers=/a.tif");
    QCOMPARE(first(answer, "DSINFO").attribute("colorspace"), QString("Greyscale"));
    QCOMPARE(attributesOf(first(answer, "COORDSPACE")),
             QStringList({"epsg=0", "name=", "units=PIXELS"}));
    QCOMPARE(attributesOf(first(answer, "BBOX")),
             QStringList({"brX=600", "brY=0", "cellsizeX=1", "cellsizeY=1", "tlX=0", "tlY=500"}));
}

void ServedImagesTest::unknownImagesAndRequestsAreRefused()
{
    QVERIFY(makeRaster(file("a.tif"), RasterRecipe()));
    ServerProcess server(base->path());
    QCOMPARE(server.ask(details + "&layers=/b.tif").status, 404);
    QCOMPARE(server.ask(details + "&layers=/b.tif").body,
             QByteArray("there is no image \"/b.tif\"\n"));
    QCOMPARE(server.ask(pictures).status, 404);
    QCOMPARE(server.ask("/tavro-krs/tavro/raxion?request=map&layers=/a.tif").body,
             QByteArray("unknown request \"map\"\n"));
    QCOMPARE(server.ask("/").status, 404);
    QCOMPARE(server.ask("/tiles/").status, 404);
    QCOMPARE(server.ask("/a.tif").status, 404);
    QCOMPARE(server.ask("/tiles/a.tif", {}, "POST", "{}").status, 404);
    // a catalog names formats in capitals, from which clients make suffixes
    QCOMPARE(server.ask(details + "&layers=/a.TIF").status, 200);
    QCOMPARE(server.ask(details + "&layers=/A.tif").status, 404);
}

void ServedImagesTest::theGridIsThatOfTheRaster()
{
    QVERIFY(makeRaster(file("a.tif"), RasterRecipe()));
    ServerProcess server(base->path());
    const ServerAnswer answer = server.ask("/tiles/a.tif");
    QCOMPARE(answer.header("Content-Type"), QByteArray("application/json; charset=utf-8"));
    QJsonObject grid = answer.json();
    const QString version = grid.take("version").toString();
    QCOMPARE(version.size(), 16);
    const QJsonObject expected{
        {"path", "/a.tif"},
        {"tiles", "/tiles/a.tif/{z}/{x}/{y}.{format}?v=" + version},
        {"formats", QJsonArray{"png", "jpg"}},
        {"size", QJsonArray{600, 500}},
        {"tileSize", 256},
        {"origin", QJsonArray{1000.0, 5000.0}},
        {"cellSize", QJsonArray{2.0, -2.0}},
        {"geotransform", QJsonArray{1000.0, 2.0, 0.0, 5000.0, 0.0, -2.0}},
        {"georeferenced", true},
        {"epsg", 32633},
        {"coordinateSystem", "WGS 84 / UTM zone 33N"},
        {"units", "METERS"},
        {"bands", 3},
        {"cellType", "UINT8"},
        {"colorSpace", "RGB"},
        {"opacity", false},
        {"levels", QJsonArray{QJsonObject{{"z", 0},
                                          {"size", QJsonArray{150, 125}},
                                          {"tiles", QJsonArray{1, 1}},
                                          {"cellSize", QJsonArray{8.0, -8.0}}},
                              QJsonObject{{"z", 1},
                                          {"size", QJsonArray{300, 250}},
                                          {"tiles", QJsonArray{2, 1}},
                                          {"cellSize", QJsonArray{4.0, -4.0}}},
                              QJsonObject{{"z", 2},
                                          {"size", QJsonArray{600, 500}},
                                          {"tiles", QJsonArray{3, 2}},
                                          {"cellSize", QJsonArray{2.0, -2.0}}}}}};
    QCOMPARE(grid, expected);
    QCOMPARE(server.ask("/tiles/a.tif/").json(), answer.json());
}

void ServedImagesTest::theGridEndsWhereOneTileHoldsTheImage()
{
    RasterRecipe recipe;
    recipe.size = QSize(256, 256);
    QVERIFY(makeRaster(file("one.tif"), recipe));
    recipe.size = QSize(257, 1);
    recipe.options.clear();
    QVERIFY(makeRaster(file("two.tif"), recipe));
    ServerProcess server(base->path());
    QCOMPARE(server.ask("/tiles/one.tif").json()["levels"].toArray().size(), 1);
    const QJsonArray levels = server.ask("/tiles/two.tif").json()["levels"].toArray();
    QCOMPARE(levels.size(), 2);
    QCOMPARE(levels[0].toObject()["size"].toArray(), QJsonArray({129, 1}));
    QCOMPARE(imageOf(server.ask("/tiles/two.tif/1/1/0.png")).size(), QSize(1, 1));
}

void ServedImagesTest::everyPixelOfTheFullResolutionComes()
{
    QVERIFY(makeRaster(file("a.tif"), RasterRecipe()));
    ServerProcess server(base->path());
    const Dataset raster = openRaster(file("a.tif"));
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 3; ++x) {
            const QRect pixels = QRect(x * 256, y * 256, 256, 256) & QRect(0, 0, 600, 500);
            const QImage tile =
                imageOf(server.ask(QString("/tiles/a.tif/2/%1/%2.png").arg(x).arg(y).toLatin1()));
            QCOMPARE(tile.size(), pixels.size());
            QImage expected(pixels.size(), QImage::Format_RGB32);
            for (int row = 0; row < pixels.height(); ++row) {
                for (int column = 0; column < pixels.width(); ++column) {
                    const int left = pixels.x() + column;
                    const int top = pixels.y() + row;
                    expected.setPixel(column, row,
                                      qRgb(int(plainValue(1, left, top)),
                                           int(plainValue(2, left, top)),
                                           int(plainValue(3, left, top))));
                }
            }
            QCOMPARE(tile.convertToFormat(QImage::Format_RGB32), expected);
        }
    }
}

void ServedImagesTest::aCoarseLevelIsTheOverview()
{
    RasterRecipe recipe;
    recipe.overviews = {2, 4};
    QVERIFY(makeRaster(file("a.tif"), recipe));
    ServerProcess server(base->path());
    const QImage tile = imageOf(server.ask("/tiles/a.tif/0/0/0.png"));
    QCOMPARE(tile.size(), QSize(150, 125));
    const Dataset raster = openRaster(file("a.tif"));
    GDALRasterBandH overview = GDALGetOverview(GDALGetRasterBand(raster.get(), 2), 1);
    std::vector<unsigned char> values(150 * 125);
    QCOMPARE(
        GDALRasterIO(overview, GF_Read, 0, 0, 150, 125, values.data(), 150, 125, GDT_Byte, 0, 0),
        CE_None);
    for (int y = 0; y < 125; ++y) {
        for (int x = 0; x < 150; ++x) {
            QCOMPARE(qGreen(tile.pixel(x, y)), int(values[std::size_t(y) * 150 + std::size_t(x)]));
        }
    }
}

void ServedImagesTest::aJpegTileIsSmallerAndClose()
{
    RasterRecipe recipe;
    recipe.value = [](int band, int x, int y) {
        return 128 + 100 * std::sin((x + y * band) / 40.0);
    };
    QVERIFY(makeRaster(file("a.tif"), recipe));
    ServerProcess server(base->path());
    const ServerAnswer plain = server.ask("/tiles/a.tif/2/0/0.png");
    const ServerAnswer packed = server.ask("/tiles/a.tif/2/0/0.jpg");
    QCOMPARE(packed.header("Content-Type"), QByteArray("image/jpeg"));
    QVERIFY(packed.body.size() < plain.body.size());
    const QImage a = imageOf(plain);
    const QImage b = imageOf(packed);
    QCOMPARE(b.size(), QSize(256, 256));
    for (int i = 0; i < 256; i += 5) {
        QVERIFY(std::abs(qGreen(a.pixel(i, 100)) - qGreen(b.pixel(i, 100))) < 12);
    }
}

void ServedImagesTest::imagesThatCanBeTransparentGiveNoJpeg()
{
    RasterRecipe recipe;
    recipe.bands = 4;
    recipe.options += "ALPHA=YES";
    recipe.value = [](int band, int x, int) { return band == 4 ? (x < 100 ? 0 : 255) : 50; };
    QVERIFY(makeRaster(file("a.tif"), recipe));
    ServerProcess server(base->path());
    QCOMPARE(server.ask("/tiles/a.tif").json()["formats"].toArray(), QJsonArray({"png"}));
    QCOMPARE(server.ask("/tiles/a.tif/2/0/0.jpg").status, 404);
    const QImage tile = imageOf(server.ask("/tiles/a.tif/2/0/0.png"));
    QCOMPARE(qAlpha(tile.pixel(99, 0)), 0);
    QCOMPARE(tile.pixel(100, 0), qRgba(50, 50, 50, 255));
}

void ServedImagesTest::tilesOutsideAreNotThere_data()
{
    QTest::addColumn<QByteArray>("tile");
    for (const char* const tile :
         {"/3/0/0.png", "/2/3/0.png", "/2/0/2.png", "/0/1/0.png", "/99/0/0.png",
          "/2/999999999/0.png", "/2/0/999999999.png", "/2/-1/0.png", "/2/0/0.gif", "/2/0/0", "/2/0",
          "/2/0/9999999999.png", "/2/0/0.png/", "/2/a/0.png"})
    {
        QTest::newRow(tile) << QByteArray(tile);
    }
}

void ServedImagesTest::tilesOutsideAreNotThere()
{
    QFETCH(QByteArray, tile);
    QVERIFY(makeRaster(file("a.tif"), RasterRecipe()));
    ServerProcess server(base->path());
    const int expected = tile == "/2/0/0.png/" ? 200 : 404; // a slash at the end says nothing
    QCOMPARE(server.ask("/tiles/a.tif" + tile).status, expected);
}

void ServedImagesTest::whatTheClientHasIsNotSentAgain_data()
{
    QTest::addColumn<QByteArray>("target");
    QTest::newRow("a tile") << QByteArray("/tiles/a.tif/2/0/0.png");
    QTest::newRow("a grid") << QByteArray("/tiles/a.tif");
    QTest::newRow("a picture") << pictures + "&layers=/a.tif";
    QTest::newRow("details") << details + "&layers=/a.tif";
}

void ServedImagesTest::whatTheClientHasIsNotSentAgain()
{
    QFETCH(QByteArray, target);
    QVERIFY(makeRaster(file("a.tif"), RasterRecipe()));
    ServerProcess server(base->path());
    const QByteArray etag = server.ask(target).header("ETag");
    QVERIFY(etag.startsWith('"') && etag.endsWith('"'));
    for (const QByteArray& tags : {etag, "W/" + etag, "\"x\", " + etag, QByteArray("*")}) {
        const ServerAnswer answer = server.ask(target, {"If-None-Match: " + tags});
        QCOMPARE(answer.status, 304);
        QVERIFY(answer.body.isEmpty());
        QCOMPARE(answer.header("ETag"), etag);
    }
    QCOMPARE(server.ask(target, {"If-None-Match: \"x\""}).status, 200);
}

void ServedImagesTest::aTileOfAVersionIsForEverAndOthersAreAskedForAgain()
{
    QVERIFY(makeRaster(file("a.tif"), RasterRecipe()));
    ServerProcess server(base->path());
    const QByteArray version = server.ask("/tiles/a.tif").json()["version"].toString().toLatin1();
    QCOMPARE(server.ask("/tiles/a.tif/2/0/0.png?v=" + version).header("Cache-Control"),
             QByteArray("max-age=31536000, immutable"));
    QCOMPARE(server.ask("/tiles/a.tif/2/0/0.png").header("Cache-Control"), QByteArray("no-cache"));
    const ServerAnswer other = server.ask("/tiles/a.tif/2/0/0.png?v=0123");
    QCOMPARE(other.status, 409);
    QCOMPARE(other.header("Cache-Control"), QByteArray("no-store"));
}

void ServedImagesTest::theAddressInTheGridIsThatOfTheTiles()
{
    QVERIFY(makeRaster(base->filePath(QString::fromUtf8("a b#\xc3\xbc{z}%1.tif")), RasterRecipe()));
    ServerProcess server(base->path());
    const QByteArray path = "/a b#\xc3\xbc{z}%1.tif";
    QString address = server.ask("/tiles" + path.toPercentEncoding("/")).json()["tiles"].toString();
    address.replace("{z}", "2").replace("{x}", "1").replace("{y}", "0").replace("{format}", "png");
    QCOMPARE(imageOf(server.ask(address.toLatin1())).size(), QSize(256, 256));
}

void ServedImagesTest::headSaysWhatGetWouldBring()
{
    QVERIFY(makeRaster(file("a.tif"), RasterRecipe()));
    ServerProcess server(base->path());
    const ServerAnswer get = server.ask("/tiles/a.tif/2/0/0.png");
    const ServerAnswer head = server.ask("/tiles/a.tif/2/0/0.png", {}, "HEAD");
    QCOMPARE(head.status, 200);
    QVERIFY(head.body.isEmpty());
    for (const char* const name : {"Content-Length", "Content-Type", "ETag", "Cache-Control"}) {
        QVERIFY(!get.header(name).isEmpty());
        QCOMPARE(head.header(name), get.header(name));
    }
}

// A short list of parts could ask for thousands of pictures at once.
void ServedImagesTest::partsOfTilesAreNotServed()
{
    QVERIFY(makeRaster(file("a.tif"), RasterRecipe()));
    ServerProcess server(base->path());
    const QByteArray all = server.ask("/tiles/a.tif/2/0/0.png").body;
    QVERIFY(!all.isEmpty());
    for (const QByteArray& parts :
         {QByteArray("10-19"), QByteArray("0-") + QByteArray(",0-").repeated(2000)})
    {
        const ServerAnswer whole = server.ask("/tiles/a.tif/2/0/0.png", {"rANGE: bytes=" + parts});
        QCOMPARE(whole.status, 200);
        QCOMPARE(whole.body, all);
    }
    QCOMPARE(server.ask("/tiles/a.tif/2/0/0.png", {}, "HEAD").header("Accept-Ranges"),
             QByteArray("none"));
}

void ServedImagesTest::everyFormatOfValuesGivesAPicture_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("cellType");
    QTest::newRow("bytes") << int(GDT_Byte) << "UINT8";
    QTest::newRow("16 bits") << int(GDT_UInt16) << "UINT16";
    QTest::newRow("16 bits with a sign") << int(GDT_Int16) << "INT16";
    QTest::newRow("32 bits") << int(GDT_UInt32) << "UINT32";
    QTest::newRow("short floats") << int(GDT_Float32) << "FLOAT32";
    QTest::newRow("long floats") << int(GDT_Float64) << "FLOAT64";
}

void ServedImagesTest::everyFormatOfValuesGivesAPicture()
{
    QFETCH(int, type);
    QFETCH(QString, cellType);
    RasterRecipe recipe;
    recipe.type = static_cast<GDALDataType>(type);
    recipe.bands = 1;
    QVERIFY(makeRaster(file("a.tif"), recipe));
    ServerProcess server(base->path());
    QCOMPARE(server.ask("/tiles/a.tif").json()["cellType"].toString(), cellType);
    const QImage tile = imageOf(server.ask("/tiles/a.tif/0/0/0.png"));
    QVERIFY(!tile.isNull());
    QVERIFY(tile.pixel(10, 10) != tile.pixel(60, 90));
}

QTEST_GUILESS_MAIN(ServedImagesTest)
#include "ServedImagesTest.moc"
