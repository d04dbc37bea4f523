#include <plugins/webtiles/WebTileLayer.h>

#include <tests/plugins/LayerProbe.h>
#include <tests/plugins/WebTileTools.h>

#include <plugins/common/TileCache.h>
#include <plugins/common/WebClock.h>

#include <QElapsedTimer>
#include <QLocale>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QTimer>
#include <QtTest>

#include <algorithm>
#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <tuple>

using namespace Corvane;
using namespace Corvane::Map;
using namespace Corvane::Tests;

namespace {

constexpr int tileEdge = 256;
constexpr qint64 start = 1700000000000; // milliseconds since 1970, where the clock stands
constexpr int generous = 60000;         // milliseconds, for what has to come at some time

using Answer = std::function<HttpReply(const TileNumbers&)>;

// Sees how long the thread stays away from its event loop.
class Heartbeat : public QObject
{
public:
    Heartbeat()
    {
        timer.setInterval(1);
        timer.setTimerType(Qt::PreciseTimer);
        connect(&timer, &QTimer::timeout, this,
                [this] { longest = std::max(longest, clock.restart()); });
        clock.start();
        timer.start();
    }
    qint64 longest = 0; // milliseconds

private:
    QTimer timer;
    QElapsedTimer clock;
};

/// Turns the clock without end, on a thread of its own.
class TurningClock
{
public:
    TurningClock()
        : thread([this] {
              for (qint64 time = start; !ending; ++time) {
                  WebClock::standAt(time);
                  std::this_thread::yield();
              }
          })
    {
    }
    ~TurningClock()
    {
        ending = true;
        thread.join();
    }

private:
    std::atomic<bool> ending{false};
    std::thread thread;
};

} // namespace

Q_DECLARE_METATYPE(Answer)

/// Servers that fail, stall and lie: no tile stays wrong, none is asked for too often, and the
/// layer's thread never waits.
class WebTileFailuresTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

    void aTileThatFailsIsMissingAndComesLater_data();
    void aTileThatFailsIsMissingAndComesLater();
    void aCoarserTileShowsThroughWhereOneFails();
    void thePausesGrow();
    void aTileThatIsPutOffIsNotAskedForByAnotherView();
    void theServerSaysWhenItWantsToBeAskedAgain_data();
    void theServerSaysWhenItWantsToBeAskedAgain();
    void anAnswerUnderWayDoesNotEndThePause();
    void aServerThatKeepsFailingIsLeftAlone();
    void oneBrokenTileDoesNotStopTheOthers();
    void aThousandTilesOfAnUnreliableServerAllCome();
    void withoutProgressAViewWaitsForSecondAttempts();
    void withoutProgressADeadServerDoesNotHoldTheView();

    void aTransferEndsWhenTheLayerGoes();
    void aTransferEndsWhenTheViewLeaves();
    void tilesOfAViewThatWasLeftAreNotFetched();
    void aLayerGoesWhileItsTilesAreOnTheirWay();
    void twoLayersFetchATileOnce();
    void capabilitiesStopWhenTheLayerGoes();

private:
    void openWith(TileServer& server, WebTileLayer& layer, int maxZoom);
    void advance(qint64 milliseconds);
    /// What the server was asked once the layer has asked for all that is due.
    static int requestsAfterALook(const TileServer& server, WebTileLayer& layer);

    qint64 now = start;
};

void WebTileFailuresTest::initTestCase()
{
    TileCache::instance().setFolder(QString(), 0);
}

void WebTileFailuresTest::init()
{
    now = start;
    WebClock::standAt(now);
}

void WebTileFailuresTest::cleanup()
{
    QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
    WebClock::standAt(-1);
}

void WebTileFailuresTest::openWith(TileServer& server, WebTileLayer& layer, int maxZoom)
{
    layer.setMaxZoom(maxZoom);
    layer.setAdaptiveRoam(false);
    layer.setMinZoom(std::min(maxZoom, 2)); // nothing is fetched beneath
    QVERIFY(layer.setDataSource(server.tiles()));
}

