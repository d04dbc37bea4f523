#include <plugins/raster/GdalRasterLayer.h>

#include <plugins/raster/GdalSupport.h>
#include <plugins/raster/RasterFacts.h>

#include <tests/plugins/LayerProbe.h>
#include <tests/plugins/TestRasters.h>

#include <cpl_conv.h>
#include <ogr_srs_api.h>

#include <QDir>
#include <QDomDocument>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>
#include <limits>

using namespace Corvane;
using namespace Corvane::Map;
using namespace Corvane::Tests;

namespace {

const QStringList strips = {"TILED=NO", "BLOCKYSIZE=16", "COMPRESS=DEFLATE"};
const QStringList blocks512 = {"TILED=YES", "BLOCKXSIZE=512", "BLOCKYSIZE=512"};

RasterRecipe recipe(QSize size, int bands = 3, GDALDataType type = GDT_Byte)
{
    RasterRecipe result;
    result.size = size;
    result.bands = bands;
    result.type = type;
    return result;
}

void setPalette(GDALDatasetH dataset)
{
    GDALColorTableH table = GDALCreateColorTable(GPI_RGB);
    for (short i = 0; i < 256; ++i) {
        const GDALColorEntry entry{i, static_cast<short>(255 - i), static_cast<short>(i / 2), 255};
        GDALSetColorEntry(table, i, &entry);
    }
    GDALSetRasterColorTable(GDALGetRasterBand(dataset, 1), table);
    GDALDestroyColorTable(table);
}

void setNoData(GDALDatasetH dataset, double value)
{
    for (int band = 1; band <= GDALGetRasterCount(dataset); ++band) {
        GDALSetRasterNoDataValue(GDALGetRasterBand(dataset, band), value);
    }
}

// Transparent left of column 100.
void setMask(GDALDatasetH dataset)
{
    const int width = GDALGetRasterXSize(dataset);
    const int height = GDALGetRasterYSize(dataset);
    CPLSetConfigOption("GDAL_TIFF_INTERNAL_MASK", "YES");
    if (GDALCreateDatasetMaskBand(dataset, GMF_PER_DATASET) != CE_None) {
        return;
    }
    std::vector<unsigned char> row(static_cast<std::size_t>(width), 255);
    std::fill_n(row.begin(), 100, static_cast<unsigned char>(0));
    GDALRasterBandH mask = GDALGetMaskBand(GDALGetRasterBand(dataset, 1));
    for (int y = 0; y < height; ++y) {
        if (GDALRasterIO(mask, GF_Write, 0, y, width, 1, row.data(), width, 1, GDT_Byte, 0, 0) !=
            CE_None) {
            return;
        }
    }
}

// The first pixel where the picture is not what GDAL reads there; empty where there is none.
QString firstDifference(const QImage& picture, GDALDatasetH dataset, int left, int top)
{
    const int width = picture.width();
    const int height = picture.height();
    const auto red = readBand(dataset, 1, left, top, width, height);
    const auto green = readBand(dataset, 2, left, top, width, height);
    const auto blue = readBand(dataset, 3, left, top, width, height);
    if (blue.empty()) {
        return QStringLiteral("GDAL cannot read the window");
    }
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const auto i = static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                           static_cast<std::size_t>(x);
            const QRgb expected = qRgb(int(red[i]), int(green[i]), int(blue[i]));
            if (picture.pixel(x, y) != expected) {
                return QStringLiteral("(%1, %2): %3 instead of %4")
                    .arg(x)
                    .arg(y)
                    .arg(picture.pixel(x, y), 0, 16)
                    .arg(expected, 0, 16);
            }
        }
    }
    return QString();
}

} // namespace

/// Each kind of image, from the file to the pixel, beside GDAL's own reading of it.
class GdalRasterLayerTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();

    void colourImagesShowExactlyWhatGdalReads_data();
    void colourImagesShowExactlyWhatGdalReads();
    void anOverviewIsShownAsItIs();
    void withoutOverviewsBlocksOfPixelsAreAveraged();

    void aPaletteGivesTheColours();
    void aGreyBandIsShownInGrey();
    void anAlphaBandIsPremultiplied();
    void aMaskMakesPixelsTransparent();
    void noDataMakesPixelsTransparent_data();
    void noDataMakesPixelsTransparent();
    void theOutermostFloatIsNoDataHoweverManyDigitsItIsWrittenWith_data();
    void theOutermostFloatIsNoDataHoweverManyDigitsItIsWrittenWith();
    void deepValuesAreSpreadBetweenTheOuterTwoPercent_data();
    void deepValuesAreSpreadBetweenTheOuterTwoPercent();
    void opaqueTilesAreRgb32AndOthersPremultiplied();

    void anImageWithoutPlaceHasPixelCoordinatesWithYUp();
    void aPlaceThatIsNotFiniteIsNone_data();
    void aPlaceThatIsNotFiniteIsNone();
    void aSouthUpImageIsTurnedOver();
    void aMirroredImageIsTurnedOver();
    void aRotatedImageLiesNorthUpAndIsTransparentAround();
    void aRotatedImageIsNotBlurred_data();
    void aRotatedImageIsNotBlurred();
    void groundControlPointsPlaceAnImage();

    void anyBandsCanBeChosen();
    void bandsThatTheImageLacksAreLeftOut();
    void transparencyFadesTheLayer();
    void enlargedPixelsStayCrisp();
    void theFactsOfAFileAreOffered();
    void settingsSurviveADocument();
    void aWebAddressInADocumentStaysAsItIs();
    void aNameForGdalInADocumentStaysAsItIs_data();
    void aNameForGdalInADocumentStaysAsItIs();
    void aDocumentIsToldWhatCouldNotBeOpened_data();
    void aDocumentIsToldWhatCouldNotBeOpened();

    void aContainerStandsForItsFirstImage();
    void aMissingFileFailsAtOnceWithOneLine();
    void aFileThatIsNoImageFailsWithOneLine();
    void anotherSourceReplacesTheFirst();
    void nothingIsWrittenBesideTheFile();
    void addressesGoThroughTheirFileSystems_data();
    void addressesGoThroughTheirFileSystems();

