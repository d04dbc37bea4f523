#include <tests/plugins/TestRasters.h>
#include <tests/server/ServerProcess.h>

#include <server/BasicAuth.h>
#include <server/PictureStore.h>
#include <server/RenderTurns.h>

#include <QFile>
#include <QRegularExpression>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QtTest>

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

using namespace Corvane::Tests;
using namespace Corvane::Server;

namespace {

/// A number of /proc/PID/status.
int statusOf(qint64 process, const char* key)
{
    QFile file(QString("/proc/%1/status").arg(process));
    if (!file.open(QIODevice::ReadOnly)) {
        return -1;
    }
    const QRegularExpression line(QString("%1:\\s+([0-9]+)").arg(key));
    return line.match(QString::fromLatin1(file.readAll())).captured(1).toInt();
}

/// The time that the process has worked, in hundredths of a second or so.
int ticksOf(qint64 process)
{
    constexpr int userTime = 11; // behind the name, which is in brackets
    QFile file(QString("/proc/%1/stat").arg(process));
    return file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.readAll())
                                                .section(") ", 1)
                                                .section(' ', userTime, userTime)
                                                .toInt()
                                          : -1;
}

/// Lets threads wait for each other.
class Gate
{
public:
    void open()
    {
        const std::lock_guard<std::mutex> guard(mutex);
        isOpen = true;
        changed.notify_all();
    }
    void pass()
    {
        std::unique_lock<std::mutex> guard(mutex);
        changed.wait(guard, [this] { return isOpen; });
    }

private:
    std::mutex mutex; // guards isOpen
    std::condition_variable changed;
    bool isOpen = false;
};

constexpr int generous = 60000; // milliseconds, for what has to come at some time
constexpr std::chrono::milliseconds soon(20);
constexpr std::chrono::minutes never(5);

} // namespace

/// However many ask for however much, the server keeps to its threads and its memory.
class ServerLimitsTest : public QObject
{
    Q_OBJECT
private slots:
    void threadsAndMemoryStayBounded();
    void clientsThatSayNothingDoNotShutOthersOut();
    void aBodyThatIsTooLongIsRefused();
    void bodiesThatAreNotWhatTheyLookLikeAreRefused_data();
    void bodiesThatAreNotWhatTheyLookLikeAreRefused();
    void aHeadThatDoesNotEndIsRefused();
    void aConnectionServesManyRequests();
    void blocksBeyondAllMeasureAreLeftOut();
    void blocksBeyondAllMeasureAreNotReachedThroughOtherFormats();
    void imagesThatAreDecodedAsAWholeAreBounded();
    void pixelsBeyondAllMeasureAreShown_data();
    void pixelsBeyondAllMeasureAreShown();
    void aStopDoesNotWaitForAPictureWithoutAnEnd();
    void tilesThatTakeAllMemoryToDecodeAreLeftOut_data();
    void tilesThatTakeAllMemoryToDecodeAreLeftOut();
    void noMorePicturesAreMadeAtOnceThanTurns();
    void aTurnThatTakesTooLongIsOver();
    void aTurnThatDoesNotComeInTimeIsNotTaken();
    void aTurnThatDoesNotEndGivesItsPlaceToOthers();
    void stoppingEndsAllTurns();
    void theStoreKeepsWhatWasUsedLast();
    void theStoreMakesAPictureOnceAtATime();
    void whoWaitsForAPictureThatFailsDoesNotTryAgain();
    void nobodyWaitsForAPictureWithoutAnEnd();
    void aPictureLargerThanTheStoreIsNotKept();
};

