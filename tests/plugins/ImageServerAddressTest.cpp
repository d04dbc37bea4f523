#include <plugins/imageserver/ImageGrid.h>
#include <plugins/imageserver/ImageServerAddress.h>

#include <plugins/common/ServerSource.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

using namespace Corvane::Map;

namespace {

/// What a server says of an image of 600 by 500 pixels.
QJsonObject usualGrid()
{
    const auto level = [](int z, int width, int height) {
        return QJsonObject{{"z", z}, {"size", QJsonArray{width, height}}};
    };
    return {{"version", "v1"},
            {"tiles", "/tiles/a.tif/{z}/{x}/{y}.{format}?v=v1"},
            {"size", QJsonArray{600, 500}},
            {"tileSize", 256},
            {"origin", QJsonArray{1000.0, 5000.0}},
            {"cellSize", QJsonArray{2.0, -2.0}},
            {"epsg", 32633},
            {"coordinateSystem", "UTM"},
            {"cellType", "UINT8"},
            {"colorSpace", "RGB"},
            {"bands", 3},
            {"opacity", true},
            {"levels", QJsonArray{level(0, 150, 125), level(1, 300, 250), level(2, 600, 500)}}};
}

} // namespace

/// What addresses and grids are read from texts.
class ImageServerAddressTest : public QObject
{
    Q_OBJECT
private slots:
    void addressesAreTakenApart_data();
    void addressesAreTakenApart();
    void otherTextsAreNoAddresses_data();
    void otherTextsAreNoAddresses();
    void whatOnlyAnImageServerCanBeMeantBy_data();
    void whatOnlyAnImageServerCanBeMeantBy();
    void credentialsMakeTheHeader();
    void aGridIsRead();
    void aGridThatMakesNoPyramidIsRefused_data();
    void aGridThatMakesNoPyramidIsRefused();
    void theLastTilesAreSmaller();
};

void ImageServerAddressTest::addressesAreTakenApart_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("grid");
    QTest::addColumn<QString>("plain");
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("password");
    const auto row = [](const char* name, const char* text, const char* grid, const char* plain,
                        const char* user = "", const char* password = "") {
        QTest::newRow(name) << QString(text) << QString(grid) << QString(plain) << QString(user)
                            << QString(password);
    };
    row("HTTP", "http://h/a.tif", "http://h/tiles/a.tif", "http://h/a.tif");
    row("HTTPS with a port", "https://h:8/a.tif", "https://h:8/tiles/a.tif", "https://h:8/a.tif");
    row("streaming", "zwtp://h/a.jp2", "http://h/tiles/a.jp2", "zwtp://h/a.jp2");
    row("secure streaming", "zwtps://h:8460/a.jp2", "https://h:8460/tiles/a.jp2",
        "zwtps://h:8460/a.jp2");
    row("the scheme in capitals", "ZWTP://h/A.jp2", "http://h/tiles/A.jp2", "zwtp://h/A.jp2");
    row("a service", "zwtp://h/north/a.jp2", "http://h/tiles/north/a.jp2", "zwtp://h/north/a.jp2");
    row("a service that was left empty", "http://h//a.tif", "http://h/tiles/a.tif",
        "http://h//a.tif");
    row("credentials", "zwtp://h/a.jp2|ann|secret", "http://h/tiles/a.jp2", "zwtp://h/a.jp2", "ann",
        "secret");
    row("credentials behind HTTP", "http://h/a.tif|ann|secret", "http://h/tiles/a.tif",
        "http://h/a.tif", "ann", "secret");
    row("a password with bars", "zwtp://h/a.jp2|ann|a|b|", "http://h/tiles/a.jp2", "zwtp://h/a.jp2",
        "ann", "a|b|");
    row("a password with other letters", "zwtp://h/a.jp2|ann|a @/:#%20", "http://h/tiles/a.jp2",
        "zwtp://h/a.jp2", "ann", "a @/:#%20");
    row("credentials before the host", "http://ann:se%3Acret@h/a.tif", "http://h/tiles/a.tif",
        "http://h/a.tif", "ann", "se:cret");
    row("letters that URLs pack", "http://h/a b%23%25c.tif", "http://h/tiles/a%20b%23%25c.tif",
        "http://h/a b%23%25c.tif");
}

void ImageServerAddressTest::addressesAreTakenApart()
{
    QFETCH(QString, text);
    QFETCH(QString, grid);
    QFETCH(QString, plain);
    QFETCH(QString, user);
    QFETCH(QString, password);
    const auto address = ImageServerAddress::parse(text);
    QVERIFY(address);
    QCOMPARE(QString::fromLatin1(address->gridUrl().toEncoded()), grid);
    QCOMPARE(address->plain, plain);
    QCOMPARE(address->credentials.user, user);
    QCOMPARE(address->credentials.password, password);
}

