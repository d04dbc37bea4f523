#include <plugins/raster/GdalRasterLayer.h>
#include <plugins/raster/RasterFacts.h>

#include <tests/plugins/LayerProbe.h>
#include <tests/plugins/SlowServer.h>
#include <tests/plugins/SourceServer.h>
#include <tests/plugins/TestRasters.h>

#include <corvane/map/IRendererClient.h>
#include <corvane/map/MapView.h>

#include <QElapsedTimer>
#include <QFile>
#include <QLoggingCategory>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtTest>

#include <atomic>
#include <condition_variable>
#include <mutex>

using namespace Corvane;
using namespace Corvane::Map;
using namespace Corvane::Tests;

namespace {

constexpr int deletions = 40;

class CountingClient final : public IRendererClient
{
public:
    void onRendererUpdate(double, double, double, double) override { ++updates; }
    void onRendererError(QString) override {}
    std::atomic<int> updates{0};
};

// Holds threads of the pool. Captures nothing: what a lambda holds would pass through the pool's
// own queue, whose hand-over the thread sanitizer does not see.
class Barrier
{
public:
    static void hold(int threads)
    {
        for (int i = 0; i < threads; ++i) {
            QThreadPool::globalInstance()->start([] { waitHere(); });
        }
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait(lock, [threads] { return held >= threads; });
    }
    static void release(int threads)
    {
        const std::lock_guard<std::mutex> guard(mutex);
        passes += threads;
        changed.notify_all();
    }

private:
    static void waitHere()
    {
        std::unique_lock<std::mutex> lock(mutex);
        ++held;
        changed.notify_all();
        changed.wait(lock, [] { return passes > 0; });
        --passes;
        --held;
    }
    static std::mutex mutex; // guards held and passes
    static std::condition_variable changed;
    static int held;
    static int passes;
};

std::mutex Barrier::mutex;
std::condition_variable Barrier::changed;
int Barrier::held = 0;
int Barrier::passes = 0;

// Requests that bring nothing stay in their last call to the layer, with their keys still taken.
class StallingLayer : public GdalRasterLayer
{
public:
    void tileFailed(ITileRequest*) override
    {
        std::unique_lock<std::mutex> lock(mutex);
        ++stalled;
        changed.notify_all();
        changed.wait(lock, [this] { return open; });
    }
    void waitForStalled(int count)
    {
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait(lock, [this, count] { return stalled >= count; });
    }
    void letGo()
    {
        const std::lock_guard<std::mutex> guard(mutex);
        open = true;
        changed.notify_all();
    }

private:
    std::mutex mutex; // guards stalled and open
    std::condition_variable changed;
    int stalled = 0;
    bool open = false;
};

// What runs on the pool has ended.
void waitForPool()
{
    QVERIFY(QThreadPool::globalInstance()->waitForDone(60000));
}

} // namespace

/// The layer between its threads: tiles on their way while it is deleted, its file goes, its view
/// moves; sources that open slowly.
class RasterThreadsTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanup();

    void tilesArriveAndAskForARepaint_data();
    void tilesArriveAndAskForARepaint();
    void aLayerGoesWhileItsTilesAreOnTheirWay_data();
    void aLayerGoesWhileItsTilesAreOnTheirWay();
    void aLayerGoesWhileItOpens();
    void bandsChangeWhileTilesAreOnTheirWay();
    void aViewThatWanderedOffAndCameBackIsCompleted_data();
    void aViewThatWanderedOffAndCameBackIsCompleted();
    void aTileRefusedForARequestThatGaveUpIsAskedForAgain();
    void unwantedTilesAreNotRead();
    void withoutProgressEveryViewIsWholeOnReturn_data();
    void withoutProgressEveryViewIsWholeOnReturn();

    void aTruncatedFileGivesMarkedTilesAndOneLine();
    void aFileThatVanishesGivesMarkedTilesAndOneLine();

    void aSlowServerLeavesTheThreadFree();
    void aSlowSourceAppearsInAMapViewOnceItIsOpen();
    void aServerThatBreaksDownIsAskedAgain();
    void aStretchIsTakenFromWhatCanBeRead();
    void aServerThatBreaksDownDoesNotSpoilTheStretch();
    void aServerThatRefusesFailsLater();
    void aSecondSourceReplacesOneThatIsStillOpening();

private:
    QTemporaryDir folder;
    QString blocks;
    QString strips;
};

