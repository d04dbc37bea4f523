#include <plugins/imageserver/ImageServerLayer.h>

#include <tests/plugins/CellAnswer.h>
#include <tests/plugins/LayerProbe.h>
#include <tests/plugins/TestRasters.h>
#include <tests/server/ServerProcess.h>

#include <plugins/common/TileCache.h>
#include <plugins/imageserver/ServerLogins.h>

#include <QDir>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtTest>

#include <memory>

using namespace Corvane;
using namespace Corvane::Map;
using namespace Corvane::Tests;

namespace {

constexpr int generous = 60000; // milliseconds, for what has to come at some time

using State = CellReading::State;

} // namespace

/// The cells of images of the real server program.
class ImageServerCellsTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

    void everyBandComesFromTheFullImageWhileAnOverviewIsInView();
    void aWindowOverTheCornerOfFourTilesIsWhole();
    void greyImagesHaveOneBand();
    void cellsBeyondTheEdgeAreOutside();
    void whatIsTransparentIsNoData();
    void valuesThatThePictureCannotHoldAreNoted_data();
    void valuesThatThePictureCannotHoldAreNoted();
    void aPositionBesideTheImageIsOutside();
    void aServerThatIsGoneIsTold();
    void aClosedLayerTellsWhy();

private:
    bool open(ImageServerLayer& layer, const RasterRecipe& recipe);
    QString file(const char* name) const { return base->filePath(QString("images/") + name); }

    std::unique_ptr<QTemporaryDir> base;
    std::unique_ptr<ServerProcess> server;
};

void ImageServerCellsTest::initTestCase()
{
    QLoggingCategory::setFilterRules("corvane.tiles.debug=false");
}

void ImageServerCellsTest::init()
{
    TileCache::instance().setFolder(QString(), 0);
    base = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir().mkpath(base->filePath("images")));
    ServerLogins::forgetAll();
}

void ImageServerCellsTest::cleanup()
{
    QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
    server.reset();
}

bool ImageServerCellsTest::open(ImageServerLayer& layer, const RasterRecipe& recipe)
{
    layer.setProgressive(false);
    if (!makeRaster(file("a.tif"), recipe)) {
        return false;
    }
    server = std::make_unique<ServerProcess>(base->filePath("images"));
    return layer.setDataSource(server->url("/a.tif")) && layer.isValid();
}

void ImageServerCellsTest::everyBandComesFromTheFullImageWhileAnOverviewIsInView()
{
    RasterRecipe recipe;
    recipe.size = QSize(1500, 1100);
    recipe.overviews = {2, 4, 8};
    recipe.value = [](int band, int x, int y) { return (x + y) % 2 == 0 ? band : 200 + band; };
    ImageServerLayer layer;
    QVERIFY(open(layer, recipe));
    PixelView{300, 200, 0, 0, 4.0}.set(layer);

    const CellReading reading = cellsOf(layer, {middleOfCell(layer, 701, 320), 1, 0});

    QCOMPARE(reading.state, State::Read);
    QCOMPARE(reading.column, 701);
    QCOMPARE(reading.row, 320);
    QCOMPARE(reading.note, QString());
    QStringList texts;
    for (const CellBand& band : reading.bands) {
        texts << band.name + ' ' + textsOf(band).join(' ');
    }
    QCOMPARE(texts, QStringList({"Red 201", "Green 202", "Blue 203"}));
}

void ImageServerCellsTest::aWindowOverTheCornerOfFourTilesIsWhole()
{
    RasterRecipe recipe;
    recipe.size = QSize(600, 600);
    recipe.value = [](int band, int x, int y) { return (x * 3 + y * 5 + band) % 256; };
    ImageServerLayer layer;
    QVERIFY(open(layer, recipe));

    const CellReading reading = cellsOf(layer, {middleOfCell(layer, 256, 256), 5, 2});

    QStringList expected;
    for (int y = 254; y <= 258; ++y) {
        for (int x = 254; x <= 258; ++x) {
            expected << QString::number((x * 3 + y * 5 + 2) % 256);
        }
    }
    QCOMPARE(reading.bands.size(), 1);
    QCOMPARE(reading.bands.first().name, QString("Green"));
    QCOMPARE(textsOf(reading.bands.first()), expected);
}

