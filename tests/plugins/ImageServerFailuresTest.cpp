#include <plugins/imageserver/ImageGrid.h>
#include <plugins/imageserver/ImageServerLayer.h>

#include <tests/plugins/LayerProbe.h>
#include <tests/support/HttpTestServer.h>

#include <plugins/common/TileCache.h>
#include <plugins/common/WebClock.h>
#include <plugins/imageserver/ServerLogins.h>

#include <QBuffer>
#include <QDir>
#include <QDomDocument>
#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLoggingCategory>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtTest>

#include <atomic>
#include <cstdio>
#include <functional>
#include <memory>
#include <utility>

using namespace Corvane;
using namespace Corvane::Map;
using namespace Corvane::Tests;

namespace {

constexpr int generous = 30000;         // milliseconds, for what has to come at some time
constexpr qint64 start = 1700000000000; // milliseconds since 1970, where the clock stands
constexpr int edge = 256;
const QSize imageSize(2000, 1200);

/// The numbers of a tile in a request.
struct Tile
{
    int z = -1;
    int x = 0;
    int y = 0;
};

QSize levelSize(int z)
{
    const int level = 3 - z;
    return QSize((imageSize.width() + (1 << level) - 1) >> level,
                 (imageSize.height() + (1 << level) - 1) >> level);
}

/// A hand-cranked image server with one image of four levels.
class FakeServer : public HttpTestServer
{
public:
    using TileHandler = std::function<HttpReply(const Tile& tile)>;

    FakeServer()
    {
        onTile([](const Tile& tile) { return picture(tile); });
        on("/tiles/a.tif", [](const HttpRequest&) { return gridReply(); });
    }
    /// On a server thread.
    void onTile(TileHandler handler)
    {
        onOther([handler = std::move(handler)](const HttpRequest& request) {
            Tile tile;
            const bool isTile = std::sscanf(request.target.c_str(), "/tiles/a.tif/%d/%d/%d.png",
                                            &tile.z, &tile.x, &tile.y) == 3;
            return isTile ? handler(tile) : HttpReply::withStatus(404, "nothing");
        });
    }
    static QJsonObject grid()
    {
        QJsonArray levels;
        for (int z = 0; z < 4; ++z) {
            levels.append(QJsonObject{
                {"z", z}, {"size", QJsonArray{levelSize(z).width(), levelSize(z).height()}}});
        }
        return {{"version", "v1"},
                {"tiles", "/tiles/a.tif/{z}/{x}/{y}.{format}?v=v1"},
                {"size", QJsonArray{imageSize.width(), imageSize.height()}},
                {"tileSize", edge},
                {"origin", QJsonArray{0, 1200}},
                {"cellSize", QJsonArray{1.0, -1.0}},
                {"bands", 3},
                {"levels", levels}};
    }
    static HttpReply gridReply()
    {
        return HttpReply::data(QJsonDocument(grid()).toJson(), "application/json");
    }
    static QRgb colour(const Tile& tile)
    {
        return qRgb(50 + tile.z * 40, 40 + tile.x * 20, 60 + tile.y * 30);
    }
    static HttpReply picture(const Tile& tile, QSize size = QSize())
    {
        if (size.isEmpty()) {
            const QSize level = levelSize(tile.z);
            size = QSize(std::min(edge, level.width() - tile.x * edge),
                         std::min(edge, level.height() - tile.y * edge));
        }
        QImage image(size, QImage::Format_RGB32);
        image.fill(colour(tile));
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "PNG");
        return HttpReply::data(bytes, "image/png").header("Cache-Control", "max-age=31536000");
    }
    QString source() const { return url("/a.tif"); }
};

// On a server thread.
HttpReply gridForTwoUsers(const HttpRequest& request)
{
    const QByteArray given = request.header("Authorization");
    const bool isKnown = given == "Basic " + QByteArray("ann:one").toBase64() ||
                         given == "Basic " + QByteArray("bob:two").toBase64();
    return isKnown ? FakeServer::gridReply() : HttpReply::withStatus(401, QByteArray());
}

} // namespace