void WebTileFailuresTest::advance(qint64 milliseconds)
{
    now += milliseconds;
    WebClock::standAt(now);
}

int WebTileFailuresTest::requestsAfterALook(const TileServer& server, WebTileLayer& layer)
{
    layer.retryDue();
    QThreadPool::globalInstance()->waitForDone();
    return server.requestCount();
}

namespace {

// A pixel less on all sides: a view that ends where a tile ends may look into the next one.
PixelView viewOf(int x, int y, int across, int down)
{
    return {across * tileEdge - 2, down * tileEdge - 2, x * tileEdge + 1, y * tileEdge + 1, 1.0};
}

} // namespace

void WebTileFailuresTest::aTileThatFailsIsMissingAndComesLater_data()
{
    QTest::addColumn<Answer>("answer");
    QTest::addColumn<QString>("reason");
    const auto whole = [](const TileNumbers& tile) { return tileReply(tile); };
    const auto row = [](const char* name, Answer answer, const char* reason) {
        QTest::newRow(name) << answer << QString(reason);
    };
    const auto always = [](HttpReply reply) {
        return Answer([reply](const TileNumbers&) { return reply; });
    };
    row("a server error", always(HttpReply::withStatus(500)), "500");
    row("a refusal", always(HttpReply::withStatus(403)), "403");
    row("a part that nobody asked for", always(HttpReply::withStatus(206)), "206");
    row("an error page that claims success", always(HttpReply::data("<html/>", "text/html")),
        "text/html");
    row("garbage that claims to be a picture", always(HttpReply::data("garbage", "image/png")),
        "no picture");
    row("nothing at all", always(HttpReply::data("", "image/png")), "no picture");
    row(
        "half a picture that claims to be whole",
        [](const TileNumbers& tile) {
            return HttpReply::data(pngOf(tile.colour()).left(300), "image/png");
        },
        "damaged");
    row("a drawing that would be scaled",
        always(HttpReply::data("<svg xmlns='http://www.w3.org/2000/svg' width='256' height='256'/>",
                               "image/svg+xml")),
        "no picture");
    row(
        "a picture that is far too large",
        [](const TileNumbers& tile) {
            return HttpReply::data(pngOf(tile.colour(), 2049), "image/png");
        },
        "the picture is too large, 2049 x 2049 pixels");
    row(
        "a picture that is cut off",
        [whole](const TileNumbers& tile) { return whole(tile).cutAfter(100); }, "");
    row("a reset connection", always(HttpReply::reset()), "");
    row("no HTTP", always(HttpReply::raw("What do you want?\r\n")), "");
    row("a redirect in a circle", always(HttpReply::redirect("/2/0/0.png")), "redirects");
    row("a redirect to a file", always(HttpReply::redirect("file:///etc/hostname")), "");
    row("a body without end", always(HttpReply::endless(QByteArray(1 << 16, 'x'))), "does not end");
    row("a stall before the head", always(HttpReply::data("").held()), "");
    row(
        "a stall in the body",
        [whole](const TileNumbers& tile) { return whole(tile).heldAfter(50); }, "");
}

void WebTileFailuresTest::aTileThatFailsIsMissingAndComesLater()
{
    QFETCH(Answer, answer);
    QFETCH(QString, reason);
    TileServer server;
    server.onTile(answer);
    WebTileLayer layer;
    layer.setDeadline(QByteArray(QTest::currentDataTag()).startsWith("a stall") ? 0.5 : 60.0);
    openWith(server, layer, 2);
    const PixelView view = viewOf(0, 0, 1, 1);
    view.set(layer);
    QTRY_VERIFY_WITH_TIMEOUT(!layer.getLastError().isEmpty(), generous);
    QVERIFY2(layer.getLastError().contains(reason), qPrintable(layer.getLastError()));
    QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
    QVERIFY(layer.getPercentComplete() < 100);
    QCOMPARE(layer.tiles().bytes(), qint64(0));
    QVERIFY(layer.getSourceState().startsWith("failing: "));

    server.onTile([](const TileNumbers& tile) { return tileReply(tile); });
    server.release();
    advance(1000);
    QTRY_COMPARE_WITH_TIMEOUT(int(layer.getPercentComplete()), 100, generous);
    QCOMPARE(painted(layer, view).pixel(100, 100), (TileNumbers{2, 0, 0}.colour()));
    QCOMPARE(layer.getSourceState(), QString("ready"));
    QCOMPARE(layer.getLastError(), QString());
}