void RasterThreadsTest::initTestCase()
{
    RasterRecipe what;
    what.size = QSize(6000, 4000);
    what.options << "COMPRESS=DEFLATE";
    what.overviews = {2, 4, 8};
    blocks = folder.filePath("blocks.tif");
    QVERIFY(makeRaster(blocks, what));
    what.options = QStringList{"TILED=NO", "BLOCKYSIZE=16", "COMPRESS=DEFLATE"};
    what.overviews.clear();
    strips = folder.filePath("strips.tif");
    QVERIFY(makeRaster(strips, what));
}

void RasterThreadsTest::cleanup()
{
    waitForPool();
}

void RasterThreadsTest::tilesArriveAndAskForARepaint_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("blocks") << blocks;
    QTest::newRow("strips") << strips;
}

void RasterThreadsTest::tilesArriveAndAskForARepaint()
{
    QFETCH(QString, file);
    CountingClient client;
    GdalRasterLayer layer(&client);
    QVERIFY(layer.setDataSource(file));
    QTRY_VERIFY(layer.isValid());
    client.updates = 0;
    PixelView{1000, 600, 300, 200, 1.0}.set(layer);
    QTRY_COMPARE(int(layer.getPercentComplete()), 100);
    waitForPool();
    QTRY_VERIFY(client.updates > 0);
    // the last tile asks for a repaint of its own: nothing comes after it
    client.updates = 0;
    PixelView{1000, 600, 2300, 1200, 1.0}.set(layer);
    waitForPool(); // all are delivered, none is taken
    QTRY_VERIFY(client.updates > 0);
    QCOMPARE(int(layer.getPercentComplete()), 100);
}

void RasterThreadsTest::aLayerGoesWhileItsTilesAreOnTheirWay_data()
{
    tilesArriveAndAskForARepaint_data();
}

void RasterThreadsTest::aLayerGoesWhileItsTilesAreOnTheirWay()
{
    QFETCH(QString, file);
    for (int i = 0; i < deletions; ++i) {
        GdalRasterLayer layer;
        QVERIFY(layer.setDataSource(file));
        QTRY_VERIFY(layer.isValid());
        PixelView{6000, 4000, 0, 0, 1.0}.set(layer);
        if (i % 3 == 1) {
            QTRY_VERIFY(layer.getPercentComplete() > 0);
        } else if (i % 3 == 2) {
            PixelView{3000, 2000, 0, 0, 2.0}.set(layer);
        }
    }
}

void RasterThreadsTest::aLayerGoesWhileItOpens()
{
    QFile file(blocks);
    QVERIFY(file.open(QIODevice::ReadOnly));
    SlowServer server(file.readAll(), false);
    QElapsedTimer clock;
    {
        GdalRasterLayer layer;
        QVERIFY(layer.setDataSource(server.url("gone.tif")));
        QTRY_VERIFY(server.requests() > 0);
        QVERIFY(!layer.isValid());
        clock.start();
    }
    QVERIFY2(clock.elapsed() < 5000, "the server holds its answer, so the layer did not wait");
    server.setOpen(true);
    waitForPool();
}

void RasterThreadsTest::bandsChangeWhileTilesAreOnTheirWay()
{
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(blocks));
    QTRY_VERIFY(layer.isValid());
    const PixelView view{1500, 1000, 0, 0, 1.0};
    for (int i = 0; i < 10; ++i) {
        view.set(layer);
        layer.setBandList(i % 2 == 0 ? QVector<qint32>{1} : QVector<qint32>{1, 2, 3});
    }
    layer.setBandList({2});
    const QImage picture = complete(layer, view);
    for (const QPoint& pixel : {QPoint(3, 3), QPoint(700, 500), QPoint(1499, 999)}) {
        const int grey = static_cast<int>(plainValue(2, pixel.x(), pixel.y()));
        QCOMPARE(picture.pixel(pixel), qRgb(grey, grey, grey));
    }
}

void RasterThreadsTest::aViewThatWanderedOffAndCameBackIsCompleted_data()
{
    tilesArriveAndAskForARepaint_data();
}

// A request that finds its tile unwanted stands in the way of a new one until its key is free.
void RasterThreadsTest::aViewThatWanderedOffAndCameBackIsCompleted()
{
    QFETCH(QString, file);
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(file));
    QTRY_VERIFY(layer.isValid());
    const PixelView here{800, 600, 100, 100, 1.0};
    const PixelView there{800, 600, 4000, 3000, 1.0};
    for (int i = 0; i < 200; ++i) {
        (i % 2 == 0 ? here : there).set(layer);
    }
    here.set(layer);
    QTRY_COMPARE_WITH_TIMEOUT(int(layer.getPercentComplete()), 100, 60000);
}

