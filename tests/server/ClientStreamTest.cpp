#include <server/ClientStream.h>
#include <server/StopEvent.h>

#include <QByteArray>
#include <QtTest>

#include <array>
#include <atomic>
#include <chrono>
#include <poll.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

using namespace Corvane::Server;
using namespace std::chrono_literals;

namespace {

constexpr auto never = 24h;
const Patience endless{never, never, never, never, 1ms};

bool nobodyWaits()
{
    return false;
}

/// Both ends of a connection.
struct Line
{
    Line() { ::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()); }
    ~Line() { hangUp(); }

    int server() const { return ends[0]; } // closed by who takes it
    void say(const QByteArray& text) const
    {
        QCOMPARE(::send(ends[1], text.constData(), std::size_t(text.size()), MSG_NOSIGNAL),
                 ssize_t(text.size()));
    }
    /// Until the server closes.
    QByteArray hear() const
    {
        QByteArray all;
        std::array<char, 4096> chunk{};
        for (ssize_t got = 1; got > 0;) {
            got = ::recv(ends[1], chunk.data(), chunk.size(), 0);
            all.append(chunk.data(), int(std::max<ssize_t>(got, 0)));
        }
        return all;
    }
    void hangUp()
    {
        if (ends[1] >= 0) {
            ::close(std::exchange(ends[1], -1));
        }
    }

    std::array<int, 2> ends{};
};

/// All that can be read of a request.
QByteArray readAll(ClientStream& stream, int most = 1 << 20)
{
    QByteArray all;
    char byte = 0;
    while (all.size() < most && stream.read(&byte, 1) == 1) {
        all.append(byte);
    }
    return all;
}

} // namespace

/// However a client behaves, its connection takes so many bytes, so much time and no more.
class ClientStreamTest : public QObject
{
    Q_OBJECT
private slots:
    void aRequestIsReadHeadFirst();
    void requestsThatFollowEachOtherAreToldApart();
    void partsThatAreAskedForAreLeftOut();
    void aHeadThatIsTooLongIsTold_data();
    void aHeadThatIsTooLongIsTold();
    void aBodyEndsWhereTheServerWantsNoMore();
    void whoSaysNothingIsGivenUp();
    void whoDribblesIsGivenUp();
    void whoDribblesABodyIsGivenUp();
    void whoTakesNothingIsGivenUp();
    void whoHasBeenServedMakesRoom();
    void stoppingEndsTheWaitForARequest();
    void stoppingEndsTheWaitForARequestsEnd();
    void stoppingEndsAnAnswerThatNobodyTakes();
    void anAnswerThatIsTakenArrivesAfterTheStop();
    void whatWasSentArrivesThoughTheClientIsNotReadToItsEnd();
};

void ClientStreamTest::aRequestIsReadHeadFirst()
{
    Line line;
    StopEvent stop;
    ClientStream stream(line.server(), stop, nobodyWaits, endless);
    line.say("POST / HTTP/1.1\r\nContent-Length: 4\r\n\r\nbody");
    QCOMPARE(stream.takeHead(), ClientStream::Head::Whole);
    QVERIFY(stream.announcesBody());
    QCOMPARE(readAll(stream, 38), QByteArray("POST / HTTP/1.1\r\nContent-Length: 4\r\n\r\n"));
    QVERIFY(stream.isHeadRead());
    QCOMPARE(readAll(stream, 4), QByteArray("body"));
}

void ClientStreamTest::requestsThatFollowEachOtherAreToldApart()
{
    Line line;
    StopEvent stop;
    ClientStream stream(line.server(), stop, nobodyWaits, endless);
    line.say("GET /1 HTTP/1.1\r\n\r\nGET /2 HTTP/1.1\r\n\r\n");
    QCOMPARE(stream.takeHead(), ClientStream::Head::Whole);
    QVERIFY(!stream.announcesBody());
    QCOMPARE(readAll(stream, 10), QByteArray("GET /1 HTT"));
    QVERIFY(!stream.isHeadRead());
    QCOMPARE(readAll(stream, 9), QByteArray("P/1.1\r\n\r\n"));
    QVERIFY(stream.isHeadRead());
    QCOMPARE(stream.takeHead(), ClientStream::Head::Whole);
    QCOMPARE(readAll(stream, 19), QByteArray("GET /2 HTTP/1.1\r\n\r\n"));
    line.hangUp();
    QCOMPARE(stream.takeHead(), ClientStream::Head::None);
}

