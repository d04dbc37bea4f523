#include <corvane/core/Network.h>
#include <tests/support/Fetching.h>
#include <tests/support/HttpTestServer.h>
#include <tests/support/MessageLines.h>

#include <QProcess>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QtTest>

#include <thread>
#include <vector>

using namespace Corvane;

namespace {

constexpr int urlLimit = 1024; // UTF-16 units

QByteArray patternOf(int size)
{
    QByteArray bytes(size, '\0');
    for (int i = 0; i < size; ++i) {
        bytes[i] = static_cast<char>(i * 7 + i / 251);
    }
    return bytes;
}

/// The server's URL stretched to so many UTF-16 units.
QString longUrl(const HttpTestServer& server, int units, const QString& filling)
{
    QString url = server.url(QStringLiteral("/long/"));
    while (url.size() + filling.size() <= units) {
        url += filling;
    }
    return url.leftJustified(units, QLatin1Char('.'));
}

/// The HTTPS server of the openssl program on a free port, with a certificate that nobody vouches
/// for. It ends after one connection.
class SelfSignedServer
{
public:
    bool start()
    {
        const QString key = folder.filePath(QStringLiteral("key.pem"));
        const QString certificate = folder.filePath(QStringLiteral("certificate.pem"));
        QProcess request;
        request.start(QStringLiteral("openssl"),
                      {"req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1",
                       "-nodes", "-keyout", key, "-out", certificate, "-subj", "/CN=localhost",
                       "-days", "2"});
        if (!request.waitForFinished() || request.exitCode() != 0) {
            return false;
        }
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(QStringLiteral("openssl"),
                      {"s_server", "-accept", "127.0.0.1:0", "-cert", certificate, "-key", key,
                       "-alpn", "h2", "-naccept", "1"});
        while (!port().hasMatch() && process.waitForReadyRead()) {
            said += process.readAll();
        }
        return port().hasMatch();
    }

    QString url() const { return QStringLiteral("https://localhost:%1/").arg(port().captured(1)); }

    /// What the server said until its end.
    QByteArray everythingSaid()
    {
        process.waitForFinished();
        return said + process.readAll();
    }

private:
    QRegularExpressionMatch port() const
    {
        return QRegularExpression(QStringLiteral("ACCEPT .*:([0-9]+)"))
            .match(QString::fromLatin1(said));
    }

    QTemporaryDir folder;
    QProcess process;
    QByteArray said;
};

} // namespace

class NetworkTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void theBytesComeInAClosedBufferOfTheCallers();
    void aLargeBodyComesWhole();
    void aBodyWithoutALengthComesWhole();
    void aPackedBodyIsAskedForAndUnpacked();
    void itWaitsUntilTheServerIsDone();
    void theClientNamesItself();
    void onlyACallThatForbidsCachesSaysSo();
    void theStatusIsNotLookedAt_data();
    void theStatusIsNotLookedAt();
    void anEmptyAnswerIsNoFailure();
    void redirectsAreFollowed_data();
    void redirectsAreFollowed();
    void aRedirectLoopEndsEmpty();
    void aRedirectToAFileIsRefused();
    void cookiesAreNotSentBack();
    void otherProtocolsAreRefused_data();
    void otherProtocolsAreRefused();
    void ftpIsTried();
    void aConnectionThatIsRefusedGivesNothingAndOneLine();
    void aNameThatIsUnknownGivesNothingAndOneLine();
    void aUrlThatIsNoneGivesNothingAndOneLine();
    void aResetConnectionGivesNothingAndOneLine();
    void anAnswerThatIsNoneGivesNothingAndOneLine();
    void aCertificateThatNobodyVouchesForGivesNothingAndOneLine();
    void whatCameBeforeACutIsKeptWithoutALine();
    void theNextFetchAfterACutWorks();
    void pathsAreEncodedAndWhatIsEncodedStays();
    void aUrlOf1023UnitsWorks_data();
    void aUrlOf1023UnitsWorks();
    void aUrlOf1024UnitsEndsTheProcess_data();
    void aUrlOf1024UnitsEndsTheProcess();
    void theProxyOfTheEnvironmentIsAsked();
    void aThreadKeepsItsConnection();
    void eachThreadHasAConnectionOfItsOwn();
    void imagesAreDecodedByTheirBytes_data();
    void imagesAreDecodedByTheirBytes();
    void whatCannotBeDecodedIsANullImage();
    void imagesAreNeverTakenFromACache_data();
    void imagesAreNeverTakenFromACache();
};