void WebTileFailuresTest::aCoarserTileShowsThroughWhereOneFails()
{
    TileServer server;
    server.onTile([](const TileNumbers& tile) {
        return tile.zoom == 4 && tile.x == 4 ? HttpReply::withStatus(500) : tileReply(tile);
    });
    WebTileLayer layer;
    openWith(server, layer, 4);
    PixelView{511, 511, 2 * 2 * tileEdge, 0, 2.0}.set(layer);
    QTRY_COMPARE_WITH_TIMEOUT(int(layer.getPercentComplete()), 100, generous);
    const PixelView view = viewOf(4, 0, 2, 1);
    view.set(layer);
    QTRY_COMPARE_WITH_TIMEOUT(int(layer.getPercentComplete()), 50, generous);
    const QImage picture = painted(layer, view);
    QCOMPARE(picture.pixel(100, 100), (TileNumbers{3, 2, 0}.colour()));
    QCOMPARE(picture.pixel(400, 100), (TileNumbers{4, 5, 0}.colour()));
}

void WebTileFailuresTest::thePausesGrow()
{
    TileServer server;
    server.onTile([](const TileNumbers&) { return HttpReply::withStatus(500); });
    WebTileLayer layer;
    openWith(server, layer, 2);
    viewOf(0, 0, 1, 1).set(layer);
    int requests = 0;
    for (const qint64 pause : {1, 2, 4, 8, 16, 32, 60, 60}) {
        QCOMPARE(requestsAfterALook(server, layer), ++requests);
        advance(pause * 1000 - 1);
        QCOMPARE(requestsAfterALook(server, layer), requests);
        advance(1);
    }
}

void WebTileFailuresTest::aTileThatIsPutOffIsNotAskedForByAnotherView()
{
    TileServer server;
    server.onTile([](const TileNumbers& tile) {
        return tile.x == 0 ? HttpReply::withStatus(500) : tileReply(tile);
    });
    WebTileLayer layer;
    openWith(server, layer, 3);
    viewOf(0, 0, 1, 1).set(layer);
    QTRY_VERIFY_WITH_TIMEOUT(!layer.getLastError().isEmpty(), generous);
    QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
    for (int y = 0; y < 2; ++y) {
        for (int i = 0; i < 5; ++i) {
            viewOf(0, 0, 2, 1).set(layer);
        }
    }
    QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
    QCOMPARE(server.requestCount("/3/0/0.png"), 1);
    QCOMPARE(server.requestCount("/3/1/0.png"), 1);
}

void WebTileFailuresTest::theServerSaysWhenItWantsToBeAskedAgain_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("header");
    const QDateTime later = QDateTime::fromMSecsSinceEpoch(start + 90000, Qt::UTC);
    QTest::newRow("in seconds") << 429 << QByteArray("90");
    QTest::newRow("as a date")
        << 503 << QLocale::c().toString(later, "ddd, dd MMM yyyy HH:mm:ss 'GMT'").toLatin1();
}

