#include <tests/support/MessageLines.h>
#include <tests/tiles/HttpTiledLayer.h>
#include <tests/tiles/PaintedLevels.h>

#include <QLoggingCategory>
#include <QtTest>

#include <atomic>
#include <memory>
#include <thread>

using namespace Corvane;
using namespace Corvane::Map;

namespace {

constexpr int poolThreads = 8;
const QRectF tileBounds(1000.0, 2000.0, 512.0, -512.0); // two world units for each of 256 pixels

/// A request whose members can be seen. It owns its result, as a layer would.
class OpenRequest : public HttpTileRequest
{
public:
    OpenRequest(ITiledLayer* tiledLayer, const QString& tileUrl)
        : HttpTileRequest(tiledLayer, QStringLiteral("the key"), 3, 4, 5, tileUrl, 256, 256,
                          tileBounds.left(), tileBounds.top(), tileBounds.right(),
                          tileBounds.bottom())
    {
    }

    using ITileRequest::brx;
    using ITileRequest::bry;
    using ITileRequest::cancelled;
    using ITileRequest::height;
    using ITileRequest::image;
    using ITileRequest::layer;
    using ITileRequest::tlx;
    using ITileRequest::tly;
    using ITileRequest::width;
};

/// Makes the tile on this thread.
std::unique_ptr<GeoImage> madeBy(OpenRequest& request)
{
    if (!request.processTile()) {
        return nullptr;
    }
    return std::unique_ptr<GeoImage>(request.image);
}

/// Every pixel another one, half of them transparent.
QImage pattern(int width, int height)
{
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x <= qMin(y, width - 1); ++x) {
            image.setPixelColor(x, y, QColor(x % 256, y % 256, (x + y) % 256));
        }
    }
    return image;
}

QImage ofOneColour(int width, int height, const QColor& colour)
{
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(colour);
    return image;
}

} // namespace

class HttpTileRequestTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void itCarriesWhatItWasGiven();
    void aCopyAsksForTheSameTile();
    void aTileOfTheExpectedSizeKeepsItsRectangle();
    void transparentPixelsStayTransparent();
    void everyImageBecomesArgb_data();
    void everyImageBecomesArgb();
    void aTileOfAnotherSizeKeepsTheWorldSizeOfItsPixels_data();
    void aTileOfAnotherSizeKeepsTheWorldSizeOfItsPixels();
    void cachesAreBypassed();
    void aTileThatCannotBeDecodedIsRedAndReady_data();
    void aTileThatCannotBeDecodedIsRedAndReady();
    void aTileThatCannotBeFetchedIsRedAndLeavesTheReasonInTheLog();
    void aRedTileIsNotFetchedAgain();
    void cancelledBeforeItsTurnItFetchesNothing();
    void cancelledWhileItFetchesItCallsNobody_data();
    void cancelledWhileItFetchesItCallsNobody();
    void cancelDoesNotEndTheFetch();
    void aLevelFetchesEachTileOnceAndPaintsItRight();
    void shortTilesAtTheEdgesArePaintedInPlace();
    void eightTilesAreFetchedAtATime();

private:
    std::unique_ptr<HttpTestServer> server;
};

void HttpTileRequestTest::initTestCase()
{
    forgetProxies();
    QLoggingCategory::setFilterRules(QStringLiteral("corvane.tiles=false"));
}

void HttpTileRequestTest::init()
{
    server = std::make_unique<HttpTestServer>();
}

void HttpTileRequestTest::itCarriesWhatItWasGiven()
{
    PlainTiledLayer layer(256, 256, 1.0, -1.0);
    OpenRequest request(&layer, QStringLiteral("http://127.0.0.1/"));

    QCOMPARE(request.getKey(), QStringLiteral("the key"));
    QCOMPARE(request.getLayerLevel(), 3U);
    QCOMPARE(request.getX(), 4U);
    QCOMPARE(request.getY(), 5U);
    QCOMPARE(request.width, 256U);
    QCOMPARE(request.height, 256U);
    QCOMPARE(request.tlx, 1000.0);
    QCOMPARE(request.tly, 2000.0);
    QCOMPARE(request.brx, 1512.0);
    QCOMPARE(request.bry, 1488.0);
    QCOMPARE(request.layer, static_cast<ITiledLayer*>(&layer));
    QVERIFY(!request.getImage());
    QVERIFY(!request.cancelled);
}

