#include <corvane/core/TransferHandles_p.h>
#include <tests/tiles/Gate.h>

#include <QtTest>

#include <atomic>
#include <thread>

using namespace Corvane;

/// What is closed stays closed: the functions run in this order.
class TransferHandlesTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanupTestCase();
    void aThreadKeepsItsHandle();
    void anotherThreadHasAnotherHandle();
    void closeWaitsForTheHandlesInUse();
    void afterCloseThereIsNoHandle();
};

void TransferHandlesTest::initTestCase()
{
    QCOMPARE(curl_global_init(CURL_GLOBAL_DEFAULT), CURLE_OK);
}

void TransferHandlesTest::cleanupTestCase()
{
    curl_global_cleanup(); // all handles are gone
}

void TransferHandlesTest::aThreadKeepsItsHandle()
{
    TransferHandles& handles = TransferHandles::instance();
    CURL* const first = handles.take();
    handles.giveBack();
    CURL* const second = handles.take();
    handles.giveBack();
    QVERIFY(first);
    QCOMPARE(second, first);
}

void TransferHandlesTest::anotherThreadHasAnotherHandle()
{
    TransferHandles& handles = TransferHandles::instance();
    CURL* const mine = handles.take();
    CURL* others = nullptr;
    std::thread([&] {
        others = handles.take();
        handles.giveBack();
    }).join();
    handles.giveBack();
    QVERIFY(others);
    QVERIFY(others != mine);
}

void TransferHandlesTest::closeWaitsForTheHandlesInUse()
{
    TransferHandles& handles = TransferHandles::instance();
    Gate inUse;
    Gate end;
    std::atomic<bool> closed{false};
    std::atomic<bool> closedEarly{false};
    // it ends after close, which has freed its handle
    std::thread user([&] {
        handles.take();
        inUse.pass();
        closedEarly = closed.load();
        handles.giveBack();
        end.pass();
    });
    inUse.waitForArrivals(1);
    std::thread closer([&] {
        handles.close();
        closed = true;
    });
    // from here on the closer waits: nobody new is let in
    const auto refused = [&handles] {
        if (!handles.take()) {
            return true;
        }
        handles.giveBack();
        return false;
    };
    QTRY_VERIFY(refused());
    const bool closedTooSoon = closed;
    inUse.open();
    closer.join();
    end.open();
    user.join();

    QVERIFY(!closedTooSoon);
    QVERIFY(!closedEarly);
    QVERIFY(closed);
}

void TransferHandlesTest::afterCloseThereIsNoHandle()
{
    TransferHandles& handles = TransferHandles::instance();
    QVERIFY(!handles.take());
    CURL* others = nullptr;
    std::thread([&] { others = handles.take(); }).join();
    QVERIFY(!others);
    handles.close(); // has nothing to do
}

QTEST_GUILESS_MAIN(TransferHandlesTest)
#include "TransferHandlesTest.moc"