void WebTileFailuresTest::theServerSaysWhenItWantsToBeAskedAgain()
{
    QFETCH(int, status);
    QFETCH(QByteArray, header);
    TileServer server;
    server.onTile([=](const TileNumbers&) {
        return HttpReply::withStatus(status).header("Retry-After", header);
    });
    LogLines log;
    WebTileLayer layer;
    openWith(server, layer, 3);
    viewOf(0, 0, 1, 1).set(layer);
    QTRY_VERIFY_WITH_TIMEOUT(layer.getSourceState().startsWith("left alone for 90 s"), generous);
    QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
    QCOMPARE(server.requestCount(), 1);
    QCOMPARE(log.holding("left alone for 90 s").size(), 1);

    server.onTile([](const TileNumbers& tile) { return tileReply(tile); });
    advance(89999);
    viewOf(0, 0, 2, 1).set(layer); // another tile is not asked for either
    QCOMPARE(requestsAfterALook(server, layer), 1);
    advance(1);
    QTRY_COMPARE_WITH_TIMEOUT(int(layer.getPercentComplete()), 100, generous);
    QCOMPARE(server.requestCount(), 3);
}

void WebTileFailuresTest::anAnswerUnderWayDoesNotEndThePause()
{
    TileServer server;
    server.onTile([&server](const TileNumbers& tile) {
        if (tile.x != 0) {
            return tileReply(tile).held();
        }
        server.waitForHeld(1); // the pause begins while the other is under way
        return HttpReply::withStatus(429).header("Retry-After", "90");
    });
    WebTileLayer layer;
    openWith(server, layer, 3);
    viewOf(0, 0, 2, 1).set(layer);
    QVERIFY(server.waitForHeld(1));
    QTRY_VERIFY_WITH_TIMEOUT(layer.getSourceState().startsWith("left alone for 90 s"), generous);
    server.release();
    QTRY_COMPARE_WITH_TIMEOUT(int(layer.getPercentComplete()), 50, generous);
    QVERIFY(layer.getSourceState().startsWith("left alone for 90 s"));
}

void WebTileFailuresTest::aServerThatKeepsFailingIsLeftAlone()
{
    TileServer server;
    server.onTile([](const TileNumbers&) { return HttpReply::withStatus(500).held(); });
    LogLines log;
    WebTileLayer layer;
    openWith(server, layer, 5);
    viewOf(0, 0, 8, 8).set(layer);
    QVERIFY(server.waitForHeld(8)); // as many as there are threads
    server.release();
    QTRY_VERIFY_WITH_TIMEOUT(layer.getSourceState().startsWith("left alone for 5 s"), generous);
    QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
    const int asked = server.requestCount();
    QVERIFY2(asked < 24, qPrintable(QString::number(asked)));
    viewOf(8, 8, 8, 8).set(layer);
    QCOMPARE(requestsAfterALook(server, layer), asked);
    QCOMPARE(log.holding("left alone").size(), 1);

    advance(5000); // the first one that fails again doubles the pause
    QTRY_VERIFY_WITH_TIMEOUT(layer.getSourceState().startsWith("left alone for 10 s"), generous);
    QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
    QVERIFY(server.requestCount() > asked);
    QCOMPARE(log.holding("left alone").size(), 1);

    server.onTile([](const TileNumbers& tile) { return tileReply(tile); });
    advance(10000);
    QTRY_COMPARE_WITH_TIMEOUT(int(layer.getPercentComplete()), 100, generous);
    QCOMPARE(layer.getSourceState(), QString("ready"));
}

void WebTileFailuresTest::oneBrokenTileDoesNotStopTheOthers()
{
    TileServer server;
    server.onTile([](const TileNumbers& tile) {
        return tile.x == 0 ? HttpReply::withStatus(500) : tileReply(tile);
    });
    WebTileLayer layer;
    openWith(server, layer, 4);
    viewOf(0, 0, 1, 1).set(layer);
    for (int i = 1; i < 20; ++i) {
        QTRY_COMPARE_WITH_TIMEOUT(server.requestCount(), i, generous);
        QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
        advance(60000);
    }
    viewOf(1, 0, 2, 2).set(layer);
    QTRY_COMPARE_WITH_TIMEOUT(int(layer.getPercentComplete()), 100, generous);
}

