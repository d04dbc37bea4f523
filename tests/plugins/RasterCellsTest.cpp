#include <plugins/raster/GdalRasterLayer.h>

#include <tests/plugins/CellAnswer.h>
#include <tests/plugins/LayerProbe.h>
#include <tests/plugins/SlowServer.h>
#include <tests/plugins/TestRasters.h>

#include <QFile>
#include <QLoggingCategory>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtTest>

#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>

using namespace Corvane;
using namespace Corvane::Map;
using namespace Corvane::Tests;

namespace {

constexpr int generous = 60000; // milliseconds, for what has to come at some time

using State = CellReading::State;

QString number(double value)
{
    return QString::number(value);
}

} // namespace

/// The cells of rasters of all kinds, asked for as the viewer asks.
class RasterCellsTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanup();

    void everyBandComesFromTheFullImageWhileAnOverviewIsInView();
    void theWindowStandsAroundTheCell();
    void cellsBeyondTheEdgeAreOutside();
    void aPositionBesideTheRasterIsOutside_data();
    void aPositionBesideTheRasterIsOutside();
    void oneBandAloneIsRead();
    void bandsHaveTheNamesThatTheSourceGives();

    void valuesReadBackAsTheyAre_data();
    void valuesReadBackAsTheyAre();
    void complexValuesHaveBothParts();
    void hugeWholeNumbersKeepTheirLastDigit();
    void noDataIsToldAsSuch_data();
    void noDataIsToldAsSuch();
    void noDataOfFewDigitsIsToldAsSuch();
    void whatAMaskCoversIsNoData();

    void aMirroredSourceCountsItsOwnCells();
    void aRotatedSourceGivesItsOwnValuesUnmixed();

    void theAnswerComesFromTheEventLoop();
    void aCancelledRequestIsStillAnswered();
    void anAbandonedRequestIsNot();
    void aLayerThatGoesStillAnswers();
    void aClosedLayerTellsWhy();
    void aServerThatBreaksDownIsTold();
    void aServerThatWaitsKeepsNobodyWaiting();

private:
    QString write(const QString& name, const RasterRecipe& recipe);
    static bool open(GdalRasterLayer& layer, const QString& source);
    QTemporaryDir folder;
};

void RasterCellsTest::initTestCase()
{
    QLoggingCategory::setFilterRules("corvane.tiles.debug=false");
    QVERIFY(folder.isValid());
}

void RasterCellsTest::cleanup()
{
    QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
}

QString RasterCellsTest::write(const QString& name, const RasterRecipe& recipe)
{
    const QString path = folder.filePath(name + ".tif");
    return makeRaster(path, recipe) ? path : QString();
}

/// It is open when this returns, however long that takes.
bool RasterCellsTest::open(GdalRasterLayer& layer, const QString& source)
{
    layer.setProgressive(false);
    const bool opened = layer.setDataSource(source) && layer.isValid();
    layer.setProgressive(true);
    return opened;
}

void RasterCellsTest::everyBandComesFromTheFullImageWhileAnOverviewIsInView()
{
    RasterRecipe recipe;
    recipe.size = QSize(1024, 1024);
    recipe.bands = 5;
    recipe.overviews = {2, 4};
    recipe.value = [](int band, int x, int y) { return (x + y) % 2 == 0 ? band : 200 + band; };
    GdalRasterLayer layer;
    QVERIFY(open(layer, write("checkers", recipe)));
    PixelView{256, 256, 0, 0, 4.0}.set(layer); // where all cells are mixed by now

    const CellReading reading = cellsOf(layer, {middleOfCell(layer, 501, 320), 1, 0});

    QCOMPARE(reading.state, State::Read);
    QCOMPARE(reading.column, 501);
    QCOMPARE(reading.row, 320);
    QCOMPARE(reading.bands.size(), 5);
    for (int band = 1; band <= 5; ++band) {
        QCOMPARE(textsOf(reading.bands[band - 1]), QStringList(number(200 + band)));
        QCOMPARE(reading.bands[band - 1].type, QString("UInt8"));
    }
    QCOMPARE(reading.note, QString());
}