void RasterThreadsTest::aTileRefusedForARequestThatGaveUpIsAskedForAgain()
{
    StallingLayer layer;
    QVERIFY(layer.setDataSource(blocks));
    QTRY_VERIFY(layer.isValid());
    const int threads = QThreadPool::globalInstance()->maxThreadCount();
    const PixelView here{1000, 800, 0, 0, 1.0};
    Barrier::hold(threads);
    here.set(layer);
    PixelView{300, 200, 5000, 3500, 1.0}.set(layer);
    Barrier::release(threads);
    layer.waitForStalled(threads); // found their tiles unwanted, their keys are still taken
    here.set(layer);
    layer.letGo();
    QTRY_COMPARE(int(layer.getPercentComplete()), 100);
    waitForPool();
}

void RasterThreadsTest::unwantedTilesAreNotRead()
{
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(blocks));
    QTRY_VERIFY(layer.isValid());
    const int threads = QThreadPool::globalInstance()->maxThreadCount();
    Barrier::hold(threads); // nobody reads while the pool is busy with something else
    PixelView{3000, 2000, 0, 0, 1.0}.set(layer);
    PixelView{300, 200, 5000, 3500, 1.0}.set(layer);
    Barrier::release(threads);
    QTRY_COMPARE(int(layer.getPercentComplete()), 100);
    waitForPool();
    layer.getPercentComplete(); // takes what came
    QVERIFY2(layer.tiles().tilesOf(0).size() <= 8, "the view that was left has 100 tiles");
}

void RasterThreadsTest::withoutProgressEveryViewIsWholeOnReturn_data()
{
    tilesArriveAndAskForARepaint_data();
}

void RasterThreadsTest::withoutProgressEveryViewIsWholeOnReturn()
{
    QFETCH(QString, file);
    GdalRasterLayer layer;
    layer.setProgressive(false);
    QVERIFY(layer.setDataSource(file));
    QVERIFY(layer.isValid());
    layer.beginUpdate(false); // a bracket changes nothing here
    for (const PixelView& view :
         {PixelView{500, 400, 0, 0, 1.0}, PixelView{500, 400, 37, 51, 1.0},
          PixelView{1000, 800, 3000, 2000, 2.0}, PixelView{500, 400, 5900, 3900, 1.0}})
    {
        view.set(layer);
        QCOMPARE(int(layer.getPercentComplete()), 100);
    }
}

void RasterThreadsTest::aTruncatedFileGivesMarkedTilesAndOneLine()
{
    const QString path = folder.filePath("truncated.tif");
    RasterRecipe what;
    what.size = QSize(2048, 2048);
    QVERIFY(makeRaster(path, what));
    LogLines log;
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(path));
    QTRY_VERIFY(layer.isValid());
    QVERIFY(QFile::resize(path, 2048 * 2048));
    const QImage picture = complete(layer, {2048, 2048, 0, 0, 1.0});
    QCOMPARE(int(layer.getPercentComplete()), 100);
    QCOMPARE(log.holding(path).size(), 1);
    QVERIFY(!layer.getLastError().isEmpty());
    // the upper part is there, the lower one is marked with a red cross
    QCOMPARE(picture.pixel(10, 20), qRgb(int(plainValue(1, 10, 20)), int(plainValue(2, 10, 20)),
                                         int(plainValue(3, 10, 20))));
    const QColor cross = picture.pixelColor(2048 - 128, 2048 - 128);
    QVERIFY2(cross.red() > cross.green() + 80, qPrintable(cross.name()));
}

void RasterThreadsTest::aFileThatVanishesGivesMarkedTilesAndOneLine()
{
    const QString path = folder.filePath("vanishing.tif");
    QVERIFY(QFile::copy(blocks, path));
    LogLines log;
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(path));
    QTRY_VERIFY(layer.isValid());
    QVERIFY(QFile::remove(path));
    PixelView{6000, 4000, 0, 0, 1.0}.set(layer);
    QTRY_COMPARE_WITH_TIMEOUT(int(layer.getPercentComplete()), 100, 60000);
    // one handle is open already and goes on reading; no second one can be opened
    QVERIFY(log.holding(path).size() <= 1);
    waitForPool();
    QCOMPARE(log.holding(path).isEmpty(), layer.getLastError().isEmpty());
}