void HttpTileRequestTest::aCopyAsksForTheSameTile()
{
    server->on("/a", HttpReply::data(encodedImage(pattern(256, 256))));
    OpenRequest original(nullptr, server->url("/a"));
    OpenRequest copy(original);
    OpenRequest assigned(nullptr, server->url("/b"));
    assigned = original;

    QCOMPARE(QImage(*madeBy(copy)), pattern(256, 256));
    QCOMPARE(QImage(*madeBy(assigned)), pattern(256, 256));
    QCOMPARE(server->requestCount("/a"), 2);
    QCOMPARE(server->requestCount(), 2);
}

void HttpTileRequestTest::aTileOfTheExpectedSizeKeepsItsRectangle()
{
    server->on("/tile", HttpReply::data(encodedImage(pattern(256, 256))));
    OpenRequest request(nullptr, server->url("/tile"));

    const auto tile = madeBy(request);

    QCOMPARE(tile->format(), QImage::Format_ARGB32);
    QCOMPARE(tile->size(), QSize(256, 256));
    QCOMPARE(tile->getBounds(), tileBounds);
    QCOMPARE(request.brx, 1512.0);
    QCOMPARE(request.bry, 1488.0);
}

void HttpTileRequestTest::transparentPixelsStayTransparent()
{
    server->on("/tile", HttpReply::data(encodedImage(pattern(256, 256))));
    OpenRequest request(nullptr, server->url("/tile"));

    QCOMPARE(QImage(*madeBy(request)), pattern(256, 256));
}

void HttpTileRequestTest::everyImageBecomesArgb_data()
{
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<int>("pixels");
    QTest::newRow("a PNG without transparency") << QByteArray("png") << int(QImage::Format_RGB888);
    QTest::newRow("a grey PNG") << QByteArray("png") << int(QImage::Format_Grayscale8);
    QTest::newRow("a BMP") << QByteArray("bmp") << int(QImage::Format_RGB888);
}

void HttpTileRequestTest::everyImageBecomesArgb()
{
    QFETCH(const QByteArray, format);
    QFETCH(const int, pixels);
    const QImage source =
        ofOneColour(256, 256, QColor(90, 90, 90)).convertToFormat(QImage::Format(pixels));
    server->on("/tile", HttpReply::data(encodedImage(source, format.constData())));
    OpenRequest request(nullptr, server->url("/tile"));

    QCOMPARE(QImage(*madeBy(request)), ofOneColour(256, 256, QColor(90, 90, 90)));
}

void HttpTileRequestTest::aTileOfAnotherSizeKeepsTheWorldSizeOfItsPixels_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QPointF>("corner");
    QTest::newRow("short at the bottom") << QSize(256, 100) << QPointF(1512.0, 1800.0);
    QTest::newRow("short at the right") << QSize(100, 256) << QPointF(1200.0, 1488.0);
    QTest::newRow("short at both") << QSize(1, 255) << QPointF(1002.0, 1490.0);
    QTest::newRow("larger than asked for") << QSize(512, 257) << QPointF(2024.0, 1486.0);
}

void HttpTileRequestTest::aTileOfAnotherSizeKeepsTheWorldSizeOfItsPixels()
{
    QFETCH(const QSize, size);
    QFETCH(const QPointF, corner);
    const QImage picture = pattern(size.width(), size.height());
    server->on("/tile", HttpReply::data(encodedImage(picture)));
    OpenRequest request(nullptr, server->url("/tile"));

    const auto tile = madeBy(request);

    QCOMPARE(QImage(*tile), picture);
    QCOMPARE(tile->getBounds(), QRectF(tileBounds.topLeft(), corner));
    QCOMPARE(QPointF(request.tlx, request.tly), tileBounds.topLeft());
    QCOMPARE(QPointF(request.brx, request.bry), corner);
    QCOMPARE(QSize(int(request.width), int(request.height)), QSize(256, 256));
}

void HttpTileRequestTest::cachesAreBypassed()
{
    OpenRequest request(nullptr, server->url("/tile"));
    madeBy(request);
    QCOMPARE(server->requests().front().header("Pragma"), QByteArray("no-cache"));
    QCOMPARE(server->requests().front().header("User-Agent"), QByteArray("Corvane/1.0"));
}

