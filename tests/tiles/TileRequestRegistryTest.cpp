#include <corvane/tiles/ITileRequest.h>
#include <corvane/tiles/TileRequestRegistry.h>
#include <tests/tiles/Gate.h>
#include <tests/tiles/PlainTiledLayer.h>
#include <tests/tiles/SharedLog.h>

#include <QThreadPool>
#include <QtTest>

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

using namespace Corvane;
using namespace Corvane::Map;

// The door to the lock. An explicit instantiation may name private members.
template <QReadWriteLock TileRequestRegistry::*member>
struct LockDoor
{
    friend QReadWriteLock& registryLock() { return TileRequestRegistry::instance().*member; }
};
QReadWriteLock& registryLock();
template struct LockDoor<&TileRequestRegistry::lock>;

namespace {

constexpr int poolThreads = 8;
constexpr int patience = 30000; // milliseconds

TileRequestRegistry& registry()
{
    return TileRequestRegistry::instance();
}

/// A layer that writes down its callbacks.
class LoggingLayer : public PlainTiledLayer
{
public:
    LoggingLayer() : PlainTiledLayer(256, 256, 1.0, -1.0) {}

    void tileReady(ITileRequest* request) override { log.add("ready " + request->getKey()); }
    void tileFailed(ITileRequest* request) override { log.add("failed " + request->getKey()); }

    SharedLog log;
};

/// Writes its life into the layer's log; may be held at a gate while it runs.
class LoggingRequest : public ITileRequest
{
public:
    LoggingRequest(LoggingLayer* loggingLayer, const QString& name, Gate* whileRunning = nullptr)
        : ITileRequest(loggingLayer, name, 0, 0, 0, 256, 256, 0.0, 0.0, 1.0, 1.0),
          log(&loggingLayer->log),
          gate(whileRunning)
    {
    }
    ~LoggingRequest() override { log->add("delete " + key); }

    bool processTile() override
    {
        log->add("run " + key);
        if (gate) {
            gate->pass();
        }
        return true;
    }

private:
    SharedLog* log;
    Gate* gate;
};

/// A request that is held while it runs and while it is cancelled.
class SlowToCancel : public LoggingRequest
{
public:
    SlowToCancel(LoggingLayer* loggingLayer, Gate* whileRunning, Gate* whileCancelled)
        : LoggingRequest(loggingLayer, QStringLiteral("slow"), whileRunning),
          cancelGate(whileCancelled),
          loggingLog(&loggingLayer->log)
    {
    }
    ~SlowToCancel() override
    {
        if (!cancelReturned) {
            loggingLog->add("deleted while it was cancelled");
        }
    }

    void cancel() override
    {
        cancelGate->pass();
        ITileRequest::cancel();
        cancelReturned = true;
    }

private:
    Gate* cancelGate;
    SharedLog* loggingLog;
    std::atomic<bool> cancelReturned{false};
};

using RegistryOperation = std::function<void(LoggingLayer&)>;

/// Occupies every thread of the pool until it is opened or destroyed.
class FullPool
{
public:
    explicit FullPool(LoggingLayer* layer)
    {
        for (int i = 0; i < poolThreads; ++i) {
            registry().queue(new LoggingRequest(layer, QStringLiteral("busy %1").arg(i), &gate));
        }
        gate.waitForArrivals(poolThreads);
    }
    ~FullPool() { release(); }
    FullPool(const FullPool&) = delete;
    FullPool& operator=(const FullPool&) = delete;

    void release()
    {
        gate.open();
        waitForRequests();
    }

private:
    Gate gate;
};

} // namespace

Q_DECLARE_METATYPE(RegistryOperation)

class TileRequestRegistryTest : public QObject
{
    Q_OBJECT
private slots:
    void limitsThePoolToEightThreads();
    void runsARequestAndLeavesItToThePool();
    void passesOverANull();
    void aTwinIsNeitherRunNorDeleted();
    void aKeyIsFreeAgainWhenItsRequestHasEnded();
    void aKeyIsFreeAgainWhenItsRequestHasFailed();
    void runsFirstComeFirstServed();
    void waitsItsTurnAmongOtherWork();
    void cancelledBeforeItsTurnCallsNobodyAndFreesItsKey();
    void cancelAllReachesWhatIsQueuedAndWhatIsRunning();
    void aCancelledRequestLeavesTheKeyToItsSuccessor();
    void aRequestStaysAliveUntilItsCancelHasReturned();
    void removeLeavesTheKeyOfAnotherRequest();
    void cancelOutsideCancelsNothing();
    void requestsAreQueuedAndCancelledFromManyThreads();
    void everyOperationWaitsForWhoeverHoldsTheLock_data();
    void everyOperationWaitsForWhoeverHoldsTheLock();
    void aCancelMayUseTheRegistry();
};