void RasterCellsTest::theWindowStandsAroundTheCell()
{
    RasterRecipe recipe;
    recipe.type = GDT_Int32;
    recipe.value = [](int band, int x, int y) { return band * 1000000 + y * 1000 + x; };
    GdalRasterLayer layer;
    QVERIFY(open(layer, write("numbers", recipe)));

    const CellReading reading = cellsOf(layer, {middleOfCell(layer, 100, 200), 3, 2});

    QCOMPARE(reading.bands.size(), 1);
    QCOMPARE(textsOf(reading.bands.first()),
             QStringList({"2199099", "2199100", "2199101", "2200099", "2200100", "2200101",
                          "2201099", "2201100", "2201101"}));
}

void RasterCellsTest::cellsBeyondTheEdgeAreOutside()
{
    RasterRecipe recipe;
    recipe.bands = 1;
    recipe.value = [](int, int x, int y) { return y * 10 + x % 10; };
    recipe.size = QSize(20, 10);
    GdalRasterLayer layer;
    QVERIFY(open(layer, write("small", recipe)));

    const CellReading corner = cellsOf(layer, {middleOfCell(layer, 0, 0), 3, 0});
    QCOMPARE(textsOf(corner.bands.first()),
             QStringList({"-", "-", "-", "-", "0", "1", "-", "10", "11"}));
    const CellReading other = cellsOf(layer, {middleOfCell(layer, 19, 9), 3, 0});
    QCOMPARE(textsOf(other.bands.first()),
             QStringList({"88", "89", "-", "98", "99", "-", "-", "-", "-"}));
    const CellReading wide = cellsOf(layer, {middleOfCell(layer, 10, 5), 31, 0});
    QCOMPARE(wide.bands.first().values.size(), 31 * 31);
    QCOMPARE(textsOf(wide.bands.first()).count("-"), 31 * 31 - 20 * 10);
}

void RasterCellsTest::aPositionBesideTheRasterIsOutside_data()
{
    QTest::addColumn<double>("column");
    QTest::addColumn<double>("row");
    QTest::newRow("left of it") << -0.01 << 5.0;
    QTest::newRow("above it") << 5.0 << -0.01;
    QTest::newRow("on its right border") << 20.0 << 5.0;
    QTest::newRow("on its lower border") << 5.0 << 10.0;
    QTest::newRow("far away") << 1e300 << 5.0;
    QTest::newRow("nowhere") << std::numeric_limits<double>::quiet_NaN() << 5.0;
}

void RasterCellsTest::aPositionBesideTheRasterIsOutside()
{
    QFETCH(double, column);
    QFETCH(double, row);
    RasterRecipe recipe;
    recipe.size = QSize(20, 10);
    GdalRasterLayer layer;
    QVERIFY(open(layer, write("beside", recipe)));
    const QPointF world = layer.getBounds().topLeft() + QPointF(column * 2.0, row * -2.0);

    const CellReading reading = cellsOf(layer, {world, 3, 0});

    QCOMPARE(reading.state, State::Outside);
    QVERIFY(reading.bands.isEmpty());
}

void RasterCellsTest::oneBandAloneIsRead()
{
    RasterRecipe recipe;
    recipe.value = [](int band, int, int) { return band * 7; };
    GdalRasterLayer layer;
    QVERIFY(open(layer, write("three", recipe)));

    const CellReading reading = cellsOf(layer, {middleOfCell(layer, 3, 3), 1, 3});
    QCOMPARE(reading.bands.size(), 1);
    QCOMPARE(textsOf(reading.bands.first()), QStringList("21"));
    const CellReading none = cellsOf(layer, {middleOfCell(layer, 3, 3), 1, 4});
    QCOMPARE(none.state, State::Read);
    QCOMPARE(none.bands.size(), 1);
    QVERIFY(none.bands.first().values.isEmpty());
}

