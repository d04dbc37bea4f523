#include <plugins/raster/GdalRasterLayer.h>

#include <tests/plugins/LayerProbe.h>
#include <tests/plugins/TestRasters.h>

#include <cpl_conv.h>

#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <limits>

using namespace Corvane;
using namespace Corvane::Map;
using namespace Corvane::Tests;

namespace {

using Histogram = HistogramT<unsigned long long>;

const double unnamed = std::numeric_limits<double>::quiet_NaN();

QVector<Histogram> whole(GdalRasterLayer& layer)
{
    return layer.getHistograms(false, false, QSize(500, 500), unnamed, unnamed, unnamed, unnamed);
}

QVector<Histogram> sample(GdalRasterLayer& layer, int edge)
{
    return layer.getHistograms(false, true, QSize(edge, edge), unnamed, unnamed, unnamed, unnamed);
}

bool isClose(double actual, double expected)
{
    return std::abs(actual - expected) <= 1e-9 * std::max(1.0, std::abs(expected));
}

double scattered(int band, int x, int y)
{
    const auto mixed = static_cast<unsigned int>(x * 7919 + y * 104729 + band * 1299709);
    return (mixed * 2654435761U >> 8) % 10007;
}

} // namespace

/// What the histogram panel gets, beside GDAL's own counting.
class RasterStatisticsTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();

    void statisticsAreThoseOfGdal_data();
    void statisticsAreThoseOfGdal();
    void bytesHaveABinForEachValue();
    void medianAndModeAreExactForIntegers();
    void negativeLimitsAreZero();
    void aViewportCountsThePixelsItTouches();
    void theViewIsTheViewportWithoutARectangle();
    void aViewportBesideTheImageIsEmpty();
    void whatTurningLeavesBareDoesNotCount_data();
    void whatTurningLeavesBareDoesNotCount();
    void aSampleIsAnOverviewThatIsLargeEnough();
    void aSampleWithoutOverviewsIsReduced();
    void aBandOfOneValueIsCountedInOneBin();
    void aSmallSpreadFarFromZeroIsExact();
    void noDataOfFewDigitsDoesNotCount();
    void nothingValidGivesNothing();
    void aLayerWithoutASourceGivesNothing();
    void bandsAreNamedByTheirColours();

private:
    QString write(const RasterRecipe& what);

    QTemporaryDir folder;
    int files = 0;
};

void RasterStatisticsTest::initTestCase()
{
    QVERIFY(folder.isValid());
}

QString RasterStatisticsTest::write(const RasterRecipe& what)
{
    const QString path = folder.filePath(QString("image%1.tif").arg(++files));
    return makeRaster(path, what) ? path : QString();
}

void RasterStatisticsTest::statisticsAreThoseOfGdal_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("bands");
    QTest::addColumn<bool>("inStrips");
    QTest::addColumn<bool>("hasNoData");
    QTest::addColumn<double>("offset");
    QTest::addColumn<double>("factor");
    QTest::newRow("bytes") << int(GDT_Byte) << 3 << false << false << 0.0 << 0.02;
    QTest::newRow("bytes with no-data") << int(GDT_Byte) << 3 << false << true << 0.0 << 0.02;
    QTest::newRow("bytes in strips") << int(GDT_Byte) << 3 << true << false << 0.0 << 0.02;
    QTest::newRow("16 bits") << int(GDT_UInt16) << 1 << false << false << 20000.0 << 4.0;
    QTest::newRow("16 bits with no-data") << int(GDT_UInt16) << 2 << true << true << 0.0 << 4.0;
    QTest::newRow("signed 16 bits") << int(GDT_Int16) << 1 << false << false << -30000.0 << 5.0;
    QTest::newRow("32 bits") << int(GDT_Int32) << 1 << false << false << -1e9 << 1e5;
    QTest::newRow("float") << int(GDT_Float32) << 2 << false << false << -3.25 << 0.001;
    QTest::newRow("float with no-data") << int(GDT_Float32) << 1 << true << true << 0.0 << 0.5;
    QTest::newRow("double far from zero") << int(GDT_Float64) << 1 << false << false << 1e9 << 1e-3;
}