/// A server that fails, stalls and lies: what is shown stays right, and the layer goes at any time.
class ImageServerFailuresTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

    void aTileThatFailsIsMissingAndComesLater_data();
    void aTileThatFailsIsMissingAndComesLater();
    void coarserTilesShowThrough();
    void atMostEightConnectionsAreOpen();
    void tilesOnDiskAreNotAskedForAgain();
    void aTileOfTheWrongSizeIsNotKept();
    void credentialsGoWithEveryRequest();
    void twoUsersOfOneServerOpenAgain();
    void whoNamesNobodyIsTheUserOfLast();
    void credentialsDoNotFollowToAnotherServer_data();
    void credentialsDoNotFollowToAnotherServer();
    void aTransferEndsWhenTheLayerGoes();
    void tilesThatAreOutOfViewAreGivenUp();
    void anOpeningEndsWhenTheLayerGoes();
    void theThreadOfTheLayerDoesNotWaitForTheServer();
    void whatComesInTheBackgroundIsTold();
    void anAnswerThatIsNoGridIsTold();
    void gridsThatCannotBeAreRefused_data();
    void gridsThatCannotBeAreRefused();
    void anAnswerWithoutAnEndIsGivenUp_data();
    void anAnswerWithoutAnEndIsGivenUp();
    void theDeadlineEndsAnOpening();
    void progressCountsTheTilesOfTheView();

private:
    std::unique_ptr<ImageServerLayer> openLayer(const FakeServer& server) const;
};

void ImageServerFailuresTest::initTestCase()
{
    TileCache::instance().setFolder(QString(), 0);
}

void ImageServerFailuresTest::init()
{
    WebClock::standAt(start);
    ServerLogins::forgetAll();
}

void ImageServerFailuresTest::cleanup()
{
    QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
    TileCache::instance().setFolder(QString(), 0);
    WebClock::standAt(-1);
}

std::unique_ptr<ImageServerLayer> ImageServerFailuresTest::openLayer(const FakeServer& server) const
{
    auto layer = std::make_unique<ImageServerLayer>();
    layer->setProgressive(false);
    layer->setDataSource(server.source());
    layer->setProgressive(true);
    return layer;
}

void ImageServerFailuresTest::aTileThatFailsIsMissingAndComesLater_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("the server is overworked") << 503;
    QTest::newRow("the server fails") << 500;
    QTest::newRow("the image has gone") << 404;
    QTest::newRow("the server wants a password by now") << 401;
    QTest::newRow("the picture has another size") << 1;
    QTest::newRow("the picture is half") << 2;
    QTest::newRow("the connection breaks") << 3;
}

void ImageServerFailuresTest::aTileThatFailsIsMissingAndComesLater()
{
    QFETCH(int, kind);
    FakeServer server;
    std::atomic<bool> fails{true};
    std::atomic<int> failures{0};
    server.onTile([&](const Tile& tile) {
        if (!fails || tile.z != 3 || tile.x != 1) {
            return FakeServer::picture(tile);
        }
        ++failures;
        switch (kind) {
        case 1:
            return FakeServer::picture(tile, QSize(edge, edge - 1));
        case 2:
            return FakeServer::picture(tile).cutAfter(40);
        case 3:
            return HttpReply::reset();
        default:
            return HttpReply::withStatus(kind, "no");
        }
    });
    const auto layer = openLayer(server);
    QVERIFY(layer->isValid());
    const PixelView view{512, 200, 0, 0};
    view.set(*layer);
    QTRY_VERIFY_WITH_TIMEOUT(failures > 0, generous);
    QTRY_COMPARE_WITH_TIMEOUT(painted(*layer, view).pixel(100, 100), FakeServer::colour({3, 0, 0}),
                              generous);
    QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
    QVERIFY(painted(*layer, view).pixel(400, 100) != FakeServer::colour({3, 1, 0}));
    fails = false;
    QTRY_VERIFY_WITH_TIMEOUT(
        (WebClock::standAt(WebClock::now() + 1000), layer->retryDue(),
         painted(*layer, view).pixel(400, 100) == FakeServer::colour({3, 1, 0})),
        generous);
    QTRY_COMPARE_WITH_TIMEOUT(layer->getLastError(), QString(), generous);
}

