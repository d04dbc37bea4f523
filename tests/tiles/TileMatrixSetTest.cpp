#include <tests/support/HttpTestServer.h>
#include <tests/support/MessageLines.h>
#include <tests/tiles/Gate.h>
#include <tests/tiles/SharedLog.h>
#include <tests/tiles/SquareSet.h>

#include <QDir>
#include <QNetworkReply>
#include <QPointer>
#include <QRunnable>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtTest>

#include <atomic>
#include <thread>
#include <type_traits>

using namespace Corvane::Map;

// The door to the guard, which nothing sets: an explicit instantiation may name private members.
template <bool* member>
struct GuardDoor
{
    friend bool& diskCacheGuard() { return *member; }
};
bool& diskCacheGuard();
template struct GuardDoor<&TileMatrixSet::diskCacheAttached>;

namespace {

static_assert(std::is_abstract_v<TileMatrixSet>);
static_assert(std::is_abstract_v<TileMatrixLevel>);
static_assert(sizeof(TileMatrixLevel) == sizeof(void*), "an interface without data");
static_assert(sizeof(TileMatrixSet) == sizeof(QObject) + sizeof(TileMatrixLevels),
              "no data of its own beyond the vector");
static_assert(std::is_copy_constructible_v<SquareLevel> && std::is_move_assignable_v<SquareLevel>);

const QString threadLine =
    QStringLiteral("debug: TileMatrix:: Number of threads processing requests: 8");
const QString endLine = QStringLiteral("debug: fix me: where to delete the layers?");
const QString nullReceiver =
    QStringLiteral("warning: QCoreApplication::postEvent: Unexpected null receiver");

/// What happened to one reply of the manager, as its end was told.
struct SeenReply
{
    QPointer<QNetworkReply> reply;
    QNetworkReply::NetworkError error;
    qint64 bytesLeft;
    QObject* originator;
    bool savesToCache;
    bool pipelined;
};

/// Listens to the shared manager after the sets that stand by now.
class ReplyWatcher : public QObject
{
public:
    ReplyWatcher()
    {
        connect(
            SquareSet::manager(), &QNetworkAccessManager::finished, this,
            [this](QNetworkReply* reply) {
                const QNetworkRequest request = reply->request();
                seen.push_back(
                    {reply, reply->error(), reply->bytesAvailable(), request.originatingObject(),
                     request.attribute(QNetworkRequest::CacheSaveControlAttribute).toBool(),
                     request.attribute(QNetworkRequest::HttpPipeliningAllowedAttribute).toBool()});
            });
    }

    std::vector<SeenReply> seen;
};

} // namespace

/// The network is that of the process: each function has one of its own.
class TileMatrixSetTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();
    void withoutAManagerItWarnsAndFetchesNothing();
    void itTellsHowManyThreadsProcessRequests();
    void itIsMadeEmptyAndWithoutAParent();
    void theVectorIsReachedByItsName();
    void itHasTwoPrivateSlotsInOrder();
    void itsEndLeavesTheLevelsAlive();
    void noDiskCacheIsAttached();
    void theGuardWouldAttachTheDiskCacheInAFixedPlace();
    void itFetchesTheTileUnderAPoint();
    void aQueuedRequestIsNotAttachedToItsReply();
    void theBytesOfAReplyAreDropped();
    void anErrorIsNotLookedAt_data();
    void anErrorIsNotLookedAt();
    void anAttachedRequestGoesWithItsReply();
    void everySetHearsOfEveryReply();
    void aSetThatIsGoneHearsOfNothing();
    void theSameTileIsFetchedTwice();
    void aCancelledRequestIsFetchedAllTheSame();
    void aRunnableGoesToTheGlobalPool();
    void aRunnableWaitsItsTurnAmongOtherWork();
};

void TileMatrixSetTest::initTestCase()
{
    // as the library loads
    QVERIFY(!SquareSet::manager());
    QVERIFY(!SquareSet::cache());
    QVERIFY(!diskCacheGuard());
}