void RasterStatisticsTest::statisticsAreThoseOfGdal()
{
    QFETCH(int, type);
    QFETCH(int, bands);
    QFETCH(bool, inStrips);
    QFETCH(bool, hasNoData);
    QFETCH(double, offset);
    QFETCH(double, factor);
    RasterRecipe what;
    what.size = QSize(733, 611);
    what.bands = bands;
    what.type = static_cast<GDALDataType>(type);
    if (inStrips) {
        what.options = QStringList{"TILED=NO", "BLOCKYSIZE=7"};
    }
    const bool whole16 = GDALDataTypeIsInteger(what.type) != 0;
    what.value = [=](int band, int x, int y) {
        const double value = offset + factor * scattered(band, x, y);
        return whole16 ? std::floor(value) : value;
    };
    what.finish = [hasNoData, &what](GDALDatasetH dataset) {
        for (int band = 1; hasNoData && band <= what.bands; ++band) {
            GDALSetRasterNoDataValue(GDALGetRasterBand(dataset, band), what.value(1, 5, 5));
        }
    };
    const QString path = write(what);
    QVERIFY(!path.isEmpty());
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(path));
    QTRY_VERIFY(layer.isValid());
    const QVector<Histogram> histograms = whole(layer);
    QCOMPARE(histograms.size(), bands);

    CPLSetThreadLocalConfigOption("GDAL_PAM_ENABLED", "NO");
    const Dataset dataset = openRaster(path);
    for (int band = 1; band <= bands; ++band) {
        GDALRasterBandH own = GDALGetRasterBand(dataset.get(), band);
        double low = 0.0;
        double high = 0.0;
        double mean = 0.0;
        double deviation = 0.0;
        QCOMPARE(GDALComputeRasterStatistics(own, FALSE, &low, &high, &mean, &deviation, nullptr,
                                             nullptr),
                 CE_None);
        const Histogram& ours = histograms[band - 1];
        QVERIFY2(isClose(ours.mean, mean),
                 qPrintable(QString("%1 %2").arg(ours.mean, 0, 'g', 17).arg(mean, 0, 'g', 17)));
        QVERIFY2(isClose(ours.standardDeviation, deviation),
                 qPrintable(QString("%1 %2")
                                .arg(ours.standardDeviation, 0, 'g', 17)
                                .arg(deviation, 0, 'g', 17)));
        QCOMPARE(ours.minimum, static_cast<unsigned long long>(std::max(0.0, low)));
        QCOMPARE(ours.maximum, static_cast<unsigned long long>(std::max(0.0, high)));

        std::vector<GUIntBig> counts(256);
        const bool bytes = what.type == GDT_Byte;
        QCOMPARE(GDALGetRasterHistogramEx(own, bytes ? -0.5 : low, bytes ? 255.5 : high, 256,
                                          counts.data(), TRUE, FALSE, nullptr, nullptr),
                 CE_None);
        QCOMPARE(ours.numberOfBins, 256U);
        GUIntBig peak = 0;
        GUIntBig total = 0;
        for (unsigned int bin = 0; bin < 256; ++bin) {
            QVERIFY2(ours.counts[bin] == counts[bin],
                     qPrintable(
                         QString("bin %1: %2 %3").arg(bin).arg(ours.counts[bin]).arg(counts[bin])));
            peak = std::max(peak, counts[bin]);
            total += counts[bin];
        }
        QCOMPARE(ours.peakCount, static_cast<unsigned long long>(peak));
        QCOMPARE(ours.totalCount, static_cast<unsigned long long>(total));
    }
}