void ImageServerCellsTest::greyImagesHaveOneBand()
{
    RasterRecipe recipe;
    recipe.bands = 1;
    recipe.value = [](int, int x, int) { return x % 256; };
    ImageServerLayer layer;
    QVERIFY(open(layer, recipe));

    const CellReading reading = cellsOf(layer, {middleOfCell(layer, 77, 3), 1, 0});

    QCOMPARE(reading.bands.size(), 1);
    QCOMPARE(reading.bands.first().name, QString("Gray"));
    QCOMPARE(textsOf(reading.bands.first()), QStringList("77"));
    QCOMPARE(reading.note, QString());
    const CellReading none = cellsOf(layer, {middleOfCell(layer, 77, 3), 1, 2});
    QVERIFY(none.bands.first().values.isEmpty());
}

void ImageServerCellsTest::cellsBeyondTheEdgeAreOutside()
{
    RasterRecipe recipe;
    recipe.size = QSize(600, 500);
    recipe.value = [](int, int x, int) { return x % 256; };
    ImageServerLayer layer;
    QVERIFY(open(layer, recipe));

    const CellReading reading = cellsOf(layer, {middleOfCell(layer, 599, 499), 3, 1});

    QCOMPARE(textsOf(reading.bands.first()),
             QStringList({"86", "87", "-", "86", "87", "-", "-", "-", "-"}));
}

void ImageServerCellsTest::whatIsTransparentIsNoData()
{
    RasterRecipe recipe;
    recipe.bands = 4;
    recipe.options << "ALPHA=YES";
    recipe.value = [](int band, int x, int) { return band < 4 ? band * 10 : x == 4 ? 0 : 255; };
    ImageServerLayer layer;
    QVERIFY(open(layer, recipe));

    const CellReading reading = cellsOf(layer, {middleOfCell(layer, 4, 4), 3, 0});

    QCOMPARE(reading.bands.size(), 4);
    QCOMPARE(textsOf(reading.bands[1]).mid(3, 3), QStringList({"20", "no data ()", "20"}));
    QCOMPARE(reading.bands[3].name, QString("Alpha"));
    QCOMPARE(textsOf(reading.bands[3]).mid(3, 3), QStringList({"255", "0", "255"}));
}

void ImageServerCellsTest::valuesThatThePictureCannotHoldAreNoted_data()
{
    QTest::addColumn<int>("bands");
    QTest::addColumn<int>("type");
    QTest::newRow("deeper ones") << 1 << int(GDT_UInt16);
    QTest::newRow("floats") << 3 << int(GDT_Float32);
    QTest::newRow("those of many bands") << 6 << int(GDT_Byte);
}

void ImageServerCellsTest::valuesThatThePictureCannotHoldAreNoted()
{
    QFETCH(int, bands);
    QFETCH(int, type);
    RasterRecipe recipe;
    recipe.bands = bands;
    recipe.type = GDALDataType(type);
    ImageServerLayer layer;
    QVERIFY(open(layer, recipe));

    const CellReading reading = cellsOf(layer, {middleOfCell(layer, 30, 40), 1, 0});

    QCOMPARE(reading.state, State::Read);
    QCOMPARE(reading.note, QString("the colours of the server's picture"));
}

void ImageServerCellsTest::aPositionBesideTheImageIsOutside()
{
    ImageServerLayer layer;
    QVERIFY(open(layer, RasterRecipe()));
    QCOMPARE(cellsOf(layer, {middleOfCell(layer, -1, 5), 1, 0}).state, State::Outside);
    QCOMPARE(cellsOf(layer, {middleOfCell(layer, 5, 500), 1, 0}).state, State::Outside);
    QCOMPARE(cellsOf(layer, {QPointF(qQNaN(), 0.0), 1, 0}).state, State::Outside);
}

void ImageServerCellsTest::aServerThatIsGoneIsTold()
{
    const LogLines log;
    ImageServerLayer layer;
    QVERIFY(open(layer, RasterRecipe()));
    server.reset();

    const CellReading reading = cellsOf(layer, {middleOfCell(layer, 30, 40), 1, 0});

    QCOMPARE(reading.state, State::Failed);
    QVERIFY(!reading.failure.isEmpty());
}

void ImageServerCellsTest::aClosedLayerTellsWhy()
{
    ImageServerLayer layer;
    const CellReading reading = cellsOf(layer, {QPointF(0.0, 0.0), 1, 0});
    QCOMPARE(reading.state, State::Failed);
    QVERIFY(reading.bands.isEmpty());
}

QTEST_MAIN(ImageServerCellsTest)
#include "ImageServerCellsTest.moc"