void TileRequestRegistryTest::limitsThePoolToEightThreads()
{
    QCOMPARE(QThreadPool::globalInstance()->maxThreadCount(), 8);
}

void TileRequestRegistryTest::runsARequestAndLeavesItToThePool()
{
    LoggingLayer layer;
    registry().queue(new LoggingRequest(&layer, QStringLiteral("a")));
    waitForRequests();
    QCOMPARE(layer.log.all(), QStringList({"run a", "ready a", "delete a"}));
}

void TileRequestRegistryTest::passesOverANull()
{
    registry().queue(nullptr);
    waitForRequests();
}

void TileRequestRegistryTest::aTwinIsNeitherRunNorDeleted()
{
    LoggingLayer layer;
    Gate gate;
    auto twin = std::make_unique<LoggingRequest>(&layer, QStringLiteral("a"));
    registry().queue(new LoggingRequest(&layer, QStringLiteral("a"), &gate));
    gate.waitForArrivals(1);

    registry().queue(twin.get());
    gate.open();
    waitForRequests();

    QCOMPARE(layer.log.all(), QStringList({"run a", "ready a", "delete a"}));
    QCOMPARE(twin->getKey(), QStringLiteral("a"));
}

void TileRequestRegistryTest::aKeyIsFreeAgainWhenItsRequestHasEnded()
{
    LoggingLayer layer;
    registry().queue(new LoggingRequest(&layer, QStringLiteral("a")));
    waitForRequests();
    layer.log.clear();

    registry().queue(new LoggingRequest(&layer, QStringLiteral("a")));
    waitForRequests();

    QCOMPARE(layer.log.all(), QStringList({"run a", "ready a", "delete a"}));
}

void TileRequestRegistryTest::aKeyIsFreeAgainWhenItsRequestHasFailed()
{
    class FailingRequest : public LoggingRequest
    {
    public:
        using LoggingRequest::LoggingRequest;
        bool processTile() override { return !LoggingRequest::processTile(); }
    };
    LoggingLayer layer;
    for (int i = 0; i < 2; ++i) {
        layer.log.clear();
        registry().queue(new FailingRequest(&layer, QStringLiteral("a")));
        waitForRequests();
        QCOMPARE(layer.log.all(), QStringList({"run a", "failed a", "delete a"}));
    }
}

void TileRequestRegistryTest::runsFirstComeFirstServed()
{
    LoggingLayer layer;
    Gate gate;
    QThreadPool* const pool = QThreadPool::globalInstance();
    pool->setMaxThreadCount(1);
    registry().queue(new LoggingRequest(&layer, QStringLiteral("held"), &gate));
    gate.waitForArrivals(1);
    QStringList expected({"run held"});
    for (int i = 0; i < 20; ++i) {
        registry().queue(new LoggingRequest(&layer, QString::number(i)));
        expected.append(QStringLiteral("run %1").arg(i));
    }
    gate.open();
    waitForRequests();
    pool->setMaxThreadCount(poolThreads);

    QCOMPARE(layer.log.all().filter(QStringLiteral("run ")), expected);
}

// A request has the priority of work for which none is given.
void TileRequestRegistryTest::waitsItsTurnAmongOtherWork()
{
    LoggingLayer layer;
    Gate gate;
    QThreadPool* const pool = QThreadPool::globalInstance();
    pool->setMaxThreadCount(1);
    registry().queue(new LoggingRequest(&layer, QStringLiteral("held"), &gate));
    gate.waitForArrivals(1);
    pool->start([&layer] { layer.log.add("run before"); });
    registry().queue(new LoggingRequest(&layer, QStringLiteral("tile")));
    pool->start([&layer] { layer.log.add("run behind"); });
    gate.open();
    waitForRequests();
    pool->setMaxThreadCount(poolThreads);

    QCOMPARE(layer.log.all().filter(QStringLiteral("run ")),
             QStringList({"run held", "run before", "run tile", "run behind"}));
}