void RasterStatisticsTest::bytesHaveABinForEachValue()
{
    RasterRecipe what;
    what.size = QSize(256, 10);
    what.bands = 1;
    what.value = [](int, int x, int) { return x; };
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(write(what)));
    QTRY_VERIFY(layer.isValid());
    const Histogram histogram = whole(layer).first();
    for (unsigned int bin = 0; bin < 256; ++bin) {
        QCOMPARE(histogram.counts[bin], 10ULL);
    }
}

void RasterStatisticsTest::medianAndModeAreExactForIntegers()
{
    RasterRecipe what;
    what.size = QSize(100, 1);
    what.bands = 1;
    what.type = GDT_Int16;
    // 30 times -7, 25 times 1000, 45 different ones above
    what.value = [](int, int x, int) { return x < 30 ? -7 : (x < 55 ? 1000 : 2000 + x); };
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(write(what)));
    QTRY_VERIFY(layer.isValid());
    const Histogram histogram = whole(layer).first();
    QCOMPARE(histogram.median, 1000.0);
    QCOMPARE(histogram.mode, -7.0);
}

void RasterStatisticsTest::negativeLimitsAreZero()
{
    RasterRecipe what;
    what.size = QSize(50, 50);
    what.bands = 1;
    what.type = GDT_Float32;
    what.value = [](int, int x, int) { return x - 20.0; };
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(write(what)));
    QTRY_VERIFY(layer.isValid());
    const Histogram histogram = whole(layer).first();
    QCOMPARE(histogram.minimum, 0ULL);
    QCOMPARE(histogram.maximum, 29ULL);
    QVERIFY(isClose(histogram.mean, 4.5));
}

void RasterStatisticsTest::aViewportCountsThePixelsItTouches()
{
    RasterRecipe what;
    what.size = QSize(400, 300);
    what.bands = 1;
    what.value = [](int, int x, int y) { return x >= 100 && x < 110 && y >= 50 && y < 55 ? 9 : 1; };
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(write(what)));
    QTRY_VERIFY(layer.isValid());
    // cells are 2 by 2 from (1000, 5000)
    const QVector<Histogram> inner =
        layer.getHistograms(true, false, QSize(500, 500), 1200.0, 4900.0, 1220.0, 4890.0);
    QCOMPARE(inner.size(), 1);
    QCOMPARE(inner.first().totalCount, 50ULL);
    QCOMPARE(inner.first().counts[9], 50ULL);
    const QVector<Histogram> wider =
        layer.getHistograms(true, false, QSize(500, 500), 1199.0, 4901.0, 1221.0, 4889.0);
    QCOMPARE(wider.first().totalCount, 12ULL * 7ULL);
    QCOMPARE(wider.first().counts[9], 50ULL);
}

void RasterStatisticsTest::theViewIsTheViewportWithoutARectangle()
{
    RasterRecipe what;
    what.size = QSize(400, 300);
    what.bands = 1;
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(write(what)));
    QTRY_VERIFY(layer.isValid());
    complete(layer, {40, 30, 100, 100, 1.0});
    const QVector<Histogram> histograms =
        layer.getHistograms(true, false, QSize(500, 500), unnamed, unnamed, unnamed, unnamed);
    QCOMPARE(histograms.first().totalCount, 1200ULL);
}

void RasterStatisticsTest::aViewportBesideTheImageIsEmpty()
{
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(write(RasterRecipe())));
    QTRY_VERIFY(layer.isValid());
    QVERIFY(layer.getHistograms(true, false, QSize(500, 500), 0.0, 10.0, 10.0, 0.0).isEmpty());
}

void RasterStatisticsTest::whatTurningLeavesBareDoesNotCount_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<bool>("hasNoData");
    QTest::addColumn<bool>("approximate");
    for (const GDALDataType type : {GDT_Byte, GDT_UInt16, GDT_Int16, GDT_Int32, GDT_Float32}) {
        const QByteArray name = GDALGetDataTypeName(type);
        QTest::newRow(name + " exact") << int(type) << false << false;
        QTest::newRow(name + " exact with no-data") << int(type) << true << false;
        QTest::newRow(name + " approximate") << int(type) << false << true;
        QTest::newRow(name + " approximate with no-data") << int(type) << true << true;
    }
}

