#include <tests/support/HttpTestServer.h>

#include <QHostAddress>
#include <QTcpSocket>
#include <QtTest>

#include <memory>

namespace {

/// A connection that speaks for itself.
class Client
{
public:
    explicit Client(const HttpTestServer& server)
    {
        socket.connectToHost(QHostAddress::LocalHost, static_cast<quint16>(server.port()));
        socket.waitForConnected();
    }

    void ask(const QByteArray& request)
    {
        socket.write(request);
        socket.flush();
    }

    /// What comes until this many bytes are there, or the server closes.
    QByteArray read(int size)
    {
        while (came.size() < size && socket.waitForReadyRead()) {
            came += socket.readAll();
        }
        const QByteArray result = came.left(size);
        came.remove(0, size);
        return result;
    }

    QByteArray readAll() { return read(1 << 24); }

    void close() { socket.abort(); }

    QTcpSocket socket;

private:
    QByteArray came;
};

const QByteArray page = "HTTP/1.1 200 Status\r\nContent-Type: text/plain\r\n"
                        "Content-Length: 4\r\n\r\nbody";

} // namespace

/// The tests' own server, whose promises other tests build on.
class HttpTestServerTest : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void oneConnectionServesManyRequests();
    void requestsAreKeptAsTheyCame();
    void whatNobodyToldOfIsNotFound();
    void aConnectionIsClosedWhenTheClientSaysSo();
    void theHeadAloneIsSentWhereNoMoreIsAskedFor();
    void noContentHasNoLength();
    void chunksHaveTheSizeToldAndAnEnd();
    void aCutKeepsTheLengthPromised();
    void aReplyIsHeldBeforeItsHead();
    void aReplyIsHeldInTheMiddleOfItsBody();
    void repliesAreReleasedOneByOne();
    void anEndlessBodyGoesOnUntilTheClientGoes();
    void theEndOfTheServerLetsHeldClientsGo();

private:
    std::unique_ptr<HttpTestServer> server;
};

void HttpTestServerTest::init()
{
    server = std::make_unique<HttpTestServer>();
    server->on("/page", HttpReply::data("body", "text/plain"));
}

void HttpTestServerTest::oneConnectionServesManyRequests()
{
    Client client(*server);
    for (int i = 0; i < 3; ++i) {
        client.ask("GET /page HTTP/1.1\r\n\r\n");
        QCOMPARE(client.read(page.size()), page);
    }
    Client other(*server);
    other.ask("GET /page HTTP/1.1\r\n\r\n");
    QCOMPARE(other.read(page.size()), page);

    QCOMPARE(server->requestCount(), 4);
    QCOMPARE(server->connectionCount(), 2);
    QCOMPARE(server->requests().at(2).connection, 0);
    QCOMPARE(server->requests().at(3).connection, 1);
}

void HttpTestServerTest::requestsAreKeptAsTheyCame()
{
    Client client(*server);
    client.ask("POST /page?a=b%20c HTTP/1.1\r\nX-One: 1 \r\nContent-Length: 5\r\n\r\nhello");
    QCOMPARE(client.read(page.size()), page);

    const HttpRequest request = server->requests().front();
    QCOMPARE(request.method, std::string("POST"));
    QCOMPARE(request.target, std::string("/page?a=b%20c"));
    QCOMPARE(request.head, std::string("POST /page?a=b%20c HTTP/1.1\r\nX-One: 1 \r\n"
                                       "Content-Length: 5\r\n"));
    QCOMPARE(request.body, std::string("hello"));
    QCOMPARE(request.header("x-one"), QByteArray("1"));
    QVERIFY(request.header("X-Two").isNull());
    QCOMPARE(server->requestCount("/page?a=b%20c"), 1);
    QCOMPARE(server->requestCount("/page"), 0);
}

void HttpTestServerTest::whatNobodyToldOfIsNotFound()
{
    Client client(*server);
    client.ask("GET /other HTTP/1.1\r\nConnection: close\r\n\r\n");
    QVERIFY(client.readAll().startsWith("HTTP/1.1 404 "));
}