void ClientStreamTest::partsThatAreAskedForAreLeftOut()
{
    Line line;
    StopEvent stop;
    ClientStream stream(line.server(), stop, nobodyWaits, endless);
    line.say("GET / HTTP/1.1\r\nA: b\r\nrange: bytes=0-,0-\r\nRange: bytes=1-\r\nC: d\r\n\r\n");
    QCOMPARE(stream.takeHead(), ClientStream::Head::Whole);
    QCOMPARE(readAll(stream, 30), QByteArray("GET / HTTP/1.1\r\nA: b\r\nC: d\r\n\r\n"));
    QVERIFY(stream.isHeadRead());
}

void ClientStreamTest::aHeadThatIsTooLongIsTold_data()
{
    QTest::addColumn<QByteArray>("head");
    QTest::addColumn<int>("told");
    QTest::newRow("its first line")
        << "GET /" + QByteArray(16 << 10, 'a') << int(ClientStream::Head::TargetTooLong);
    QTest::newRow("one of the others")
        << "GET / HTTP/1.1\r\nA: " + QByteArray(16 << 10, 'a') << int(ClientStream::Head::TooLong);
    QTest::newRow("all of them") << "GET / HTTP/1.1\r\n" + QByteArray("A: b\r\n").repeated(3000)
                                 << int(ClientStream::Head::TooLong);
}

void ClientStreamTest::aHeadThatIsTooLongIsTold()
{
    QFETCH(QByteArray, head);
    QFETCH(int, told);
    Line line;
    StopEvent stop;
    ClientStream stream(line.server(), stop, nobodyWaits, endless);
    line.say(head);
    QCOMPARE(int(stream.takeHead()), told);
}

void ClientStreamTest::aBodyEndsWhereTheServerWantsNoMore()
{
    Line line;
    StopEvent stop;
    ClientStream stream(line.server(), stop, nobodyWaits, endless);
    line.say("POST / HTTP/1.1\r\n\r\n");
    QCOMPARE(stream.takeHead(), ClientStream::Head::Whole);
    QCOMPARE(readAll(stream, 19).size(), 19);
    line.say(QByteArray(100 << 10, 'x'));
    QCOMPARE(readAll(stream).size(), 64 << 10);
}

void ClientStreamTest::whoSaysNothingIsGivenUp()
{
    Line line;
    StopEvent stop;
    Patience patience = endless;
    patience.between = 10ms;
    ClientStream stream(line.server(), stop, nobodyWaits, patience);
    QCOMPARE(stream.takeHead(), ClientStream::Head::None);
}

namespace {

/// A byte now and then, until the server has had enough.
std::thread dribbler(const Line& line, const std::atomic<bool>& isOver)
{
    return std::thread([&line, &isOver] {
        pollfd end{line.ends[1], 0, 0};
        while (!isOver && ::send(line.ends[1], "x", 1, MSG_NOSIGNAL) == 1) {
            ::poll(&end, 1, 1);
        }
    });
}

} // namespace

void ClientStreamTest::whoDribblesIsGivenUp()
{
    Line line;
    StopEvent stop;
    Patience patience = endless;
    patience.request = 50ms;
    ClientStream stream(line.server(), stop, nobodyWaits, patience);
    line.say("GET / HTTP/1.1\r\nA: ");
    std::atomic<bool> isOver{false};
    std::thread client = dribbler(line, isOver);
    const ClientStream::Head head = stream.takeHead();
    isOver = true;
    client.join();
    QCOMPARE(head, ClientStream::Head::None);
}

void ClientStreamTest::whoDribblesABodyIsGivenUp()
{
    Line line;
    StopEvent stop;
    Patience patience = endless;
    patience.request = 200ms;
    ClientStream stream(line.server(), stop, nobodyWaits, patience);
    line.say("POST / HTTP/1.1\r\nContent-Length: 60000\r\n\r\n");
    QCOMPARE(stream.takeHead(), ClientStream::Head::Whole);
    std::atomic<bool> isOver{false};
    std::thread client = dribbler(line, isOver);
    const QByteArray all = readAll(stream);
    isOver = true;
    client.join();
    QVERIFY2(all.size() < 60000, qPrintable(QString::number(all.size())));
}