/// The corners of the north-up picture of a turned image hold nothing, nor does what stands for no
/// data in it.
void RasterStatisticsTest::whatTurningLeavesBareDoesNotCount()
{
    QFETCH(int, type);
    QFETCH(bool, hasNoData);
    QFETCH(bool, approximate);
    RasterRecipe what;
    what.size = QSize(400, 300);
    what.bands = 1;
    what.type = static_cast<GDALDataType>(type);
    what.transform = {1000.0, 1.6, 1.2, 5000.0, 1.2, -1.6};
    what.value = [](int, int x, int) { return x < 200 ? 50 : 90; };
    what.finish = [hasNoData](GDALDatasetH dataset) {
        if (hasNoData) {
            GDALSetRasterNoDataValue(GDALGetRasterBand(dataset, 1), 50.0);
        }
    };
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(write(what)));
    QTRY_VERIFY(layer.isValid());
    const QRectF all = layer.getBounds();
    const QVector<Histogram> histograms =
        layer.getHistograms(true, approximate, QSize(200, 200), all.left() + 5.0, all.top() - 5.0,
                            all.right() - 5.0, all.bottom() + 5.0);
    QCOMPARE(histograms.size(), 1);
    const double lowest = hasNoData ? 90.0 : 50.0;
    QCOMPARE(double(histograms.first().minimum), lowest);
    QCOMPARE(double(histograms.first().maximum), 90.0);
    const double mean = histograms.first().mean;
    QVERIFY2(std::abs(mean - (hasNoData ? 90.0 : 70.0)) < 1.0, qPrintable(QString::number(mean)));
}

void RasterStatisticsTest::aSampleIsAnOverviewThatIsLargeEnough()
{
    RasterRecipe what;
    what.size = QSize(1600, 1200);
    what.bands = 1;
    what.overviews = {2, 4, 8};
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(write(what)));
    QTRY_VERIFY(layer.isValid());
    QCOMPARE(sample(layer, 250).first().totalCount, 400ULL * 300ULL);
    QCOMPARE(sample(layer, 100).first().totalCount, 200ULL * 150ULL);
    QCOMPARE(sample(layer, 301).first().totalCount, 800ULL * 600ULL);
}

void RasterStatisticsTest::aSampleWithoutOverviewsIsReduced()
{
    RasterRecipe what;
    what.size = QSize(1600, 1200);
    what.bands = 1;
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(write(what)));
    QTRY_VERIFY(layer.isValid());
    QCOMPARE(sample(layer, 500).first().totalCount, 250000ULL);
    QCOMPARE(sample(layer, 5000).first().totalCount, 1600ULL * 1200ULL);
}

void RasterStatisticsTest::aBandOfOneValueIsCountedInOneBin()
{
    for (const GDALDataType type : {GDT_Byte, GDT_UInt16, GDT_Float32}) {
        RasterRecipe what;
        what.size = QSize(30, 20);
        what.bands = 1;
        what.type = type;
        what.value = [](int, int, int) { return 42.0; };
        GdalRasterLayer layer;
        QVERIFY(layer.setDataSource(write(what)));
        QTRY_VERIFY(layer.isValid());
        const Histogram histogram = whole(layer).first();
        QCOMPARE(histogram.peakCount, 600ULL);
        QCOMPARE(histogram.mean, 42.0);
        QCOMPARE(histogram.standardDeviation, 0.0);
        QCOMPARE(histogram.median, 42.0);
        QCOMPARE(histogram.mode, 42.0);
    }
}