private:
    QString write(const char* name, const RasterRecipe& what);

    QTemporaryDir folder;
};

void GdalRasterLayerTest::initTestCase()
{
    QVERIFY(folder.isValid());
}

QString GdalRasterLayerTest::write(const char* name, const RasterRecipe& what)
{
    const QString path = folder.filePath(QString(name) + ".tif");
    return makeRaster(path, what) ? path : QString();
}

void GdalRasterLayerTest::colourImagesShowExactlyWhatGdalReads_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<bool>("overviews");
    QTest::addColumn<unsigned int>("tileSize");
    const QStringList blocks = {"TILED=YES", "BLOCKXSIZE=256", "BLOCKYSIZE=256"};
    const QStringList jpeg = QStringList(blocks) << "COMPRESS=JPEG"
                                                 << "PHOTOMETRIC=YCBCR";
    const QStringList bandsApart = QStringList(blocks) << "INTERLEAVE=BAND";
    const QStringList small = {"TILED=YES", "BLOCKXSIZE=64", "BLOCKYSIZE=64"};
    const QStringList flat = {"TILED=YES", "BLOCKXSIZE=512", "BLOCKYSIZE=128"};
    QTest::newRow("blocks of 256") << QSize(1024, 768) << blocks << false << 256U;
    QTest::newRow("blocks of 256 with overviews") << QSize(1024, 768) << blocks << true << 256U;
    QTest::newRow("an odd size") << QSize(777, 333) << blocks << true << 256U;
    QTest::newRow("jpeg") << QSize(600, 600) << jpeg << true << 256U;
    QTest::newRow("bands apart") << QSize(600, 600) << bandsApart << false << 256U;
    QTest::newRow("blocks of 512") << QSize(1100, 700) << blocks512 << false << 512U;
    QTest::newRow("small blocks make larger tiles") << QSize(600, 600) << small << false << 256U;
    QTest::newRow("flat blocks make square tiles") << QSize(1200, 600) << flat << false << 512U;
    QTest::newRow("strips") << QSize(900, 700) << strips << false << 256U;
    QTest::newRow("strips with overviews") << QSize(1200, 1000) << strips << true << 256U;
    QTest::newRow("smaller than a tile") << QSize(40, 30) << strips << false << 256U;
    QTest::newRow("one pixel") << QSize(1, 1) << strips << false << 256U;
    QTest::newRow("one row") << QSize(700, 1) << strips << false << 256U;
}

void GdalRasterLayerTest::colourImagesShowExactlyWhatGdalReads()
{
    QFETCH(QSize, size);
    QFETCH(QStringList, options);
    QFETCH(bool, overviews);
    QFETCH(unsigned int, tileSize);
    RasterRecipe what = recipe(size);
    what.options = options;
    what.overviews = overviews ? std::vector<int>{2, 4} : std::vector<int>{};
    const QString path = write("colour", what);
    QVERIFY(!path.isEmpty());

    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(path));
    QTRY_VERIFY(layer.isValid());
    QCOMPARE(layer.getBounds(), QRectF(1000.0, 5000.0, 2.0 * size.width(), -2.0 * size.height()));
    QCOMPARE(layer.facts()->tileSize, tileSize);

    const QImage picture = complete(layer, {size.width(), size.height(), 0, 0, 1.0});
    QCOMPARE(int(layer.getPercentComplete()), 100);
    const Dataset dataset = openRaster(path);
    QCOMPARE(firstDifference(picture, dataset.get(), 0, 0), QString());
}

void GdalRasterLayerTest::anOverviewIsShownAsItIs()
{
    RasterRecipe what = recipe(QSize(2101, 1501));
    what.overviews = {2};
    what.resampling = "NEAREST";
    const QString path = write("overview", what);
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(path));
    QTRY_VERIFY(layer.isValid());

    const QImage picture = complete(layer, {500, 400, 200, 100, 2.0});

    const Dataset dataset = openRaster(path);
    GDALDatasetH overview =
        GDALGetBandDataset(GDALGetOverview(GDALGetRasterBand(dataset.get(), 1), 0));
    QCOMPARE(firstDifference(picture, overview, 100, 50), QString());
}

void GdalRasterLayerTest::withoutOverviewsBlocksOfPixelsAreAveraged()
{
    for (const QStringList& options : {strips, blocks512}) {
        RasterRecipe what = recipe(QSize(2400, 2200), 1);
        what.options = options;
        what.value = [](int, int x, int y) { return x / 2 % 2 * 100 + y / 2 % 2 * 10 + x % 2 * 4; };
        GdalRasterLayer layer;
        QVERIFY(layer.setDataSource(write("average", what)));
        QTRY_VERIFY(layer.isValid());
        const QImage picture = complete(layer, {500, 300, 512, 512, 2.0});
        for (const QPoint& pixel : {QPoint(0, 0), QPoint(1, 0), QPoint(300, 201)}) {
            const int expected = pixel.x() % 2 * 100 + pixel.y() % 2 * 10 + 2;
            QCOMPARE(qRed(picture.pixel(pixel)), expected);
        }
    }
}