void TileMatrixSetTest::withoutAManagerItWarnsAndFetchesNothing()
{
    SquareSet::closeNetwork();
    HttpTestServer server;
    const MessageLines lines;
    SquareSet set(server.url(QString()));
    QCOMPARE(lines.all(), QStringList({"warning: QObject::connect(QNetworkAccessManager, "
                                       "Corvane::Map::TileMatrixSet): invalid nullptr parameter",
                                       threadLine}));

    const std::unique_ptr<HttpTileRequest2> request(set.newRequest(0, 0.0, 0.0));
    set.queueTileRequest(request.get());

    QCoreApplication::processEvents();
    QCOMPARE(server.requestCount(), 0);
    QCOMPARE(lines.all().size(), 2);
}

void TileMatrixSetTest::init()
{
    SquareSet::openNetwork();
}

void TileMatrixSetTest::cleanup()
{
    SquareSet::closeNetwork();
}

void TileMatrixSetTest::itTellsHowManyThreadsProcessRequests()
{
    const MessageLines lines;
    SquareSet set;
    QCOMPARE(lines.all(), QStringList(threadLine));

    QThreadPool::globalInstance()->setMaxThreadCount(5);
    SquareSet other;
    QThreadPool::globalInstance()->setMaxThreadCount(8);
    QCOMPARE(lines.all().size(), 2);
    QVERIFY(lines.all().back().endsWith("requests: 5"));
}

void TileMatrixSetTest::itIsMadeEmptyAndWithoutAParent()
{
    class EmptySet : public TileMatrixSet
    {
        QString getIdentifier() override { return QString(); }
        QString getSupportedCRS() override { return QString(); }
        QString getWellKnownScaleSet() override { return QString(); }
        QRectF getBoundingBox() override { return QRectF(); }
    };
    const MessageLines lines;
    const EmptySet set;
    QVERIFY(set.isEmpty());
    QVERIFY(!set.parent());
}

void TileMatrixSetTest::theVectorIsReachedByItsName()
{
    const MessageLines lines;
    SquareSet set;
    auto* const levels = static_cast<TileMatrixLevels*>(set.qt_metacast("TileMatrixLevels"));
    QCOMPARE(levels, static_cast<TileMatrixLevels*>(&set));
    QCOMPARE(levels->size(), 3);
    QCOMPARE(levels->at(2)->getIdentifier(), QStringLiteral("2"));
}

void TileMatrixSetTest::itHasTwoPrivateSlotsInOrder()
{
    const QMetaObject& meta = TileMatrixSet::staticMetaObject;
    QStringList methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        QCOMPARE(method.methodType(), QMetaMethod::Slot);
        QCOMPARE(method.access(), QMetaMethod::Private);
        methods.append(method.methodSignature());
    }
    QCOMPARE(methods, QStringList({"onTileRequestFinished(bool,TileRequest2*)",
                                   "networkReplyFinished(QNetworkReply*)"}));
    QCOMPARE(meta.propertyCount(), meta.propertyOffset());
    QCOMPARE(meta.className(), "Corvane::Map::TileMatrixSet");
}

void TileMatrixSetTest::itsEndLeavesTheLevelsAlive()
{
    SquareLevel level(5);
    {
        const MessageLines lines;
        auto set = std::make_unique<SquareSet>();
        set->append(&level);
        set->append(new SquareLevel(6)); // deleted below
        TileMatrixLevel* const left = set->last();
        set.reset();
        QCOMPARE(lines.all(), QStringList({threadLine, endLine}));
        QCOMPARE(left->getIdentifier(), QStringLiteral("6"));
        delete static_cast<SquareLevel*>(left);
    }
    QCOMPARE(level.getIdentifier(), QStringLiteral("5"));
}

void TileMatrixSetTest::noDiskCacheIsAttached()
{
    const MessageLines lines;
    SquareSet first;
    SquareSet second;
    QVERIFY(!SquareSet::manager()->cache());
    QCOMPARE(SquareSet::cache()->cacheDirectory(), QString());
    QVERIFY(!diskCacheGuard());
}

void TileMatrixSetTest::theGuardWouldAttachTheDiskCacheInAFixedPlace()
{
    QTemporaryDir folder; // elsewhere than on Windows the place is below the working directory
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(folder.path()));
    const MessageLines lines;
    diskCacheGuard() = true;
    SquareSet set;
    const bool guard = diskCacheGuard();
    diskCacheGuard() = false;
    QDir::setCurrent(before);

    QVERIFY(guard);
    QCOMPARE(SquareSet::manager()->cache(), SquareSet::cache());
    QVERIFY(SquareSet::cache()->cacheDirectory().contains("C:\\Users\\tbrandt\\Desktop\\TEMPXXX"));
}