void NetworkTest::initTestCase()
{
    forgetProxies();
    QVERIFY(Network::initialize());
    QVERIFY(Network::initialize());
}

void NetworkTest::theBytesComeInAClosedBufferOfTheCallers()
{
    HttpTestServer server;
    server.on("/page", HttpReply::data("some bytes"));

    const std::unique_ptr<QBuffer> buffer(Network::getBuffer(server.url("/page"), true));

    QVERIFY(!buffer->isOpen());
    QVERIFY(!buffer->parent());
    QCOMPARE(buffer->data(), QByteArray("some bytes"));
    QCOMPARE(server.requestCount(), 1);
    QCOMPARE(server.requests().front().method, std::string("GET"));
}

void NetworkTest::aLargeBodyComesWhole()
{
    HttpTestServer server;
    const QByteArray body = patternOf(3 * 1024 * 1024 + 17);
    server.on("/large", HttpReply::data(body));

    QVERIFY(bytesOf(server.url("/large")) == body);
}

void NetworkTest::aBodyWithoutALengthComesWhole()
{
    HttpTestServer server;
    const QByteArray body = patternOf(10000);
    server.on("/chunked", HttpReply::data(body).chunked(333));

    QVERIFY(bytesOf(server.url("/chunked")) == body);
}

void NetworkTest::aPackedBodyIsAskedForAndUnpacked()
{
    HttpTestServer server;
    const QByteArray body = QByteArray(50000, 'a') + patternOf(1000);
    server.on("/packed", HttpReply::data(body).gzipped());

    QVERIFY(bytesOf(server.url("/packed")) == body);
    QVERIFY(server.requests().front().header("Accept-Encoding").contains("gzip"));
}

void NetworkTest::itWaitsUntilTheServerIsDone()
{
    HttpTestServer server;
    server.on("/slow", HttpReply::data("slow bytes").heldAfter(4));
    std::atomic<bool> returned{false};
    QByteArray bytes;
    std::thread fetcher([&] {
        bytes = bytesOf(server.url("/slow"));
        returned = true;
    });

    const bool held = server.waitForHeld(1);
    const bool returnedEarly = returned;
    server.release();
    fetcher.join();

    QVERIFY(held);
    QVERIFY(!returnedEarly);
    QCOMPARE(bytes, QByteArray("slow bytes"));
}

void NetworkTest::theClientNamesItself()
{
    HttpTestServer server;
    bytesOf(server.url("/"));

    QCOMPARE(server.requests().front().header("User-Agent"), QByteArray("Corvane/1.0"));
}

void NetworkTest::onlyACallThatForbidsCachesSaysSo()
{
    HttpTestServer server;

    delete Network::getBuffer(server.url("/cached"), true);
    delete Network::getBuffer(server.url("/fresh"), false);
    delete Network::getBuffer(server.url("/cached"), true);

    const std::vector<HttpRequest> requests = server.requests();
    QCOMPARE(requests.size(), std::size_t(3));
    QVERIFY(requests[0].header("Pragma").isNull());
    QCOMPARE(requests[1].header("Pragma"), QByteArray("no-cache"));
    QVERIFY(requests[2].header("Pragma").isNull());
}

void NetworkTest::theStatusIsNotLookedAt_data()
{
    QTest::addColumn<int>("status");
    QTest::newRow("a page that is not there") << 404;
    QTest::newRow("a page that asks for a password") << 401;
    QTest::newRow("a server that has enough") << 429;
    QTest::newRow("a server that failed") << 500;
    QTest::newRow("a server that is away") << 503;
}

void NetworkTest::theStatusIsNotLookedAt()
{
    QFETCH(const int, status);
    HttpTestServer server;
    server.on("/page", HttpReply::withStatus(status, "an error page").header("Retry-After", "9"));
    const MessageLines lines;

    QCOMPARE(bytesOf(server.url("/page")), QByteArray("an error page"));
    QCOMPARE(server.requestCount(), 1);
    QCOMPARE(lines.all(), QStringList());
}

void NetworkTest::anEmptyAnswerIsNoFailure()
{
    HttpTestServer server;
    server.on("/empty", HttpReply::withStatus(204));
    const MessageLines lines;

    QCOMPARE(bytesOf(server.url("/empty")), QByteArray());
    QCOMPARE(lines.all(), QStringList());
}

