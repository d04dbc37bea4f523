#include <plugins/imageserver/ImageServerLayer.h>

#include <tests/plugins/LayerProbe.h>
#include <tests/plugins/TestRasters.h>
#include <tests/server/ServerProcess.h>

#include <plugins/common/TileCache.h>
#include <plugins/imageserver/ServerLogins.h>
#include <plugins/raster/GdalRasterLayer.h>

#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QLoggingCategory>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtTest>

#include <memory>

using namespace Corvane;
using namespace Corvane::Map;
using namespace Corvane::Tests;

namespace {

constexpr int generous = 60000; // milliseconds, for what has to come at some time

RasterRecipe usualRecipe()
{
    RasterRecipe recipe;
    recipe.size = QSize(1500, 1100);
    recipe.overviews = {2, 4, 8};
    return recipe;
}

} // namespace

/// Images of the real server program.
class ImageServerLayerTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

    void theImageLooksAsItDoesFromTheFile_data();
    void theImageLooksAsItDoesFromTheFile();
    void rastersOfAllKindsLookAsTheyDoFromTheFile_data();
    void rastersOfAllKindsLookAsTheyDoFromTheFile();
    void theLayerTellsWhatTheServerTells();
    void everyWayToNameTheImageOpensIt_data();
    void everyWayToNameTheImageOpensIt();
    void anImageThatIsNotThereDoesNotOpen();
    void aServerThatIsNotThereDoesNotOpen();
    void sourcesOfOtherKindsAreRefusedWithoutAWord_data();
    void sourcesOfOtherKindsAreRefusedWithoutAWord();
    void theLayerFollowsTheImageThatChanges();
    void aSourceThatIsNamedTwiceIsOpenedOnce();

    void credentialsBehindTheUrlOpenAProtectedImage();
    void withoutCredentialsTheReasonIsTold();
    void wrongCredentialsAreToldOfWithoutThem();
    void noTextHoldsThePassword();
    void aDocumentHoldsTheUserAlone();
    void aDocumentOpensWhileTheProgramKnowsThePassword();
    void aPasswordThatIsSetOpensTheLayer();
    void anotherUserIsAskedForAnew();
    void theRasterPluginLeavesPasswordsOutOfTheLog_data();
    void theRasterPluginLeavesPasswordsOutOfTheLog();

private:
    QStringList protection() const;
    QString file(const char* name) const { return base->filePath(QString("images/") + name); }

    std::unique_ptr<QTemporaryDir> base;
};

void ImageServerLayerTest::initTestCase()
{
    TileCache::instance().setFolder(QString(), 0);
}

void ImageServerLayerTest::init()
{
    base = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir().mkpath(file("north")));
    QFile password(base->filePath("password"));
    QVERIFY(password.open(QIODevice::WriteOnly));
    password.write("sesame|open\n");
    ServerLogins::forgetAll();
}

void ImageServerLayerTest::cleanup()
{
    QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
    TileCache::instance().setFolder(QString(), 0);
}

QStringList ImageServerLayerTest::protection() const
{
    return {"--user", "ann", "--password-file", base->filePath("password")};
}

void ImageServerLayerTest::theImageLooksAsItDoesFromTheFile_data()
{
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    QTest::addColumn<double>("reduction");
    QTest::newRow("pixel by pixel") << 0 << 0 << 1.0;
    QTest::newRow("in the middle of tiles") << 333 << 222 << 1.0;
    QTest::newRow("over the far corner") << 1200 << 900 << 1.0;
    QTest::newRow("enlarged") << 700 << 300 << 0.25;
    QTest::newRow("half") << 100 << 50 << 2.0;
    QTest::newRow("between levels") << -100 << -50 << 3.3;
    QTest::newRow("all of it") << -200 << -200 << 6.0;
    QTest::newRow("tiny") << -2000 << -2000 << 20.0;
}

void ImageServerLayerTest::theImageLooksAsItDoesFromTheFile()
{
    QFETCH(int, x);
    QFETCH(int, y);
    QFETCH(double, reduction);
    QVERIFY(makeRaster(file("a.tif"), usualRecipe()));
    ServerProcess server(base->filePath("images"));
    GdalRasterLayer expected;
    expected.setProgressive(false);
    QVERIFY(expected.setDataSource(file("a.tif")));
    ImageServerLayer layer;
    layer.setProgressive(false);
    QVERIFY2(layer.setDataSource(server.url("/a.tif")), qPrintable(layer.getLastError()));
    QVERIFY(layer.isValid());
    const PixelView view{400, 300, x, y, reduction};
    const QImage picture = complete(layer, view);
    QCOMPARE(picture, complete(expected, view));
    QVERIFY(picture.pixelColor(200, 150).alpha() > 0 || reduction > 10.0);
}