void ImageServerFailuresTest::coarserTilesShowThrough()
{
    FakeServer server;
    server.onTile([](const Tile& tile) {
        return tile.z == 3 ? HttpReply::withStatus(503, "later") : FakeServer::picture(tile);
    });
    const auto layer = openLayer(server);
    PixelView{400, 300, 0, 0, 2.0}.set(*layer);
    QTRY_COMPARE_WITH_TIMEOUT(int(layer->getPercentComplete()), 100, generous);
    const PixelView view{400, 300, 0, 0};
    view.set(*layer);
    QTRY_COMPARE_WITH_TIMEOUT(painted(*layer, view).pixel(100, 100), FakeServer::colour({2, 0, 0}),
                              generous);
    QCOMPARE(int(layer->getPercentComplete()), 0);
}

void ImageServerFailuresTest::atMostEightConnectionsAreOpen()
{
    FakeServer server;
    server.onTile([](const Tile& tile) { return FakeServer::picture(tile).held(); });
    const auto layer = openLayer(server);
    const PixelView view{2000, 1200, 0, 0};
    view.set(*layer);
    QVERIFY(server.waitForHeld(8));
    QCOMPARE(server.requestCount(), 1 + 8); // the grid, and no more tiles than that
    server.release();
    QTRY_COMPARE_WITH_TIMEOUT(int(layer->getPercentComplete()), 100, generous);
    QCOMPARE(painted(*layer, view).pixel(1990, 1190), FakeServer::colour({3, 7, 4}));
}

void ImageServerFailuresTest::tilesOnDiskAreNotAskedForAgain()
{
    QTemporaryDir folder;
    TileCache::instance().setFolder(folder.path(), 64 << 20);
    FakeServer server;
    const PixelView view{600, 400, 100, 100};
    const QImage first = complete(*openLayer(server), view);
    const int asked = server.requestCount();
    QVERIFY(asked > 6);
    QCOMPARE(complete(*openLayer(server), view), first);
    QCOMPARE(server.requestCount(), asked + 1); // the grid, which tells whether the tiles hold
}

void ImageServerFailuresTest::aTileOfTheWrongSizeIsNotKept()
{
    QTemporaryDir folder;
    TileCache::instance().setFolder(folder.path(), 64 << 20);
    FakeServer server;
    server.onTile([](const Tile& tile) { return FakeServer::picture(tile, QSize(100, 100)); });
    const PixelView view{200, 200, 0, 0};
    {
        const auto layer = openLayer(server);
        view.set(*layer);
        QTRY_VERIFY_WITH_TIMEOUT(layer->getLastError().contains("100 x 100 pixels instead of"),
                                 generous);
        QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
    }
    server.onTile([](const Tile& tile) { return FakeServer::picture(tile); });
    QCOMPARE(complete(*openLayer(server), view).pixel(100, 100), FakeServer::colour({3, 0, 0}));
}

void ImageServerFailuresTest::credentialsGoWithEveryRequest()
{
    FakeServer server;
    ImageServerLayer layer;
    layer.setProgressive(false);
    QVERIFY(layer.setDataSource(server.source() + "|ann|secret"));
    complete(layer, {300, 300, 0, 0});
    const QByteArray expected = "Basic " + QByteArray("ann:secret").toBase64();
    QVERIFY(server.requests().size() > 4);
    for (const HttpRequest& request : server.requests()) {
        QCOMPARE(request.header("Authorization"), expected);
        QCOMPARE(request.header("User-Agent"), QByteArray("Corvane/1.0"));
        QVERIFY(request.target.find("secret") == std::string::npos);
    }
}

