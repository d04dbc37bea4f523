#include <corvane/tiles/TileHash.h>
#include <tests/tiles/Gate.h>

#include <QtTest>

#include <algorithm>
#include <atomic>
#include <memory>
#include <thread>
#include <vector>

using namespace Corvane::Map;

namespace {

QStringList keys(const std::vector<TileHash<int>::Entry>& entries)
{
    QStringList result;
    for (const auto& entry : entries) {
        result.append(entry.first);
    }
    result.sort();
    return result;
}

} // namespace

class TileHashTest : public QObject
{
    Q_OBJECT
private slots:
    void findsWhatWasInserted();
    void keepsTheFirstValueOfAKey();
    void aNullValueHoldsItsKey();
    void removesOnlyTheValueThatItIsGiven();
    void handsOutEverythingAndIsEmpty();
    void aSnapshotLeavesTheHashAsItIs();
    void callsForEachValueOutsideItsMutex();
    void removeWaitsForTheCallForItsValueAlone();
    void staysWholeUnderManyThreads();
};

void TileHashTest::findsWhatWasInserted()
{
    TileHash<int> hash;
    int value = 1;
    QVERIFY(!hash.contains(QStringLiteral("a")));
    QCOMPARE(hash.find(QStringLiteral("a")), nullptr);

    QVERIFY(hash.insertIfAbsent(QStringLiteral("a"), &value));

    QVERIFY(hash.contains(QStringLiteral("a")));
    QCOMPARE(hash.find(QStringLiteral("a")), &value);
}

void TileHashTest::keepsTheFirstValueOfAKey()
{
    TileHash<int> hash;
    int first = 1;
    int second = 2;
    hash.insertIfAbsent(QStringLiteral("a"), &first);

    QVERIFY(!hash.insertIfAbsent(QStringLiteral("a"), &second));

    QCOMPARE(hash.find(QStringLiteral("a")), &first);
}

void TileHashTest::aNullValueHoldsItsKey()
{
    TileHash<int> hash;
    int value = 1;
    QVERIFY(hash.insertIfAbsent(QStringLiteral("a"), nullptr));

    QVERIFY(hash.contains(QStringLiteral("a")));
    QCOMPARE(hash.find(QStringLiteral("a")), nullptr);
    QVERIFY(!hash.insertIfAbsent(QStringLiteral("a"), &value));
}

void TileHashTest::removesOnlyTheValueThatItIsGiven()
{
    TileHash<int> hash;
    int held = 1;
    int other = 2;
    hash.insertIfAbsent(QStringLiteral("a"), &held);

    QVERIFY(!hash.remove(QStringLiteral("a"), &other));
    QVERIFY(!hash.remove(QStringLiteral("b"), &held));
    QVERIFY(hash.contains(QStringLiteral("a")));
    QVERIFY(hash.remove(QStringLiteral("a"), &held));
    QVERIFY(!hash.contains(QStringLiteral("a")));
    QVERIFY(!hash.remove(QStringLiteral("a"), &held));
}

void TileHashTest::handsOutEverythingAndIsEmpty()
{
    TileHash<int> hash;
    int value = 1;
    hash.insertIfAbsent(QStringLiteral("a"), &value);
    hash.insertIfAbsent(QStringLiteral("b"), nullptr);

    QCOMPARE(keys(hash.takeAll()), QStringList({"a", "b"}));
    QVERIFY(!hash.contains(QStringLiteral("a")));
    QVERIFY(hash.takeAll().empty());
}

void TileHashTest::aSnapshotLeavesTheHashAsItIs()
{
    TileHash<int> hash;
    int value = 1;
    hash.insertIfAbsent(QStringLiteral("a"), &value);

    const auto before = hash.snapshot();
    hash.insertIfAbsent(QStringLiteral("b"), &value);

    QCOMPARE(keys(before), QStringList({"a"}));
    QCOMPARE(keys(hash.snapshot()), QStringList({"a", "b"}));
}

void TileHashTest::callsForEachValueOutsideItsMutex()
{
    TileHash<int> hash;
    int first = 1;
    int second = 2;
    hash.insertIfAbsent(QStringLiteral("a"), &first);
    hash.insertIfAbsent(QStringLiteral("b"), &second);

    QList<int> called;
    hash.takeEach([&](int* value) {
        called.append(*value);
        QVERIFY(!hash.contains(QStringLiteral("a"))); // locks the mutex
        hash.insertIfAbsent(QStringLiteral("c"), value);
        hash.takeEach([](int*) {});
    });

    std::sort(called.begin(), called.end());
    QCOMPARE(called, QList<int>({1, 2}));
    QVERIFY(hash.takeAll().empty());
}

void TileHashTest::removeWaitsForTheCallForItsValueAlone()
{
    TileHash<int> hash;
    int called = 1;
    int other = 2;
    hash.insertIfAbsent(QStringLiteral("a"), &called);
    Gate insideCall;
    std::atomic<bool> callReturned{false};
    std::atomic<bool> removedAfterTheCall{false};
    Gate removing;
    std::thread caller([&] {
        hash.takeEach([&](int*) {
            insideCall.pass();
            callReturned = true;
        });
    });
    insideCall.waitForArrivals(1);

    // what is not being called for does not wait
    hash.insertIfAbsent(QStringLiteral("a"), &other);
    QVERIFY(hash.remove(QStringLiteral("a"), &other));

    std::thread remover([&] {
        removing.pass();
        hash.remove(QStringLiteral("a"), &called);
        removedAfterTheCall = callReturned.load();
    });
    removing.waitForArrivals(1);
    removing.open();
    letOthersRun();
    insideCall.open();
    remover.join();
    caller.join();
    QVERIFY(removedAfterTheCall);
}

void TileHashTest::staysWholeUnderManyThreads()
{
    constexpr int threadCount = 8;
    constexpr int keyCount = 2000;
    TileHash<int> hash;
    std::vector<int> values(threadCount, 0);
    std::atomic<int> inserted{0};
    std::atomic<int> removed{0};
    Gate start;
    std::vector<std::thread> threads;
    for (int& value : values) {
        threads.emplace_back([&hash, &inserted, &removed, &start, mine = &value] {
            start.pass();
            for (int i = 0; i < keyCount; ++i) {
                const QString key = QString::number(i);
                inserted += hash.insertIfAbsent(key, mine) ? 1 : 0;
                if (i % 3 == 0) {
                    removed += hash.remove(key, mine) ? 1 : 0;
                }
                if (i % 500 == 0) {
                    hash.snapshot();
                }
            }
        });
    }
    start.waitForArrivals(threadCount);
    start.open();
    for (std::thread& thread : threads) {
        thread.join();
    }

    QCOMPARE(static_cast<int>(hash.takeAll().size()), inserted - removed);
}

QTEST_GUILESS_MAIN(TileHashTest)
#include "TileHashTest.moc"