void HttpTileRequestTest::aTileThatCannotBeDecodedIsRedAndReady_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("status");
    const QByteArray image = encodedImage(pattern(256, 256));
    QTest::newRow("a page in place of an image") << QByteArray("<html>sorry</html>") << 200;
    QTest::newRow("an error page") << QByteArray("no such tile") << 404;
    QTest::newRow("a server that failed") << QByteArray("oh") << 500;
    QTest::newRow("nothing") << QByteArray() << 200;
    QTest::newRow("no content") << QByteArray() << 204;
    QTest::newRow("the first bytes of an image") << image.left(20) << 200;
}

void HttpTileRequestTest::aTileThatCannotBeDecodedIsRedAndReady()
{
    QFETCH(const QByteArray, body);
    QFETCH(const int, status);
    server->onOther([&](const HttpRequest&) { return HttpReply::withStatus(status, body); });
    HttpTiledLayer layer(*server, 256, 256, 256);
    layer.pyramid().init(&layer, 256, layer.bounds, 1U);

    layer.pyramid().setView(256, 256, 0.0, 256.0, 255.5, 0.5);
    waitForRequests();

    QCOMPARE(layer.results.all(),
             QStringList("ready " + layer.pyramid().first()->getTileKey(0, 0)));
    GeoImage* const tile = layer.pyramid().first()->getTile(0, 0);
    QVERIFY(tile);
    QCOMPARE(tile->format(), QImage::Format_ARGB32);
    QCOMPARE(QImage(*tile), ofOneColour(256, 256, QColor(255, 0, 0, 255)));
    QCOMPARE(tile->getBounds(), layer.bounds);
}

void HttpTileRequestTest::aTileThatCannotBeFetchedIsRedAndLeavesTheReasonInTheLog()
{
    OpenRequest request(nullptr, deadUrl());
    const MessageLines lines;

    const auto tile = madeBy(request);

    QCOMPARE(QImage(*tile), ofOneColour(256, 256, QColor(255, 0, 0, 255)));
    QCOMPARE(tile->getBounds(), tileBounds);
    QCOMPARE(lines.all().size(), 1);
    QVERIFY(lines.all().front().contains("Couldn't connect to server"));
}

void HttpTileRequestTest::aRedTileIsNotFetchedAgain()
{
    HttpTiledLayer layer(*server, 256, 256, 256);
    layer.pyramid().init(&layer, 256, layer.bounds, 1U);
    for (int view = 0; view < 3; ++view) {
        layer.pyramid().setView(256, 256, 0.0, 256.0, 255.5, 0.5);
        waitForRequests();
    }
    QCOMPARE(server->requestCount(), 1);
    QCOMPARE(painted(layer.pyramid(), 256, QRectF(0.0, 256.0, 256.0, -256.0)),
             ofOneColour(256, 256, QColor(255, 0, 0, 255)));
}

void HttpTileRequestTest::cancelledBeforeItsTurnItFetchesNothing()
{
    PlainTiledLayer layer(256, 256, 1.0, -1.0);
    OpenRequest request(&layer, server->url("/tile"));
    request.cancel();
    QVERIFY(request.cancelled);

    request.run();

    QCOMPARE(layer.results.all(), QStringList());
    QCOMPARE(server->requestCount(), 0);
}

void HttpTileRequestTest::cancelledWhileItFetchesItCallsNobody_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("an image is on its way") << encodedImage(pattern(256, 256));
    QTest::newRow("no image is on its way") << QByteArray("<html>sorry</html>");
}

void HttpTileRequestTest::cancelledWhileItFetchesItCallsNobody()
{
    QFETCH(const QByteArray, body);
    server->onOther([&](const HttpRequest&) { return HttpReply::data(body).held(); });
    HttpTiledLayer layer(*server, 256, 256, 256);
    layer.pyramid().init(&layer, 256, layer.bounds, 1U);
    layer.pyramid().setView(256, 256, 0.0, 256.0, 255.5, 0.5);
    const bool held = server->waitForHeld(1);

    TileRequestRegistry::instance().cancelAll();
    server->release();
    waitForRequests();

    QVERIFY(held);
    QCOMPARE(layer.results.all(), QStringList());
    QVERIFY(!layer.pyramid().first()->getTile(0, 0));
}

void HttpTileRequestTest::cancelDoesNotEndTheFetch()
{
    server->on("/tile", HttpReply::data(encodedImage(pattern(256, 256))).heldAfter(10));
    OpenRequest request(nullptr, server->url("/tile"));
    std::atomic<bool> returned{false};
    bool made = true;
    std::thread worker([&] {
        made = request.processTile();
        returned = true;
    });
    const bool held = server->waitForHeld(1);

    request.cancel();
    const bool returnedEarly = returned;
    server->release();
    worker.join();

    QVERIFY(held);
    QVERIFY(!returnedEarly);
    QVERIFY(!made);
    QVERIFY(!request.image);
}

