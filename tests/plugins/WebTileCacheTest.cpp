#include <plugins/common/TileCache.h>

#include <tests/plugins/LayerProbe.h>
#include <tests/plugins/WebTileTools.h>

#include <plugins/common/Freshness.h>
#include <plugins/common/HttpFetch.h>
#include <plugins/common/WebClock.h>
#include <plugins/webtiles/WebTileLayer.h>

#include <QDirIterator>
#include <QLocale>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtTest>

#include <memory>

using namespace Corvane;
using namespace Corvane::Map;
using namespace Corvane::Tests;

namespace {

constexpr qint64 start = 1700000000000; // milliseconds since 1970, where the clock stands
constexpr qint64 limit = 16 << 20;

using Headers = QList<QPair<QByteArray, QByteArray>>;

QByteArray httpDate(qint64 milliseconds)
{
    const QDateTime time = QDateTime::fromMSecsSinceEpoch(milliseconds, Qt::UTC);
    return QLocale::c().toString(time, "ddd, dd MMM yyyy HH:mm:ss 'GMT'").toLatin1();
}

// Looks at the one tile with a layer of its own, as after a new start; its colour.
QRgb look(const TileServer& server)
{
    WebTileLayer layer;
    layer.setMaxZoom(2);
    layer.setMinZoom(2);
    if (!layer.setDataSource(server.tiles())) {
        return 0;
    }
    return complete(layer, {200, 200, 10, 10, 1.0}).pixel(100, 100);
}

} // namespace

/// What is kept on disk, for how long, and what the server is asked then.
class WebTileCacheTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void headersTellHowLongAnAnswerHolds_data();
    void headersTellHowLongAnAnswerHolds();
    void timesThatAreNoneAreNotUnderstood_data();
    void timesThatAreNoneAreNotUnderstood();

    void aFreshTileIsNotAskedForAgain();
    void aStaleTileIsCheckedAndKept_data();
    void aStaleTileIsCheckedAndKept();
    void aCheckThatBringsANewTileReplacesTheOldOne();
    void whatMayNotBeStoredIsNot_data();
    void whatMayNotBeStoredIsNot();
    void failuresAreNotKept();
    void aDamagedFileIsFetchedAnew();
    void aTileThatIsGoneIsForgotten();
    void aFreshTileIsShownWhileTheServerIsLeftAlone();

private:
    std::unique_ptr<QTemporaryDir> folder;
};

void WebTileCacheTest::init()
{
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(folder->isValid());
    WebClock::standAt(start);
    TileCache::instance().setFolder(folder->path(), limit);
}

void WebTileCacheTest::cleanup()
{
    QVERIFY(QThreadPool::globalInstance()->waitForDone(60000));
    TileCache::instance().setFolder(QString(), 0);
    WebClock::standAt(-1);
}

void WebTileCacheTest::headersTellHowLongAnAnswerHolds_data()
{
    QTest::addColumn<Headers>("headers");
    QTest::addColumn<bool>("mayStore");
    QTest::addColumn<qint64>("life"); // milliseconds from now on, 0 for none
    const auto row = [](const char* name, const Headers& headers, bool mayStore, qint64 seconds) {
        QTest::newRow(name) << headers << mayStore << seconds * 1000;
    };
    const QByteArray date = httpDate(start);
    row("nothing is said", {}, false, 0);
    row("nothing but a mark", {{"ETag", "\"a\""}}, true, 0);
    row("nothing but a time", {{"Last-Modified", date}}, true, 0);
    row("a life in seconds", {{"Cache-Control", "public, max-age=60"}}, true, 60);
    row("in quotes and capitals", {{"cache-control", "Max-Age=\"60\""}}, true, 60);
    row("in two headers", {{"Cache-Control", "public"}, {"Cache-Control", "max-age=60"}}, true, 60);
    row("a life that is no number", {{"Cache-Control", "max-age=long"}, {"ETag", "a"}}, true, 0);
    row("a life beyond all numbers", {{"Cache-Control", "max-age=99999999999999999999"}}, true,
        365LL * 24 * 3600);
    row("a life of which a cache on the way took a part",
        {{"Cache-Control", "max-age=60"}, {"Age", "20"}}, true, 40);
    row("a life that is over", {{"Cache-Control", "max-age=60"}, {"Age", "80"}, {"ETag", "a"}},
        true, -20);
    row("an answer that was on its way",
        {{"Cache-Control", "max-age=60"}, {"Date", httpDate(start - 15000)}}, true, 45);
    row("a time to expire", {{"Expires", httpDate(start + 90000)}, {"Date", date}}, true, 90);
    row("seconds go before the time to expire",
        {{"Expires", httpDate(start + 90000)}, {"Cache-Control", "max-age=5"}}, true, 5);
    row("a time to expire by a clock that runs ahead",
        {{"Expires", httpDate(start + 90000)}, {"Date", httpDate(start + 60000)}}, true, 30);
    row("a time to expire that is none", {{"Expires", "0"}, {"ETag", "a"}}, true, 0);
    row("no-store", {{"Cache-Control", "no-store, max-age=60"}, {"ETag", "a"}}, false, 60);
    row("no-cache", {{"Cache-Control", "no-cache, max-age=60"}, {"ETag", "a"}}, true, 0);
    row("no-cache for some headers", {{"Cache-Control", "no-cache=\"a, b\", max-age=60"}}, false,
        0);
    row("the old no-cache", {{"Pragma", "no-cache"}, {"Expires", httpDate(start + 90000)}}, false,
        0);
    row("private", {{"Cache-Control", "private, max-age=60"}}, true, 60);
    row("different for each request", {{"Vary", "*"}, {"Cache-Control", "max-age=60"}}, false, 60);
}