void RasterThreadsTest::aSlowServerLeavesTheThreadFree()
{
    QFile file(blocks);
    QVERIFY(file.open(QIODevice::ReadOnly));
    SlowServer server(file.readAll(), false);
    GdalRasterLayer layer;
    QSignalSpy opened(&layer, &GdalRasterLayer::sourceOpened);
    QElapsedTimer clock;
    clock.start();
    QVERIFY(layer.setDataSource(server.url("slow.tif")));
    QVERIFY2(clock.elapsed() < 5000, "the server holds its answer, so this did not wait for it");
    QVERIFY(!layer.isValid());
    QCOMPARE(int(layer.getPercentComplete()), 0);
    QCOMPARE(layer.getBounds(), QRectF());
    PixelView{300, 200, 0, 0, 1.0}.set(layer); // not valid: nothing happens

    server.setOpen(true);
    QTRY_COMPARE_WITH_TIMEOUT(opened.size(), 1, 30000);
    QCOMPARE(opened.first().first().toBool(), true);
    QVERIFY(layer.isValid());
    QCOMPARE(layer.getProtocol(), QString("http"));
    const QImage picture = complete(layer, {300, 200, 500, 400, 1.0});
    QCOMPARE(picture.pixel(7, 9), qRgb(int(plainValue(1, 507, 409)), int(plainValue(2, 507, 409)),
                                       int(plainValue(3, 507, 409))));
}

void RasterThreadsTest::aSlowSourceAppearsInAMapViewOnceItIsOpen()
{
    QFile file(blocks);
    QVERIFY(file.open(QIODevice::ReadOnly));
    SlowServer server(file.readAll(), false);
    MapView view;
    view.resize(600, 400);
    view.show();
    auto* const layer = new GdalRasterLayer();
    QVERIFY(layer->setDataSource(server.url("appearing.tif")));
    view.addLayer(layer, -1);
    view.setBounds(1000.0, 5000.0, 2200.0, 4200.0);
    QVERIFY(!layer->isValid());
    server.setOpen(true);
    QTRY_VERIFY_WITH_TIMEOUT(layer->isValid(), 30000);
    const auto showsTheImage = [&view] {
        const QColor middle = view.grab().toImage().pixelColor(300, 200);
        return std::abs(middle.red() - plainValue(1, 300, 200)) <= 25 &&
               std::abs(middle.blue() - plainValue(3, 300, 200)) <= 25;
    };
    QTRY_VERIFY_WITH_TIMEOUT(showsTheImage(), 30000);
}

void RasterThreadsTest::aServerThatBreaksDownIsAskedAgain()
{
    QFile file(blocks);
    QVERIFY(file.open(QIODevice::ReadOnly));
    SlowServer server(file.readAll(), true);
    LogLines log;
    GdalRasterLayer layer;
    layer.setProgressive(false);
    QVERIFY(layer.setDataSource(server.url("breaking.tif")));
    QVERIFY(layer.isValid());
    QCOMPARE(layer.getSourceReport().state, SourceReport::State::Reachable);
    layer.setProgressive(true);
    server.breakDown();
    const PixelView view{300, 200, 5000, 3500, 1.0};
    view.set(layer);
    QTRY_VERIFY_WITH_TIMEOUT(layer.getSourceReport().isTrouble(), 30000);
    QVERIFY(!layer.getLastError().isEmpty());
    QVERIFY(int(layer.getPercentComplete()) < 100);
    QCOMPARE(log.holding("cannot read").size(), 1);

    server.recover();
    QTRY_COMPARE_WITH_TIMEOUT(int(layer.getPercentComplete()), 100, 60000);
    QCOMPARE(layer.getSourceReport().state, SourceReport::State::Reachable);
    const QColor middle = painted(layer, view).pixelColor(150, 100);
    QVERIFY(std::abs(middle.red() - plainValue(1, 5150, 3600)) <= 25);
}