void NetworkTest::redirectsAreFollowed_data()
{
    QTest::addColumn<int>("status");
    QTest::newRow("moved for good") << 301;
    QTest::newRow("found elsewhere") << 302;
    QTest::newRow("see elsewhere") << 303;
    QTest::newRow("moved for now") << 307;
    QTest::newRow("moved for good, same method") << 308;
}

void NetworkTest::redirectsAreFollowed()
{
    QFETCH(const int, status);
    HttpTestServer server;
    HttpTestServer otherServer;
    server.on("/first", HttpReply::redirect("/second", status));
    server.on("/second", HttpReply::redirect(otherServer.url("/third").toLatin1(), status));
    otherServer.on("/third", HttpReply::data("the end"));

    QCOMPARE(bytesOf(server.url("/first")), QByteArray("the end"));
    QCOMPARE(server.requestCount(), 2);
    QCOMPARE(otherServer.requestCount(), 1);
}

void NetworkTest::aRedirectLoopEndsEmpty()
{
    HttpTestServer server;
    server.on("/a", HttpReply::redirect("/b"));
    server.on("/b", HttpReply::redirect("/a"));
    const MessageLines lines;

    QCOMPARE(bytesOf(server.url("/a")), QByteArray());
    QCOMPARE(lines.all(), QStringList("debug: Maximum (30) redirects followed"));
    QCOMPARE(server.requestCount(), 31);
}

void NetworkTest::aRedirectToAFileIsRefused()
{
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write("secret");
    file.close();
    HttpTestServer server;
    server.on("/page", HttpReply::redirect("file://" + file.fileName().toUtf8()));
    const MessageLines lines;

    QCOMPARE(bytesOf(server.url("/page")), QByteArray());
    QCOMPARE(lines.all().size(), 1);
    QVERIFY(lines.all().front().startsWith("debug: Protocol \"file\" not supported"));
}

void NetworkTest::cookiesAreNotSentBack()
{
    HttpTestServer server;
    server.on("/first", HttpReply::redirect("/second").header("Set-Cookie", "id=1; Path=/"));
    server.on("/second", HttpReply::data("x").header("Set-Cookie", "id=2; Path=/"));

    bytesOf(server.url("/first"));
    bytesOf(server.url("/second"));

    QCOMPARE(server.requestCount(), 3);
    for (const HttpRequest& request : server.requests()) {
        QVERIFY(request.header("Cookie").isNull());
    }
}

void NetworkTest::otherProtocolsAreRefused_data()
{
    QTest::addColumn<QString>("protocol");
    for (const char* name : {"file", "dict", "gopher", "scp", "smb", "telnet", "imap"}) {
        QTest::newRow(name) << name;
    }
}

void NetworkTest::otherProtocolsAreRefused()
{
    QFETCH(const QString, protocol);
    QTemporaryFile file;
    QVERIFY(file.open());
    file.write("secret");
    file.close();
    const QString host = protocol == "file" ? QString() : QStringLiteral("127.0.0.1:1");
    const MessageLines lines;

    QCOMPARE(bytesOf(protocol + "://" + host + file.fileName()), QByteArray());
    QCOMPARE(
        lines.all(),
        QStringList(
            QString("debug: Protocol \"%1\" not supported or disabled in libcurl").arg(protocol)));
}

void NetworkTest::ftpIsTried()
{
    const MessageLines lines;
    QCOMPARE(bytesOf(deadUrl().replace("http://", "ftp://")), QByteArray());
    QCOMPARE(lines.all().size(), 1);
    QVERIFY(lines.all().front().contains("Couldn't connect to server"));
}

void NetworkTest::aConnectionThatIsRefusedGivesNothingAndOneLine()
{
    const QString url = deadUrl();
    const MessageLines lines;

    const std::unique_ptr<QBuffer> buffer(Network::getBuffer(url, true));

    QVERIFY(!buffer->isOpen());
    QCOMPARE(buffer->data(), QByteArray());
    QCOMPARE(lines.all().size(), 1);
    QVERIFY(lines.all().front().startsWith("debug: Failed to connect to 127.0.0.1 port "));
    QVERIFY(lines.all().front().endsWith("Couldn't connect to server"));
}

void NetworkTest::aNameThatIsUnknownGivesNothingAndOneLine()
{
    // a label has at most 63 letters, so no server is asked for this one
    const QString name(64, 'x');
    const MessageLines lines;

    QCOMPARE(bytesOf("http://" + name + "/"), QByteArray());
    QCOMPARE(lines.all(), QStringList("debug: Could not resolve host: " + name));
}

