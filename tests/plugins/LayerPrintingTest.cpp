#include "LayerProbe.h"
#include "SlowServer.h"
#include "TestRasters.h"
#include "WebTileTools.h"

#include <tests/support/PointPrinter.h>

#include <plugins/common/TileBudget.h>
#include <plugins/common/TileCache.h>
#include <plugins/raster/GdalRasterLayer.h>
#include <plugins/webtiles/WebMercator.h>
#include <plugins/webtiles/WebTileLayer.h>

#include <corvane/map/MapCanvas.h>

#include <QProgressBar>
#include <QProgressDialog>
#include <QThreadPool>
#include <QtTest>

#include <algorithm>
#include <cmath>
#include <limits>
#include <thread>

using namespace Corvane;
using namespace Corvane::Map;
using namespace Corvane::Tests;

namespace {

constexpr int jpegError = 12;       // levels; PDF files hold pictures as JPEG
constexpr int slantedEdge = 1000;   // pixels: pdftoppm blends the edges of transparent pictures
constexpr int generous = 60 * 1000; // milliseconds

int difference(QRgb a, QRgb b)
{
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                     std::abs(qBlue(a) - qBlue(b))});
}

/// The smallest difference of the pixel to those of the picture at its place and around it.
int errorAround(const QImage& picture, int x, int y, QRgb pixel)
{
    int smallest = 255;
    for (int dy = -1; dy <= 1; ++dy) {
        for (int dx = -1; dx <= 1; ++dx) {
            smallest = std::min(smallest, difference(picture.pixel(x + dx, y + dy), pixel));
        }
    }
    return smallest;
}

/// How many pixels of the two pictures differ, but for those of the frame and by what a JPEG does; all
/// of them where the sizes differ. pdftoppm draws pictures larger by a pixel, so a pixel may have moved
/// to its neighbour; a line that only one of the pictures has still counts.
int countDifferences(const QImage& a, const QImage& b)
{
    constexpr int frame = 3;
    if (a.size() != b.size()) {
        return std::numeric_limits<int>::max();
    }
    int count = 0;
    for (int y = frame; y < a.height() - frame; ++y) {
        for (int x = frame; x < a.width() - frame; ++x) {
            const bool differs = errorAround(b, x, y, a.pixel(x, y)) > jpegError ||
                                 errorAround(a, x, y, b.pixel(x, y)) > jpegError;
            count += differs ? 1 : 0;
        }
    }
    return count;
}

/// What a screen of this size shows of the world, on white.
QImage onScreen(MapCanvas& canvas, QRectF world, QSize size)
{
    for (Layer* layer : canvas.getLayers()) {
        layer->setProperty("Progressive", false);
    }
    QImage screen(size, QImage::Format_RGB32);
    screen.fill(Qt::white);
    QRect device = screen.rect();
    canvas.setView(size.width(), size.height(), world.left(), world.top(), world.right(),
                   world.bottom());
    GeoPainter painter(&screen, world, device);
    canvas.paint(painter, &world, &device);
    return screen;
}

QRectF corners(double tlx, double tly, double brx, double bry)
{
    return QRectF(QPointF(tlx, tly), QPointF(brx, bry));
}

} // namespace

/// Layers of the plugins on paper: they are complete, without seams, and no source holds a print for
/// ever.
class LayerPrintingTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanup();

    void aPdfFileAgreesWithTheScreen_data();
    void aPdfFileAgreesWithTheScreen();
    void aPageInStripsIsLikeThatInOneGo_data();
    void aPageInStripsIsLikeThatInOneGo();
    void aJobOfStripsHoldsNoPictureForNothing();
    void aCancelLeavesTheRestOfThePageWhite();
    void aPageIsWholeThoughItExceedsTheMemoryBudget_data();
    void aPageIsWholeThoughItExceedsTheMemoryBudget();
    void stripsThatWerePrintedAreGivenBack();

    void aPageWaitsForAServerThatTakesItsTime();
    void aDeadFileServerEndsAPrint_data();
    void aDeadFileServerEndsAPrint();
    void aDeadTileServerEndsAPrint_data();
    void aDeadTileServerEndsAPrint();
    void aSourceHasAWaitLimitOfItsOwn();

    void aTransparentEdgeHasNoRim();
    void theAttributionIsPrintedOnceAndLegibly();