void ImageServerLayerTest::rastersOfAllKindsLookAsTheyDoFromTheFile_data()
{
    QTest::addColumn<int>("bands");
    QTest::addColumn<int>("type");
    QTest::addColumn<QStringList>("options");
    const QStringList tiled{"TILED=YES", "BLOCKXSIZE=256", "BLOCKYSIZE=256"};
    QTest::newRow("grey") << 1 << int(GDT_Byte) << tiled;
    QTest::newRow("16 bits") << 3 << int(GDT_UInt16) << tiled;
    QTest::newRow("floats") << 1 << int(GDT_Float32) << tiled;
    QTest::newRow("with opacity") << 4 << int(GDT_Byte) << tiled + QStringList("ALPHA=YES");
    QTest::newRow("in strips") << 3 << int(GDT_Byte) << QStringList();
    QTest::newRow("in tiles of 512")
        << 3 << int(GDT_Byte) << QStringList({"TILED=YES", "BLOCKXSIZE=512", "BLOCKYSIZE=512"});
}

void ImageServerLayerTest::rastersOfAllKindsLookAsTheyDoFromTheFile()
{
    QFETCH(int, bands);
    QFETCH(int, type);
    QFETCH(QStringList, options);
    RasterRecipe recipe = usualRecipe();
    recipe.bands = bands;
    recipe.type = static_cast<GDALDataType>(type);
    recipe.options = options;
    QVERIFY(makeRaster(file("a.tif"), recipe));
    ServerProcess server(base->filePath("images"));
    GdalRasterLayer expected;
    expected.setProgressive(false);
    QVERIFY(expected.setDataSource(file("a.tif")));
    ImageServerLayer layer;
    layer.setProgressive(false);
    QVERIFY(layer.setDataSource(server.url("/a.tif")));
    for (const double reduction : {1.0, 4.0}) {
        const PixelView view{300, 200, 40, 30, reduction};
        QCOMPARE(complete(layer, view), complete(expected, view));
    }
}

void ImageServerLayerTest::theLayerTellsWhatTheServerTells()
{
    QVERIFY(makeRaster(file("north/a.tif"), usualRecipe()));
    ServerProcess server(base->filePath("images"));
    ImageServerLayer layer;
    layer.setProgressive(false);
    QCOMPARE(layer.getSourceState(), QString("not open: "));
    QVERIFY(layer.setDataSource(server.url("/north/a.tif")));
    QCOMPARE(layer.getDataSource(), server.url("/north/a.tif"));
    QCOMPARE(layer.getDescription(), QString("a.tif"));
    QCOMPARE(layer.getSize(), QSize(1500, 1100));
    QCOMPARE(layer.getBounds(), QRectF(1000.0, 5000.0, 3000.0, -2200.0));
    QCOMPARE(layer.getCellSizeX(), 2.0);
    QCOMPARE(layer.getCellSizeY(), -2.0);
    QCOMPARE(layer.getNumberOfBands(), 3);
    QCOMPARE(layer.getBandList(), QVector<qint32>({1, 2, 3}));
    QCOMPARE(layer.getCellType(), QString("UINT8"));
    QCOMPARE(layer.colorSpaceToString(), QString("RGB"));
    QCOMPARE(layer.getCoordSysName(), QString("WGS 84 / UTM zone 33N"));
    QCOMPARE(layer.getSpatialRef().epsg, 32633);
    QCOMPARE(layer.getFormat(), QString("Image server"));
    QCOMPARE(layer.getProtocol(), QString("http"));
    QCOMPARE(layer.getSourceState(), QString("ready"));
    QVERIFY(!layer.getOpacity());
    QVERIFY(layer.getLastError().isEmpty());
}