void TileRequestRegistryTest::cancelledBeforeItsTurnCallsNobodyAndFreesItsKey()
{
    LoggingLayer busyLayer;
    LoggingLayer layer;
    FullPool pool(&busyLayer);
    registry().queue(new LoggingRequest(&layer, QStringLiteral("a")));

    registry().cancelAll();
    pool.release();

    QCOMPARE(layer.log.all(), QStringList({"delete a"}));
    layer.log.clear();
    registry().queue(new LoggingRequest(&layer, QStringLiteral("a")));
    waitForRequests();
    QCOMPARE(layer.log.all(), QStringList({"run a", "ready a", "delete a"}));
}

void TileRequestRegistryTest::cancelAllReachesWhatIsQueuedAndWhatIsRunning()
{
    LoggingLayer busyLayer;
    LoggingLayer layer;
    FullPool pool(&busyLayer);
    QStringList deleted;
    for (int i = 0; i < 50; ++i) {
        registry().queue(new LoggingRequest(&layer, QStringLiteral("%1").arg(i, 2)));
        deleted.append(QStringLiteral("delete %1").arg(i, 2));
    }

    registry().cancelAll();
    pool.release();

    QCOMPARE(layer.log.sorted(), deleted);
    for (int i = 0; i < poolThreads; ++i) {
        QCOMPARE(busyLayer.log.count(QStringLiteral("run busy %1").arg(i)), 1);
        QCOMPARE(busyLayer.log.count(QStringLiteral("ready busy %1").arg(i)), 0);
        QCOMPARE(busyLayer.log.count(QStringLiteral("failed busy %1").arg(i)), 0);
        QCOMPARE(busyLayer.log.count(QStringLiteral("delete busy %1").arg(i)), 1);
    }
}

void TileRequestRegistryTest::aCancelledRequestLeavesTheKeyToItsSuccessor()
{
    LoggingLayer layer;
    Gate firstGate;
    Gate secondGate;
    registry().queue(new LoggingRequest(&layer, QStringLiteral("a"), &firstGate));
    firstGate.waitForArrivals(1);
    registry().cancelAll();
    registry().queue(new LoggingRequest(&layer, QStringLiteral("a"), &secondGate));
    secondGate.waitForArrivals(1);

    firstGate.open();
    QTRY_COMPARE(layer.log.count(QStringLiteral("delete a")), 1);
    const auto third = std::make_unique<LoggingRequest>(&layer, QStringLiteral("a"));
    registry().queue(third.get()); // the key is the second one's still
    secondGate.open();
    waitForRequests();

    QCOMPARE(layer.log.all(), QStringList({"run a", "run a", "delete a", "ready a", "delete a"}));
}

void TileRequestRegistryTest::aRequestStaysAliveUntilItsCancelHasReturned()
{
    LoggingLayer layer;
    Gate running;
    Gate cancelling;
    registry().queue(new SlowToCancel(&layer, &running, &cancelling));
    running.waitForArrivals(1);
    std::thread canceller([] { registry().cancelAll(); });
    cancelling.waitForArrivals(1);

    running.open(); // the request comes to its end while its cancel has yet to return
    QTRY_COMPARE(layer.log.count(QStringLiteral("ready slow")), 1);
    letOthersRun();
    cancelling.open();
    canceller.join();
    waitForRequests();

    QCOMPARE(layer.log.all(), QStringList({"run slow", "ready slow", "delete slow"}));
}

void TileRequestRegistryTest::removeLeavesTheKeyOfAnotherRequest()
{
    LoggingLayer layer;
    Gate gate;
    registry().queue(new LoggingRequest(&layer, QStringLiteral("a"), &gate));
    gate.waitForArrivals(1);
    const auto twin = std::make_unique<LoggingRequest>(&layer, QStringLiteral("a"));

    registry().remove(QStringLiteral("a"), twin.get());
    registry().queue(twin.get());
    gate.open();
    waitForRequests();

    QCOMPARE(layer.log.all(), QStringList({"run a", "ready a", "delete a"}));
}