private:
    GdalRasterLayer* addRaster(MapCanvas& canvas, const QString& source);
    WebTileLayer* addTiles(MapCanvas& canvas, TileServer& server);

    QTemporaryDir folder;
    QString plain;   // 1200 x 2400 cells of 2 from (1000, 5000) on, with overviews
    QString rotated; // by 30 degrees
};

void LayerPrintingTest::initTestCase()
{
    TileCache::instance().setFolder(QString(), 0);
    RasterRecipe what;
    what.size = QSize(1200, 2400);
    what.overviews = {2, 4};
    what.value = [](int band, int x, int y) { // without edges, which suffer in a JPEG
        return 127.0 + 100.0 * std::sin(x / 40.0 + band) * std::cos(y / 50.0);
    };
    plain = folder.filePath("plain.tif");
    QVERIFY(makeRaster(plain, what));
    const double c = 2.0 * std::cos(M_PI / 6);
    const double s = 2.0 * std::sin(M_PI / 6);
    what.transform = {1000.0, c, s, 5000.0, s, -c};
    rotated = folder.filePath("rotated.tif");
    QVERIFY(makeRaster(rotated, what));
}

void LayerPrintingTest::cleanup()
{
    QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
    TileBudget::instance().setLimit(0);
}

GdalRasterLayer* LayerPrintingTest::addRaster(MapCanvas& canvas, const QString& source)
{
    auto* const layer = new GdalRasterLayer;
    layer->setProgressive(false);
    layer->setDataSource(source);
    layer->setProgressive(true);
    canvas.addLayer(layer);
    TileBudget::instance().setLimit(0);
    return layer;
}

WebTileLayer* LayerPrintingTest::addTiles(MapCanvas& canvas, TileServer& server)
{
    auto* const layer = new WebTileLayer;
    layer->setMaxZoom(3);
    layer->setMinZoom(2);
    layer->setDataSource(server.tiles());
    canvas.addLayer(layer);
    return layer;
}

void LayerPrintingTest::aPdfFileAgreesWithTheScreen_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QRectF>("world");
    QTest::addColumn<double>("transparency");

    const QRectF pixels = corners(1200, 4800, 1800, 4000); // on 300 x 400 pixels
    QTest::newRow("a cell for each pixel") << plain << pixels << 0.0;
    QTest::newRow("reduced") << plain << corners(1100, 4900, 2900, 2500) << 0.0;
    QTest::newRow("enlarged") << plain << corners(1200, 4800, 1290, 4680) << 0.0;
    QTest::newRow("beyond the image") << plain << corners(400, 5400, 1600, 3800) << 0.0;
    QTest::newRow("half transparent") << plain << pixels << 0.5;
    QTest::newRow("a rotated image") << rotated << corners(1000, 6200, 6400, -1000) << 0.0;
}

void LayerPrintingTest::aPdfFileAgreesWithTheScreen()
{
    QFETCH(QString, file);
    QFETCH(QRectF, world);
    QFETCH(double, transparency);
    const int allowed = file == rotated ? slantedEdge : 0;
    const QSize size(300, 400);
    MapCanvas canvas(nullptr);
    GdalRasterLayer* const layer = addRaster(canvas, file);
    QVERIFY(layer->isValid());
    layer->setTransparency(transparency);
    const QImage screen = onScreen(canvas, world, size);
    PointPrinter printer(size, PointPrinter::Pdf);

    canvas.printExtents(printer, nullptr, world);

    const int differences = countDifferences(screen, printer.pixels());
    QVERIFY2(differences <= allowed, qPrintable(QString::number(differences)));
}