void ImageServerLayerTest::everyWayToNameTheImageOpensIt_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("HTTP") << "http://127.0.0.1:%1/north/a b%23%25.tif";
    QTest::newRow("streaming") << "zwtp://127.0.0.1:%1/north/a b%23%25.tif";
    QTest::newRow("packed") << "zwtp://127.0.0.1:%1/north/a%20b%23%25.tif";
    QTest::newRow("a service that was left empty") << "http://127.0.0.1:%1//north/a b%23%25.tif";
    QTest::newRow("credentials that nobody asks for")
        << "http://127.0.0.1:%1/north/a b%23%25.tif|ann|secret";
}

void ImageServerLayerTest::everyWayToNameTheImageOpensIt()
{
    QFETCH(QString, text);
    QVERIFY(makeRaster(file("north/a b#%.tif"), usualRecipe()));
    ServerProcess server(base->filePath("images"));
    ImageServerLayer layer;
    layer.setProgressive(false);
    const QString source = QString(text).replace("%1", QString::number(server.port()));
    QVERIFY2(layer.setDataSource(source), qPrintable(layer.getLastError()));
    QVERIFY(complete(layer, {200, 200, 0, 0}).pixelColor(100, 100).alpha() == 255);
}

void ImageServerLayerTest::anImageThatIsNotThereDoesNotOpen()
{
    ServerProcess server(base->filePath("images"));
    LogLines log;
    ImageServerLayer layer;
    layer.setProgressive(false);
    const QString source = QString("zwtp://127.0.0.1:%1/none.jp2").arg(server.port());
    QVERIFY(!layer.setDataSource(source));
    QVERIFY(!layer.isValid());
    QCOMPARE(layer.getLastError(), QString("the server has no such image"));
    QCOMPARE(log.holding("cannot open " + source + ": the server has no such image").size(), 1);
    QCOMPARE(layer.getDataSource(), source);
    QCOMPARE(painted(layer, {20, 20, 0, 0}).pixelColor(5, 5).alpha(), 0);
}

void ImageServerLayerTest::aServerThatIsNotThereDoesNotOpen()
{
    QString source;
    {
        ServerProcess server(base->filePath("images"));
        source = server.url("/a.tif");
    }
    ImageServerLayer layer;
    layer.setProgressive(false);
    QVERIFY(!layer.setDataSource(source));
    QVERIFY(layer.getLastError().contains("connect"));
}

void ImageServerLayerTest::sourcesOfOtherKindsAreRefusedWithoutAWord_data()
{
    QTest::addColumn<QString>("text");
    for (const char* const text : {"", "/data/a.tif", "s3://bucket/a.tif", "a.webtiles"}) {
        QTest::newRow(text) << QString(text);
    }
}

void ImageServerLayerTest::sourcesOfOtherKindsAreRefusedWithoutAWord()
{
    QFETCH(QString, text);
    LogLines log;
    ImageServerLayer layer;
    QVERIFY(!layer.setDataSource(text));
    QVERIFY(!layer.isValid());
    QCOMPARE(log.holding("").size(), 0);
}

void ImageServerLayerTest::theLayerFollowsTheImageThatChanges()
{
    RasterRecipe recipe = usualRecipe();
    recipe.value = [](int, int, int) { return 50; };
    QVERIFY(makeRaster(file("a.tif"), recipe));
    ServerProcess server(base->filePath("images"));
    ImageServerLayer layer;
    layer.setProgressive(false);
    QVERIFY(layer.setDataSource(server.url("/a.tif")));
    const PixelView view{200, 200, 0, 0};
    QCOMPARE(complete(layer, view).pixel(100, 100), qRgb(50, 50, 50));

    recipe.size = QSize(900, 800);
    recipe.value = [](int, int, int) { return 90; };
    QVERIFY(QFile::remove(file("a.tif")));
    QVERIFY(makeRaster(file("a.tif"), recipe));
    QTRY_COMPARE(server.ask("/tiles/a.tif").json()["size"].toVariant().toList().first().toInt(),
                 900);
    layer.setProgressive(true);
    PixelView{200, 200, 600, 500}.set(layer); // what has not come yet
    QTRY_COMPARE_WITH_TIMEOUT(layer.getSize(), QSize(900, 800), generous);
    layer.setProgressive(false);
    QCOMPARE(complete(layer, view).pixel(100, 100), qRgb(90, 90, 90));
    QCOMPARE(layer.getSourceState(), QString("ready"));
}

