#include <server/WrongGuesses.h>

#include <QByteArray>
#include <QtTest>

using namespace Corvane::Server;

/// How many wrong passwords an address may try, by a clock that is set by hand.
class WrongGuessesTest : public QObject
{
    Q_OBJECT
private slots:
    void aGuessIsForgottenAfterAWhile();
    void theWaitIsThatForTheOldestGuess();
    void theRightOneIsNotCounted();
    void addressesOfOneNetworkGuessTogether_data();
    void addressesOfOneNetworkGuessTogether();
    void soManyAddressesAreKnownAndNoMore();

private:
    using Clock = WrongGuesses::Clock;
    using Verdict = WrongGuesses::Verdict;

    /// Tries one that was not tried before.
    Verdict guess(WrongGuesses& guesses, const QByteArray& address)
    {
        return guesses.judge(address, QByteArray::number(++number), false, &wait);
    }
    Verdict tryRight(WrongGuesses& guesses, const QByteArray& address)
    {
        return guesses.judge(address, "right", true, &wait);
    }
    void useUp(WrongGuesses& guesses, const QByteArray& address)
    {
        for (std::size_t i = 0; i < WrongGuesses::mostFromAddress; ++i) {
            QVERIFY(guess(guesses, address) == Verdict::Wrong);
        }
        QVERIFY(guess(guesses, address) == Verdict::TooMany);
    }

    Clock::time_point time = Clock::time_point(std::chrono::hours(1));
    std::chrono::seconds wait{0};
    int number = 0;
};

void WrongGuessesTest::aGuessIsForgottenAfterAWhile()
{
    WrongGuesses guesses([this] { return time; });
    useUp(guesses, "10.0.0.1");
    QVERIFY(tryRight(guesses, "10.0.0.1") == Verdict::TooMany);
    time += WrongGuesses::memory - std::chrono::seconds(1);
    QVERIFY(tryRight(guesses, "10.0.0.1") == Verdict::TooMany);
    QCOMPARE(wait.count(), 1);
    time += std::chrono::seconds(1);
    QVERIFY(tryRight(guesses, "10.0.0.1") == Verdict::Right);
    useUp(guesses, "10.0.0.1");
}

void WrongGuessesTest::theWaitIsThatForTheOldestGuess()
{
    WrongGuesses guesses([this] { return time; });
    QVERIFY(guess(guesses, "10.0.0.1") == Verdict::Wrong);
    time += std::chrono::minutes(4);
    for (std::size_t i = 1; i < WrongGuesses::mostFromAddress; ++i) {
        QVERIFY(guess(guesses, "10.0.0.1") == Verdict::Wrong);
    }
    QVERIFY(guess(guesses, "10.0.0.1") == Verdict::TooMany);
    QCOMPARE(wait.count(), 60);
    time += std::chrono::minutes(1);
    QVERIFY(guess(guesses, "10.0.0.1") == Verdict::Wrong); // one goes, one comes
    QVERIFY(guess(guesses, "10.0.0.1") == Verdict::TooMany);
    QCOMPARE(wait.count(), 240);
}

void WrongGuessesTest::theRightOneIsNotCounted()
{
    WrongGuesses guesses([this] { return time; });
    for (int i = 0; i < 100; ++i) {
        QVERIFY(tryRight(guesses, "10.0.0.1") == Verdict::Right);
    }
    useUp(guesses, "10.0.0.1");
}

void WrongGuessesTest::addressesOfOneNetworkGuessTogether_data()
{
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<QByteArray>("second");
    QTest::addColumn<bool>("together");
    QTest::newRow("of one network")
        << QByteArray("2001:db8:0:1::1") << QByteArray("2001:db8:0:1:9:8:7:6") << true;
    QTest::newRow("of two networks")
        << QByteArray("2001:db8:0:1::1") << QByteArray("2001:db8:0:2::1") << false;
    QTest::newRow("written in two ways")
        << QByteArray("10.0.0.1") << QByteArray("::ffff:10.0.0.1") << true;
    QTest::newRow("side by side") << QByteArray("10.0.0.1") << QByteArray("10.0.0.2") << false;
    QTest::newRow("without a number") << QByteArray() << QByteArray("10.0.0.2") << false;
}

void WrongGuessesTest::addressesOfOneNetworkGuessTogether()
{
    QFETCH(QByteArray, first);
    QFETCH(QByteArray, second);
    QFETCH(bool, together);
    WrongGuesses guesses([this] { return time; });
    useUp(guesses, first);
    QVERIFY(tryRight(guesses, second) == (together ? Verdict::TooMany : Verdict::Right));
}

void WrongGuessesTest::soManyAddressesAreKnownAndNoMore()
{
    WrongGuesses guesses([this] { return time; });
    useUp(guesses, "10.0.0.1");
    for (std::size_t i = 1; i < WrongGuesses::mostAddresses; ++i) {
        guess(guesses,
              "10.1." + QByteArray::number(int(i) / 256) + '.' + QByteArray::number(int(i) % 256));
    }
    QVERIFY(tryRight(guesses, "10.0.0.1") == Verdict::TooMany);
    QVERIFY(guess(guesses, "10.2.0.0") == Verdict::Wrong);
    QVERIFY(tryRight(guesses, "10.0.0.1") == Verdict::Right); // the first one was forgotten
}

QTEST_GUILESS_MAIN(WrongGuessesTest)
#include "WrongGuessesTest.moc"