namespace {

// Deep values that say little as they are, all of them above 255.
RasterRecipe deepRecipe()
{
    RasterRecipe what;
    what.size = QSize(2048, 2048);
    what.bands = 1;
    what.type = GDT_UInt16;
    what.value = [](int, int x, int) { return 1000.0 + 10.0 * x; };
    return what;
}

bool isSpread(const QImage& picture)
{
    return qRed(picture.pixel(0, 10)) == 0 && qRed(picture.pixel(picture.width() - 1, 10)) == 255 &&
           std::abs(qRed(picture.pixel(picture.width() / 2, 10)) - 128) < 8;
}

} // namespace

void RasterThreadsTest::aStretchIsTakenFromWhatCanBeRead()
{
    const QString path = folder.filePath("deep-truncated.tif");
    QVERIFY(makeRaster(path, deepRecipe()));
    GdalRasterLayer layer;
    QVERIFY(layer.setDataSource(path));
    QTRY_VERIFY(layer.isValid());
    QVERIFY(QFile::resize(path, 2048 * 2048)); // half of it
    const QImage picture = complete(layer, {2048, 2048, 0, 0, 1.0});
    QVERIFY(isSpread(picture));
    QVERIFY(!layer.getLastError().isEmpty());
}

// The tile itself comes, the sample from the rest of the image does not.
void RasterThreadsTest::aServerThatBreaksDownDoesNotSpoilTheStretch()
{
    const QString path = folder.filePath("deep.tif");
    RasterRecipe what = deepRecipe();
    what.value = [](int, int, int y) { return 1000.0 + 10.0 * y; };
    QVERIFY(makeRaster(path, what));
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    std::atomic<bool> fails{false};
    HttpTestServer server;
    server.on("/deep.tif", [&](const HttpRequest& request) {
        constexpr int beginning = 2400000; // two rows of blocks, and what is read ahead
        const QByteArray range = request.header("Range");
        const bool isBeginning = range.mid(6).split('-').value(1).toInt() < beginning;
        return fails && !isBeginning ? HttpReply::withStatus(500, "broken")
                                     : rangeOf(bytes, request);
    });
    GdalRasterLayer layer;
    layer.setProgressive(false);
    QVERIFY(layer.setDataSource(server.url("/deep.tif")));
    QVERIFY(layer.isValid());
    layer.setProgressive(true);
    fails = true;
    const PixelView view{2048, 256, 0, 0, 1.0};
    view.set(layer);
    QTRY_VERIFY_WITH_TIMEOUT(layer.getSourceReport().isTrouble(), 30000);
    QVERIFY(int(layer.getPercentComplete()) < 100);
    fails = false;
    QTRY_COMPARE_WITH_TIMEOUT(int(layer.getPercentComplete()), 100, 60000);
    const int lowest = qRed(painted(layer, view).pixel(1000, 250)); // an eighth of the way down
    QVERIFY2(std::abs(lowest - 250 * 255 / 2048) < 8, qPrintable(QString::number(lowest)));
}

void RasterThreadsTest::aServerThatRefusesFailsLater()
{
    LogLines log;
    GdalRasterLayer layer;
    QSignalSpy opened(&layer, &GdalRasterLayer::sourceOpened);
    const bool promised = layer.setDataSource("http://127.0.0.1:9/nothing.tif");
    QTRY_VERIFY_WITH_TIMEOUT(!layer.getLastError().isEmpty(), 30000);
    QCOMPARE(opened.size(), promised ? 1 : 0);
    QVERIFY(!layer.isValid());
    QCOMPARE(log.holding("nothing.tif").size(), 1);
}

void RasterThreadsTest::aSecondSourceReplacesOneThatIsStillOpening()
{
    QFile file(strips);
    QVERIFY(file.open(QIODevice::ReadOnly));
    SlowServer server(file.readAll(), false);
    GdalRasterLayer layer;
    QSignalSpy opened(&layer, &GdalRasterLayer::sourceOpened);
    QVERIFY(layer.setDataSource(server.url("late.tif")));
    QTRY_VERIFY(server.requests() > 0);
    QVERIFY(layer.setDataSource(blocks));
    QTRY_VERIFY(layer.isValid());
    const int told = opened.size();
    server.setOpen(true);
    waitForPool();
    QCoreApplication::processEvents();
    QCOMPARE(opened.size(), told);
    QCOMPARE(layer.getDataSource(), blocks);
    QCOMPARE(layer.facts()->layout, QString("tiles"));
}

int main(int argc, char** argv)
{
    QLoggingCategory::setFilterRules("corvane.tiles.debug=false");
    Application application(argc, argv, "RasterThreadsTest");
    RasterThreadsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "RasterThreadsTest.moc"