// A mean that is off in its last digits only would already spoil the deviation.
void RasterStatisticsTest::aSmallSpreadFarFromZeroIsExact()
{
    RasterRecipe what;
    what.size = QSize(64, 48);
    what.bands = 1;
    what.type = GDT_Float64;
    what.value = [](int, int x, int y) { return 1e9 + (y * 64 + x) % 7 * 1e-3; };
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(write(what)));
    QTRY_VERIFY(layer.isValid());
    const Histogram histogram = whole(layer).first();

    double mean = 0.0; // above 1e9
    double squares = 0.0;
    for (int i = 0; i < 64 * 48; ++i) {
        mean += (what.value(1, i % 64, i / 64) - 1e9) / (64 * 48);
    }
    for (int i = 0; i < 64 * 48; ++i) {
        const double distance = what.value(1, i % 64, i / 64) - 1e9 - mean;
        squares += distance * distance;
    }
    QCOMPARE(histogram.mean, 1e9 + mean);
    const double deviation = std::sqrt(squares / (64 * 48));
    QVERIFY2(std::abs(histogram.standardDeviation - deviation) <= 1e-9 * deviation,
             qPrintable(QString("%1 %2")
                            .arg(histogram.standardDeviation, 0, 'g', 17)
                            .arg(deviation, 0, 'g', 17)));
}

void RasterStatisticsTest::noDataOfFewDigitsDoesNotCount()
{
    RasterRecipe what;
    what.bands = 1;
    what.type = GDT_Float32;
    what.value = [](int, int x, int y) {
        return x < 9 ? double(std::numeric_limits<float>::lowest()) : x + y * 0.25;
    };
    what.finish = [](GDALDatasetH dataset) {
        GDALSetRasterNoDataValue(GDALGetRasterBand(dataset, 1), -3.40282e38);
    };
    const QString path = write(what);
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(path));
    QTRY_VERIFY(layer.isValid());
    const Histogram histogram = whole(layer).first();

    CPLSetThreadLocalConfigOption("GDAL_PAM_ENABLED", "NO");
    const Dataset dataset = openRaster(path);
    double low = 0.0;
    double high = 0.0;
    double mean = 0.0;
    double deviation = 0.0;
    QCOMPARE(GDALComputeRasterStatistics(GDALGetRasterBand(dataset.get(), 1), FALSE, &low, &high,
                                         &mean, &deviation, nullptr, nullptr),
             CE_None);
    QVERIFY(low >= 9.0);
    QVERIFY(isClose(histogram.mean, mean));
    QVERIFY(isClose(histogram.standardDeviation, deviation));
}

void RasterStatisticsTest::nothingValidGivesNothing()
{
    RasterRecipe what;
    what.bands = 1;
    what.value = [](int, int, int) { return 3.0; };
    what.finish = [](GDALDatasetH dataset) {
        GDALSetRasterNoDataValue(GDALGetRasterBand(dataset, 1), 3.0);
    };
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(write(what)));
    QTRY_VERIFY(layer.isValid());
    QVERIFY(whole(layer).isEmpty());
}

void RasterStatisticsTest::aLayerWithoutASourceGivesNothing()
{
    GdalRasterLayer layer;
    QVERIFY(whole(layer).isEmpty());
}

void RasterStatisticsTest::bandsAreNamedByTheirColours()
{
    RasterRecipe what;
    what.bands = 5;
    what.options << "PHOTOMETRIC=RGB";
    what.finish = [](GDALDatasetH dataset) {
        GDALSetRasterColorInterpretation(GDALGetRasterBand(dataset, 4), GCI_Undefined);
        GDALSetRasterColorInterpretation(GDALGetRasterBand(dataset, 5), GCI_Undefined);
        GDALSetDescription(GDALGetRasterBand(dataset, 4), "Infrared");
    };
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(write(what)));
    QTRY_VERIFY(layer.isValid());
    QStringList names;
    for (const Histogram& histogram : whole(layer)) {
        names << histogram.bandName;
    }
    QCOMPARE(names, QStringList({"Red", "Green", "Blue", "Infrared", ""}));
}

int main(int argc, char** argv)
{
    QLoggingCategory::setFilterRules("corvane.tiles.debug=false");
    Application application(argc, argv, "RasterStatisticsTest");
    RasterStatisticsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "RasterStatisticsTest.moc"
