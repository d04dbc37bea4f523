#include <plugins/webtiles/WebTileLayer.h>

#include <tests/plugins/LayerProbe.h>
#include <tests/plugins/WebTileTools.h>
#include <tests/support/TlsFront.h>

#include <plugins/common/TileCache.h>

#include <QLoggingCategory>
#include <QThreadPool>
#include <QtTest>

using namespace Corvane;
using namespace Corvane::Map;
using namespace Corvane::Tests;

namespace {

constexpr int tileEdge = 256;
constexpr int generous = 60000;                                                // milliseconds
constexpr PixelView oneTile{tileEdge - 2, tileEdge - 2, tileEdge + 1, 1, 1.0}; // column 1, row 0

} // namespace

/// Web tiles over HTTPS: from a server whose certificate holds, and from one whose does not.
class WebTileHttpsTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanup();

    void tilesComeFromAServerThatIsVouchedFor();
    void aServerThatNobodyVouchesForIsAskedForNothing();

private:
    TestAuthority authority;
};

void WebTileHttpsTest::initTestCase()
{
    TileCache::instance().setFolder(QString(), 0);
    qputenv("CURL_CA_BUNDLE", authority.file().toLocal8Bit());
}

void WebTileHttpsTest::cleanup()
{
    QVERIFY(QThreadPool::globalInstance()->waitForDone(generous));
}

void WebTileHttpsTest::tilesComeFromAServerThatIsVouchedFor()
{
    TileServer server;
    const TlsFront front(server, authority.certify("IP:127.0.0.1"));
    WebTileLayer layer;
    layer.setMaxZoom(5);
    QVERIFY(layer.setDataSource(front.url("/{z}/{x}/{y}.png")));
    QCOMPARE(layer.getProtocol(), QString("https"));
    const QImage picture = complete(layer, oneTile);
    QCOMPARE(picture.pixel(100, 100), (TileNumbers{5, 1, 0}.colour()));

    complete(layer, {16 * tileEdge, 16 * tileEdge, 8 * tileEdge, 8 * tileEdge, 1.0});
    QVERIFY(server.requestCount() > 256);
    QVERIFY2(server.connectionCount() <= 8, qPrintable(QString::number(server.connectionCount())));
}

void WebTileHttpsTest::aServerThatNobodyVouchesForIsAskedForNothing()
{
    TileServer server;
    TestAuthority stranger;
    const TlsFront front(server, stranger.certify("IP:127.0.0.1"));
    WebTileLayer layer;
    layer.setMaxZoom(5);
    QVERIFY(layer.setDataSource(front.url("/{z}/{x}/{y}.png")));
    oneTile.set(layer);
    QTRY_COMPARE_WITH_TIMEOUT(
        layer.getLastError(),
        QString("SSL certificate problem: unable to get local issuer certificate"), generous);
    QCOMPARE(layer.getSourceState(),
             QString("failing: SSL certificate problem: unable to get local issuer certificate"));
    QCOMPARE(server.requestCount(), 0);
    QVERIFY(!layer.tiles().has({0, 1, 0}));
}

int main(int argc, char** argv)
{
    QLoggingCategory::setFilterRules("corvane.tiles.debug=false");
    Application application(argc, argv, "WebTileHttpsTest");
    WebTileHttpsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "WebTileHttpsTest.moc"