void RasterCellsTest::bandsHaveTheNamesThatTheSourceGives()
{
    RasterRecipe recipe;
    recipe.bands = 4;
    recipe.finish = [](GDALDatasetH dataset) {
        GDALSetDescription(GDALGetRasterBand(dataset, 4), "Near infrared");
    };
    GdalRasterLayer layer;
    QVERIFY(open(layer, write("named", recipe)));

    QStringList names;
    for (const CellBand& band : cellsOf(layer, {middleOfCell(layer, 0, 0), 1, 0}).bands) {
        names << band.name;
    }
    QCOMPARE(names, QStringList({"Red", "Green", "Blue", "Near infrared"}));
}

void RasterCellsTest::valuesReadBackAsTheyAre_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    const double floatThird = 1.0F / 3.0F;
    QTest::newRow("a byte") << int(GDT_Byte) << 255.0 << "255";
    QTest::newRow("a negative short") << int(GDT_Int16) << -32768.0 << "-32768";
    QTest::newRow("an unsigned short") << int(GDT_UInt16) << 65535.0 << "65535";
    QTest::newRow("an unsigned int") << int(GDT_UInt32) << 4294967295.0 << "4294967295";
    QTest::newRow("a short float") << int(GDT_Float32) << double(0.1F) << "0.1";
    QTest::newRow("a float of eight digits") << int(GDT_Float32) << floatThird << "0.33333334";
    QTest::newRow("a large whole float") << int(GDT_Float32) << 5000000.0 << "5000000";
    QTest::newRow("a tiny float") << int(GDT_Float32) << double(1e-30F) << "1e-30";
    QTest::newRow("an infinite float")
        << int(GDT_Float32) << -std::numeric_limits<double>::infinity() << "-inf";
    QTest::newRow("no number") << int(GDT_Float32) << std::numeric_limits<double>::quiet_NaN()
                               << "nan";
    QTest::newRow("a short double") << int(GDT_Float64) << 0.1 << "0.1";
    QTest::newRow("a double of seventeen digits")
        << int(GDT_Float64) << 0.1 + 0.2 << "0.30000000000000004";
    QTest::newRow("a whole double") << int(GDT_Float64) << 123456789012.0 << "123456789012";
    QTest::newRow("a huge double") << int(GDT_Float64) << 1e300 << "1e+300";
}

void RasterCellsTest::valuesReadBackAsTheyAre()
{
    QFETCH(int, type);
    QFETCH(double, value);
    QFETCH(QString, text);
    RasterRecipe recipe;
    recipe.size = QSize(20, 10);
    recipe.bands = 1;
    recipe.type = GDALDataType(type);
    recipe.value = [value](int, int, int) { return value; };
    GdalRasterLayer layer;
    QVERIFY(open(layer, write("values", recipe)));

    const CellReading reading = cellsOf(layer, {middleOfCell(layer, 4, 4), 1, 0});

    QCOMPARE(reading.state, State::Read);
    QCOMPARE(textsOf(reading.bands.first()), QStringList(text));
}

void RasterCellsTest::complexValuesHaveBothParts()
{
    RasterRecipe recipe;
    recipe.size = QSize(20, 10);
    recipe.bands = 1;
    recipe.type = GDT_CFloat32;
    recipe.finish = [](GDALDatasetH dataset) {
        float parts[] = {1.5F, -2.25F, -0.1F, 7.0F};
        QCOMPARE(GDALRasterIO(GDALGetRasterBand(dataset, 1), GF_Write, 4, 4, 2, 1, parts, 2, 1,
                              GDT_CFloat32, 0, 0),
                 CE_None);
    };
    GdalRasterLayer layer;
    QVERIFY(open(layer, write("complex", recipe)));

    const CellReading left = cellsOf(layer, {middleOfCell(layer, 4, 4), 1, 0});
    QCOMPARE(textsOf(left.bands.first()), QStringList("1.5-2.25i"));
    QCOMPARE(left.bands.first().type, QString("CFloat32"));
    const CellReading right = cellsOf(layer, {middleOfCell(layer, 5, 4), 1, 0});
    QCOMPARE(textsOf(right.bands.first()), QStringList("-0.1+7i"));
}