void GdalRasterLayerTest::aPaletteGivesTheColours()
{
    RasterRecipe what = recipe(QSize(600, 300), 1);
    what.finish = setPalette;
    what.options << "PHOTOMETRIC=PALETTE";
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(write("palette", what)));
    QTRY_VERIFY(layer.isValid());
    const QImage picture = complete(layer, {600, 300, 0, 0, 1.0});
    const int index = static_cast<int>(plainValue(1, 321, 123));
    QCOMPARE(picture.pixel(321, 123), qRgb(index, 255 - index, index / 2));
    QCOMPARE(layer.getColorSpace(), RasterLayer::ColorSpace::Rgb);
}

void GdalRasterLayerTest::aGreyBandIsShownInGrey()
{
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(write("grey", recipe(QSize(300, 300), 1))));
    QTRY_VERIFY(layer.isValid());
    const QImage picture = complete(layer, {300, 300, 0, 0, 1.0});
    const int grey = static_cast<int>(plainValue(1, 299, 298));
    QCOMPARE(picture.pixel(299, 298), qRgb(grey, grey, grey));
    QCOMPARE(layer.colorSpaceToString(), QString("Greyscale"));
}

void GdalRasterLayerTest::anAlphaBandIsPremultiplied()
{
    RasterRecipe what = recipe(QSize(300, 200), 4);
    what.options << "ALPHA=YES";
    what.value = [](int band, int x, int) { return band == 4 ? (x < 100 ? 0 : 128) : 200; };
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(write("alpha", what)));
    QTRY_VERIFY(layer.isValid());
    QVERIFY(layer.getOpacity());
    QCOMPARE(layer.getBandList(), (QVector<qint32>{1, 2, 3}));
    const QImage picture = complete(layer, {300, 200, 0, 0, 1.0});
    QCOMPARE(qAlpha(picture.pixel(50, 50)), 0);
    const QRgb raw = reinterpret_cast<const QRgb*>(picture.constScanLine(50))[200];
    QCOMPARE(raw, qRgba(100, 100, 100, 128));
}

void GdalRasterLayerTest::aMaskMakesPixelsTransparent()
{
    for (const std::vector<int>& overviews : {std::vector<int>{}, std::vector<int>{2}}) {
        RasterRecipe what = recipe(QSize(1200, 1200));
        what.finish = setMask;
        what.overviews = overviews;
        GdalRasterLayer layer;
        QVERIFY(layer.setDataSource(write("mask", what)));
        QTRY_VERIFY(layer.isValid());
        QVERIFY(layer.getOpacity());
        const QImage full = complete(layer, {300, 200, 0, 0, 1.0});
        QCOMPARE(qAlpha(full.pixel(99, 10)), 0);
        QCOMPARE(qAlpha(full.pixel(100, 10)), 255);
        const QImage half = complete(layer, {300, 200, 0, 0, 2.0});
        QCOMPARE(qAlpha(half.pixel(49, 10)), 0);
        QCOMPARE(qAlpha(half.pixel(50, 10)), 255);
    }
}

void GdalRasterLayerTest::noDataMakesPixelsTransparent_data()
{
    QTest::addColumn<int>("bands");
    QTest::addColumn<int>("type");
    QTest::addColumn<double>("noData");
    QTest::newRow("grey bytes") << 1 << int(GDT_Byte) << 7.0;
    QTest::newRow("colour where all bands agree") << 3 << int(GDT_Byte) << 0.0;
    QTest::newRow("16 bits") << 1 << int(GDT_Int16) << -9999.0;
    QTest::newRow("float") << 1 << int(GDT_Float32) << -3.4028234663852886e+38;
    QTest::newRow("not a number") << 1 << int(GDT_Float32) << std::nan("");
    QTest::newRow("double") << 1 << int(GDT_Float64) << -1e300;
}

void GdalRasterLayerTest::noDataMakesPixelsTransparent()
{
    QFETCH(int, bands);
    QFETCH(int, type);
    QFETCH(double, noData);
    RasterRecipe what = recipe(QSize(300, 200), bands, static_cast<GDALDataType>(type));
    // the right part holds the value in one band only where there are several
    what.value = [=](int band, int x, int) {
        const bool empty = x < 100 || (x >= 200 && bands > 1 && band == 2);
        return empty ? noData : 60.0 + x % 100;
    };
    what.finish = [noData](GDALDatasetH dataset) { setNoData(dataset, noData); };
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(write("nodata", what)));
    QTRY_VERIFY(layer.isValid());
    QCOMPARE(std::isnan(layer.getNoDataValue()), std::isnan(noData));
    QVERIFY(std::isnan(noData) || layer.getNoDataValue() == noData);
    const QImage picture = complete(layer, {300, 200, 0, 0, 1.0});
    QCOMPARE(qAlpha(picture.pixel(99, 100)), 0);
    QCOMPARE(qAlpha(picture.pixel(100, 100)), 255);
    QCOMPARE(qAlpha(picture.pixel(250, 100)), 255);
}

void GdalRasterLayerTest::theOutermostFloatIsNoDataHoweverManyDigitsItIsWrittenWith_data()
{
    QTest::addColumn<double>("written");
    QTest::addColumn<double>("value");
    const double outermost = std::numeric_limits<float>::max();
    QTest::newRow("six digits") << -3.40282e38 << -outermost;
    QTest::newRow("five digits, above zero") << 3.4028e38 << outermost;
    QTest::newRow("two digits") << -3.4e38 << -outermost;
    QTest::newRow("all digits, cells of six") << -outermost << -3.40282e38;
}