void LayerPrintingTest::aPageInStripsIsLikeThatInOneGo_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QSize>("page");
    QTest::addColumn<QRectF>("world");
    QTest::addColumn<double>("transparency");

    const QSize page(600, 1300);
    const QRectF pixels = corners(1200, 4900, 2400, 2300);
    QTest::newRow("a cell for each pixel") << plain << page << pixels << 0.0;
    QTest::newRow("between two levels") << plain << page << corners(1003, 4997, 2915, 854) << 0.0;
    QTest::newRow("at the edge of two levels")
        << plain << page << corners(1000, 5000, 3400, -200) << 0.0;
    QTest::newRow("at the edge of two levels, where the page lies on the other side")
        << plain << page << corners(1000, 5000, 3399, -197) << 0.0;
    QTest::newRow("enlarged") << plain << page << corners(1203, 4717, 1443, 4197) << 0.0;
    QTest::newRow("half transparent") << plain << page << pixels << 0.5;
    QTest::newRow("a rotated image") << rotated << page << corners(600, 6200, 6600, -6800) << 0.3;
    QTest::newRow("a page of one strip")
        << plain << QSize(600, 300) << corners(1200, 4900, 2400, 4300) << 0.5;
    QTest::newRow("a page of two whole strips")
        << plain << QSize(600, 1024) << corners(1200, 4900, 2400, 2852) << 0.5;
}

void LayerPrintingTest::aPageInStripsIsLikeThatInOneGo()
{
    QFETCH(QString, file);
    QFETCH(QSize, page);
    QFETCH(QRectF, world);
    QFETCH(double, transparency);
    const int allowed = file == rotated ? slantedEdge : 0;
    MapCanvas canvas(nullptr);
    GdalRasterLayer* const layer = addRaster(canvas, file);
    layer->setTransparency(transparency);
    PointPrinter whole(page, PointPrinter::Pdf);
    PointPrinter strips(page);
    QCOMPARE(strips.outputFormat(), QPrinter::NativeFormat);

    canvas.printExtents(whole, nullptr, world);
    canvas.printExtents(strips, nullptr, world);

    const QImage printed = strips.pixels();
    QCOMPARE(printed.size(), page);
    const int differences = countDifferences(whole.pixels(), printed);
    QVERIFY2(differences <= allowed, qPrintable(QString::number(differences)));
    QImage blank(page, QImage::Format_RGB32);
    blank.fill(Qt::white);
    QVERIFY(countDifferences(blank, printed) > page.width() * page.height() / 10);
}

void LayerPrintingTest::aJobOfStripsHoldsNoPictureForNothing()
{
    MapCanvas canvas(nullptr);
    addRaster(canvas, plain);
    const QRectF world = corners(1000, 5000, 3400, 200);
    PointPrinter whole(QSize(1200, 2400), PointPrinter::Pdf);
    PointPrinter strips(QSize(1200, 2400));

    canvas.printExtents(whole, nullptr, world);
    canvas.printExtents(strips, nullptr, world);

    const double excess = double(strips.job().size()) / double(whole.job().size());
    QVERIFY2(excess < 1.1, qPrintable(QString::number(excess)));
}

void LayerPrintingTest::aCancelLeavesTheRestOfThePageWhite()
{
    MapCanvas canvas(nullptr);
    addRaster(canvas, plain);
    PointPrinter printer(QSize(600, 1300));
    QProgressDialog dialog;
    dialog.setRange(0, 100);
    connect(dialog.findChild<QProgressBar*>(), &QProgressBar::valueChanged, &dialog,
            &QProgressDialog::cancel);

    canvas.printExtents(printer, &dialog, corners(1200, 4900, 2400, 2300));

    const QImage page = printer.pixels();
    QCOMPARE(page.pixel(300, 1200), qRgb(255, 255, 255));
    QVERIFY(page.pixel(300, 1000) != qRgb(255, 255, 255)); // the strip in progress was ended
    QCOMPARE(page.pixel(300, 1299), qRgb(44, 44, 44));
}

void LayerPrintingTest::aPageIsWholeThoughItExceedsTheMemoryBudget_data()
{
    QTest::addColumn<bool>("strips");

    QTest::newRow("in one go") << false;
    QTest::newRow("in strips") << true;
}

void LayerPrintingTest::aPageIsWholeThoughItExceedsTheMemoryBudget()
{
    QFETCH(bool, strips);
    const QSize page(600, 1300);
    const QRectF world = corners(1200, 4900, 2400, 2300);
    MapCanvas canvas(nullptr);
    addRaster(canvas, plain);
    addRaster(canvas, plain)->setTransparency(0.5);
    const QImage screen = onScreen(canvas, world, page);
    PointPrinter printer(page, strips ? PointPrinter::Device : PointPrinter::Pdf);

    TileBudget::instance().setLimit(1); // byte
    canvas.printExtents(printer, nullptr, world);

    const int differences = countDifferences(screen, printer.pixels());
    QVERIFY2(differences == 0, qPrintable(QString::number(differences)));
}