void RasterCellsTest::hugeWholeNumbersKeepTheirLastDigit()
{
    const std::int64_t huge = 9007199254740993; // no double is
    RasterRecipe recipe;
    recipe.size = QSize(20, 10);
    recipe.bands = 1;
    recipe.type = GDT_Int64;
    recipe.finish = [huge](GDALDatasetH dataset) {
        GDALRasterBandH band = GDALGetRasterBand(dataset, 1);
        std::int64_t values[] = {huge, huge - 1};
        GDALSetRasterNoDataValueAsInt64(band, huge - 1);
        QCOMPARE(GDALRasterIO(band, GF_Write, 4, 4, 2, 1, values, 2, 1, GDT_Int64, 0, 0), CE_None);
    };
    GdalRasterLayer layer;
    QVERIFY(open(layer, write("huge", recipe)));

    const CellReading number = cellsOf(layer, {middleOfCell(layer, 4, 4), 1, 0});
    QCOMPARE(textsOf(number.bands.first()), QStringList("9007199254740993"));
    const CellReading none = cellsOf(layer, {middleOfCell(layer, 5, 4), 1, 0});
    QCOMPARE(textsOf(none.bands.first()), QStringList("no data (9007199254740992)"));
}

void RasterCellsTest::noDataIsToldAsSuch_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<double>("noData");
    QTest::addColumn<QString>("text");
    QTest::newRow("bytes") << int(GDT_Byte) << 0.0 << "no data (0)";
    QTest::newRow("shorts") << int(GDT_Int16) << -9999.0 << "no data (-9999)";
    // the file keeps more digits of it than its cells have
    QTest::newRow("floats") << int(GDT_Float32) << -3.4e38 << "no data (-3.4e+38)";
    QTest::newRow("doubles") << int(GDT_Float64) << 0.1 << "no data (0.1)";
    QTest::newRow("no number") << int(GDT_Float32) << std::numeric_limits<double>::quiet_NaN()
                               << "no data (nan)";
    QTest::newRow("complex numbers by their real part")
        << int(GDT_CFloat32) << -1.0 << "no data (-1+0i)";
}

void RasterCellsTest::noDataIsToldAsSuch()
{
    QFETCH(int, type);
    QFETCH(double, noData);
    QFETCH(QString, text);
    RasterRecipe recipe;
    recipe.size = QSize(20, 10);
    recipe.bands = 1;
    recipe.type = GDALDataType(type);
    recipe.value = [noData](int, int x, int) { return x == 4 ? noData : 17.0; };
    recipe.finish = [noData](GDALDatasetH dataset) {
        GDALSetRasterNoDataValue(GDALGetRasterBand(dataset, 1), noData);
    };
    GdalRasterLayer layer;
    QVERIFY(open(layer, write("nodata", recipe)));

    const CellReading none = cellsOf(layer, {middleOfCell(layer, 4, 4), 1, 0});
    QCOMPARE(textsOf(none.bands.first()), QStringList(text));
    const CellReading some = cellsOf(layer, {middleOfCell(layer, 5, 4), 1, 0});
    QVERIFY(textsOf(some.bands.first()).first().startsWith("17"));
}

void RasterCellsTest::noDataOfFewDigitsIsToldAsSuch()
{
    RasterRecipe recipe;
    recipe.size = QSize(20, 10);
    recipe.bands = 1;
    recipe.type = GDT_Float32;
    recipe.value = [](int, int x, int) {
        return x == 4 ? double(std::numeric_limits<float>::lowest()) : 17.0;
    };
    recipe.finish = [](GDALDatasetH dataset) {
        GDALSetRasterNoDataValue(GDALGetRasterBand(dataset, 1), -3.40282e38);
    };
    GdalRasterLayer layer;
    QVERIFY(open(layer, write("nodata", recipe)));
    const CellReading none = cellsOf(layer, {middleOfCell(layer, 4, 4), 1, 0});
    QCOMPARE(textsOf(none.bands.first()), QStringList("no data (-3.4028235e+38)"));
}