// As GDAL takes it: writers of such files differ in the digits of the one and of the other.
void GdalRasterLayerTest::theOutermostFloatIsNoDataHoweverManyDigitsItIsWrittenWith()
{
    QFETCH(double, written);
    QFETCH(double, value);
    RasterRecipe what = recipe(QSize(300, 200), 1, GDT_Float32);
    what.value = [value](int, int x, int) { return x < 100 ? value : 60.0 + x % 100; };
    what.finish = [written](GDALDatasetH dataset) { setNoData(dataset, written); };
    const QString path = write("outermost", what);
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(path));
    QTRY_VERIFY(layer.isValid());
    const QImage picture = complete(layer, {300, 200, 0, 0, 1.0});
    QCOMPARE(qAlpha(picture.pixel(99, 100)), 0);
    QCOMPARE(qAlpha(picture.pixel(100, 100)), 255);

    const Dataset dataset = openRaster(path);
    unsigned char mask = 255;
    GDALRasterBandH band = GDALGetMaskBand(GDALGetRasterBand(dataset.get(), 1));
    QCOMPARE(GDALRasterIO(band, GF_Read, 99, 100, 1, 1, &mask, 1, 1, GDT_Byte, 0, 0), CE_None);
    QCOMPARE(int(mask), 0);
}

void GdalRasterLayerTest::deepValuesAreSpreadBetweenTheOuterTwoPercent_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<double>("offset");
    QTest::addColumn<double>("step");
    QTest::newRow("unsigned 16 bits") << int(GDT_UInt16) << 1000.0 << 10.0;
    QTest::newRow("signed 16 bits") << int(GDT_Int16) << -5000.0 << 10.0;
    QTest::newRow("32 bits") << int(GDT_Int32) << 1e9 << 1000.0;
    QTest::newRow("float") << int(GDT_Float32) << -0.5 << 0.001;
    QTest::newRow("double") << int(GDT_Float64) << 1e6 << 1e-3;
}

void GdalRasterLayerTest::deepValuesAreSpreadBetweenTheOuterTwoPercent()
{
    QFETCH(int, type);
    QFETCH(double, offset);
    QFETCH(double, step);
    RasterRecipe what = recipe(QSize(500, 100), 1, static_cast<GDALDataType>(type));
    what.value = [=](int, int x, int) { return offset + x * step; };
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(write("deep", what)));
    QTRY_VERIFY(layer.isValid());
    const QImage picture = complete(layer, {500, 100, 0, 0, 1.0});
    QCOMPARE(qRed(picture.pixel(0, 50)), 0);
    QCOMPARE(qRed(picture.pixel(9, 50)), 0);
    QCOMPARE(qRed(picture.pixel(499, 50)), 255);
    QCOMPARE(qRed(picture.pixel(490, 50)), 255);
    // 10 and 489 are the outermost columns that are not cut off
    const double expected = (250 - 10) * 255.0 / (489 - 10);
    QVERIFY(std::abs(qRed(picture.pixel(250, 50)) - expected) <= 1.0);
    QCOMPARE(qRed(picture.pixel(250, 50)), qBlue(picture.pixel(250, 50)));
}

void GdalRasterLayerTest::opaqueTilesAreRgb32AndOthersPremultiplied()
{
    RasterRecipe what = recipe(QSize(1024, 256));
    what.finish = setMask;
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(write("formats", what)));
    QTRY_VERIFY(layer.isValid());
    complete(layer, {1024, 256, 0, 0, 1.0});
    const TileShelf& tiles = layer.tiles();
    QCOMPARE(tiles.find({0, 0, 0})->format(), QImage::Format_ARGB32_Premultiplied);
    QCOMPARE(tiles.find({0, 1, 0})->format(), QImage::Format_RGB32);
}

void GdalRasterLayerTest::anImageWithoutPlaceHasPixelCoordinatesWithYUp()
{
    RasterRecipe what = recipe(QSize(400, 300));
    what.transform.clear();
    what.epsg = 0;
    const QString path = write("plain", what);
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(path));
    QTRY_VERIFY(layer.isValid());
    QCOMPARE(layer.getBounds(), QRectF(0.0, 300.0, 400.0, -300.0));
    QCOMPARE(layer.getCellSizeX(), 1.0);
    QCOMPARE(layer.getCellSizeY(), -1.0);
    const QImage picture = complete(layer, {400, 300, 0, 0, 1.0});
    const Dataset dataset = openRaster(path);
    QCOMPARE(firstDifference(picture, dataset.get(), 0, 0), QString());
}

void GdalRasterLayerTest::aPlaceThatIsNotFiniteIsNone_data()
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinite = std::numeric_limits<double>::infinity();
    QTest::addColumn<QVector<double>>("transform");
    QTest::newRow("not a number") << QVector<double>{nan, 2.0, 0.0, 5000.0, 0.0, -2.0};
    QTest::newRow("infinite") << QVector<double>{1000.0, infinite, 0.0, 5000.0, 0.0, -2.0};
}

// Its bounds would make those of the whole map no numbers, and hide every other layer.
void GdalRasterLayerTest::aPlaceThatIsNotFiniteIsNone()
{
    QFETCH(QVector<double>, transform);
    RasterRecipe what = recipe(QSize(60, 40), 1);
    what.transform.assign(transform.begin(), transform.end());
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(write("unplaced", what)));
    QTRY_VERIFY(layer.isValid());
    QCOMPARE(layer.getBounds(), QRectF(0.0, 40.0, 60.0, -40.0));
    const QImage picture = complete(layer, {60, 40, 0, 0, 1.0});
    const int grey = static_cast<int>(plainValue(1, 59, 38));
    QCOMPARE(picture.pixel(59, 38), qRgb(grey, grey, grey));
}

void GdalRasterLayerTest::aSouthUpImageIsTurnedOver()
{
    RasterRecipe what = recipe(QSize(600, 400));
    what.transform = {1000.0, 2.0, 0.0, 5000.0, 0.0, 2.0};
    const QString path = write("southup", what);
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(path));
    QTRY_VERIFY(layer.isValid());
    QCOMPARE(layer.getBounds(), QRectF(1000.0, 5800.0, 1200.0, -800.0));
    const QImage picture = complete(layer, {600, 400, 0, 0, 1.0});
    const Dataset dataset = openRaster(path);
    QCOMPARE(firstDifference(picture.mirrored(), dataset.get(), 0, 0), QString());
}

