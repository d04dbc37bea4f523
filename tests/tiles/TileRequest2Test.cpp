#include <corvane/tiles/HttpTileRequest2.h>
#include <corvane/tiles/TileRequest2.h>

#include <QtTest>

#include <memory>
#include <type_traits>

using namespace Corvane::Map;

namespace {

static_assert(std::has_virtual_destructor_v<TileRequest2>);
static_assert(std::is_base_of_v<QObject, HttpTileRequest2>);
static_assert(std::is_base_of_v<TileRequest2, HttpTileRequest2>);

// only carried, never looked at
TileMatrixSet* someSet()
{
    static int place = 0;
    return reinterpret_cast<TileMatrixSet*>(&place);
}

/// The six values as one line.
QString paramsOf(TileRequest2& request)
{
    unsigned int x = 0;
    unsigned int y = 0;
    double tlx = 0.0;
    double tly = 0.0;
    double brx = 0.0;
    double bry = 0.0;
    request.getTileParams(&x, &y, &tlx, &tly, &brx, &bry);
    return QStringLiteral("%1 %2 %3 %4 %5 %6").arg(x).arg(y).arg(tlx).arg(tly).arg(brx).arg(bry);
}

} // namespace

class TileRequest2Test : public QObject
{
    Q_OBJECT
private slots:
    void aNewRequestIsEmpty();
    void theCancelFlagIsKept();
    void itIsNeverProcessing();
    void keyAndMatrixAreKept();
    void theParametersComeOutInTheOrderTheyWentIn();
    void aCopyHasEveryMember();
    void anHttpRequestHasAnEmptyUrlUnlessTold();
    void theUrlCanBeChangedInPlace();
    void aParentIsIgnored();
    void anHttpRequestHasNoMethodsOfItsOwn();
    void anHttpRequestIsATileRequestToTheMetaObjectSystem();
};

void TileRequest2Test::aNewRequestIsEmpty()
{
    TileRequest2 request;
    QVERIFY(!request.getCancel());
    QVERIFY(!request.isProcessing());
    QVERIFY(!request.getTileMatrix());
    QCOMPARE(request.getKey(), QString());
    request.setTileParams(0, 0, 0.0, 0.0, 0.0, 0.0);
    QCOMPARE(paramsOf(request), QStringLiteral("0 0 0 0 0 0"));
}

void TileRequest2Test::theCancelFlagIsKept()
{
    TileRequest2 request;
    request.setCancel(true);
    QVERIFY(request.getCancel());
    request.setCancel(false);
    QVERIFY(!request.getCancel());
}

void TileRequest2Test::itIsNeverProcessing()
{
    TileRequest2 request;
    request.setTileParams(1, 2, 3.0, 4.0, 5.0, 6.0);
    request.setKey(QStringLiteral("key"));
    request.setTileMatrix(someSet());
    QVERIFY(!request.isProcessing());
    request.setCancel(true);
    QVERIFY(!request.isProcessing());
}

void TileRequest2Test::keyAndMatrixAreKept()
{
    TileRequest2 request;
    request.setKey(QStringLiteral("a key"));
    request.setTileMatrix(someSet());
    QCOMPARE(request.getKey(), QStringLiteral("a key"));
    QCOMPARE(request.getTileMatrix(), someSet());
    request.setTileMatrix(nullptr);
    QVERIFY(!request.getTileMatrix());
}

void TileRequest2Test::theParametersComeOutInTheOrderTheyWentIn()
{
    TileRequest2 request;
    request.setTileParams(4000000000U, 7, -1.5, 2.5, 3.5, -4.5);
    QCOMPARE(paramsOf(request), QStringLiteral("4000000000 7 -1.5 2.5 3.5 -4.5"));
}

void TileRequest2Test::aCopyHasEveryMember()
{
    TileRequest2 request;
    request.setTileParams(1, 2, 3.0, 4.0, 5.0, 6.0);
    request.setKey(QStringLiteral("a key"));
    request.setTileMatrix(someSet());
    request.setCancel(true);
    TileRequest2 copy(request);
    TileRequest2 assigned;
    assigned = request;
    request.setKey(QStringLiteral("another key"));

    for (TileRequest2* const other : {&copy, &assigned}) {
        QCOMPARE(paramsOf(*other), QStringLiteral("1 2 3 4 5 6"));
        QCOMPARE(other->getKey(), QStringLiteral("a key"));
        QCOMPARE(other->getTileMatrix(), someSet());
        QVERIFY(other->getCancel());
        QVERIFY(!other->isProcessing());
    }
}

void TileRequest2Test::anHttpRequestHasAnEmptyUrlUnlessTold()
{
    HttpTileRequest2 empty;
    QVERIFY(empty.getUrl().isEmpty());
    QVERIFY(!empty.parent());
    HttpTileRequest2 told(QUrl(QStringLiteral("http://127.0.0.1/tile")), nullptr);
    QCOMPARE(told.getUrl(), QUrl(QStringLiteral("http://127.0.0.1/tile")));
}

void TileRequest2Test::theUrlCanBeChangedInPlace()
{
    HttpTileRequest2 request;
    request.setUrl(QUrl(QStringLiteral("http://127.0.0.1/tile")));
    request.getUrl().setQuery(QStringLiteral("x=1"));
    QCOMPARE(request.getUrl(), QUrl(QStringLiteral("http://127.0.0.1/tile?x=1")));
}

void TileRequest2Test::aParentIsIgnored()
{
    auto parent = std::make_unique<QObject>();
    HttpTileRequest2 request(QUrl(), parent.get());
    QVERIFY(!request.parent());
    QVERIFY(parent->children().isEmpty());
}

void TileRequest2Test::anHttpRequestHasNoMethodsOfItsOwn()
{
    const QMetaObject& meta = HttpTileRequest2::staticMetaObject;
    QCOMPARE(meta.className(), "Corvane::Map::HttpTileRequest2");
    QCOMPARE(meta.methodCount(), meta.methodOffset());
    QCOMPARE(meta.propertyCount(), meta.propertyOffset());
}

void TileRequest2Test::anHttpRequestIsATileRequestToTheMetaObjectSystem()
{
    HttpTileRequest2 request;
    QCOMPARE(request.qt_metacast("TileRequest2"), static_cast<TileRequest2*>(&request));
    QCOMPARE(static_cast<void*>(static_cast<QObject*>(&request)), static_cast<void*>(&request));
}

QTEST_GUILESS_MAIN(TileRequest2Test)
#include "TileRequest2Test.moc"
