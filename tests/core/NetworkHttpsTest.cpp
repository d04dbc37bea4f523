#include <corvane/core/Network.h>
#include <tests/support/Fetching.h>
#include <tests/support/HttpTestServer.h>
#include <tests/support/MessageLines.h>
#include <tests/support/TlsFront.h>

#include <QtTest>

using namespace Corvane;

/// The blocking fetch over HTTPS: from a server whose certificate holds, and from those whose does
/// not.
class NetworkHttpsTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void aServerThatIsVouchedForAnswers_data();
    void aServerThatIsVouchedForAnswers();
    void aBadCertificateEndsEmptyWithOneLine_data();
    void aBadCertificateEndsEmptyWithOneLine();
    void authoritiesThatCannotBeReadEndEmptyWithOneLine();

private:
    TestAuthority authority;
};

void NetworkHttpsTest::init()
{
    forgetProxies();
    qunsetenv("CURL_CA_BUNDLE");
    qunsetenv("SSL_CERT_FILE");
}

void NetworkHttpsTest::cleanup()
{
    init();
}

void NetworkHttpsTest::aServerThatIsVouchedForAnswers_data()
{
    QTest::addColumn<QByteArray>("variable");
    QTest::addColumn<QByteArray>("other");
    QTest::newRow("by curl's variable") << QByteArray("CURL_CA_BUNDLE") << QByteArray();
    QTest::newRow("by OpenSSL's variable") << QByteArray("SSL_CERT_FILE") << QByteArray();
    QTest::newRow("by curl's variable, which goes first")
        << QByteArray("CURL_CA_BUNDLE") << QByteArray("SSL_CERT_FILE");
}

void NetworkHttpsTest::aServerThatIsVouchedForAnswers()
{
    QFETCH(QByteArray, variable);
    QFETCH(QByteArray, other);
    qputenv(variable.constData(), authority.file().toLocal8Bit());
    if (!other.isEmpty()) {
        qputenv(other.constData(), "/no/such/file");
    }
    HttpTestServer server;
    const QByteArray large(300000, 'x');
    server.on("/small", HttpReply::data("over a safe line"));
    server.on("/large", HttpReply::data(large).chunked(4000));
    const TlsFront front(server, authority.certify("IP:127.0.0.1"));
    QCOMPARE(bytesOf(front.url("/small")), QByteArray("over a safe line"));
    QCOMPARE(bytesOf(front.url("/large")), large);
    QCOMPARE(server.connectionCount(), 1);
}

void NetworkHttpsTest::aBadCertificateEndsEmptyWithOneLine_data()
{
    QTest::addColumn<bool>("stranger");
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("days");
    QTest::addColumn<QString>("line");
    const QByteArray here("IP:127.0.0.1");
    QTest::newRow("of an authority that nobody trusts")
        << true << here << 2
        << "debug: SSL certificate problem: unable to get local issuer certificate";
    QTest::newRow("of another server")
        << false << QByteArray("DNS:elsewhere.example") << 2
        << "debug: SSL: no alternative certificate subject name matches target host name "
           "'127.0.0.1'";
    QTest::newRow("that has expired")
        << false << here << -1 << "debug: SSL certificate problem: certificate has expired";
}

void NetworkHttpsTest::aBadCertificateEndsEmptyWithOneLine()
{
    QFETCH(bool, stranger);
    QFETCH(QByteArray, name);
    QFETCH(int, days);
    QFETCH(QString, line);
    TestAuthority other;
    qputenv("CURL_CA_BUNDLE", authority.file().toLocal8Bit());
    HttpTestServer server;
    server.on("/", HttpReply::data("not to be read"));
    const TlsFront front(server, (stranger ? other : authority).certify(name, days));
    MessageLines lines;
    QCOMPARE(bytesOf(front.url("/")), QByteArray());
    QCOMPARE(lines.all(), QStringList{line});
    QCOMPARE(server.requestCount(), 0);
}

void NetworkHttpsTest::authoritiesThatCannotBeReadEndEmptyWithOneLine()
{
    qputenv("SSL_CERT_FILE", "/no/such/file");
    HttpTestServer server;
    const TlsFront front(server, authority.certify("IP:127.0.0.1"));
    MessageLines lines;
    QCOMPARE(bytesOf(front.url("/")), QByteArray());
    QCOMPARE(lines.all().size(), 1);
    QVERIFY2(lines.all().front().contains("/no/such/file"), qPrintable(lines.all().front()));
}

QTEST_GUILESS_MAIN(NetworkHttpsTest)
#include "NetworkHttpsTest.moc"