void GdalRasterLayerTest::aMirroredImageIsTurnedOver()
{
    RasterRecipe what = recipe(QSize(600, 400));
    what.transform = {2200.0, -2.0, 0.0, 5000.0, 0.0, -2.0};
    const QString path = write("mirrored", what);
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(path));
    QTRY_VERIFY(layer.isValid());
    QCOMPARE(layer.getBounds(), QRectF(1000.0, 5000.0, 1200.0, -800.0));
    const QImage picture = complete(layer, {600, 400, 0, 0, 1.0});
    const Dataset dataset = openRaster(path);
    QCOMPARE(firstDifference(picture.mirrored(true, false), dataset.get(), 0, 0), QString());
}

void GdalRasterLayerTest::aRotatedImageLiesNorthUpAndIsTransparentAround()
{
    RasterRecipe what = recipe(QSize(400, 300));
    const double c = 2.0 * std::cos(M_PI / 6);
    const double s = 2.0 * std::sin(M_PI / 6);
    what.transform = {1000.0, c, s, 5000.0, s, -c};
    what.value = [](int band, int, int) { return 50.0 * band; };
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(write("rotated", what)));
    QTRY_VERIFY(layer.isValid());
    QVERIFY(std::abs(layer.getRotation() - 30.0) < 1e-9);
    QVERIFY(layer.getOpacity());
    const QRectF bounds = layer.getBounds();
    // the corners (400, 0), (0, 300), (400, 300) and the top left one enclose the image
    QVERIFY(std::abs(bounds.left() - 1000.0) < 4.0);
    QVERIFY(std::abs(bounds.right() - (1000.0 + 400 * c + 300 * s)) < 4.0);
    QVERIFY(std::abs(bounds.top() - (5000.0 + 400 * s)) < 4.0);
    QVERIFY(std::abs(bounds.bottom() - (5000.0 - 300 * c)) < 4.0);
    const QSize size = layer.getSize();
    const QImage picture = complete(layer, {size.width(), size.height(), 0, 0, 1.0});
    QCOMPARE(picture.pixel(size.width() / 2, size.height() / 2), qRgb(50, 100, 150));
    QCOMPARE(qAlpha(picture.pixel(2, 2)), 0);
    QCOMPARE(qAlpha(picture.pixel(size.width() - 3, size.height() - 3)), 0);
}

void GdalRasterLayerTest::aRotatedImageIsNotBlurred_data()
{
    QTest::addColumn<double>("angle");
    QTest::newRow("10 degrees") << 10.0;
    QTest::newRow("30 degrees") << 30.0;
    QTest::newRow("90 degrees") << 90.0;
    QTest::newRow("-140 degrees") << -140.0;
}

/// A pixel mixes the four cells around its middle, and no others.
void GdalRasterLayerTest::aRotatedImageIsNotBlurred()
{
    QFETCH(double, angle);
    const auto square = [](double column, double row) {
        return (static_cast<int>(column) / 4 + static_cast<int>(row) / 4) % 2 * 200.0;
    };
    RasterRecipe what = recipe(QSize(400, 300), 1);
    const double c = 2.0 * std::cos(angle * M_PI / 180.0);
    const double s = 2.0 * std::sin(angle * M_PI / 180.0);
    what.transform = {1000.0, c, s, 5000.0, s, -c};
    what.value = [square](int, int x, int y) { return square(x, y); };
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(write("squares", what)));
    QTRY_VERIFY(layer.isValid());
    const QSize size = layer.getSize();
    const QImage picture = complete(layer, {size.width(), size.height(), 0, 0, 1.0});
    int seen = 0;
    double worst = 0.0;
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const double east =
                layer.getBounds().left() + (x + 0.5) * layer.getCellSizeX() - 1000.0;
            const double north =
                layer.getBounds().top() + (y + 0.5) * layer.getCellSizeY() - 5000.0;
            const double column = (c * east + s * north) / 4.0 - 0.5;
            const double row = (s * east - c * north) / 4.0 - 0.5;
            if (column < 2.0 || row < 2.0 || column > 397.0 || row > 297.0) {
                continue;
            }
            const double right = column - std::floor(column);
            const double below = row - std::floor(row);
            const double mixed =
                (square(column, row) * (1.0 - right) + square(column + 1.0, row) * right) *
                    (1.0 - below) +
                (square(column, row + 1.0) * (1.0 - right) +
                 square(column + 1.0, row + 1.0) * right) *
                    below;
            worst = std::max(worst, std::abs(qRed(picture.pixel(x, y)) - mixed));
            ++seen;
        }
    }
    QVERIFY(seen > 100000);
    QVERIFY2(worst < 2.0, qPrintable(QString::number(worst)));
}