// As in a document with layers of both, of which it holds the users alone.
void ImageServerFailuresTest::twoUsersOfOneServerOpenAgain()
{
    FakeServer server;
    server.on("/tiles/a.tif", &gridForTwoUsers);
    QDir folder;
    for (const char* const login : {"|ann|one", "|bob|two", "|ann|one"}) {
        ImageServerLayer layer;
        layer.setProgressive(false);
        QVERIFY(layer.setDataSource(server.source() + login));
    }
    for (const char* const user : {"ann", "bob", "ann"}) {
        QDomDocument document;
        QDomNode node = document.appendChild(document.createElement("layer"));
        ImageServerLayer original;
        original.setProgressive(false);
        original.setUser(user);
        QVERIFY(original.setDataSource(server.source()));
        QVERIFY(original.writeXML(node, document));
        ImageServerLayer copy;
        copy.setProgressive(false);
        QVERIFY(copy.readXML(node, folder, nullptr));
        QVERIFY2(copy.isValid(), qPrintable(copy.getLastError()));
        QCOMPARE(copy.getUser(), QString(user));
    }
}

void ImageServerFailuresTest::whoNamesNobodyIsTheUserOfLast()
{
    FakeServer server;
    server.on("/tiles/a.tif", &gridForTwoUsers);
    for (const char* const user : {"ann", "bob", "ann"}) {
        const QString password = user == QByteArray("ann") ? "one" : "two";
        ImageServerLayer layer;
        layer.setProgressive(false);
        QVERIFY(layer.setDataSource(server.source() + '|' + user + '|' + password));
        ImageServerLayer nobody;
        nobody.setProgressive(false);
        QVERIFY(nobody.setDataSource(server.source()));
        QCOMPARE(nobody.getUser(), QString(user));
    }
}

void ImageServerFailuresTest::credentialsDoNotFollowToAnotherServer_data()
{
    QTest::addColumn<QString>("host");
    QTest::newRow("of another name") << "localhost";
    QTest::newRow("at another port") << "127.0.0.1";
}

void ImageServerFailuresTest::credentialsDoNotFollowToAnotherServer()
{
    QFETCH(QString, host);
    FakeServer other;
    FakeServer server;
    const QByteArray elsewhere =
        QString("http://%1:%2/tiles/a.tif").arg(host).arg(other.port()).toLatin1();
    server.on("/tiles/a.tif", HttpReply::redirect(elsewhere));
    ImageServerLayer layer;
    layer.setProgressive(false);
    layer.setDataSource(server.source() + "|ann|secret");
    QVERIFY(other.requestCount() > 0);
    for (const HttpRequest& request : other.requests()) {
        QCOMPARE(request.header("Authorization"), QByteArray());
    }
}

void ImageServerFailuresTest::aTransferEndsWhenTheLayerGoes()
{
    FakeServer server;
    server.onTile([](const Tile& tile) { return FakeServer::picture(tile).heldAfter(20); });
    auto layer = openLayer(server);
    PixelView{2000, 1200, 0, 0}.set(*layer);
    QVERIFY(server.waitForHeld(8));
    layer.reset();
    // the replies are still held: only the end of the transfers lets the threads go
    QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
}

void ImageServerFailuresTest::tilesThatAreOutOfViewAreGivenUp()
{
    FakeServer server;
    server.onTile([](const Tile& tile) {
        return tile.x == 0 ? FakeServer::picture(tile).held() : FakeServer::picture(tile);
    });
    const auto layer = openLayer(server);
    layer->setAdaptiveRoam(false);
    PixelView{200, 1200, 0, 0}.set(*layer);
    QVERIFY(server.waitForHeld(5));
    const PixelView away{400, 300, 1400, 600};
    away.set(*layer);
    QTRY_COMPARE_WITH_TIMEOUT(painted(*layer, away).pixel(200, 200), FakeServer::colour({3, 6, 3}),
                              generous);
}