void LayerPrintingTest::stripsThatWerePrintedAreGivenBack()
{
    constexpr qint64 tileBytes = 256 * 256 * 4;
    MapCanvas canvas(nullptr);
    GdalRasterLayer* const layer = addRaster(canvas, plain);
    PointPrinter printer(QSize(1200, 2400));

    TileBudget::instance().setLimit(1);
    canvas.printExtents(printer, nullptr, corners(1000, 5000, 3400, 200));

    QVERIFY(layer->tiles().bytes() <= 5 * 3 * tileBytes); // the last strip's, of 50
}

void LayerPrintingTest::aPageWaitsForAServerThatTakesItsTime()
{
    TileServer server;
    server.onTile([](const TileNumbers& tile) { return tileReply(tile).held(); });
    MapCanvas canvas(nullptr);
    addTiles(canvas, server);
    PointPrinter printer(QSize(512, 512), PointPrinter::Pdf);
    const double edge = WebMercator::edge;
    std::thread slowly([&server] {
        server.waitForHeld(1);
        server.release();
    });

    canvas.printExtents(printer, nullptr, corners(-edge, edge, -edge / 2, edge / 2));
    slowly.join();

    const QImage page = printer.pixels();
    for (const QPoint& tile : {QPoint(0, 0), QPoint(1, 0), QPoint(0, 1), QPoint(1, 1)}) {
        const QColor expected =
            QColor(TileNumbers{3, unsigned(tile.x()), unsigned(tile.y())}.colour());
        const QColor printed = page.pixelColor(tile * 256 + QPoint(128, 128));
        QVERIFY(std::abs(printed.green() - expected.green()) <= jpegError);
        QVERIFY(std::abs(printed.blue() - expected.blue()) <= jpegError);
    }
}

void LayerPrintingTest::aDeadFileServerEndsAPrint_data()
{
    aPageIsWholeThoughItExceedsTheMemoryBudget_data();
}

// The server answers nothing while the page is printed: this returns, or the test runs out of time.
void LayerPrintingTest::aDeadFileServerEndsAPrint()
{
    QFETCH(bool, strips);
    QFile file(plain);
    QVERIFY(file.open(QIODevice::ReadOnly));
    SlowServer server(file.readAll(), true);
    MapCanvas canvas(nullptr);
    GdalRasterLayer* const layer = addRaster(canvas, server.url("dead.tif"));
    QVERIFY(layer->isValid());
    layer->setWaitLimit(0.001);
    server.setOpen(false);
    PointPrinter printer(QSize(600, 1300), strips ? PointPrinter::Device : PointPrinter::Pdf);

    canvas.printExtents(printer, nullptr, corners(1200, 2300, 2400, 300));

    QVERIFY(QThreadPool::globalInstance()->activeThreadCount() > 0); // they wait still
    QVERIFY(layer->getPercentComplete() < 100);
    QCOMPARE(printer.pixels().pixel(300, 1299), qRgb(44, 44, 44));
    server.setOpen(true);
}

void LayerPrintingTest::aDeadTileServerEndsAPrint_data()
{
    aPageIsWholeThoughItExceedsTheMemoryBudget_data();
}

void LayerPrintingTest::aDeadTileServerEndsAPrint()
{
    QFETCH(bool, strips);
    TileServer server;
    server.onTile([](const TileNumbers& tile) { return tileReply(tile).held(); });
    MapCanvas canvas(nullptr);
    WebTileLayer* const layer = addTiles(canvas, server);
    layer->setProperty("WaitLimit", 0.001);
    PointPrinter printer(QSize(512, 1024), strips ? PointPrinter::Device : PointPrinter::Pdf);
    const double edge = WebMercator::edge;

    canvas.printExtents(printer, nullptr, corners(-edge, edge, -edge / 2, 0));

    QVERIFY(QThreadPool::globalInstance()->activeThreadCount() > 0); // they wait still
    QCOMPARE(int(layer->getPercentComplete()), 0);
    QCOMPARE(printer.pixels().pixel(256, 1023), qRgb(44, 44, 44));
    canvas.deleteAllLayers(); // ends the transfers
}