void GdalRasterLayerTest::groundControlPointsPlaceAnImage()
{
    RasterRecipe what = recipe(QSize(400, 300));
    what.transform.clear();
    what.value = [](int band, int x, int y) {
        return x < 200 && y < 150 ? 50.0 * band : 20.0 * band;
    };
    what.finish = [](GDALDatasetH dataset) {
        GDAL_GCP points[4];
        GDALInitGCPs(4, points);
        for (int i = 0; i < 4; ++i) {
            points[i].dfGCPPixel = i % 2 * 400.0;
            points[i].dfGCPLine = i / 2 * 300.0;
            points[i].dfGCPX = 20.0 + i % 2 * 4.0;
            points[i].dfGCPY = 50.0 - i / 2 * 3.0;
        }
        OGRSpatialReferenceH system = OSRNewSpatialReference(nullptr);
        OSRImportFromEPSG(system, 4326);
        GDALSetGCPs2(dataset, 4, points, system);
        OSRDestroySpatialReference(system);
        GDALDeinitGCPs(4, points);
    };
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(write("gcp", what)));
    QTRY_VERIFY(layer.isValid());
    const QRectF bounds = layer.getBounds();
    QVERIFY(std::abs(bounds.left() - 20.0) < 0.05);
    QVERIFY(std::abs(bounds.top() - 50.0) < 0.05);
    QVERIFY(std::abs(bounds.right() - 24.0) < 0.05);
    QVERIFY(std::abs(bounds.bottom() - 47.0) < 0.05);
    const QSize size = layer.getSize();
    const QImage picture = complete(layer, {size.width(), size.height(), 0, 0, 1.0});
    QCOMPARE(picture.pixel(size.width() / 4, size.height() / 4), qRgb(50, 100, 150));
    QCOMPARE(picture.pixel(size.width() * 3 / 4, size.height() * 3 / 4), qRgb(20, 40, 60));
}

void GdalRasterLayerTest::anyBandsCanBeChosen()
{
    RasterRecipe what = recipe(QSize(300, 200), 5);
    what.value = [](int band, int, int) { return 40.0 * band; };
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(write("bands", what)));
    QTRY_VERIFY(layer.isValid());
    layer.setBandList({5, 4, 2});
    QCOMPARE(complete(layer, {100, 100, 0, 0, 1.0}).pixel(50, 50), qRgb(200, 160, 80));
    layer.setBandsText("3");
    QCOMPARE(complete(layer, {100, 100, 0, 0, 1.0}).pixel(50, 50), qRgb(120, 120, 120));
    QCOMPARE(layer.getBandsText(), QString("3"));
}

void GdalRasterLayerTest::bandsThatTheImageLacksAreLeftOut()
{
    GdalRasterLayer layer;
    layer.setBandList({9, 2, 0});
    QVERIFY(layer.setDataSource(write("lacking", recipe(QSize(300, 200)))));
    QTRY_VERIFY(layer.isValid());
    QCOMPARE(layer.getBandList(), (QVector<qint32>{2}));
    layer.setBandList({});
    QCOMPARE(layer.getBandList(), (QVector<qint32>{1, 2, 3}));
}

void GdalRasterLayerTest::transparencyFadesTheLayer()
{
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(write("fade", recipe(QSize(300, 200)))));
    QTRY_VERIFY(layer.isValid());
    layer.setTransparency(0.75);
    const QImage picture = complete(layer, {300, 200, 0, 0, 1.0});
    QVERIFY(std::abs(qAlpha(picture.pixel(100, 100)) - 64) <= 1);
    layer.setTransparency(7.0);
    QCOMPARE(layer.getTransparency(), 1.0);
    layer.setTransparency(std::nan(""));
    QCOMPARE(layer.getTransparency(), 0.0);
}

void GdalRasterLayerTest::enlargedPixelsStayCrisp()
{
    const QString path = write("crisp", recipe(QSize(300, 200)));
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(path));
    QTRY_VERIFY(layer.isValid());
    const QImage picture = complete(layer, {400, 400, 100, 50, 0.25});
    const Dataset dataset = openRaster(path);
    const QImage small = picture.scaled(100, 100, Qt::IgnoreAspectRatio, Qt::FastTransformation);
    QCOMPARE(firstDifference(small, dataset.get(), 100, 50), QString());
    QCOMPARE(picture.pixel(40, 40), picture.pixel(43, 43));
}

void GdalRasterLayerTest::theFactsOfAFileAreOffered()
{
    RasterRecipe what = recipe(QSize(1200, 1000), 1, GDT_UInt16);
    what.options = strips;
    what.overviews = {2, 4};
    what.finish = [](GDALDatasetH dataset) { setNoData(dataset, 12.0); };
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(write("facts", what)));
    QTRY_VERIFY(layer.isValid());
    QCOMPARE(layer.property("Driver").toString(), QString("GTiff"));
    QCOMPARE(layer.getFormat(), QString("GeoTIFF"));
    QCOMPARE(layer.property("Epsg").toInt(), 32633);
    QCOMPARE(layer.getSpatialRef().epsg, 32633);
    QCOMPARE(layer.getCoordSysName(), QString("WGS 84 / UTM zone 33N"));
    QVERIFY(layer.property("Wkt").toString().startsWith("PROJCS["));
    QCOMPARE(layer.property("Overviews").toString(), QString("600 x 500, 300 x 250"));
    QCOMPARE(layer.property("BlockSize").toSize(), QSize(1200, 16));
    QCOMPARE(layer.property("NoData").toString(), QString("12"));
    QCOMPARE(layer.property("Compression").toString(), QString("DEFLATE"));
    QCOMPARE(layer.property("LayoutKind").toString(), QString("strips"));
    QCOMPARE(layer.getCellType(), QString("UInt16"));
    QCOMPARE(layer.getProtocol(), QString("file"));
    QCOMPARE(layer.getDescription(), QString("facts.tif"));
    QVERIFY(!layer.getIcon().isNull());
}

void GdalRasterLayerTest::settingsSurviveADocument()
{
    const QString path = write("document", recipe(QSize(300, 200)));
    QDomDocument document;
    QDomElement element = document.createElement("layer");
    {
        GdalRasterLayer layer;
        QVERIFY(layer.setDataSource(path));
        QTRY_VERIFY(layer.isValid());
        layer.setBandList({3, 2, 1});
        layer.setTransparency(0.25);
        layer.setProgressive(false);
        layer.setAdaptiveRoam(false);
        layer.setPixmapSmoothing(false);
        layer.setComments("seen");
        QVERIFY(layer.writeXML(element, document));
    }
    GdalRasterLayer layer;
    QDir base(folder.path());
    LogLines log;
    QVERIFY(layer.readXML(element, base, nullptr));
    QVERIFY(layer.isValid());
    QCOMPARE(layer.getDataSource(), path);
    QCOMPARE(layer.getBandList(), (QVector<qint32>{3, 2, 1}));
    QCOMPARE(layer.getTransparency(), 0.25);
    QVERIFY(!layer.isProgressive());
    QVERIFY(!layer.isAdaptiveRoam());
    QVERIFY(!layer.isPixmapSmoothing());
    QCOMPARE(layer.getComments(), QString("seen"));
    QCOMPARE(log.holding(QString()), QStringList());
}