void ClientStreamTest::whoTakesNothingIsGivenUp()
{
    Line line;
    StopEvent stop;
    Patience patience = endless;
    patience.answer = 20ms;
    ClientStream stream(line.server(), stop, nobodyWaits, patience);
    const QByteArray much(4 << 20, 'x');
    ssize_t sent = 1;
    for (int left = 64; left > 0 && sent > 0; --left) {
        sent = stream.write(much.constData(), std::size_t(much.size()));
    }
    QCOMPARE(sent, ssize_t(-1));
}

void ClientStreamTest::whoHasBeenServedMakesRoom()
{
    Line line;
    StopEvent stop;
    ClientStream stream(
        line.server(), stop, [] { return true; }, endless);
    line.say("GET / HTTP/1.1\r\n\r\n");
    QCOMPARE(stream.takeHead(), ClientStream::Head::Whole);
    readAll(stream, 18);
    QCOMPARE(stream.takeHead(), ClientStream::Head::None);
}

void ClientStreamTest::stoppingEndsTheWaitForARequest()
{
    Line line;
    StopEvent stop;
    ClientStream stream(line.server(), stop, nobodyWaits, endless);
    std::thread stopper([&stop] { stop.raise(); });
    const ClientStream::Head head = stream.takeHead();
    stopper.join();
    QCOMPARE(head, ClientStream::Head::None);
}

void ClientStreamTest::stoppingEndsTheWaitForARequestsEnd()
{
    Line line;
    StopEvent stop;
    ClientStream stream(line.server(), stop, nobodyWaits, endless);
    line.say("GET / HTTP/1.1\r\n");
    std::thread stopper([&stop] { stop.raise(); });
    const ClientStream::Head head = stream.takeHead();
    stopper.join();
    QCOMPARE(head, ClientStream::Head::None);
}

void ClientStreamTest::stoppingEndsAnAnswerThatNobodyTakes()
{
    Line line;
    StopEvent stop;
    ClientStream stream(line.server(), stop, nobodyWaits, endless);
    std::thread stopper([&stop] { stop.raise(); });
    const QByteArray much(4 << 20, 'x');
    ssize_t sent = 1;
    while (sent > 0) {
        sent = stream.write(much.constData(), std::size_t(much.size()));
    }
    stopper.join();
    QCOMPARE(sent, ssize_t(-1));
}

void ClientStreamTest::anAnswerThatIsTakenArrivesAfterTheStop()
{
    Line line;
    StopEvent stop;
    Patience patience = endless;
    patience.farewell = 1h;
    QByteArray heard;
    std::thread client;
    {
        ClientStream stream(line.server(), stop, nobodyWaits, patience);
        stop.raise();
        client = std::thread([&] { heard = line.hear(); });
        const QByteArray much(1 << 20, 'x');
        for (std::size_t done = 0; done < std::size_t(much.size());) {
            const ssize_t sent =
                stream.write(much.constData() + done, std::size_t(much.size()) - done);
            QVERIFY(sent > 0);
            done += std::size_t(sent);
        }
    }
    client.join();
    QCOMPARE(heard.size(), 1 << 20);
}

void ClientStreamTest::whatWasSentArrivesThoughTheClientIsNotReadToItsEnd()
{
    Line line;
    StopEvent stop;
    Patience patience = endless;
    patience.farewell = 1h;
    line.say(QByteArray(20 << 10, 'a'));
    ::shutdown(line.ends[1], SHUT_WR);
    {
        ClientStream stream(line.server(), stop, nobodyWaits, patience);
        QCOMPARE(stream.takeHead(), ClientStream::Head::TargetTooLong);
        QCOMPARE(stream.write("sorry", 5), ssize_t(5));
    }
    QCOMPARE(line.hear(), QByteArray("sorry"));
}

QTEST_GUILESS_MAIN(ClientStreamTest)
#include "ClientStreamTest.moc"