void ImageServerFailuresTest::anOpeningEndsWhenTheLayerGoes()
{
    FakeServer server;
    server.on("/tiles/a.tif", server.gridReply().held());
    auto layer = std::make_unique<ImageServerLayer>();
    QVERIFY(layer->setDataSource(server.source()));
    QVERIFY(!layer->isValid());
    QCOMPARE(layer->getSourceState(), QString("opening"));
    QVERIFY(server.waitForHeld(1));
    layer.reset();
    QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
}

void ImageServerFailuresTest::theThreadOfTheLayerDoesNotWaitForTheServer()
{
    FakeServer server;
    server.on("/tiles/a.tif", server.gridReply().held());
    server.onTile([](const Tile& tile) { return FakeServer::picture(tile).held(); });
    ImageServerLayer layer; // every call below returns although no answer comes
    QSignalSpy opened(&layer, &TiledRasterLayer::sourceOpened);
    QVERIFY(layer.setDataSource(server.source()));
    layer.setUser("ann");
    layer.setPassword("secret");
    layer.setDeadline(50.0);
    QCOMPARE(painted(layer, {50, 50, 0, 0}).pixelColor(5, 5).alpha(), 0);
    QVERIFY(opened.isEmpty());
    server.release(1);
    server.release();
    QTRY_COMPARE_WITH_TIMEOUT(opened.size(), 1, generous);
    QCOMPARE(opened.first().first().toBool(), true);
    QCOMPARE(layer.getUser(), QString("ann"));
}

void ImageServerFailuresTest::whatComesInTheBackgroundIsTold()
{
    FakeServer server;
    server.on("/tiles/a.tif", HttpReply::withStatus(500, "no").held());
    ImageServerLayer layer;
    QSignalSpy opened(&layer, &TiledRasterLayer::sourceOpened);
    QVERIFY(layer.setDataSource(server.source()));
    server.release();
    QTRY_COMPARE_WITH_TIMEOUT(opened.size(), 1, generous);
    QCOMPARE(opened.first().first().toBool(), false);
    QCOMPARE(layer.getLastError(), QString("the server answers with status 500"));
    QCOMPARE(layer.getSourceState(), QString("not open: the server answers with status 500"));
}

void ImageServerFailuresTest::anAnswerThatIsNoGridIsTold()
{
    FakeServer server;
    server.on("/tiles/a.tif", HttpReply::data("<html>welcome</html>", "text/html"));
    ImageServerLayer layer;
    layer.setProgressive(false);
    QVERIFY(!layer.setDataSource(server.source()));
    QCOMPARE(layer.getLastError(), QString("the server does not describe the image's grid"));
}

void ImageServerFailuresTest::gridsThatCannotBeAreRefused_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QJsonValue>("value");
    const auto row = [](const char* sentence, const char* key, const QJsonValue& value) {
        QTest::newRow(sentence) << QString(key) << value;
    };
    row("a size in letters", "size", "large");
    row("no size", "size", QJsonArray{});
    row("a size below none", "size", QJsonArray{-2000, -1200});
    row("a size beyond all", "size", QJsonArray{2147483647, 2147483647});
    row("tiles of no size", "tileSize", 0);
    row("tiles of any size", "tileSize", 1000000000);
    row("no levels", "levels", QJsonArray{});
    row("levels of other sizes", "levels",
        QJsonArray{QJsonObject{{"z", 0}, {"size", QJsonArray{1, 1}}}});
    row("cells without a size", "cellSize", QJsonArray{0.0, 0.0});
    row("cells that reach beyond the world", "cellSize", QJsonArray{1e305, -1e305});
    row("cells that are next to nothing", "cellSize", QJsonArray{1e-300, -1e-300});
    row("cells upside down", "cellSize", QJsonArray{1.0, 1.0});
    row("a place where pixels cannot be told apart", "origin", QJsonArray{1e17, 1200});
    row("a place out of the world", "origin", QJsonArray{0, 1e300});
    row("tiles of another server", "tiles", "//127.0.0.2/{z}/{x}/{y}.png");
    row("tiles of another server, in full", "tiles", "http://127.0.0.2/{z}/{x}/{y}.png");
    row("tiles that are all one", "tiles", "/tiles/a.tif");
    row("more words than anybody reads", "version", QString(2 << 20, QChar('x')));
}

