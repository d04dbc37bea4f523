#include <tests/tiles/PlainTiledLayer.h>

#include <QImage>
#include <QtTest>

#include <algorithm>
#include <functional>
#include <memory>
#include <type_traits>

using namespace Corvane;
using namespace Corvane::Map;

namespace {

/// A request whose work is given to it, run by hand.
class StepRequest : public ITileRequest
{
public:
    explicit StepRequest(ITiledLayer* tiledLayer)
        : ITileRequest(tiledLayer, QStringLiteral("the key"), 3, 4, 5, 256, 128, 1.0, 2.0, 3.0, 4.0)
    {
    }

    bool processTile() override { return work(); }

    using ITileRequest::brx;
    using ITileRequest::bry;
    using ITileRequest::cancelled;
    using ITileRequest::height;
    using ITileRequest::image;
    using ITileRequest::key;
    using ITileRequest::layer;
    using ITileRequest::level;
    using ITileRequest::tlx;
    using ITileRequest::tly;
    using ITileRequest::width;
    using ITileRequest::x;
    using ITileRequest::y;

    std::function<bool()> work = [] { return true; };
};

/// A layer that writes down what it is told and leaves the image where it is.
class ListeningLayer : public PlainTiledLayer
{
public:
    ListeningLayer() : PlainTiledLayer(256, 256, 1.0, -1.0) {}

    void tileReady(ITileRequest* request) override
    {
        log.append(QStringLiteral("ready %1 image=%2")
                       .arg(request->getKey())
                       .arg(request->getImage() ? QStringLiteral("yes") : QStringLiteral("no")));
        if (duringReady) {
            duringReady();
        }
    }
    void tileFailed(ITileRequest* request) override
    {
        log.append(QStringLiteral("failed ") + request->getKey());
    }

    QStringList log;
    std::function<void()> duringReady;
};

} // namespace

class ITileRequestTest : public QObject
{
    Q_OBJECT
private slots:
    void startsUncancelledWithoutAnImage();
    void membersStandInOrder();
    void leavesItsDeletionToThePool();
    void cancelSetsTheFlagAndNothingElse();
    void aTileThatWasMadeIsReady();
    void aTileThatWasNotMadeHasFailed();
    void cancelledBeforeItsTurnMakesNothingAndCallsNobody();
    void cancelledWhileItMadeTheTileCallsNobody();
    void cancelledWhileItFailedCallsNobody();
    void anImageThatNobodyWasToldOfStaysWithoutItsPixels();
    void anImageThatWasDeliveredKeepsItsPixelsEvenWhenCancelledMeanwhile();
    void forgetsImageAndLayerWhenItEnds();
    void forgetsImageAndLayerWhenCancelled();
    void aCopyHasEveryMember();
};

void ITileRequestTest::startsUncancelledWithoutAnImage()
{
    ListeningLayer layer;
    StepRequest request(&layer);

    QVERIFY(!request.cancelled);
    QCOMPARE(request.getImage(), nullptr);
    QCOMPARE(request.getKey(), QStringLiteral("the key"));
    QCOMPARE(request.getLayerLevel(), 3U);
    QCOMPARE(request.getX(), 4U);
    QCOMPARE(request.getY(), 5U);
    QCOMPARE(request.width, 256U);
    QCOMPARE(request.height, 128U);
    QCOMPARE(request.tlx, 1.0);
    QCOMPARE(request.tly, 2.0);
    QCOMPARE(request.brx, 3.0);
    QCOMPARE(request.bry, 4.0);
    QCOMPARE(request.layer, &layer);
}

void ITileRequestTest::membersStandInOrder()
{
    const StepRequest request(nullptr);
    const QVector<const void*> members = {
        &request.tlx,   &request.tly,    &request.brx,      &request.bry, &request.key,
        &request.image, &request.layer,  &request.level,    &request.x,   &request.y,
        &request.width, &request.height, &request.cancelled};
    QVERIFY(std::is_sorted(members.begin(), members.end(), std::less<const void*>()));
}

void ITileRequestTest::leavesItsDeletionToThePool()
{
    ListeningLayer layer;
    QVERIFY(StepRequest(&layer).autoDelete());
}

void ITileRequestTest::cancelSetsTheFlagAndNothingElse()
{
    ListeningLayer layer;
    StepRequest request(&layer);
    GeoImage image(2, 2, 0.0, 0.0, 0.0, 0.0, QImage::Format_ARGB32, nullptr);
    request.image = &image;

    request.cancel();

    QVERIFY(request.cancelled);
    QCOMPARE(request.getImage(), &image);
    QVERIFY(!image.isNull());
    QCOMPARE(request.layer, &layer);
    QCOMPARE(layer.log, QStringList());
}