void NetworkTest::aUrlThatIsNoneGivesNothingAndOneLine()
{
    const MessageLines lines;
    QCOMPARE(bytesOf(QString()), QByteArray());
    QCOMPARE(lines.all(), QStringList("debug: URL using bad/illegal format or missing URL"));
}

void NetworkTest::aResetConnectionGivesNothingAndOneLine()
{
    HttpTestServer server;
    server.on("/reset", HttpReply::reset());
    const MessageLines lines;

    QCOMPARE(bytesOf(server.url("/reset")), QByteArray());
    QCOMPARE(lines.all(), QStringList("debug: Recv failure: Connection reset by peer"));
}

void NetworkTest::anAnswerThatIsNoneGivesNothingAndOneLine()
{
    HttpTestServer server;
    server.on("/garbage", HttpReply::raw("\x01\x02 no status line\r\n\r\n"));
    const MessageLines lines;

    QCOMPARE(bytesOf(server.url("/garbage")), QByteArray());
    QCOMPARE(lines.all(), QStringList("debug: Received HTTP/0.9 when not allowed"));
}

void NetworkTest::aCertificateThatNobodyVouchesForGivesNothingAndOneLine()
{
    SelfSignedServer server;
    QVERIFY(server.start());
    const MessageLines lines;

    QCOMPARE(bytesOf(server.url()), QByteArray());

    QCOMPARE(lines.all(), QStringList("debug: SSL certificate problem: self-signed certificate"));
    const QByteArray said = server.everythingSaid();
    QVERIFY2(said.contains("advertised by the client: h2, http/1.1"), said.constData());
}

void NetworkTest::whatCameBeforeACutIsKeptWithoutALine()
{
    HttpTestServer server;
    const QByteArray body = patternOf(9000);
    server.on("/cut", HttpReply::data(body).cutAfter(5000));
    server.on("/chunks", HttpReply::data(body).chunked(1000).cutAfter(5000));
    const MessageLines lines;

    QVERIFY(bytesOf(server.url("/cut")) == body.left(5000));
    QVERIFY(bytesOf(server.url("/chunks")) == body.left(5000));
    QCOMPARE(lines.all(), QStringList());
}

void NetworkTest::theNextFetchAfterACutWorks()
{
    HttpTestServer server;
    server.on("/cut", HttpReply::data("12345").cutAfter(2));
    server.on("/whole", HttpReply::data("12345"));

    QCOMPARE(bytesOf(server.url("/cut")), QByteArray("12"));
    QCOMPARE(bytesOf(server.url("/whole")), QByteArray("12345"));
    QCOMPARE(server.connectionCount(), 2);
}

void NetworkTest::pathsAreEncodedAndWhatIsEncodedStays()
{
    HttpTestServer server;
    const QString target = QString::fromUtf8("/a b/gr\u00fcn/100%25/x?bbox=1,2&name=a%20b c#top");

    bytesOf(server.url(target));

    QCOMPARE(server.requests().front().target,
             std::string("/a%20b/gr%C3%BCn/100%25/x?bbox=1,2&name=a%20b%20c"));
}

void NetworkTest::aUrlOf1023UnitsWorks_data()
{
    QTest::addColumn<QString>("filling");
    QTest::newRow("a unit and a byte each") << QStringLiteral("a");
    QTest::newRow("two units and four bytes each") << QString::fromUtf8("\U0001F30D");
}

void NetworkTest::aUrlOf1023UnitsWorks()
{
    QFETCH(const QString, filling);
    HttpTestServer server;
    server.onOther([](const HttpRequest&) { return HttpReply::data("long"); });
    const QString url = longUrl(server, urlLimit - 1, filling);
    QCOMPARE(url.size(), 1023);

    QCOMPARE(bytesOf(url), QByteArray("long"));
    QCOMPARE(server.requestCount(), 1);
}

void NetworkTest::aUrlOf1024UnitsEndsTheProcess_data()
{
    aUrlOf1023UnitsWorks_data();
}

void NetworkTest::aUrlOf1024UnitsEndsTheProcess()
{
    QFETCH(const QString, filling);
    HttpTestServer server;
    server.onOther([](const HttpRequest&) { return HttpReply::data("long"); });
    const auto runChild = [&](int units) {
        auto child = std::make_unique<QProcess>();
        child->start(QStringLiteral(NETWORK_CHILD), {longUrl(server, units, filling)});
        child->waitForFinished();
        return child;
    };

    const auto shorter = runChild(urlLimit - 1);
    QCOMPARE(shorter->exitStatus(), QProcess::NormalExit);
    QCOMPARE(shorter->readAllStandardOutput(), QByteArray("long"));

    const auto longer = runChild(urlLimit);
    QCOMPARE(longer->exitStatus(), QProcess::CrashExit);
    QCOMPARE(longer->readAllStandardOutput(), QByteArray());
    QVERIFY(longer->readAllStandardError().contains("the URL is 1024 characters long"));
    QCOMPARE(server.requestCount(), 1);
}