void ImageServerLayerTest::aSourceThatIsNamedTwiceIsOpenedOnce()
{
    QVERIFY(makeRaster(file("a.tif"), usualRecipe()));
    ServerProcess server(base->filePath("images"), {"--access-log"});
    ImageServerLayer layer;
    layer.setProgressive(false);
    QVERIFY(layer.setDataSource(server.url("/a.tif")));
    QVERIFY(layer.setDataSource(server.url("/a.tif")));
    QCOMPARE(server.stop(), 0); // its threads write their lines when they have answered
    QCOMPARE(server.log().count("GET /tiles/a.tif 200"), 1);
}

void ImageServerLayerTest::credentialsBehindTheUrlOpenAProtectedImage()
{
    QVERIFY(makeRaster(file("a.tif"), usualRecipe()));
    ServerProcess server(base->filePath("images"), protection());
    ImageServerLayer layer;
    layer.setProgressive(false);
    QVERIFY2(layer.setDataSource(server.url("/a.tif") + "|ann|sesame|open"),
             qPrintable(layer.getLastError()));
    QCOMPARE(complete(layer, {200, 200, 0, 0}).pixelColor(100, 100).alpha(), 255);
    QCOMPARE(layer.getUser(), QString("ann"));
}

void ImageServerLayerTest::withoutCredentialsTheReasonIsTold()
{
    QVERIFY(makeRaster(file("a.tif"), usualRecipe()));
    ServerProcess server(base->filePath("images"), protection());
    ImageServerLayer layer;
    layer.setProgressive(false);
    QVERIFY(!layer.setDataSource(server.url("/a.tif")));
    QCOMPARE(layer.getLastError(), QString("the server asks for a user and a password"));
}

void ImageServerLayerTest::wrongCredentialsAreToldOfWithoutThem()
{
    QVERIFY(makeRaster(file("a.tif"), usualRecipe()));
    ServerProcess server(base->filePath("images"), protection());
    LogLines log;
    ImageServerLayer layer;
    layer.setProgressive(false);
    QVERIFY(!layer.setDataSource(server.url("/a.tif") + "|ann|wrongword"));
    QCOMPARE(layer.getLastError(), QString("the server does not accept the user and password"));
    QCOMPARE(
        log.holding("cannot open " + server.url("/a.tif") + ": the server does not accept").size(),
        1);
    QVERIFY(log.holding("wrongword").isEmpty());
    // what a server does not accept is not remembered
    ImageServerLayer second;
    second.setProgressive(false);
    QVERIFY(!second.setDataSource(server.url("/a.tif")));
    QCOMPARE(second.getUser(), QString());
}

void ImageServerLayerTest::noTextHoldsThePassword()
{
    QVERIFY(makeRaster(file("a.tif"), usualRecipe()));
    ServerProcess server(base->filePath("images"), protection());
    LogLines log;
    ImageServerLayer layer;
    layer.setProgressive(false);
    QVERIFY(layer.setDataSource(server.url("/a.tif") + "|ann|sesame|open"));
    complete(layer, {200, 200, 0, 0});
    QCOMPARE(server.stop(), 0);
    layer.setProgressive(true);
    PixelView{200, 200, 900, 900}.set(layer); // fails, and is logged
    QTRY_VERIFY_WITH_TIMEOUT(!layer.getLastError().isEmpty(), generous);
    for (int i = 0; i < layer.metaObject()->propertyCount(); ++i) {
        const QMetaProperty property = layer.metaObject()->property(i);
        QVERIFY2(!property.read(&layer).toString().contains("sesame"), property.name());
    }
    QCOMPARE(layer.getPassword(), QString());
    QVERIFY(!layer.getTileUrl(0, 0, 0, 0, 0, 0, 0, 0, 0).contains("sesame"));
    QVERIFY(log.holding("sesame").isEmpty());
    const QByteArray packed = QByteArray("ann:sesame|open").toBase64();
    QVERIFY(log.holding(QString::fromLatin1(packed)).isEmpty());
}