void HttpTileRequestTest::aLevelFetchesEachTileOnceAndPaintsItRight()
{
    constexpr int edge = 32;
    constexpr int tilesAcross = 4;
    constexpr int size = edge * tilesAcross;
    server->onOther(colouredTiles(size, size, edge));
    HttpTiledLayer layer(*server, size, size, edge);
    layer.pyramid().init(&layer, edge, layer.bounds, 1U);
    for (int view = 0; view < 3; ++view) {
        layer.pyramid().setView(size, size, 0.0, size, size - 0.5, 0.5);
    }
    waitForRequests();
    layer.pyramid().setView(size, size, 0.0, size, size - 0.5, 0.5);
    waitForRequests();

    QImage expected(size, size, QImage::Format_ARGB32);
    for (unsigned int x = 0; x < tilesAcross; ++x) {
        for (unsigned int y = 0; y < tilesAcross; ++y) {
            QCOMPARE(server->requestCount(qPrintable(QString("/tile/0/%1/%2").arg(x).arg(y))), 1);
            QPainter(&expected).fillRect(int(x) * edge, int(y) * edge, edge, edge,
                                         tileColour(0, x, y));
        }
    }
    QCOMPARE(server->requestCount(), tilesAcross * tilesAcross);
    QCOMPARE(layer.results.all().size(), tilesAcross * tilesAcross);
    QCOMPARE(painted(layer.pyramid(), size, QRectF(0.0, size, size, -size)), expected);
}

void HttpTileRequestTest::shortTilesAtTheEdgesArePaintedInPlace()
{
    constexpr int edge = 32;
    constexpr int columns = 42; // the second column is 10 pixels wide, the second row 20 high
    constexpr int rows = 52;
    constexpr int view = 64;
    server->onOther(colouredTiles(columns, rows, edge));
    HttpTiledLayer layer(*server, columns, rows, edge);
    layer.pyramid().init(&layer, edge, layer.bounds, 1U);
    layer.pyramid().setView(view, view, 0.0, rows, view - 0.5, rows - view + 0.5);
    waitForRequests();

    QImage expected = ofOneColour(view, view, Qt::white);
    {
        QPainter painter(&expected);
        painter.fillRect(0, 0, 32, 32, tileColour(0, 0, 0));
        painter.fillRect(32, 0, 10, 32, tileColour(0, 1, 0));
        painter.fillRect(0, 32, 32, 20, tileColour(0, 0, 1));
        painter.fillRect(32, 32, 10, 20, tileColour(0, 1, 1));
    }
    QCOMPARE(painted(layer.pyramid(), view, QRectF(0.0, rows, view, -view)), expected);
    QCOMPARE(layer.pyramid().first()->getTile(1, 1)->getBounds(), QRectF(32.0, 20.0, 10.0, -20.0));
}

void HttpTileRequestTest::eightTilesAreFetchedAtATime()
{
    constexpr int edge = 32;
    constexpr int tilesAcross = 5;
    constexpr int size = edge * tilesAcross;
    const auto tiles = colouredTiles(size, size, edge);
    server->onOther([&](const HttpRequest& request) { return tiles(request).held(); });
    HttpTiledLayer layer(*server, size, size, edge);
    layer.pyramid().init(&layer, edge, layer.bounds, 1U);

    layer.pyramid().setView(size, size, 0.0, size, size - 0.5, 0.5);
    const bool held = server->waitForHeld(poolThreads);
    const int asked = server->requestCount();
    // a thread that has its tile asks for the next one
    server->release(1);
    const bool next = server->waitForRequests(poolThreads + 1);
    const bool heldAgain = server->waitForHeld(poolThreads);
    const int askedThen = server->requestCount();
    server->release();
    waitForRequests();

    QVERIFY(held && next && heldAgain);
    QCOMPARE(asked, poolThreads);
    QCOMPARE(askedThen, poolThreads + 1);
    QCOMPARE(server->requestCount(), tilesAcross * tilesAcross);
    QCOMPARE(layer.results.all().size(), tilesAcross * tilesAcross);
    QVERIFY(server->connectionCount() <= poolThreads);
}

QTEST_GUILESS_MAIN(HttpTileRequestTest)
#include "HttpTileRequestTest.moc"