void RasterCellsTest::whatAMaskCoversIsNoData()
{
    RasterRecipe recipe;
    recipe.size = QSize(20, 10);
    recipe.finish = [](GDALDatasetH dataset) {
        QCOMPARE(GDALCreateDatasetMaskBand(dataset, GMF_PER_DATASET), CE_None);
        std::vector<unsigned char> mask(200, 255);
        mask[4 * 20 + 4] = 0;
        QCOMPARE(GDALRasterIO(GDALGetMaskBand(GDALGetRasterBand(dataset, 1)), GF_Write, 0, 0, 20,
                              10, mask.data(), 20, 10, GDT_Byte, 0, 0),
                 CE_None);
    };
    recipe.value = [](int band, int, int) { return band; };
    GdalRasterLayer layer;
    QVERIFY(open(layer, write("masked", recipe)));

    const CellReading covered = cellsOf(layer, {middleOfCell(layer, 4, 4), 1, 0});
    QCOMPARE(textsOf(covered.bands[2]), QStringList("no data (3)"));
    const CellReading open = cellsOf(layer, {middleOfCell(layer, 4, 5), 1, 0});
    QCOMPARE(textsOf(open.bands[2]), QStringList("3"));
}

void RasterCellsTest::aMirroredSourceCountsItsOwnCells()
{
    RasterRecipe recipe;
    recipe.bands = 1;
    recipe.type = GDT_Int32;
    recipe.size = QSize(60, 40);
    recipe.transform = {1000.0, 2.0, 0.0, 5000.0, 0.0, 2.0}; // rows from south to north
    recipe.value = [](int, int x, int y) { return y * 100 + x; };
    GdalRasterLayer layer;
    QVERIFY(open(layer, write("mirrored", recipe)));

    const CellReading reading =
        cellsOf(layer, {QPointF(1000.0 + 7 * 2 + 1, 5000.0 + 3 * 2 + 1), 3, 0});

    QCOMPARE(reading.column, 7);
    QCOMPARE(reading.row, 3);
    QCOMPARE(textsOf(reading.bands.first()),
             QStringList({"206", "207", "208", "306", "307", "308", "406", "407", "408"}));
}

void RasterCellsTest::aRotatedSourceGivesItsOwnValuesUnmixed()
{
    const double angle = M_PI / 6.0;
    RasterRecipe recipe;
    recipe.bands = 1;
    recipe.type = GDT_Int32;
    recipe.size = QSize(200, 150);
    recipe.transform = {1000.0, 2.0 * std::cos(angle), 2.0 * std::sin(angle),
                        5000.0, 2.0 * std::sin(angle), -2.0 * std::cos(angle)};
    recipe.value = [](int, int x, int y) { return y * 1000 + x; };
    GdalRasterLayer layer;
    QVERIFY(open(layer, write("rotated", recipe)));
    const auto at = [&recipe](double x, double y) {
        const auto& t = recipe.transform;
        return QPointF(t[0] + x * t[1] + y * t[2], t[3] + x * t[4] + y * t[5]);
    };

    const CellReading reading = cellsOf(layer, {at(120.5, 33.5), 1, 0});
    QCOMPARE(reading.column, 120);
    QCOMPARE(reading.row, 33);
    QCOMPARE(textsOf(reading.bands.first()), QStringList("33120"));
    QCOMPARE(cellsOf(layer, {at(-5.0, -5.0), 1, 0}).state, State::Outside);
}

void RasterCellsTest::theAnswerComesFromTheEventLoop()
{
    GdalRasterLayer layer;
    QVERIFY(open(layer, write("later", RasterRecipe())));
    QThread* thread = nullptr;
    const auto request =
        CellRequest::make({middleOfCell(layer, 1, 1), 1, 0},
                          [&thread](const CellReading&) { thread = QThread::currentThread(); });
    layer.readCells(request);
    QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
    QVERIFY(!thread); // read, and not told before the event loop has its turn
    QTRY_COMPARE(thread, QThread::currentThread());
}

void RasterCellsTest::aCancelledRequestIsStillAnswered()
{
    GdalRasterLayer layer;
    QVERIFY(open(layer, write("cancelled", RasterRecipe())));
    std::vector<CellReading> answers;
    const auto request =
        CellRequest::make({middleOfCell(layer, 1, 1), 1, 0},
                          [&answers](const CellReading& reading) { answers.push_back(reading); });
    request->cancel();
    layer.readCells(request);
    QTRY_COMPARE(answers.size(), std::size_t{1});
    QCOMPARE(answers.front().state, State::Dropped);
    request->finish(CellReading());
    QCoreApplication::processEvents();
    QCOMPARE(answers.size(), std::size_t{1});
}