void NetworkTest::theProxyOfTheEnvironmentIsAsked()
{
    HttpTestServer proxy;
    proxy.onOther([](const HttpRequest&) { return HttpReply::data("by proxy"); });
    qputenv("http_proxy", proxy.url("").toLatin1());

    const QByteArray bytes = bytesOf("http://far.invalid/page");
    forgetProxies();

    QCOMPARE(bytes, QByteArray("by proxy"));
    QCOMPARE(proxy.requests().front().target, std::string("http://far.invalid/page"));
}

void NetworkTest::aThreadKeepsItsConnection()
{
    HttpTestServer server;
    for (int i = 0; i < 5; ++i) {
        bytesOf(server.url(QString("/%1").arg(i)));
        delete Network::getBuffer(server.url(QString("/fresh/%1").arg(i)), false);
    }
    QCOMPARE(server.requestCount(), 10);
    QCOMPARE(server.connectionCount(), 1);
}

void NetworkTest::eachThreadHasAConnectionOfItsOwn()
{
    constexpr int threads = 4;
    constexpr int fetches = 10;
    HttpTestServer server;
    // the first replies are held until each thread has asked
    server.on("/first", HttpReply::data("first").held());
    server.on("/next", HttpReply::data("next"));
    std::vector<std::thread> fetchers;
    std::atomic<int> right{0};
    for (int thread = 0; thread < threads; ++thread) {
        fetchers.emplace_back([&] {
            right += bytesOf(server.url("/first")) == "first";
            for (int i = 1; i < fetches; ++i) {
                right += bytesOf(server.url("/next")) == "next";
            }
        });
    }
    const bool held = server.waitForHeld(threads);
    server.release();
    for (std::thread& fetcher : fetchers) {
        fetcher.join();
    }

    QVERIFY(held);
    QCOMPARE(right.load(), threads * fetches);
    QCOMPARE(server.connectionCount(), threads);
}

void NetworkTest::imagesAreDecodedByTheirBytes_data()
{
    QTest::addColumn<QByteArray>("format");
    QTest::newRow("a PNG file") << QByteArray("png");
    QTest::newRow("a BMP file") << QByteArray("bmp");
    QTest::newRow("a PPM file") << QByteArray("ppm");
}

void NetworkTest::imagesAreDecodedByTheirBytes()
{
    QFETCH(const QByteArray, format);
    QImage picture(7, 5, QImage::Format_RGB32);
    picture.fill(QColor(10, 20, 30));
    picture.setPixelColor(3, 2, QColor(200, 100, 50));
    HttpTestServer server;
    server.on("/picture.jpg",
              HttpReply::data(encodedImage(picture, format.constData()), "image/jpeg"));

    const std::unique_ptr<QImage> image(Network::getImage(server.url("/picture.jpg"), true));

    QCOMPARE(image->convertToFormat(QImage::Format_RGB32), picture);
}

void NetworkTest::whatCannotBeDecodedIsANullImage()
{
    HttpTestServer server;
    server.on("/text", HttpReply::data("no image", "image/png"));
    const MessageLines lines;

    QVERIFY(std::unique_ptr<QImage>(Network::getImage(server.url("/text"), true))->isNull());
    QCOMPARE(lines.all(), QStringList());
    QVERIFY(std::unique_ptr<QImage>(Network::getImage(deadUrl(), true))->isNull());
    QCOMPARE(lines.all().size(), 1);
}

void NetworkTest::imagesAreNeverTakenFromACache_data()
{
    QTest::addColumn<bool>("allowCache");
    QTest::newRow("caches allowed") << true;
    QTest::newRow("caches forbidden") << false;
}

void NetworkTest::imagesAreNeverTakenFromACache()
{
    QFETCH(const bool, allowCache);
    HttpTestServer server;

    delete Network::getImage(server.url("/image"), allowCache);

    QCOMPARE(server.requests().front().header("Pragma"), QByteArray("no-cache"));
}

QTEST_GUILESS_MAIN(NetworkTest)
#include "NetworkTest.moc"