void HttpTestServerTest::aConnectionIsClosedWhenTheClientSaysSo()
{
    Client client(*server);
    client.ask("GET /page HTTP/1.1\r\nConnection: close\r\n\r\n");
    QCOMPARE(client.readAll(), page);
    QCOMPARE(client.socket.state(), QAbstractSocket::UnconnectedState);
}

void HttpTestServerTest::theHeadAloneIsSentWhereNoMoreIsAskedFor()
{
    Client client(*server);
    client.ask("HEAD /page HTTP/1.1\r\nConnection: close\r\n\r\n");
    QCOMPARE(client.readAll(), page.left(page.size() - 4));
}

void HttpTestServerTest::noContentHasNoLength()
{
    server->on("/empty", HttpReply::withStatus(204, "not sent"));
    Client client(*server);
    client.ask("GET /empty HTTP/1.1\r\nConnection: close\r\n\r\n");
    QCOMPARE(client.readAll(),
             QByteArray("HTTP/1.1 204 Status\r\nContent-Type: text/plain\r\n\r\n"));
}

void HttpTestServerTest::chunksHaveTheSizeToldAndAnEnd()
{
    server->on("/chunks", HttpReply::data("0123456789abc").chunked(10));
    Client client(*server);
    client.ask("GET /chunks HTTP/1.1\r\nConnection: close\r\n\r\n");
    QVERIFY(client.readAll().endsWith("\r\n\r\na\r\n0123456789\r\n3\r\nabc\r\n0\r\n\r\n"));
}

void HttpTestServerTest::aCutKeepsTheLengthPromised()
{
    server->on("/cut", HttpReply::data("body", "text/plain").cutAfter(2));
    Client client(*server);
    client.ask("GET /cut HTTP/1.1\r\n\r\n");
    QCOMPARE(client.readAll(), page.left(page.size() - 2));
}

void HttpTestServerTest::aReplyIsHeldBeforeItsHead()
{
    server->on("/held", HttpReply::data("body", "text/plain").held());
    Client client(*server);
    client.ask("GET /held HTTP/1.1\r\n\r\n");
    QVERIFY(server->waitForHeld(1));
    QCOMPARE(client.socket.bytesAvailable(), qint64(0));
    server->release();
    QCOMPARE(client.read(page.size()), page);
}

void HttpTestServerTest::aReplyIsHeldInTheMiddleOfItsBody()
{
    server->on("/held", HttpReply::data("body", "text/plain").heldAfter(2));
    Client client(*server);
    client.ask("GET /held HTTP/1.1\r\n\r\n");
    QVERIFY(server->waitForHeld(1));
    QCOMPARE(client.read(page.size() - 2), page.left(page.size() - 2));
    server->release();
    QCOMPARE(client.read(2), QByteArray("dy"));
}

void HttpTestServerTest::repliesAreReleasedOneByOne()
{
    server->on("/held", HttpReply::data("body", "text/plain").held());
    Client client(*server);
    client.ask("GET /held HTTP/1.1\r\n\r\nGET /held HTTP/1.1\r\n\r\n");
    server->release(1);
    QCOMPARE(client.read(page.size()), page);
    QVERIFY(server->waitForRequests(2));
    QVERIFY(server->waitForHeld(1));
    QCOMPARE(client.socket.bytesAvailable(), qint64(0));
    server->release(1);
    QCOMPARE(client.read(page.size()), page);
}

void HttpTestServerTest::anEndlessBodyGoesOnUntilTheClientGoes()
{
    server->on("/endless", HttpReply::endless("piece"));
    Client client(*server);
    client.ask("GET /endless HTTP/1.1\r\n\r\n");
    QVERIFY(client.read(1000000).count("piece") > 100000);
    client.close();
    server.reset(); // returns once the client has gone
}

void HttpTestServerTest::theEndOfTheServerLetsHeldClientsGo()
{
    server->on("/held", HttpReply::data("body").held());
    Client client(*server);
    client.ask("GET /held HTTP/1.1\r\n\r\n");
    QVERIFY(server->waitForHeld(1));
    server.reset();
    QCOMPARE(client.readAll(), QByteArray());
}

QTEST_GUILESS_MAIN(HttpTestServerTest)
#include "HttpTestServerTest.moc"