void LayerPrintingTest::aSourceHasAWaitLimitOfItsOwn()
{
    QFile file(plain);
    QVERIFY(file.open(QIODevice::ReadOnly));
    SlowServer server(file.readAll(), true);
    TileServer tileServer;
    MapCanvas canvas(nullptr);
    GdalRasterLayer* const local = addRaster(canvas, plain);
    GdalRasterLayer* const remote = addRaster(canvas, server.url("remote.tif"));
    WebTileLayer* const tiles = addTiles(canvas, tileServer);

    QCOMPARE(local->getWaitLimit(), 0.0); // a large file on a slow disk takes the time it takes
    QCOMPARE(remote->getWaitLimit(), 60.0);
    QCOMPARE(tiles->getWaitLimit(), 30.0);

    remote->setWaitLimit(0.0001);
    QCOMPARE(remote->getWaitLimit(), 0.001); // whole milliseconds, and never nothing
    remote->setWaitLimit(std::numeric_limits<double>::infinity());
    QCOMPARE(remote->getWaitLimit(), 1.0e6);
    remote->setWaitLimit(std::numeric_limits<double>::quiet_NaN());
    QCOMPARE(remote->getWaitLimit(), 60.0);
    remote->setWaitLimit(5.0);
    remote->setDataSource(plain);
    QCOMPARE(remote->getWaitLimit(), 5.0);
    remote->setWaitLimit(-1.0);
    QVERIFY(remote->isValid());
    QCOMPARE(remote->getWaitLimit(), 0.0);
}

// A white image on white paper is not to be seen, however its slanted edges are resampled.
void LayerPrintingTest::aTransparentEdgeHasNoRim()
{
    RasterRecipe what;
    const double c = 2.0 * std::cos(M_PI / 6);
    const double s = 2.0 * std::sin(M_PI / 6);
    what.transform = {1000.0, c, s, 5000.0, s, -c};
    what.value = [](int, int, int) { return 255.0; };
    const QString white = folder.filePath("white.tif");
    QVERIFY(makeRaster(white, what));
    MapCanvas canvas(nullptr);
    addRaster(canvas, white);
    PointPrinter printer(QSize(400, 400), PointPrinter::Pdf);

    canvas.printExtents(printer, nullptr, corners(800, 5800, 2800, 3800));

    QImage blank(400, 400, QImage::Format_RGB32);
    blank.fill(Qt::white);
    QCOMPARE(countDifferences(blank, printer.pixels()), 0);
    QVERIFY(printer.job().contains("/SMask")); // the image is there
}

// On a page of 288 dots an inch three times as high as on the screen, and its half transparent ground
// but once: the map still shows through it.
void LayerPrintingTest::theAttributionIsPrintedOnceAndLegibly()
{
    TileServer server;
    server.onTile(
        [](const TileNumbers&) { return HttpReply::data(pngOf(qRgb(0, 0, 200)), "image/png"); });
    for (const PointPrinter::Output output : {PointPrinter::Device, PointPrinter::Pdf}) {
        MapCanvas canvas(nullptr);
        WebTileLayer* const layer = addTiles(canvas, server);
        layer->setAttribution("Test");
        PointPrinter printer(QSize(300, 300), output);
        printer.setResolution(288); // 1200 x 1200 pixels, three strips
        const double edge = WebMercator::edge;

        canvas.printExtents(printer, nullptr, corners(-edge, edge, edge, -edge));

        const QImage page = pdfPixels(printer.job(), 288);
        QCOMPARE(page.size(), QSize(1200, 1200));
        const auto blueness = [&page](int x, int y) {
            const QColor colour = page.pixelColor(x, y);
            return colour.blue() - colour.red();
        };
        QVERIFY(blueness(1200 - 5, 1200 - 100) > 150); // beside it
        const int ground = blueness(1200 - 5, 1200 - 25);
        QVERIFY2(ground > 30 && ground < 90, qPrintable(QString::number(ground)));
    }
}

QTEST_MAIN(LayerPrintingTest)

#include "LayerPrintingTest.moc"