void ServerLimitsTest::threadsAndMemoryStayBounded()
{
    QTemporaryDir folder;
    RasterRecipe recipe;
    recipe.size = QSize(2048, 2048);
    recipe.options = QStringList{"TILED=YES", "BLOCKXSIZE=512", "BLOCKYSIZE=512"};
    recipe.value = [](int band, int x, int y) { return (x * 7 + y * 13 + x * y * band) % 256; };
    for (int i = 0; i < 6; ++i) {
        QVERIFY(makeRaster(folder.filePath(QString("%1.tif").arg(i)), recipe));
    }
    ServerProcess server(folder.path(), {"--connections", "8", "--threads", "2"});
    QVERIFY(server.isRunning());
    std::atomic<int> good{0};
    std::atomic<int> mostThreads{0};
    std::vector<std::thread> clients;
    for (int client = 0; client < 24; ++client) {
        clients.emplace_back([&, client] {
            for (int i = 0; i < 16; ++i) {
                const QString tile = QString("/tiles/%1.tif/2/%2/%3.png")
                                         .arg((client + i) % 6)
                                         .arg(i % 4)
                                         .arg((i / 4 + client) % 4);
                good += server.ask(tile.toLatin1()).status == 200;
                const int threads = statusOf(server.processId(), "Threads");
                int most = mostThreads;
                while (threads > most && !mostThreads.compare_exchange_weak(most, threads)) {
                }
            }
        });
    }
    for (std::thread& client : clients) {
        client.join();
    }
    QCOMPARE(good.load(), 24 * 16);
    // eight connections, and the main thread, the signals, the watch over turns and a few of libraries
    QVERIFY2(mostThreads > 8 && mostThreads <= 8 + 6, qPrintable(QString::number(mostThreads)));
    const int peak = statusOf(server.processId(), "VmHWM") / 1024;
    QVERIFY2(peak > 0 && peak < CORVANE_PEAK_MEGABYTES, qPrintable(QString::number(peak)));
    QCOMPARE(server.stop(), 0);
}

void ServerLimitsTest::clientsThatSayNothingDoNotShutOthersOut()
{
    QTemporaryDir folder;
    ServerProcess server(folder.path(), {"--connections", "2"});
    std::vector<std::unique_ptr<QTcpSocket>> silent;
    for (int i = 0; i < 6; ++i) {
        silent.push_back(std::make_unique<QTcpSocket>());
        silent.back()->connectToHost("127.0.0.1", quint16(server.port()));
        QVERIFY(silent.back()->waitForConnected());
    }
    QCOMPARE(server.ask("/tiles/none").status, 404); // once the silent ones have been given up
}

void ServerLimitsTest::aBodyThatIsTooLongIsRefused()
{
    QTemporaryDir folder;
    ServerProcess server(folder.path());
    const QByteArray path("/tavro-orivex/catalog/content/search.json");
    QCOMPARE(server.ask(path, {}, "POST", QByteArray(60000, ' ') + "{}").status, 200);
    QTcpSocket socket;
    socket.connectToHost("127.0.0.1", quint16(server.port()));
    QVERIFY(socket.waitForConnected());
    socket.write("POST " + path +
                 " HTTP/1.1\r\nHost: 127.0.0.1\r\nContent-Length: 4000000000\r\n\r\n");
    QVERIFY(socket.waitForReadyRead(60000));
    QVERIFY(socket.readAll().startsWith("HTTP/1.1 413 "));
    QCOMPARE(server.ask(QByteArray("/") + QByteArray(20000, 'a')).status, 414);
    QCOMPARE(server.ask("/tiles/none").status, 404);
}