void ImageServerFailuresTest::gridsThatCannotBeAreRefused()
{
    QFETCH(QString, key);
    QFETCH(QJsonValue, value);
    QJsonObject grid = FakeServer::grid();
    QString error;
    QVERIFY(ImageGrid::parse(QJsonDocument(grid).toJson(), &error));
    grid[key] = value;
    QVERIFY(!ImageGrid::parse(QJsonDocument(grid).toJson(), &error));
    QCOMPARE(error, QString("the server does not describe the image's grid"));

    // whose coarsest level is a view of a million tiles
    const QJsonArray size{1 << 30, 1 << 30};
    grid = FakeServer::grid();
    grid["size"] = size;
    grid["levels"] = QJsonArray{QJsonObject{{"z", 0}, {"size", size}}};
    QVERIFY(!ImageGrid::parse(QJsonDocument(grid).toJson(), &error));
}

void ImageServerFailuresTest::anAnswerWithoutAnEndIsGivenUp_data()
{
    QTest::addColumn<bool>("isHead");
    QTest::newRow("of a head") << true;
    QTest::newRow("of a body") << false;
}

void ImageServerFailuresTest::anAnswerWithoutAnEndIsGivenUp()
{
    QFETCH(bool, isHead);
    FakeServer server;
    QByteArray lines;
    while (isHead && lines.size() < 290 << 10) {
        lines += "X-Line: " + QByteArray(1000, 'x') + "\r\n";
    }
    server.on("/tiles/a.tif",
              isHead ? HttpReply::raw("HTTP/1.1 200 OK\r\n" + lines + "Content-Length: 0\r\n\r\n")
                     : HttpReply::endless(QByteArray(1 << 20, ' ')));
    ImageServerLayer layer;
    layer.setProgressive(false);
    QVERIFY(!layer.setDataSource(server.source()));
    QCOMPARE(layer.getLastError(), QString("the answer does not end"));
}

void ImageServerFailuresTest::theDeadlineEndsAnOpening()
{
    FakeServer server;
    server.on("/tiles/a.tif", server.gridReply().held());
    ImageServerLayer layer;
    layer.setProgressive(false);
    layer.setDeadline(0.2);
    QVERIFY(!layer.setDataSource(server.source()));
    QVERIFY2(layer.getLastError().contains("timed out", Qt::CaseInsensitive),
             qPrintable(layer.getLastError()));
    layer.setDeadline(qQNaN());
    QCOMPARE(layer.getDeadline(), 0.1);
    layer.setDeadline(1e9);
    QCOMPARE(layer.getDeadline(), 600.0);
}

void ImageServerFailuresTest::progressCountsTheTilesOfTheView()
{
    FakeServer server;
    server.onTile([](const Tile& tile) {
        return tile.z == 3 ? FakeServer::picture(tile).held() : FakeServer::picture(tile);
    });
    const auto layer = openLayer(server);
    layer->setAdaptiveRoam(false);
    const PixelView view{1000, 200, 0, 0};
    view.set(*layer);
    QVERIFY(server.waitForHeld(4));
    QCOMPARE(int(layer->getPercentComplete()), 0);
    server.release(2);
    QTRY_COMPARE_WITH_TIMEOUT((painted(*layer, view), int(layer->getPercentComplete())), 50,
                              generous);
    server.release();
    QTRY_COMPARE_WITH_TIMEOUT((painted(*layer, view), int(layer->getPercentComplete())), 100,
                              generous);
}

int main(int argc, char** argv)
{
    QLoggingCategory::setFilterRules("corvane.tiles.debug=false");
    Application application(argc, argv, "ImageServerFailuresTest");
    ImageServerFailuresTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "ImageServerFailuresTest.moc"