void GdalRasterLayerTest::aWebAddressInADocumentStaysAsItIs()
{
    QDomDocument document;
    QDomElement element = document.createElement("layer");
    QDomElement source = document.createElement("datasource");
    source.setAttribute("value", "s3://127.0.0.1/nothing.tif");
    element.appendChild(source);
    GdalRasterLayer layer;
    QDir base(folder.path());
    CPLSetConfigOption("AWS_NO_SIGN_REQUEST", "YES");
    CPLSetConfigOption("AWS_S3_ENDPOINT", "127.0.0.1:9");
    LogLines log;
    layer.readXML(element, base, nullptr);
    QCOMPARE(layer.getDataSource(), QString("s3://127.0.0.1/nothing.tif"));
    QCOMPARE(layer.getProtocol(), QString("s3"));
    QTRY_COMPARE(log.holding("cannot open s3://127.0.0.1/nothing.tif").size(), 1);
    QVERIFY(!layer.isValid());
}

void GdalRasterLayerTest::aNameForGdalInADocumentStaysAsItIs_data()
{
    QTest::addColumn<QString>("pattern");
    QTest::newRow("a directory of a TIFF file") << "GTIFF_DIR:1:%1";
    QTest::newRow("a description in place")
        << "<VRTDataset rasterXSize=\"300\" rasterYSize=\"200\">"
           "<VRTRasterBand dataType=\"Byte\" band=\"1\">"
           "<SimpleSource><SourceFilename>%1</SourceFilename>"
           "<SourceBand>1</SourceBand></SimpleSource>"
           "</VRTRasterBand></VRTDataset>";
}

void GdalRasterLayerTest::aNameForGdalInADocumentStaysAsItIs()
{
    QFETCH(QString, pattern);
    const QString name = pattern.arg(write("named", recipe(QSize(300, 200))));
    QDomDocument document;
    QDomElement element = document.createElement("layer");
    {
        GdalRasterLayer layer;
        QVERIFY(layer.setDataSource(name));
        QTRY_VERIFY(layer.isValid());
        QVERIFY(layer.writeXML(element, document));
    }
    GdalRasterLayer layer;
    QDir base("/somewhere/else");
    QString errors;
    QVERIFY(layer.readXML(element, base, &errors));
    QTRY_VERIFY(layer.isValid());
    QCOMPARE(layer.getDataSource(), name);
    QCOMPARE(layer.getSize(), QSize(300, 200));
    QCOMPARE(errors, QString());

    // reading is over: other sources are taken as they come
    layer.setProgressive(false); // in this call
    QVERIFY(!layer.setDataSource("/missing.tif"));
    QCOMPARE(layer.getDataSource(), QString("/missing.tif"));
}

void GdalRasterLayerTest::aDocumentIsToldWhatCouldNotBeOpened_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("kept");
    QTest::addColumn<QString>("reason");
    QTest::newRow("a missing file") << "/missing/a.tif"
                                    << "/missing/a.tif"
                                    << "the file does not exist";
    QTest::newRow("a missing relative file")
        << "missing/../other/a.tif" << folder.filePath("other/a.tif") << "the file does not exist";
    QTest::newRow("no source") << ""
                               << ""
                               << "no data source";
}

void GdalRasterLayerTest::aDocumentIsToldWhatCouldNotBeOpened()
{
    QFETCH(QString, source);
    QFETCH(QString, kept);
    QFETCH(QString, reason);
    QDomDocument document;
    QDomElement element = document.createElement("layer");
    if (!source.isEmpty()) {
        QDomElement child = document.createElement("datasource");
        child.setAttribute("value", source);
        element.appendChild(child);
    }
    QDir base(folder.path());
    QString errors;
    LogLines log;
    GdalRasterLayer layer;
    layer.setProgressive(false);                    // however long the disk takes
    QVERIFY(layer.readXML(element, base, &errors)); // it stays in its map
    QVERIFY(!layer.isValid());
    QCOMPARE(layer.getDataSource(), kept);
    const QString line = QString("cannot open %1: %2").arg(kept, reason);
    QCOMPARE(errors, line);
    QCOMPARE(log.holding(line).size(), 1);
    GdalRasterLayer next;
    next.setProgressive(false);
    next.readXML(element, base, &errors);
    QCOMPARE(errors, line + '\n' + line);
    QVERIFY(GdalRasterLayer().readXML(element, base, nullptr));
}

// This driver offers the list of its images only as a whole.
void GdalRasterLayerTest::aContainerStandsForItsFirstImage()
{
    GDALDriverH driver = GDALGetDriverByName("netCDF");
    QVERIFY2(driver, "GDAL as Debian builds it has this driver");
    const Dataset colour = openRaster(write("manifold", recipe(QSize(60, 40))));
    QVERIFY(colour);
    const QString path = folder.filePath("container.nc");
    Dataset container(GDALCreateCopy(driver, path.toUtf8().constData(), colour.get(), FALSE,
                                     nullptr, nullptr, nullptr));
    QVERIFY(container);
    container.reset();

    GdalRasterLayer layer;
    QVERIFY2(layer.setDataSource(path), qPrintable(layer.getLastError()));
    QTRY_VERIFY2(layer.isValid(), qPrintable(layer.getLastError()));
    QCOMPARE(layer.getSize(), QSize(60, 40));
    QCOMPARE(layer.getNumberOfBands(), 1);
    const QImage picture = complete(layer, {60, 40, 0, 0, 1.0});
    const int grey = static_cast<int>(plainValue(1, 59, 38));
    QCOMPARE(picture.pixel(59, 38), qRgb(grey, grey, grey));
}