void ServerLimitsTest::bodiesThatAreNotWhatTheyLookLikeAreRefused_data()
{
    QTest::addColumn<QByteArray>("header");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("status");
    QTest::newRow("packed") << QByteArray("Content-Length: 2\r\nContent-Encoding: gzip")
                            << QByteArray("{}") << 415;
    QTest::newRow("in pieces") << QByteArray("Transfer-Encoding: chunked")
                               << QByteArray("2\r\n{}\r\n0\r\n\r\n") << 411;
    QTest::newRow("in pieces, of a length too")
        << QByteArray("Content-Length: 2\r\nTransfer-Encoding: chunked")
        << QByteArray("2\r\n{}\r\n0\r\n\r\n") << 411;
    QTest::newRow("of no length") << QByteArray("X-None: x") << QByteArray("{}") << 411;
    QTest::newRow("of two lengths")
        << QByteArray("Content-Length: 2\r\nContent-Length: 3") << QByteArray("{}") << 400;
    QTest::newRow("of a length below none")
        << QByteArray("Content-Length: -2") << QByteArray("{}") << 400;
    QTest::newRow("of a length in letters")
        << QByteArray("Content-Length: two") << QByteArray("{}") << 400;
    QTest::newRow("as they should be")
        << QByteArray("Content-Length: 2") << QByteArray("{}") << 200;
}

void ServerLimitsTest::bodiesThatAreNotWhatTheyLookLikeAreRefused()
{
    QFETCH(QByteArray, header);
    QFETCH(QByteArray, body);
    QFETCH(int, status);
    QTemporaryDir folder;
    ServerProcess server(folder.path());
    QTcpSocket socket;
    socket.connectToHost("127.0.0.1", quint16(server.port()));
    QVERIFY(socket.waitForConnected());
    socket.write("POST /tavro-orivex/catalog/content/search.json HTTP/1.1\r\nHost: 127.0.0.1\r\n" +
                 header + "\r\n\r\n" + body +
                 "GET /tiles/none HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n");
    QByteArray answers;
    while (socket.waitForReadyRead(60000)) {
        answers += socket.readAll();
    }
    QVERIFY2(answers.startsWith("HTTP/1.1 " + QByteArray::number(status) + ' '), answers);
    QCOMPARE(answers.count("HTTP/1.1 "), 1); // what follows a body is not taken for a request
}

void ServerLimitsTest::aHeadThatDoesNotEndIsRefused()
{
    QTemporaryDir folder;
    ServerProcess server(folder.path());
    QTcpSocket socket;
    socket.connectToHost("127.0.0.1", quint16(server.port()));
    QVERIFY(socket.waitForConnected());
    socket.write("GET / HTTP/1.1\r\n");
    socket.write(QByteArray("X-Other: " + QByteArray(1000, 'x') + "\r\n").repeated(17));
    QByteArray answer;
    while (socket.waitForReadyRead(60000)) {
        answer += socket.readAll();
    }
    QVERIFY2(answer.startsWith("HTTP/1.1 431 "), answer);
    QCOMPARE(server.ask("/tiles/none").status, 404);
}

void ServerLimitsTest::aConnectionServesManyRequests()
{
    QTemporaryDir folder;
    ServerProcess server(folder.path());
    QTcpSocket socket;
    socket.connectToHost("127.0.0.1", quint16(server.port()));
    QVERIFY(socket.waitForConnected());
    QByteArray answers;
    for (int i = 0; i < 50; ++i) {
        socket.write("GET /tiles/none HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n");
        const int expected = i + 1;
        while (answers.count("there is no image") < expected && socket.waitForReadyRead(60000)) {
            answers += socket.readAll();
        }
    }
    QCOMPARE(answers.count("HTTP/1.1 404 "), 50);
}

void ServerLimitsTest::blocksBeyondAllMeasureAreLeftOut()
{
    QTemporaryDir folder;
    GDALAllRegister();
    const char* const options[] = {"BLOCKYSIZE=3500", "SPARSE_OK=TRUE", "COMPRESS=LZW", nullptr};
    QVERIFY(
        Dataset(GDALCreate(GDALGetDriverByName("GTiff"), qPrintable(folder.filePath("strip.tif")),
                           80000, 7000, 1, GDT_Byte, const_cast<char**>(options))));
    ServerProcess server(folder.path());
    QCOMPARE(server.ask("/tiles/strip.tif").status, 404);
    QVERIFY(server.log().contains("left out /strip.tif: its blocks have 267 MB"));
}