void WebTileCacheTest::headersTellHowLongAnAnswerHolds()
{
    QFETCH(Headers, headers);
    QFETCH(bool, mayStore);
    QFETCH(qint64, life);
    FetchResult result;
    for (const auto& header : headers) {
        result.addHeader(header.first, header.second);
    }
    const Freshness freshness = freshnessOf(result, start);
    QCOMPARE(freshness.mayStore, mayStore);
    QCOMPARE(freshness.expires - start, life);
}

void WebTileCacheTest::timesThatAreNoneAreNotUnderstood_data()
{
    QTest::addColumn<QByteArray>("text");
    for (const char* text : {"", "0", "-1", "soon", "12"}) {
        QTest::newRow(*text ? text : "empty") << QByteArray(text);
    }
}

void WebTileCacheTest::timesThatAreNoneAreNotUnderstood()
{
    QFETCH(QByteArray, text);
    QVERIFY(!httpTime(text));
    QCOMPARE(httpTime(httpDate(start)), std::optional<qint64>(start));
}

void WebTileCacheTest::aFreshTileIsNotAskedForAgain()
{
    TileServer server;
    server.onTile([](const TileNumbers& tile) {
        return tileReply(tile).header("Cache-Control", "max-age=60");
    });
    const QRgb colour = TileNumbers{2, 0, 0}.colour();
    QCOMPARE(look(server), colour);
    QCOMPARE(look(server), colour);
    WebClock::standAt(start + 59999);
    QCOMPARE(look(server), colour);
    QCOMPARE(server.requestCount(), 1);
    TileCache::instance().setFolder(folder->path(), limit); // what is on disk is read anew
    QCOMPARE(look(server), colour);
    QCOMPARE(server.requestCount(), 1);
    WebClock::standAt(start + 60000);
    QCOMPARE(look(server), colour);
    QCOMPARE(server.requestCount(), 2);
}

void WebTileCacheTest::aStaleTileIsCheckedAndKept_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QByteArray>("question");
    QTest::newRow("by its mark") << QByteArray("ETag") << QByteArray("\"seven\"")
                                 << QByteArray("If-None-Match");
    QTest::newRow("by its time") << QByteArray("Last-Modified") << httpDate(start - 1000000)
                                 << QByteArray("If-Modified-Since");
}

void WebTileCacheTest::aStaleTileIsCheckedAndKept()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, value);
    QFETCH(QByteArray, question);
    TileServer server;
    server.onOther([=](const HttpRequest& request) {
        if (request.header(question.constData()) == value) {
            return HttpReply::withStatus(304).header("Cache-Control", "max-age=100");
        }
        return tileReply(TileNumbers::of(request))
            .header("Cache-Control", "max-age=10")
            .header(name.constData(), value);
    });
    const QRgb colour = TileNumbers{2, 0, 0}.colour();
    QCOMPARE(look(server), colour);
    WebClock::standAt(start + 20000);
    QCOMPARE(look(server), colour);
    QCOMPARE(server.requestCount(), 2);
    QCOMPARE(server.requests().back().header(question.constData()), value);
    WebClock::standAt(start + 119000); // the check gave it a longer life
    QCOMPARE(look(server), colour);
    QCOMPARE(server.requestCount(), 2);
    WebClock::standAt(start + 121000);
    QCOMPARE(look(server), colour);
    QCOMPARE(server.requestCount(), 3);
    QCOMPARE(server.requests().back().header(question.constData()), value);
}