void ImageServerAddressTest::otherTextsAreNoAddresses_data()
{
    QTest::addColumn<QString>("text");
    for (const char* const text :
         {"", "a.tif", "/data/a.tif", "/data/a|b|c.tif", "C:/a.tif", "s3://bucket/a.tif",
          "file:///a.tif", "http:", "http://", "http:///a.tif", "http://h", "http://h/",
          "zwtp://h//", "/vsicurl/http://h/a.tif", "|ann|secret", "http://h/{z}/{x}/{y}.png"})
    {
        QTest::newRow(text) << QString(text);
    }
}

void ImageServerAddressTest::otherTextsAreNoAddresses()
{
    QFETCH(QString, text);
    QVERIFY(!ImageServerAddress::parse(text));
}

void ImageServerAddressTest::whatOnlyAnImageServerCanBeMeantBy_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("sure");
    QTest::newRow("streaming") << "zwtp://h/a.tif" << true;
    QTest::newRow("secure streaming") << "ZWTPS://h/a.tif" << true;
    QTest::newRow("HTTP with credentials") << "http://h/a.tif|ann|secret" << true;
    QTest::newRow("HTTP") << "http://h/a.tif" << false;
    QTest::newRow("HTTP with one bar") << "http://h/a|b.tif" << false;
    QTest::newRow("a file with bars") << "/data/a|b|c.tif" << false;
    QTest::newRow("a file of that name") << "zwtp.tif" << false;
}

void ImageServerAddressTest::whatOnlyAnImageServerCanBeMeantBy()
{
    QFETCH(QString, text);
    QFETCH(bool, sure);
    QCOMPARE(ServerSource::isForImageServer(text), sure);
}

void ImageServerAddressTest::credentialsMakeTheHeader()
{
    QCOMPARE(ServerCredentials().authorization(), QByteArray());
    const ServerCredentials credentials{"ann", QString::fromUtf8("s:\xc3\xbc")};
    QCOMPARE(credentials.authorization(), "Basic " + QByteArray("ann:s:\xc3\xbc").toBase64());
}

void ImageServerAddressTest::aGridIsRead()
{
    QString error;
    const auto grid = ImageGrid::parse(QJsonDocument(usualGrid()).toJson(), &error);
    QVERIFY2(grid, qPrintable(error));
    QCOMPARE(grid->bounds(), QRectF(1000.0, 5000.0, 1200.0, -1000.0));
    QCOMPARE(grid->levels, 3);
    QCOMPARE(grid->tileTarget(0, 2, 1), QByteArray("/tiles/a.tif/2/2/1.png?v=v1"));
    QCOMPARE(grid->tileTarget(2, 0, 0), QByteArray("/tiles/a.tif/0/0/0.png?v=v1"));
    QCOMPARE(grid->epsg, 32633);
    QVERIFY(grid->opacity);
}

void ImageServerAddressTest::aGridThatMakesNoPyramidIsRefused_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QJsonValue>("value");
    const auto row = [](const char* name, const char* key, const QJsonValue& value) {
        QTest::newRow(name) << QString(key) << value;
    };
    row("no size", "size", QJsonValue());
    row("an empty size", "size", QJsonArray{0, 500});
    row("a negative size", "size", QJsonArray{600, -500});
    row("another size than that of its levels", "size", QJsonArray{600, 400});
    row("no tile size", "tileSize", QJsonValue());
    row("a huge tile size", "tileSize", 100000);
    row("no cell size", "cellSize", QJsonArray());
    row("cells that lie upside down", "cellSize", QJsonArray{2.0, 2.0});
    row("no levels", "levels", QJsonArray());
    row("levels that are none", "levels", QJsonArray{1, 2, 3});
    row("tiles of another server", "tiles", "http://elsewhere/{z}/{x}/{y}.png");
    row("tiles of another server, in short", "tiles", "//elsewhere/{z}/{x}/{y}.png");
    row("one tile for all", "tiles", "/tile.png");
    row("no tiles", "tiles", QJsonValue());
}

void ImageServerAddressTest::aGridThatMakesNoPyramidIsRefused()
{
    QFETCH(QString, key);
    QFETCH(QJsonValue, value);
    QJsonObject object = usualGrid();
    object[key] = value;
    QString error;
    QVERIFY(!ImageGrid::parse(QJsonDocument(object).toJson(), &error));
    QCOMPARE(error, QString("the server does not describe the image's grid"));
    QVERIFY(!ImageGrid::parse("no JSON", &error));
}

void ImageServerAddressTest::theLastTilesAreSmaller()
{
    QString error;
    const auto grid = ImageGrid::parse(QJsonDocument(usualGrid()).toJson(), &error);
    QVERIFY(grid);
    QCOMPARE(grid->sizeOfTile(0, 0, 0), QSize(256, 256));
    QCOMPARE(grid->sizeOfTile(0, 2, 1), QSize(88, 244));
    QCOMPARE(grid->sizeOfTile(1, 1, 0), QSize(44, 250));
    QVERIFY(grid->sizeOfTile(0, 3, 0).isEmpty());
    QVERIFY(grid->sizeOfTile(0, 4000000000U, 4000000000U).isEmpty());
}

QTEST_GUILESS_MAIN(ImageServerAddressTest)
#include "ImageServerAddressTest.moc"