void TileRequestRegistryTest::cancelOutsideCancelsNothing()
{
    LoggingLayer busyLayer;
    LoggingLayer layer;
    FullPool pool(&busyLayer);
    registry().queue(new LoggingRequest(&layer, QStringLiteral("l=0;tx=9;ty=9;lyr=plain")));

    registry().cancelOutside(0, 0, 0, 1, 1);
    registry().cancelOutside(3, 4, 4, 2, 2);
    pool.release();

    QCOMPARE(layer.log.count(QStringLiteral("ready l=0;tx=9;ty=9;lyr=plain")), 1);
    for (int i = 0; i < poolThreads; ++i) {
        QCOMPARE(busyLayer.log.count(QStringLiteral("ready busy %1").arg(i)), 1);
    }
}

void TileRequestRegistryTest::requestsAreQueuedAndCancelledFromManyThreads()
{
    constexpr int queueing = 4;
    constexpr int each = 200;
    LoggingLayer layer;
    Gate start;
    std::atomic<bool> done{false};
    std::thread canceller([&] {
        start.pass();
        while (!done) {
            registry().cancelAll();
            std::this_thread::yield();
        }
    });
    std::vector<std::thread> threads;
    for (int t = 0; t < queueing; ++t) {
        threads.emplace_back([&layer, &start, t] {
            start.pass();
            for (int i = 0; i < each; ++i) {
                registry().queue(new LoggingRequest(&layer, QStringLiteral("%1/%2").arg(t).arg(i)));
            }
        });
    }
    start.waitForArrivals(queueing + 1);
    start.open();
    for (std::thread& thread : threads) {
        thread.join();
    }
    done = true;
    canceller.join();
    waitForRequests();

    QCOMPARE(static_cast<int>(layer.log.all().filter(QStringLiteral("delete ")).size()),
             queueing * each);
}

void TileRequestRegistryTest::everyOperationWaitsForWhoeverHoldsTheLock_data()
{
    QTest::addColumn<RegistryOperation>("operate");
    QTest::newRow("queue") << RegistryOperation([](LoggingLayer& layer) {
        registry().queue(new LoggingRequest(&layer, QStringLiteral("a")));
    });
    QTest::newRow("remove") << RegistryOperation(
        [](LoggingLayer&) { registry().remove(QStringLiteral("a"), nullptr); });
    QTest::newRow("cancelAll") << RegistryOperation([](LoggingLayer&) { registry().cancelAll(); });
}

// All of them write: they wait for a reader, too.
void TileRequestRegistryTest::everyOperationWaitsForWhoeverHoldsTheLock()
{
    QFETCH(const RegistryOperation, operate);
    LoggingLayer layer;
    std::atomic<bool> begun{false};
    std::atomic<bool> ended{false};
    registryLock().lockForRead();
    std::thread thread([&] {
        begun = true;
        operate(layer);
        ended = true;
    });
    const bool started = QTest::qWaitFor([&begun] { return begun.load(); }, patience);
    letOthersRun();
    const bool waited = !ended;
    registryLock().unlock();
    thread.join();
    waitForRequests();

    QVERIFY(started && waited);
    QVERIFY(registryLock().tryLockForWrite()); // it was given back
    registryLock().unlock();
}

// The lock is given back before a request is called: it is not recursive.
void TileRequestRegistryTest::aCancelMayUseTheRegistry()
{
    class Successor : public LoggingRequest
    {
    public:
        Successor(LoggingLayer* loggingLayer, Gate* whileRunning)
            : LoggingRequest(loggingLayer, QStringLiteral("first"), whileRunning),
              next(loggingLayer)
        {
        }
        void cancel() override
        {
            LoggingRequest::cancel();
            registry().queue(new LoggingRequest(next, QStringLiteral("second")));
        }

    private:
        LoggingLayer* next;
    };
    LoggingLayer layer;
    Gate gate;
    registry().queue(new Successor(&layer, &gate));
    gate.waitForArrivals(1);

    registry().cancelAll();
    gate.open();
    waitForRequests();

    QCOMPARE(layer.log.sorted(), QStringList({"delete first", "delete second", "ready second",
                                              "run first", "run second"}));
}

QTEST_GUILESS_MAIN(TileRequestRegistryTest)
#include "TileRequestRegistryTest.moc"