void ServerLimitsTest::blocksBeyondAllMeasureAreNotReachedThroughOtherFormats()
{
    QTemporaryDir folder;
    GDALAllRegister();
    const char* const options[] = {"BLOCKYSIZE=3500", "SPARSE_OK=TRUE", "COMPRESS=LZW", nullptr};
    QVERIFY(
        Dataset(GDALCreate(GDALGetDriverByName("GTiff"), qPrintable(folder.filePath("strip.tif")),
                           80000, 7000, 1, GDT_Byte, const_cast<char**>(options))));
    QFile file(folder.filePath("a.vrt"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(
        R"(<VRTDataset rasterXSize="64" rasterYSize="64"><VRTRasterBand dataType="Byte" band="1">)"
        R"(<SimpleSource><SourceFilename relativeToVRT="1">strip.tif</SourceFilename>)"
        R"(<SourceProperties RasterXSize="80000" RasterYSize="7000" DataType="Byte"/>)"
        R"(<SourceBand>1</SourceBand></SimpleSource></VRTRasterBand></VRTDataset>)");
    file.close();
    ServerProcess server(folder.path());
    QCOMPARE(server.ask("/tiles/a.vrt/0/0/0.png").status, 500);
    QVERIFY(server.log().contains("cannot read /a.vrt: its blocks have 267 MB"));
}

void ServerLimitsTest::imagesThatAreDecodedAsAWholeAreBounded()
{
    QTemporaryDir folder;
    GDALAllRegister();
    const Dataset plain(
        GDALCreate(GDALGetDriverByName("MEM"), "", 8300, 8300, 4, GDT_Byte, nullptr));
    const char* const options[] = {"LOSSLESS=YES", nullptr};
    QVERIFY(
        Dataset(GDALCreateCopy(GDALGetDriverByName("WEBP"), qPrintable(folder.filePath("a.webp")),
                               plain.get(), FALSE, const_cast<char**>(options), nullptr, nullptr)));
    ServerProcess server(folder.path());
    QCOMPARE(server.ask("/tiles/a.webp").status, 404);
    QVERIFY2(server.log().contains("left out /a.webp: its blocks have 262 MB"),
             qPrintable(server.log()));
}

void ServerLimitsTest::pixelsBeyondAllMeasureAreShown_data()
{
    const QByteArray source =
        R"(<SimpleSource><SourceFilename relativeToVRT="1">a.tif</SourceFilename>)"
        R"(<SourceBand>1</SourceBand><SrcRect xOff="0" yOff="0" xSize="64" ySize="64"/>)"
        R"(<DstRect xOff="0" yOff="0" xSize="2000000000" ySize="2000000000"/></SimpleSource>)";
    const QByteArray band = R"(<VRTRasterBand dataType="Byte" band="1">)" + source;
    const QByteArray end("</VRTRasterBand>");
    QTest::addColumn<QByteArray>("bands");
    QTest::newRow("plain") << band + end;
    QTest::newRow("with a value for no data")
        << R"(<VRTRasterBand dataType="Byte" band="1"><NoDataValue>7</NoDataValue>)" + source + end;
    QTest::newRow("with a mask") << band + end + R"(<MaskBand><VRTRasterBand dataType="Byte">)" +
                                        source + end + "</MaskBand>";
    QTest::newRow("of deep values")
        << R"(<VRTRasterBand dataType="UInt16" band="1">)" + source + end;
}

// 2,000,000,000 each way and no overviews: a pixel of the coarsest level stands for 16,777,216 each way,
// one of the last level here for 1,024. Below, pixels are the mean of all that they stand for.
void ServerLimitsTest::pixelsBeyondAllMeasureAreShown()
{
    QFETCH(QByteArray, bands);
    QTemporaryDir folder;
    RasterRecipe recipe;
    recipe.size = QSize(64, 64);
    recipe.bands = 1;
    recipe.options.clear();
    recipe.value = [](int, int, int) { return 100; };
    QVERIFY(makeRaster(folder.filePath("a.tif"), recipe));
    QFile file(folder.filePath("a.vrt"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(R"(<VRTDataset rasterXSize="2000000000" rasterYSize="2000000000">)" + bands +
               "</VRTDataset>");
    file.close();
    ServerProcess server(folder.path());
    for (int level = 0; level <= 14; ++level) {
        const ServerAnswer answer =
            server.ask("/tiles/a.vrt/" + QByteArray::number(level) + "/0/0.png");
        QVERIFY2(answer.status == 200, qPrintable(QString("level %1: %2 %3, %4")
                                                      .arg(level)
                                                      .arg(answer.status)
                                                      .arg(QString(answer.body), server.log())));
    }
    const int peak = statusOf(server.processId(), "VmHWM") / 1024;
    QVERIFY2(peak > 0 && peak < CORVANE_PEAK_MEGABYTES, qPrintable(QString::number(peak)));
}

// Virtual rasters of which each shows the next one eight times: 68,719,476,736 reads in all.
void ServerLimitsTest::aStopDoesNotWaitForAPictureWithoutAnEnd()
{
    QTemporaryDir folder;
    RasterRecipe recipe;
    recipe.size = QSize(64, 64);
    recipe.bands = 1;
    recipe.options.clear();
    QVERIFY(makeRaster(folder.filePath("0.tif"), recipe));
    constexpr int depth = 12;
    for (int i = 1; i <= depth; ++i) {
        const QByteArray name = QByteArray::number(i - 1) + (i == 1 ? ".tif" : ".vrt");
        const QByteArray source = "<SimpleSource><SourceFilename relativeToVRT=\"1\">" + name +
                                  "</SourceFilename><SourceBand>1</SourceBand></SimpleSource>";
        QFile file(folder.filePath(QString::number(i) + ".vrt"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("<VRTDataset rasterXSize=\"64\" rasterYSize=\"64\"><VRTRasterBand "
                   "dataType=\"Byte\" band=\"1\">" +
                   source.repeated(8) + "</VRTRasterBand></VRTDataset>");
    }
    ServerProcess server(folder.path());
    QTcpSocket client;
    client.connectToHost("127.0.0.1", quint16(server.port()));
    QVERIFY(client.waitForConnected());
    const int before = ticksOf(server.processId());
    client.write("GET /tiles/12.vrt/0/0/0.png HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n");
    QVERIFY(client.waitForBytesWritten());
    QTRY_VERIFY_WITH_TIMEOUT(ticksOf(server.processId()) > before + 50, generous); // it is at work
    QCOMPARE(server.stop(), 0);
}

void ServerLimitsTest::tilesThatTakeAllMemoryToDecodeAreLeftOut_data()
{
    QTest::addColumn<int>("side");
    QTest::addColumn<int>("tileSide");
    QTest::addColumn<int>("blockExponent"); // of two, less two
    QTest::addColumn<bool>("ownStyle");
    QTest::addColumn<QString>("reason");
    QTest::newRow("one tile for all")
        << 60000 << 60000 << 4 << false << "decoding one of its tiles takes 468 MB";
    QTest::newRow("one tile of the smallest parts")
        << 20000 << 20000 << 0 << false << "decoding one of its tiles takes ";
    QTest::newRow("one tile that says so late")
        << 20000 << 20000 << 4 << true << "decoding one of its tiles takes ";
    QTest::newRow("more tiles than anybody has")
        << 6000000 << 25000 << 4 << false << "decoding one of its tiles takes ";
    QTest::newRow("a large tile") << 20000 << 20000 << 4 << false << QString();
    QTest::newRow("many tiles") << 20000 << 1024 << 4 << false << QString();
}

// A few bytes that stand for as many pixels as they like.
void ServerLimitsTest::tilesThatTakeAllMemoryToDecodeAreLeftOut()
{
    QFETCH(int, side);
    QFETCH(int, tileSide);
    QFETCH(int, blockExponent);
    QFETCH(bool, ownStyle);
    QFETCH(QString, reason);
    QTemporaryDir folder;
    RasterRecipe recipe;
    recipe.size = QSize(256, 256);
    recipe.bands = 1;
    recipe.options.clear();
    QTemporaryDir aside;
    QVERIFY(makeRaster(aside.filePath("a.tif"), recipe));
    const Dataset plain(GDALOpen(qPrintable(aside.filePath("a.tif")), GA_ReadOnly));
    QVERIFY(Dataset(GDALCreateCopy(GDALGetDriverByName("JP2OpenJPEG"),
                                   qPrintable(folder.filePath("a.jp2")), plain.get(), FALSE,
                                   nullptr, nullptr, nullptr)));
    QFile file(folder.filePath("a.jp2"));
    QVERIFY(file.open(QIODevice::ReadWrite));
    QByteArray bytes = file.readAll();
    const auto put = [&bytes](int place, int number) {
        for (int i = 0; i < 4; ++i) {
            bytes[place + i] = char(number >> (24 - 8 * i));
        }
    };
    const int size = bytes.indexOf("\xff\x51");
    const int style = bytes.indexOf("\xff\x52");
    const int tile = bytes.indexOf(QByteArray("\xff\x90\x00\x0a", 4));
    const int header = bytes.indexOf("ihdr");
    QVERIFY(size > 0 && style > 0 && tile > 0 && header > 0);
    put(size + 6, side);
    put(size + 10, side);
    put(size + 22, tileSide);
    put(size + 26, tileSide);
    put(header + 4, side);
    put(header + 8, side);
    bytes[style + 10] = char(blockExponent);
    bytes[style + 11] = char(blockExponent);
    if (ownStyle) {
        bytes.insert(tile + 12, bytes.mid(style, 14));
        put(tile + 6, 0); // up to the end of the file
    }
    file.seek(0);
    file.write(bytes);
    file.close();
    ServerProcess server(folder.path());
    QCOMPARE(server.ask("/tiles/a.jp2").status, reason.isEmpty() ? 200 : 404);
    const QString log = server.log();
    QVERIFY2(reason.isEmpty() ? log.isEmpty() : log.contains("left out /a.jp2: " + reason),
             qPrintable(log));
    QVERIFY(statusOf(server.processId(), "VmHWM") / 1024 < CORVANE_PEAK_MEGABYTES);
}

void ServerLimitsTest::noMorePicturesAreMadeAtOnceThanTurns()
{
    RenderTurns turns(3, never, never);
    std::atomic<int> atWork{0};
    std::atomic<int> most{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 12; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 200; ++round) {
                const RenderTurns::Turn turn(turns, "a");
                const int now = ++atWork;
                int known = most;
                while (now > known && !most.compare_exchange_weak(known, now)) {
                }
                std::this_thread::yield();
                --atWork;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    QVERIFY(most > 0 && most <= 3);
}

void ServerLimitsTest::aTurnThatTakesTooLongIsOver()
{
    RenderTurns turns(2, soon, never);
    const RenderTurns::Turn turn(turns, "a");
    QVERIFY(turn.isTaken());
    QTRY_VERIFY(turn.isOver());
}

void ServerLimitsTest::aTurnThatDoesNotComeInTimeIsNotTaken()
{
    RenderTurns turns(1, soon, never);
    const RenderTurns::Turn first(turns, "a");
    const RenderTurns::Turn second(turns, "b");
    QVERIFY(first.isTaken());
    QVERIFY(!second.isTaken());
    QVERIFY(second.isOver());
}

// GDAL cannot always be stopped.
void ServerLimitsTest::aTurnThatDoesNotEndGivesItsPlaceToOthers()
{
    RenderTurns turns(1, soon, soon);
    auto first = std::make_unique<RenderTurns::Turn>(turns, "a");
    QVERIFY(first->isTaken());
    QTRY_COMPARE_WITH_TIMEOUT(turns.lostCount(), 1, generous);
    QVERIFY(!RenderTurns::Turn(turns, "a").isTaken()); // the same would happen again
    QVERIFY(RenderTurns::Turn(turns, "b").isTaken());
    first.reset();
    QCOMPARE(turns.lostCount(), 0);
    QVERIFY(RenderTurns::Turn(turns, "a").isTaken());
}

void ServerLimitsTest::stoppingEndsAllTurns()
{
    RenderTurns turns(1, never, never);
    auto first = std::make_unique<RenderTurns::Turn>(turns, "a");
    QVERIFY(!first->isOver());
    std::atomic<bool> taken{true};
    std::thread waiting([&] { taken = RenderTurns::Turn(turns, "b").isTaken(); });
    turns.stop();
    waiting.join();
    QVERIFY(!taken);
    QVERIFY(first->isOver());
    QVERIFY(!RenderTurns::Turn(turns, "b").isTaken());
}

void ServerLimitsTest::theStoreKeepsWhatWasUsedLast()
{
    PictureStore store(100, never);
    QStringList made;
    const auto get = [&](const char* name) {
        store.get(name, [&] {
            made.append(name);
            return QByteArray(40, name[0]);
        });
    };
    get("a");
    get("b");
    get("a");
    get("c"); // b goes
    get("a");
    get("b"); // c goes
    get("a");
    QCOMPARE(made, QStringList({"a", "b", "c", "b"}));
    QCOMPARE(store.bytes(), 80);
}

void ServerLimitsTest::theStoreMakesAPictureOnceAtATime()
{
    PictureStore store(100, never);
    Gate begun;
    Gate goOn;
    std::atomic<int> made{0};
    std::thread first([&] {
        store.get("a", [&] {
            ++made;
            begun.open();
            goOn.pass();
            return QByteArray("picture");
        });
    });
    begun.pass();
    QByteArray second;
    std::thread waiting([&] {
        second = store.get("a", [&] {
            ++made;
            return QByteArray("another");
        });
    });
    QCOMPARE(store.get("b", [] { return QByteArray("b"); }), QByteArray("b")); // nobody else waits
    goOn.open();
    first.join();
    waiting.join();
    QCOMPARE(second, QByteArray("picture"));
    QCOMPARE(made.load(), 1);
}

void ServerLimitsTest::whoWaitsForAPictureThatFailsDoesNotTryAgain()
{
    PictureStore store(100, never);
    QVERIFY(store.get("a", [] { return QByteArray(); }).isEmpty());
    QCOMPARE(store.get("a", [] { return QByteArray("now"); }), QByteArray("now"));
}

void ServerLimitsTest::nobodyWaitsForAPictureWithoutAnEnd()
{
    PictureStore store(100, soon);
    Gate begun;
    Gate goOn;
    std::thread first([&] {
        store.get("a", [&] {
            begun.open();
            goOn.pass();
            return QByteArray("picture");
        });
    });
    begun.pass();
    bool made = false;
    const auto make = [&made] {
        made = true;
        return QByteArray("another");
    };
    QVERIFY(store.get("a", make).isEmpty());
    goOn.open();
    first.join();
    QCOMPARE(store.get("a", make), QByteArray("picture"));
    QVERIFY(!made);
}

void ServerLimitsTest::aPictureLargerThanTheStoreIsNotKept()
{
    PictureStore store(10, never);
    QCOMPARE(store.get("a", [] { return QByteArray(11, 'a'); }).size(), 11);
    QCOMPARE(store.bytes(), 0);
}

QTEST_GUILESS_MAIN(ServerLimitsTest)
#include "ServerLimitsTest.moc"