void GdalRasterLayerTest::aMissingFileFailsAtOnceWithOneLine()
{
    LogLines log;
    GdalRasterLayer layer;
    layer.setProgressive(false); // however long the disk takes
    const QString path = folder.filePath("missing.tif");
    QVERIFY(!layer.setDataSource(path));
    QVERIFY(!layer.isValid());
    QVERIFY(!layer.getLastError().isEmpty());
    QCOMPARE(log.holding(path).size(), 1);
    QCOMPARE(int(layer.getPercentComplete()), 100);
}

void GdalRasterLayerTest::aFileThatIsNoImageFailsWithOneLine()
{
    QFile file(folder.filePath("text.tif"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("no image at all");
    file.close();
    LogLines log;
    GdalRasterLayer layer;
    layer.setDataSource(file.fileName());
    QTRY_VERIFY(!layer.getLastError().isEmpty());
    QVERIFY(!layer.isValid());
    QCOMPARE(log.holding(file.fileName()).size(), 1);
}

void GdalRasterLayerTest::anotherSourceReplacesTheFirst()
{
    RasterRecipe what = recipe(QSize(300, 200));
    const QString first = write("first", what);
    what.size = QSize(500, 400);
    what.value = [](int, int, int) { return 77.0; };
    const QString second = write("second", what);
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(first));
    QTRY_VERIFY(layer.isValid());
    complete(layer, {300, 200, 0, 0, 1.0});
    QVERIFY(layer.setDataSource(second));
    QTRY_VERIFY(layer.isValid());
    QCOMPARE(layer.getSize(), QSize(500, 400));
    const QImage picture = complete(layer, {300, 200, 0, 0, 1.0});
    QCOMPARE(picture.pixel(100, 100), qRgb(77, 77, 77));
    layer.setProgressive(false); // in this call
    QVERIFY(!layer.setDataSource(folder.filePath("missing.tif")));
    QVERIFY(!layer.isValid());
    QCOMPARE(layer.getBounds(), QRectF());
}

void GdalRasterLayerTest::nothingIsWrittenBesideTheFile()
{
    QTemporaryDir own;
    RasterRecipe what = recipe(QSize(900, 700), 1, GDT_Float32);
    const QString path = own.filePath("image.tif");
    QVERIFY(makeRaster(path, what));
    {
        GdalRasterLayer layer;
        QVERIFY(layer.setDataSource(path));
        QTRY_VERIFY(layer.isValid());
        complete(layer, {300, 200, 0, 0, 2.0});
        const double nan = std::numeric_limits<double>::quiet_NaN();
        QCOMPARE(layer.getHistograms(false, true, QSize(500, 500), nan, nan, nan, nan).size(), 1);
        QCOMPARE(layer.getHistograms(false, false, QSize(500, 500), nan, nan, nan, nan).size(), 1);
    }
    QCOMPARE(QDir(own.path()).entryList(QDir::Files), QStringList({"image.tif"}));
}

void GdalRasterLayerTest::addressesGoThroughTheirFileSystems_data()
{
    QTest::addColumn<QString>("source");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("remote");
    QTest::addColumn<QString>("protocol");
    QTest::newRow("a path") << "/data/a.tif"
                            << "/data/a.tif" << false << "file";
    QTest::newRow("a secure address") << "https://h/a.tif"
                                      << "/vsicurl/https://h/a.tif" << true << "http";
    QTest::newRow("a plain address") << "HTTP://h/a.tif"
                                     << "/vsicurl/HTTP://h/a.tif" << true << "http";
    QTest::newRow("an object store") << "s3://b/k/a.tif"
                                     << "/vsis3/b/k/a.tif" << true << "s3";
    QTest::newRow("a file address") << "file:///data/a.tif"
                                    << "/data/a.tif" << false << "file";
    QTest::newRow("an archive on a server")
        << "/vsizip//vsicurl/http://h/a.zip/a.tif"
        << "/vsizip//vsicurl/http://h/a.zip/a.tif" << true << "http";
    QTest::newRow("an archive in an object store") << "/vsigzip//vsis3/b/a.tif.gz"
                                                   << "/vsigzip//vsis3/b/a.tif.gz" << true << "s3";
    QTest::newRow("an archive of this machine") << "/vsizip//data/a.zip/a.tif"
                                                << "/vsizip//data/a.zip/a.tif" << false << "file";
    QTest::newRow("a folder of such a name") << "/data/vsicurl/a.tif"
                                             << "/data/vsicurl/a.tif" << false << "file";
    QTest::newRow("a part of a container") << "NETCDF:\"a.nc\":v"
                                           << "NETCDF:\"a.nc\":v" << false << "file";
}

void GdalRasterLayerTest::addressesGoThroughTheirFileSystems()
{
    QFETCH(QString, source);
    QFETCH(QString, name);
    QFETCH(bool, remote);
    QFETCH(QString, protocol);
    QCOMPARE(gdalName(source), name);
    QCOMPARE(isRemote(source), remote);
    QCOMPARE(protocolOf(source), protocol);
}

int main(int argc, char** argv)
{
    QLoggingCategory::setFilterRules("corvane.tiles.debug=false");
    Application application(argc, argv, "GdalRasterLayerTest");
    GdalRasterLayerTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "GdalRasterLayerTest.moc"
