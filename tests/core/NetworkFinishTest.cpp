#include <corvane/core/Network.h>
#include <tests/support/Fetching.h>
#include <tests/support/HttpTestServer.h>
#include <tests/support/MessageLines.h>

#include <QtTest>

#include <thread>

using namespace Corvane;

/// The end of the transport is that of the process: the functions run in this order.
class NetworkFinishTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void beforeTheFirstFetchThereIsNothingToEnd();
    void aFetchUnderWayComesToItsEnd();
    void afterFinishEveryFetchFails();
    void afterFinishAThreadThatNeverFetchedFailsToo();
    void afterFinishTheTransportCountsAsInitialized();
};

void NetworkFinishTest::initTestCase()
{
    forgetProxies();
}

void NetworkFinishTest::beforeTheFirstFetchThereIsNothingToEnd()
{
    HttpTestServer server;
    server.on("/page", HttpReply::data("bytes"));

    Network::finish();

    QCOMPARE(bytesOf(server.url("/page")), QByteArray("bytes"));
}

void NetworkFinishTest::aFetchUnderWayComesToItsEnd()
{
    HttpTestServer server;
    server.on("/slow", HttpReply::data("slow bytes").heldAfter(4));
    QByteArray bytes;
    std::thread fetcher([&] { bytes = bytesOf(server.url("/slow")); });
    const bool held = server.waitForHeld(1);

    Network::finish();
    server.release();
    fetcher.join();

    QVERIFY(held);
    QCOMPARE(bytes, QByteArray("slow bytes"));
}

void NetworkFinishTest::afterFinishEveryFetchFails()
{
    HttpTestServer server;
    Network::finish();
    const MessageLines lines;

    const std::unique_ptr<QBuffer> buffer(Network::getBuffer(server.url("/page"), true));
    QVERIFY(!buffer->isOpen());
    QCOMPARE(buffer->data(), QByteArray());
    QCOMPARE(lines.all(), QStringList("debug: Failed initialization"));

    const std::unique_ptr<QImage> image(Network::getImage(server.url("/page"), true));
    QVERIFY(image->isNull());
    QCOMPARE(lines.all().size(), 2);
    QCOMPARE(server.connectionCount(), 0);
}

void NetworkFinishTest::afterFinishAThreadThatNeverFetchedFailsToo()
{
    HttpTestServer server;
    server.on("/page", HttpReply::data("bytes"));
    const MessageLines lines;
    QByteArray bytes("none yet");

    std::thread([&] { bytes = bytesOf(server.url("/page")); }).join();

    QCOMPARE(bytes, QByteArray());
    QCOMPARE(lines.all(), QStringList("debug: Failed initialization"));
}

void NetworkFinishTest::afterFinishTheTransportCountsAsInitialized()
{
    HttpTestServer server;
    QVERIFY(Network::initialize());
    const MessageLines lines;
    QCOMPARE(bytesOf(server.url("/page")), QByteArray());
    QCOMPARE(lines.all().size(), 1);
    QCOMPARE(server.requestCount(), 0);
}

QTEST_GUILESS_MAIN(NetworkFinishTest)
#include "NetworkFinishTest.moc"
