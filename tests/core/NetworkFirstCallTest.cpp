#include <tests/support/Fetching.h>
#include <tests/support/HttpTestServer.h>
#include <tests/tiles/Gate.h>

#include <QtTest>

#include <atomic>
#include <thread>
#include <vector>

/// Nobody calls initialize: the threads do so at once, in a process that has not fetched yet.
class NetworkFirstCallTest : public QObject
{
    Q_OBJECT
private slots:
    void eightThreadsMayMakeTheFirstCallAtOnce();
};

void NetworkFirstCallTest::eightThreadsMayMakeTheFirstCallAtOnce()
{
    constexpr int threads = 8;
    forgetProxies();
    HttpTestServer server;
    server.on("/page", HttpReply::data("bytes"));
    Gate start;
    std::atomic<int> right{0};
    std::vector<std::thread> callers;
    for (int thread = 0; thread < threads; ++thread) {
        callers.emplace_back([&] {
            start.pass();
            right += bytesOf(server.url("/page")) == "bytes";
        });
    }
    start.waitForArrivals(threads);
    start.open();
    for (std::thread& caller : callers) {
        caller.join();
    }

    QCOMPARE(right.load(), threads);
    QCOMPARE(server.requestCount(), threads);
}

QTEST_GUILESS_MAIN(NetworkFirstCallTest)
#include "NetworkFirstCallTest.moc"