void WebTileCacheTest::aCheckThatBringsANewTileReplacesTheOldOne()
{
    TileServer server;
    server.onTile(
        [](const TileNumbers& tile) { return tileReply(tile).header("ETag", "\"old\""); });
    QCOMPARE(look(server), (TileNumbers{2, 0, 0}.colour()));
    const QRgb other = qRgb(1, 2, 3);
    server.onTile([other](const TileNumbers&) {
        return HttpReply::data(pngOf(other), "image/png")
            .header("ETag", "\"new\"")
            .header("Cache-Control", "max-age=60");
    });
    QCOMPARE(look(server), other);
    QCOMPARE(look(server), other);
    QCOMPARE(server.requestCount(), 2);
}

void WebTileCacheTest::whatMayNotBeStoredIsNot_data()
{
    QTest::addColumn<QByteArray>("control");
    QTest::newRow("no-store") << QByteArray("no-store");
    QTest::newRow("nothing is said") << QByteArray();
}

void WebTileCacheTest::whatMayNotBeStoredIsNot()
{
    QFETCH(QByteArray, control);
    TileServer server;
    server.onTile([control](const TileNumbers& tile) {
        HttpReply reply = tileReply(tile);
        return control.isEmpty() ? reply : reply.header("Cache-Control", control);
    });
    for (int requests = 1; requests <= 3; ++requests) {
        QCOMPARE(look(server), (TileNumbers{2, 0, 0}.colour()));
        QCOMPARE(server.requestCount(), requests);
    }
    QDirIterator files(folder->path(), QDir::Files, QDirIterator::Subdirectories);
    QVERIFY(!files.hasNext());
}

void WebTileCacheTest::failuresAreNotKept()
{
    TileServer server;
    server.onTile([](const TileNumbers&) {
        return HttpReply::data("garbage", "image/png").header("Cache-Control", "max-age=60");
    });
    {
        WebTileLayer layer;
        layer.setMaxZoom(2);
        layer.setMinZoom(2);
        QVERIFY(layer.setDataSource(server.tiles()));
        PixelView{200, 200, 10, 10, 1.0}.set(layer);
        QTRY_VERIFY(!layer.getLastError().isEmpty());
    }
    server.onTile([](const TileNumbers& tile) { return tileReply(tile); });
    QCOMPARE(look(server), (TileNumbers{2, 0, 0}.colour()));
    QCOMPARE(server.requestCount(), 2);
}

void WebTileCacheTest::aDamagedFileIsFetchedAnew()
{
    TileServer server;
    server.onTile([](const TileNumbers& tile) {
        return tileReply(tile).header("Cache-Control", "max-age=60");
    });
    const QRgb colour = TileNumbers{2, 0, 0}.colour();
    QCOMPARE(look(server), colour);
    QDirIterator files(folder->path(), QDir::Files, QDirIterator::Subdirectories);
    QVERIFY(files.hasNext());
    QFile file(files.next());
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.seek(file.size() - 100));
    file.write(QByteArray(100, 'x'));
    file.close();
    TileCache::instance().setFolder(folder->path(), limit);
    QCOMPARE(look(server), colour);
    QCOMPARE(server.requestCount(), 2);
    QCOMPARE(look(server), colour);
    QCOMPARE(server.requestCount(), 2);
}

void WebTileCacheTest::aTileThatIsGoneIsForgotten()
{
    TileServer server;
    server.onTile([](const TileNumbers& tile) { return tileReply(tile).header("ETag", "\"a\""); });
    QVERIFY(look(server) != 0);
    server.onTile([](const TileNumbers&) { return HttpReply::withStatus(404); });
    QCOMPARE(qAlpha(look(server)), 0);
    QCOMPARE(qAlpha(look(server)), 0);
    QVERIFY(server.requests().back().header("If-None-Match").isNull());
}

void WebTileCacheTest::aFreshTileIsShownWhileTheServerIsLeftAlone()
{
    TileServer server;
    server.onTile([](const TileNumbers& tile) {
        return tile.x == 0 ? tileReply(tile).header("Cache-Control", "max-age=600")
                           : HttpReply::withStatus(503).header("Retry-After", "300");
    });
    QVERIFY(look(server) != 0);
    WebTileLayer layer;
    layer.setMaxZoom(2);
    layer.setMinZoom(2);
    QVERIFY(layer.setDataSource(server.tiles()));
    PixelView{200, 200, 520, 10, 1.0}.set(layer);
    QTRY_VERIFY(layer.getSourceState().startsWith("left alone for 300 s"));
    PixelView{200, 200, 10, 10, 1.0}.set(layer);
    QTRY_COMPARE(int(layer.getPercentComplete()), 100);
    QCOMPARE(server.requestCount(), 2);
    QVERIFY(layer.getSourceState().startsWith("left alone for 300 s"));
}

int main(int argc, char** argv)
{
    QLoggingCategory::setFilterRules("corvane.tiles.debug=false");
    Application application(argc, argv, "WebTileCacheTest");
    WebTileCacheTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "WebTileCacheTest.moc"