void ImageServerLayerTest::aDocumentHoldsTheUserAlone()
{
    QVERIFY(makeRaster(file("a.tif"), usualRecipe()));
    ServerProcess server(base->filePath("images"), protection());
    ImageServerLayer layer;
    layer.setProgressive(false);
    QVERIFY(layer.setDataSource(server.url("/a.tif") + "|ann|sesame|open"));
    QDomDocument document;
    QDomNode node = document.appendChild(document.createElement("layer"));
    QVERIFY(layer.writeXML(node, document));
    const QString text = document.toString();
    QVERIFY(text.contains(server.url("/a.tif") + '"'));
    QVERIFY(text.contains("value=\"ann\"") && text.contains("name=\"User\""));
    QVERIFY(!text.contains("Password"));
    QVERIFY(!text.contains("sesame"));
    QVERIFY(!text.contains('|'));
}

void ImageServerLayerTest::aDocumentOpensWhileTheProgramKnowsThePassword()
{
    QVERIFY(makeRaster(file("a.tif"), usualRecipe()));
    ServerProcess server(base->filePath("images"), protection());
    QDomDocument document;
    QDomNode node = document.appendChild(document.createElement("layer"));
    {
        ImageServerLayer layer;
        layer.setProgressive(false);
        QVERIFY(layer.setDataSource(server.url("/a.tif") + "|ann|sesame|open"));
        QVERIFY(layer.writeXML(node, document));
    }
    QDir folder(base->path());
    {
        ImageServerLayer again;
        again.setProgressive(false);
        QVERIFY(again.readXML(node, folder, nullptr));
        QVERIFY2(again.isValid(), qPrintable(again.getLastError()));
    }
    ServerLogins::forgetAll();
    ImageServerLayer later;
    QString errors;
    later.setProgressive(false);
    QVERIFY(later.readXML(node, folder, &errors));
    QVERIFY(!later.isValid());
    QCOMPARE(later.getUser(), QString("ann"));
    QCOMPARE(errors, "cannot open " + server.url("/a.tif") +
                         ": the server does not accept the user and password");
}

void ImageServerLayerTest::aPasswordThatIsSetOpensTheLayer()
{
    QVERIFY(makeRaster(file("a.tif"), usualRecipe()));
    ServerProcess server(base->filePath("images"), protection());
    ImageServerLayer layer;
    layer.setProgressive(false);
    QVERIFY(!layer.setDataSource(server.url("/a.tif")));
    QSignalSpy opened(&layer, &TiledRasterLayer::sourceOpened);
    layer.setUser("ann");
    layer.setPassword("sesame|open");
    QTRY_VERIFY_WITH_TIMEOUT(layer.isValid(), generous);
    QVERIFY(opened.isEmpty() || opened.last().first().toBool());
    layer.setPassword(layer.getPassword()); // a panel writes back what it has read
    QVERIFY(layer.isValid());
    QCOMPARE(layer.getSourceState(), QString("ready"));
    QCOMPARE(complete(layer, {200, 200, 0, 0}).pixelColor(100, 100).alpha(), 255);
}

void ImageServerLayerTest::anotherUserIsAskedForAnew()
{
    QVERIFY(makeRaster(file("a.tif"), usualRecipe()));
    ServerProcess server(base->filePath("images"), protection());
    ImageServerLayer layer;
    layer.setProgressive(false);
    QVERIFY(layer.setDataSource(server.url("/a.tif") + "|ann|sesame|open"));
    layer.setUser("bob");
    QTRY_COMPARE_WITH_TIMEOUT(layer.getLastError(),
                              QString("the server does not accept the user and password"),
                              generous);
    layer.setUser("ann"); // whose password is known
    QTRY_COMPARE_WITH_TIMEOUT(layer.getSourceState(), QString("ready"), generous);
}

void ImageServerLayerTest::theRasterPluginLeavesPasswordsOutOfTheLog_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("streaming") << "zwtp://127.0.0.1:9/a.tif|ann|sesame";
    QTest::newRow("HTTP") << "http://127.0.0.1:9/a.tif|ann|sesame";
}

void ImageServerLayerTest::theRasterPluginLeavesPasswordsOutOfTheLog()
{
    QFETCH(QString, text);
    LogLines log;
    GdalRasterLayer layer;
    QVERIFY(!layer.setDataSource(text));
    QVERIFY(!layer.getDataSource().contains("sesame"));
    QVERIFY(log.holding("sesame").isEmpty());
}

int main(int argc, char** argv)
{
    QLoggingCategory::setFilterRules("corvane.tiles.debug=false");
    Application application(argc, argv, "ImageServerLayerTest");
    ImageServerLayerTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "ImageServerLayerTest.moc"