void ITileRequestTest::aTileThatWasMadeIsReady()
{
    ListeningLayer layer;
    StepRequest request(&layer);
    GeoImage image(2, 2, 0.0, 0.0, 0.0, 0.0, QImage::Format_ARGB32, nullptr);
    request.work = [&] {
        request.image = &image;
        return true;
    };

    request.run();

    QCOMPARE(layer.log, QStringList({"ready the key image=yes"}));
}

void ITileRequestTest::aTileThatWasNotMadeHasFailed()
{
    ListeningLayer layer;
    StepRequest request(&layer);
    request.work = [] { return false; };

    request.run();

    QCOMPARE(layer.log, QStringList({"failed the key"}));
}

void ITileRequestTest::cancelledBeforeItsTurnMakesNothingAndCallsNobody()
{
    ListeningLayer layer;
    StepRequest request(&layer);
    bool worked = false;
    request.work = [&] { return worked = true; };

    request.cancel();
    request.run();

    QVERIFY(!worked);
    QCOMPARE(layer.log, QStringList());
}

void ITileRequestTest::cancelledWhileItMadeTheTileCallsNobody()
{
    ListeningLayer layer;
    StepRequest request(&layer);
    request.work = [&] {
        request.cancel();
        return true;
    };

    request.run();

    QCOMPARE(layer.log, QStringList());
}

void ITileRequestTest::cancelledWhileItFailedCallsNobody()
{
    ListeningLayer layer;
    StepRequest request(&layer);
    request.work = [&] {
        request.cancel();
        return false;
    };

    request.run();

    QCOMPARE(layer.log, QStringList());
}

void ITileRequestTest::anImageThatNobodyWasToldOfStaysWithoutItsPixels()
{
    ListeningLayer layer;
    StepRequest request(&layer);
    int deletions = 0;
    const auto image = std::make_unique<CountedTile>(&deletions, 1.0, 2.0, 3.0, 4.0);
    request.work = [&] {
        request.image = image.get();
        request.cancel();
        return true;
    };

    request.run();

    QCOMPARE(deletions, 0);
    QVERIFY(image->isNull());
    QCOMPARE(image->brx, 3.0);
}

void ITileRequestTest::anImageThatWasDeliveredKeepsItsPixelsEvenWhenCancelledMeanwhile()
{
    ListeningLayer layer;
    StepRequest request(&layer);
    GeoImage image(2, 2, 0.0, 0.0, 0.0, 0.0, QImage::Format_ARGB32, nullptr);
    request.work = [&] {
        request.image = &image;
        return true;
    };
    layer.duringReady = [&] { request.cancel(); };

    request.run();

    QVERIFY(!image.isNull());
    QCOMPARE(layer.log, QStringList({"ready the key image=yes"}));
}

void ITileRequestTest::forgetsImageAndLayerWhenItEnds()
{
    ListeningLayer layer;
    StepRequest request(&layer);
    GeoImage image(2, 2, 0.0, 0.0, 0.0, 0.0, QImage::Format_ARGB32, nullptr);
    request.image = &image;

    request.run();

    QCOMPARE(request.getImage(), nullptr);
    QCOMPARE(request.layer, nullptr);
    QCOMPARE(request.getKey(), QStringLiteral("the key"));
}

void ITileRequestTest::forgetsImageAndLayerWhenCancelled()
{
    ListeningLayer layer;
    StepRequest request(&layer);
    request.cancel();

    request.run();

    QCOMPARE(request.getImage(), nullptr);
    QCOMPARE(request.layer, nullptr);
}

void ITileRequestTest::aCopyHasEveryMember()
{
    ListeningLayer layer;
    GeoImage image(2, 2, 0.0, 0.0, 0.0, 0.0, QImage::Format_ARGB32, nullptr);
    StepRequest request(&layer);
    request.image = &image;
    request.cancel();

    const std::unique_ptr<StepRequest> copy = std::make_unique<StepRequest>(request);
    StepRequest assigned(nullptr);
    assigned = request;

    for (StepRequest* const twin : {copy.get(), &assigned}) {
        QVERIFY(twin->cancelled);
        QCOMPARE(twin->getImage(), &image);
        QCOMPARE(twin->layer, &layer);
        QCOMPARE(twin->getKey(), QStringLiteral("the key"));
        QCOMPARE(twin->getLayerLevel(), 3U);
        QCOMPARE(twin->getX(), 4U);
        QCOMPARE(twin->getY(), 5U);
        QCOMPARE(twin->width, 256U);
        QCOMPARE(twin->height, 128U);
        QCOMPARE(twin->tlx, 1.0);
        QCOMPARE(twin->bry, 4.0);
    }
}

QTEST_GUILESS_MAIN(ITileRequestTest)
#include "ITileRequestTest.moc"