void RasterCellsTest::anAbandonedRequestIsNot()
{
    GdalRasterLayer layer;
    QVERIFY(open(layer, write("abandoned", RasterRecipe())));
    int answers = 0;
    const auto request = CellRequest::make({middleOfCell(layer, 1, 1), 1, 0},
                                           [&answers](const CellReading&) { ++answers; });
    layer.readCells(request);
    QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
    request->abandon(); // the answer is on its way
    QCoreApplication::processEvents();
    QCOMPARE(answers, 0);
    QVERIFY(request->isCancelled());
}

void RasterCellsTest::aLayerThatGoesStillAnswers()
{
    auto layer = std::make_unique<GdalRasterLayer>();
    QVERIFY(open(*layer, write("going", RasterRecipe())));
    std::vector<CellReading> answers;
    const auto request =
        CellRequest::make({middleOfCell(*layer, 1, 1), 1, 0},
                          [&answers](const CellReading& reading) { answers.push_back(reading); });
    layer->readCells(request);
    layer.reset();
    QTRY_COMPARE(answers.size(), std::size_t{1});
    QCOMPARE(answers.front().state, State::Read);
}

void RasterCellsTest::aClosedLayerTellsWhy()
{
    const LogLines log;
    GdalRasterLayer layer;
    layer.setProgressive(false); // in this call
    QVERIFY(!layer.setDataSource(folder.filePath("missing.tif")));
    const CellReading reading = cellsOf(layer, {QPointF(0.0, 0.0), 1, 0});
    QCOMPARE(reading.state, State::Failed);
    QCOMPARE(reading.failure, QString("the file does not exist"));
}

void RasterCellsTest::aServerThatBreaksDownIsTold()
{
    RasterRecipe recipe;
    recipe.size = QSize(2000, 2000);
    recipe.value = [](int band, int x, int y) { return (x * 7919 + y * 104729 + band) % 256; };
    QFile file(write("far", recipe));
    QVERIFY(file.open(QIODevice::ReadOnly));
    SlowServer server(file.readAll(), true);
    const LogLines log;
    GdalRasterLayer layer;
    QVERIFY(open(layer, server.url("far.tif")));
    server.breakDown();

    const CellReading reading = cellsOf(layer, {middleOfCell(layer, 1500, 1700), 1, 0});

    QCOMPARE(reading.state, State::Failed);
    QVERIFY(!reading.failure.isEmpty());
    QVERIFY(reading.bands.isEmpty());
    QCOMPARE(log.holding("cannot read").size(), 1);
}

void RasterCellsTest::aServerThatWaitsKeepsNobodyWaiting()
{
    RasterRecipe recipe;
    recipe.size = QSize(2000, 2000);
    recipe.value = [](int band, int x, int y) { return (x * 7919 + y * 104729 + band) % 256; };
    QFile file(write("slow", recipe));
    QVERIFY(file.open(QIODevice::ReadOnly));
    SlowServer server(file.readAll(), true);
    GdalRasterLayer layer;
    QVERIFY(open(layer, server.url("slow.tif")));
    server.setOpen(false);
    const int before = server.requests();
    std::vector<CellReading> answers;
    const auto request =
        CellRequest::make({middleOfCell(layer, 1500, 1700), 1, 0},
                          [&answers](const CellReading& reading) { answers.push_back(reading); });

    layer.readCells(request); // returns while the server holds its answer

    QTRY_VERIFY_WITH_TIMEOUT(server.requests() > before, generous);
    QVERIFY(answers.empty());
    server.setOpen(true);
    QTRY_COMPARE_WITH_TIMEOUT(answers.size(), std::size_t{1}, generous);
    QCOMPARE(answers.front().state, State::Read);
    QCOMPARE(textsOf(answers.front().bands.first()),
             QStringList(number((1500 * 7919 + 1700 * 104729 + 1) % 256)));
}

QTEST_MAIN(RasterCellsTest)
#include "RasterCellsTest.moc"