void WebTileFailuresTest::aThousandTilesOfAnUnreliableServerAllCome()
{
    TileServer server;
    std::atomic<int> count{0};
    server.onTile([&count](const TileNumbers& tile) {
        const int number = ++count;
        if (number % 5 != 0) {
            return tileReply(tile);
        }
        switch (number / 5 % 6) {
        case 0:
            return HttpReply::withStatus(500);
        case 1:
            return HttpReply::reset();
        case 2:
            return tileReply(tile).cutAfter(60);
        case 3:
            return HttpReply::data("<p>sorry</p>", "text/html");
        case 4:
            return HttpReply::data("garbage", "image/png");
        default:
            return HttpReply::redirect("/somewhere");
        }
    });
    WebTileLayer layer;
    openWith(server, layer, 6);
    const PixelView view = viewOf(3, 5, 40, 25);
    Heartbeat heartbeat;
    view.set(layer);
    const auto isCompleteBy = [&](qint64 milliseconds) {
        advance(milliseconds);
        return layer.getPercentComplete() == 100;
    };
    QTRY_VERIFY_WITH_TIMEOUT(isCompleteBy(100), 2 * generous);
    const QImage picture = painted(layer, view);
    for (int x = 0; x < 40; ++x) {
        for (int y = 0; y < 25; ++y) {
            QCOMPARE(picture.pixel(x * tileEdge + 128, y * tileEdge + 128),
                     (TileNumbers{6, unsigned(x + 3), unsigned(y + 5)}.colour()));
        }
    }
    QVERIFY(count > 1000);
    qInfo("the longest absence from the event loop: %lld ms", heartbeat.longest);
}

void WebTileFailuresTest::withoutProgressAViewWaitsForSecondAttempts()
{
    const TurningClock clock; // nobody else turns it while the thread waits
    TileServer server;
    std::atomic<int> count{0};
    server.onTile([&count](const TileNumbers& tile) {
        return ++count == 1 ? HttpReply::withStatus(500) : tileReply(tile);
    });
    WebTileLayer layer;
    openWith(server, layer, 3);
    layer.setProgressive(false);
    viewOf(0, 0, 2, 1).set(layer);
    QCOMPARE(int(layer.getPercentComplete()), 100);
    QCOMPARE(server.requestCount(), 3);
}

void WebTileFailuresTest::withoutProgressADeadServerDoesNotHoldTheView()
{
    TileServer server;
    server.onTile([](const TileNumbers&) {
        return HttpReply::withStatus(503).header("Retry-After", "3600");
    });
    WebTileLayer layer;
    openWith(server, layer, 3);
    layer.setProgressive(false);
    viewOf(0, 0, 2, 2).set(layer); // returns, or the test runs out of time
    QVERIFY(layer.getPercentComplete() < 100);
    QVERIFY(layer.getSourceState().startsWith("left alone for 3600 s"));
}

// A held answer is never released here: the pool is done only if the transfers end by themselves,
// and their deadline is ten minutes away.
void WebTileFailuresTest::aTransferEndsWhenTheLayerGoes()
{
    TileServer server;
    server.onTile([](const TileNumbers& tile) {
        return tile.x % 2 == 0 ? tileReply(tile).held() : tileReply(tile).heldAfter(40);
    });
    auto layer = std::make_unique<WebTileLayer>();
    layer->setDeadline(600.0);
    openWith(server, *layer, 5);
    viewOf(0, 0, 20, 16).set(*layer); // hundreds of tiles
    QVERIFY(server.waitForHeld(8));
    QElapsedTimer clock;
    clock.start();
    layer.reset();
    const qint64 deleting = clock.elapsed();
    QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
    qInfo("deleted after %lld ms, transfers ended after %lld ms", deleting, clock.elapsed());
    QCOMPARE(server.requestCount(), 8);
}