void TileMatrixSetTest::itFetchesTheTileUnderAPoint()
{
    HttpTestServer server;
    server.onOther([](const HttpRequest&) { return HttpReply::data("tile"); });
    const MessageLines lines;
    SquareSet set(server.url(QString()));
    const ReplyWatcher watcher;

    const std::unique_ptr<HttpTileRequest2> request(set.newRequest(2, 100.0, -300.0));
    set.queueTileRequest(request.get());

    QTRY_COMPARE(watcher.seen.size(), std::size_t(1));
    QCOMPARE(server.requests().front().target, std::string("/2/2/3"));
    QCOMPARE(watcher.seen.front().error, QNetworkReply::NoError);
}

void TileMatrixSetTest::aQueuedRequestIsNotAttachedToItsReply()
{
    HttpTestServer server;
    const MessageLines lines;
    SquareSet set(server.url(QString()));
    const ReplyWatcher watcher;
    const QPointer<HttpTileRequest2> request(set.newRequest(0, 0.0, 0.0));

    QVERIFY(!request->isProcessing());
    set.queueTileRequest(request.data());
    QVERIFY(!request->isProcessing());
    QTRY_COMPARE(watcher.seen.size(), std::size_t(1));
    QTRY_VERIFY(!watcher.seen.front().reply);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    QVERIFY(!watcher.seen.front().originator);
    QVERIFY(watcher.seen.front().savesToCache);
    QVERIFY(watcher.seen.front().pipelined);
    QCOMPARE(lines.all(), QStringList({threadLine, nullReceiver}));
    QVERIFY(request);
    QVERIFY(!request->isProcessing());
    QCOMPARE(request->getTileMatrix(), &set);
    delete request.data();
}

void TileMatrixSetTest::theBytesOfAReplyAreDropped()
{
    HttpTestServer server;
    server.on("/0/0/0", HttpReply::data(QByteArray(1000, 'x')));
    const MessageLines lines;
    const ReplyWatcher before;
    SquareSet set(server.url(QString()));
    const ReplyWatcher after;
    const std::unique_ptr<HttpTileRequest2> request(set.newRequest(0, 0.0, 0.0));

    set.queueTileRequest(request.get());

    QTRY_COMPARE(after.seen.size(), std::size_t(1));
    QCOMPARE(before.seen.front().bytesLeft, qint64(1000));
    QCOMPARE(after.seen.front().bytesLeft, qint64(0));
}

void TileMatrixSetTest::anErrorIsNotLookedAt_data()
{
    QTest::addColumn<int>("status");
    QTest::newRow("a tile that is not there") << 404;
    QTest::newRow("a server that failed") << 500;
    QTest::newRow("a connection that broke") << 0;
}

void TileMatrixSetTest::anErrorIsNotLookedAt()
{
    QFETCH(const int, status);
    HttpTestServer server;
    server.on("/0/0/0", status == 0 ? HttpReply::data("tile").cutAfter(1)
                                    : HttpReply::withStatus(status, "page"));
    const MessageLines lines;
    SquareSet set(server.url(QString()));
    const ReplyWatcher watcher;
    const std::unique_ptr<HttpTileRequest2> request(set.newRequest(0, 0.0, 0.0));

    set.queueTileRequest(request.get());

    QTRY_COMPARE(watcher.seen.size(), std::size_t(1));
    QTRY_VERIFY(!watcher.seen.front().reply);
    QVERIFY(watcher.seen.front().error != QNetworkReply::NoError);
    QCOMPARE(lines.all(), QStringList({threadLine, nullReceiver}));
}

void TileMatrixSetTest::anAttachedRequestGoesWithItsReply()
{
    HttpTestServer server;
    const MessageLines lines;
    SquareSet set(server.url(QString()));
    const ReplyWatcher watcher;
    const QPointer<HttpTileRequest2> request(set.newRequest(0, 0.0, 0.0));

    QNetworkRequest networkRequest(request->getUrl());
    networkRequest.setOriginatingObject(request.data());
    SquareSet::manager()->get(networkRequest);

    QTRY_COMPARE(watcher.seen.size(), std::size_t(1));
    QTRY_VERIFY(!watcher.seen.front().reply);
    QTRY_VERIFY(!request);
    QCOMPARE(lines.all(), QStringList(threadLine));
}

