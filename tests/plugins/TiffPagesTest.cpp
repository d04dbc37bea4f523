#include <tests/plugins/TestRasters.h>

#include <plugins/raster/TiffPages.h>

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using namespace Corvane::Map;
using namespace Corvane::Tests;

namespace {

RasterRecipe page(double value, const QStringList& options)
{
    RasterRecipe recipe;
    recipe.size = QSize(700, 600);
    recipe.options = options;
    recipe.value = [value](int band, int x, int) { return value + band + x % 7; };
    return recipe;
}

QByteArray contentOf(const QString& name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// The pages of one TIFF file put behind those of another.
class TiffPagesTest : public QObject
{
    Q_OBJECT
private slots:
    void init() { folder = std::make_unique<QTemporaryDir>(); }

    void pagesComeBehindEachOther_data();
    void pagesComeBehindEachOther();
    void whoHasTheFileOpenReadsOn();
    void blocksWithoutPixelsStayWithout();
    void whatDoesNotFitIsRefused_data();
    void whatDoesNotFitIsRefused();
    void aTornFileIsRefused();

private:
    QString path(const QString& name) const { return folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> folder;
};

void TiffPagesTest::pagesComeBehindEachOther_data()
{
    QTest::addColumn<QStringList>("options");
    const QStringList tiles{"TILED=YES", "BLOCKXSIZE=256", "BLOCKYSIZE=256"};
    QTest::newRow("strips") << QStringList();
    QTest::newRow("tiles") << tiles;
    QTest::newRow("compressed tiles") << tiles + QStringList{"COMPRESS=LZW", "PREDICTOR=2"};
    QTest::newRow("tiles with tables") << tiles + QStringList{"COMPRESS=JPEG"};
    QTest::newRow("a plane for each band") << tiles + QStringList{"INTERLEAVE=BAND"};
    QTest::newRow("large files") << tiles + QStringList{"BIGTIFF=YES"};
    QTest::newRow("one block in a large file") << QStringList{"BIGTIFF=YES", "BLOCKYSIZE=600"};
}

void TiffPagesTest::pagesComeBehindEachOther()
{
    QFETCH(QStringList, options);
    const QStringList files{path("a.tif"), path("b.tif"), path("c.tif")};
    std::vector<std::vector<double>> pixels;
    for (int i = 0; i < files.size(); ++i) {
        QVERIFY(makeRaster(files[i], page(40.0 + 50.0 * i, options)));
        pixels.push_back(readBand(openRaster(files[i]).get(), 2, 0, 0, 700, 600));
    }
    QString error;
    QVERIFY2(appendPages(files[0], files[1], &error), qPrintable(error));
    QVERIFY2(appendPages(files[0], files[2], &error), qPrintable(error));
    QVERIFY(QFile::remove(files[1]));
    for (int i = 0; i < files.size(); ++i) {
        const Dataset dataset = openRaster(QString("GTIFF_DIR:%1:%2").arg(i + 1).arg(files[0]));
        QVERIFY(dataset);
        QCOMPARE(GDALGetRasterCount(dataset.get()), 3);
        QVERIFY(readBand(dataset.get(), 2, 0, 0, 700, 600) == pixels[static_cast<std::size_t>(i)]);
    }
    QVERIFY(!openRaster(QString("GTIFF_DIR:4:%1").arg(files[0])));
}

void TiffPagesTest::whoHasTheFileOpenReadsOn()
{
    QVERIFY(makeRaster(path("a.tif"), page(40.0, {"TILED=YES"})));
    QVERIFY(makeRaster(path("b.tif"), page(90.0, {"TILED=YES"})));
    const Dataset open = openRaster(path("a.tif"));
    QString error;
    QVERIFY2(appendPages(path("a.tif"), path("b.tif"), &error), qPrintable(error));
    QCOMPARE(readBand(open.get(), 1, 699, 599, 1, 1).front(), 41.0 + 699 % 7);
}

void TiffPagesTest::blocksWithoutPixelsStayWithout()
{
    RasterRecipe sparse = page(0.0, {"TILED=YES", "SPARSE_OK=TRUE"});
    sparse.value = [](int, int x, int y) { return x < 256 && y < 256 ? 7.0 : 0.0; };
    QVERIFY(makeRaster(path("a.tif"), sparse));
    QVERIFY(makeRaster(path("b.tif"), sparse));
    QString error;
    QVERIFY2(appendPages(path("a.tif"), path("b.tif"), &error), qPrintable(error));
    const Dataset dataset = openRaster("GTIFF_DIR:2:" + path("a.tif"));
    QCOMPARE(readBand(dataset.get(), 1, 0, 0, 1, 1).front(), 7.0);
    QCOMPARE(readBand(dataset.get(), 1, 600, 500, 1, 1).front(), 0.0);
}

void TiffPagesTest::whatDoesNotFitIsRefused_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<QString>("source");
    QTest::newRow("a large file behind a small one") << "small.tif"
                                                     << "large.tif";
    QTest::newRow("a small one behind a large one") << "large.tif"
                                                    << "small.tif";
    QTest::newRow("the other byte order") << "small.tif"
                                          << "other.tif";
    QTest::newRow("what is no image") << "small.tif"
                                      << "text.tif";
    QTest::newRow("behind what is none") << "text.tif"
                                         << "small.tif";
    QTest::newRow("a file that is not there") << "small.tif"
                                              << "none.tif";
    QTest::newRow("behind one that is not there") << "none.tif"
                                                  << "small.tif";
}

void TiffPagesTest::whatDoesNotFitIsRefused()
{
    QFETCH(QString, target);
    QFETCH(QString, source);
    QVERIFY(makeRaster(path("small.tif"), page(40.0, {})));
    QVERIFY(makeRaster(path("large.tif"), page(40.0, {"BIGTIFF=YES"})));
    QVERIFY(makeRaster(path("other.tif"), page(40.0, {"ENDIANNESS=BIG"})));
    QFile text(path("text.tif"));
    QVERIFY(text.open(QIODevice::WriteOnly) && text.write("II no image") > 0);
    text.close();
    const QByteArray before = contentOf(path(target));
    QString error;
    QVERIFY(!appendPages(path(target), path(source), &error));
    QCOMPARE(error, path(target) + " cannot be written");
    QVERIFY(contentOf(path(target)) == before);
    QVERIFY(!QFile::exists(path("none.tif")));
}

/// Whatever is missing of it: the target keeps its own page and gets no other.
void TiffPagesTest::aTornFileIsRefused()
{
    QVERIFY(makeRaster(path("a.tif"), page(40.0, {"TILED=YES"})));
    QVERIFY(makeRaster(path("b.tif"), page(90.0, {"TILED=YES", "BLOCKXSIZE=64", "BLOCKYSIZE=64"})));
    const QByteArray whole = contentOf(path("b.tif"));
    for (const int bytes : {4, 8, 100, 300, 500}) {
        QFile torn(path("b.tif"));
        QVERIFY(torn.open(QIODevice::WriteOnly) && torn.write(whole.left(bytes)) == bytes);
        torn.close();
        QString error;
        QVERIFY2(!appendPages(path("a.tif"), path("b.tif"), &error),
                 qPrintable(QString::number(bytes)));
        QCOMPARE(readBand(openRaster(path("a.tif")).get(), 1, 0, 0, 1, 1).front(), 41.0);
        QVERIFY(!openRaster("GTIFF_DIR:2:" + path("a.tif")));
    }
}

QTEST_GUILESS_MAIN(TiffPagesTest)

#include "TiffPagesTest.moc"