void WebTileFailuresTest::aTransferEndsWhenTheViewLeaves()
{
    TileServer server;
    server.onTile([](const TileNumbers& tile) {
        return tile.x < 8 ? tileReply(tile).held() : tileReply(tile);
    });
    WebTileLayer layer;
    layer.setDeadline(600.0);
    openWith(server, layer, 5);
    viewOf(0, 0, 8, 8).set(layer);
    QVERIFY(server.waitForHeld(8));
    viewOf(16, 16, 4, 4).set(layer);
    // every thread was held: it comes only because the transfers for the first view end
    QTRY_COMPARE_WITH_TIMEOUT(int(layer.getPercentComplete()), 100, generous);
    QCOMPARE(server.requestCount(), 8 + 16);
    QCOMPARE(layer.getSourceState(), QString("ready"));
}

void WebTileFailuresTest::tilesOfAViewThatWasLeftAreNotFetched()
{
    TileServer server;
    server.onTile([](const TileNumbers& tile) {
        return tile.x < 16 ? tileReply(tile).held() : tileReply(tile);
    });
    WebTileLayer layer;
    layer.setDeadline(600.0);
    openWith(server, layer, 6);
    viewOf(0, 0, 16, 16).set(layer);
    QVERIFY(server.waitForHeld(8));
    viewOf(32, 32, 2, 2).set(layer);
    QTRY_COMPARE_WITH_TIMEOUT(int(layer.getPercentComplete()), 100, generous);
    QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
    QCOMPARE(server.requestCount(), 8 + 4);

    server.release();
    viewOf(0, 0, 16, 16).set(layer); // and now they are
    QTRY_COMPARE_WITH_TIMEOUT(int(layer.getPercentComplete()), 100, generous);
}

void WebTileFailuresTest::aLayerGoesWhileItsTilesAreOnTheirWay()
{
    TileServer server;
    std::atomic<int> count{0};
    server.onTile([&count](const TileNumbers& tile) {
        return ++count % 7 == 0 ? HttpReply::withStatus(500) : tileReply(tile);
    });
    for (int i = 0; i < 40; ++i) {
        WebTileLayer layer;
        openWith(server, layer, 5);
        viewOf(0, 0, 8, 8).set(layer);
        if (i % 3 == 1) {
            QTRY_VERIFY_WITH_TIMEOUT(layer.getPercentComplete() > 0, generous);
        } else if (i % 3 == 2) {
            viewOf(8, 4, 8, 8).set(layer);
            layer.setMaxZoom(4);
            viewOf(0, 0, 4, 4).set(layer);
        }
    }
}

void WebTileFailuresTest::twoLayersFetchATileOnce()
{
    QTemporaryDir folder;
    TileCache::instance().setFolder(folder.path(), 1 << 24);
    TileServer server;
    server.onTile([](const TileNumbers& tile) {
        return tileReply(tile).header("Cache-Control", "max-age=600").held();
    });
    WebTileLayer one;
    WebTileLayer other;
    openWith(server, one, 3);
    openWith(server, other, 3);
    viewOf(0, 0, 2, 1).set(one);
    viewOf(0, 0, 2, 1).set(other);
    QVERIFY(server.waitForHeld(2));
    server.release();
    QTRY_COMPARE_WITH_TIMEOUT(int(one.getPercentComplete()), 100, generous);
    QTRY_COMPARE_WITH_TIMEOUT(int(other.getPercentComplete()), 100, generous);
    QCOMPARE(server.requestCount(), 2);
    TileCache::instance().setFolder(QString(), 0);
}

void WebTileFailuresTest::capabilitiesStopWhenTheLayerGoes()
{
    TileServer server;
    server.on("/wmts", HttpReply::data("").held());
    {
        WebTileLayer layer;
        layer.setDeadline(600.0);
        QVERIFY(layer.setDataSource(server.url("/wmts?REQUEST=GetCapabilities")));
        QVERIFY(server.waitForHeld(1));
    }
    QVERIFY2(QThreadPool::globalInstance()->waitForDone(generous), "the answer is never released");
}

int main(int argc, char** argv)
{
    QLoggingCategory::setFilterRules("corvane.tiles.debug=false");
    Application application(argc, argv, "WebTileFailuresTest");
    WebTileFailuresTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "WebTileFailuresTest.moc"