void TileMatrixSetTest::everySetHearsOfEveryReply()
{
    HttpTestServer server;
    const MessageLines lines;
    SquareSet first(server.url(QString()));
    SquareSet second;
    const ReplyWatcher watcher;
    const std::unique_ptr<HttpTileRequest2> request(first.newRequest(0, 0.0, 0.0));

    first.queueTileRequest(request.get());

    QTRY_COMPARE(watcher.seen.size(), std::size_t(1));
    QTRY_VERIFY(!watcher.seen.front().reply);
    QCOMPARE(server.requestCount(), 1);
    QCOMPARE(lines.all(), QStringList({threadLine, threadLine, nullReceiver, nullReceiver}));
}

void TileMatrixSetTest::aSetThatIsGoneHearsOfNothing()
{
    HttpTestServer server;
    const MessageLines lines;
    auto set = std::make_unique<SquareSet>(server.url(QString()));
    const ReplyWatcher watcher;
    const std::unique_ptr<HttpTileRequest2> request(set->newRequest(0, 0.0, 0.0));

    set->queueTileRequest(request.get());
    set.reset();

    QTRY_COMPARE(watcher.seen.size(), std::size_t(1));
    QCOMPARE(lines.all(), QStringList({threadLine, endLine}));
    QVERIFY(watcher.seen.front().reply);
}

void TileMatrixSetTest::theSameTileIsFetchedTwice()
{
    HttpTestServer server;
    const MessageLines lines;
    SquareSet set(server.url(QString()));
    const ReplyWatcher watcher;
    const std::unique_ptr<HttpTileRequest2> request(set.newRequest(0, 0.0, 0.0));

    set.queueTileRequest(request.get());
    set.queueTileRequest(request.get());

    QTRY_COMPARE(watcher.seen.size(), std::size_t(2));
    QCOMPARE(server.requestCount("/0/0/0"), 2);
}

void TileMatrixSetTest::aCancelledRequestIsFetchedAllTheSame()
{
    HttpTestServer server;
    const MessageLines lines;
    SquareSet set(server.url(QString()));
    const ReplyWatcher watcher;
    const std::unique_ptr<HttpTileRequest2> request(set.newRequest(0, 0.0, 0.0));

    request->setCancel(true);
    set.queueTileRequest(request.get());

    QTRY_COMPARE(watcher.seen.size(), std::size_t(1));
    QCOMPARE(server.requestCount(), 1);
}

void TileMatrixSetTest::aRunnableGoesToTheGlobalPool()
{
    class Work : public QRunnable
    {
    public:
        explicit Work(std::atomic<std::thread::id>* newThread) : thread(newThread) {}
        void run() override { *thread = std::this_thread::get_id(); }

    private:
        std::atomic<std::thread::id>* thread;
    };
    const MessageLines lines;
    SquareSet set;
    std::atomic<std::thread::id> thread{std::thread::id()};

    set.queueTileRequest(new Work(&thread));
    QThreadPool::globalInstance()->waitForDone();

    QVERIFY(thread.load() != std::thread::id());
    QVERIFY(thread.load() != std::this_thread::get_id());
}

void TileMatrixSetTest::aRunnableWaitsItsTurnAmongOtherWork()
{
    class Note : public QRunnable
    {
    public:
        explicit Note(SharedLog* newLog) : log(newLog) {}
        void run() override { log->add("queued"); }

    private:
        SharedLog* log;
    };
    const MessageLines lines;
    SquareSet set;
    SharedLog log;
    Gate gate;
    QThreadPool* const pool = QThreadPool::globalInstance();
    pool->setMaxThreadCount(1);
    pool->start([&gate] { gate.pass(); });
    gate.waitForArrivals(1);
    pool->start([&log] { log.add("before"); });
    set.queueTileRequest(new Note(&log));
    pool->start([&log] { log.add("behind"); });
    gate.open();
    pool->waitForDone();
    pool->setMaxThreadCount(8);

    QCOMPARE(log.all(), QStringList({"before", "queued", "behind"}));
}

QTEST_GUILESS_MAIN(TileMatrixSetTest)
#include "TileMatrixSetTest.moc"
