#include <plugins/vector/OgrVectorLayer.h>

#include <tests/plugins/LayerProbe.h>
#include <tests/plugins/SlowServer.h>
#include <tests/plugins/TestVectors.h>
#include <tests/plugins/VectorProbe.h>

#include <corvane/map/IRendererClient.h>
#include <corvane/map/MapView.h>

#include <QFile>
#include <QLoggingCategory>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QtTest>

#include <atomic>
#include <memory>
#include <vector>

using namespace Corvane;
using namespace Corvane::Map;
using namespace Corvane::Tests;

namespace {

constexpr int deletions = 40;
constexpr int squaresAcross = 120;
constexpr double shortWait = 0.05; // seconds

class CountingClient final : public IRendererClient
{
public:
    void onRendererUpdate(double, double, double, double) override { ++updates; }
    void onRendererError(QString) override {}
    std::atomic<int> updates{0};
};

/// All of the squares, two pixels of the view to a unit.
const WorldView everything = {480, 480, 0.0, 120.0, 0.25};

QString square(int column, int row)
{
    return QStringLiteral("POLYGON((%1 %2,%3 %2,%3 %4,%1 %4,%1 %2))")
        .arg(column)
        .arg(row)
        .arg(column + 0.75)
        .arg(row + 0.75);
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// The layer between its threads: features on their way while it is deleted, its view moves, its
/// settings change; sources that open slowly, hang and break down.
class VectorThreadsTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanup();

    void featuresArriveAndAskForARepaint();
    void aLayerGoesWhileItsFeaturesAreRead();
    void aLayerGoesRightAfterItHasEverything();
    void aLayerGoesWhileItOpens();
    void aMapGoesWithItsLayers();
    void aViewThatWandersIsCompleted();
    void aViewThatWandersInABracketIsCompleted();
    void settingsChangeWhileFeaturesAreRead();
    void anotherSourceReplacesOneThatIsBeingRead();
    void severalLayersReadTheSameFile();
    void withoutProgressEveryViewIsWholeOnReturn();

    void aSlowServerLeavesTheThreadFree();
    void aServerThatBreaksDownLeavesWhatWasRead();
    void aServerThatHangsIsWaitedForOnlySoLong();
    void aServerThatRefusesFailsLater();

private:
    QImage expected(OgrVectorLayer& layer) const;

    QTemporaryDir folder;
    QString squares; // some chunks of them
    QByteArray streamed;
};

void VectorThreadsTest::initTestCase()
{
    VectorRecipe recipe;
    recipe.type = wkbPolygon;
    for (int row = 0; row < squaresAcross; ++row) {
        for (int column = 0; column < squaresAcross; ++column) {
            recipe.features.push_back({square(column, row), {QString::number(column)}, {}});
        }
    }
    squares = folder.filePath("squares.gpkg");
    QVERIFY(makeVectors(squares, recipe));
    recipe.driver = "FlatGeobuf";
    recipe.layerOptions = QStringList({"SPATIAL_INDEX=NO"});
    const QString flat = folder.filePath("squares.fgb");
    QVERIFY(makeVectors(flat, recipe));
    streamed = contentOf(flat);
    QVERIFY(streamed.size() > 1000000);
}

void VectorThreadsTest::cleanup()
{
    QVERIFY(QThreadPool::globalInstance()->waitForDone(60000));
}

QImage VectorThreadsTest::expected(OgrVectorLayer& layer) const
{
    return drawn(layer, everything, [](QPainter& painter) {
        for (int row = 0; row < squaresAcross; ++row) {
            for (int column = 0; column < squaresAcross; ++column) {
                painter.drawRect(QRectF(everything.toPixel(column, row + 0.75),
                                        everything.toPixel(column + 0.75, row)));
            }
        }
    });
}

void VectorThreadsTest::featuresArriveAndAskForARepaint()
{
    CountingClient client;
    OgrVectorLayer layer(&client);
    QVERIFY(layer.setDataSource(squares));
    QTRY_VERIFY(layer.isValid());
    client.updates = 0;
    everything.set(layer);
    QVERIFY(layer.getPercentComplete() < 100);
    QTRY_COMPARE(int(layer.getPercentComplete()), 100);
    QVERIFY(client.updates > 0);
    QVERIFY(difference(painted(layer, everything), expected(layer)) <= 3);
}

void VectorThreadsTest::aLayerGoesWhileItsFeaturesAreRead()
{
    for (int i = 0; i < deletions; ++i) {
        OgrVectorLayer layer;
        QVERIFY(layer.setDataSource(squares));
        QTRY_VERIFY(layer.isValid());
        everything.set(layer);
        if (i % 4 == 1) {
            QTRY_VERIFY(layer.getBytes() > 0);
        } else if (i % 4 == 2) {
            QCoreApplication::processEvents();
        } else if (i % 4 == 3) {
            QTRY_COMPARE(int(layer.getPercentComplete()),
                         100); // and the wider picture is under way
        }
    }
}

void VectorThreadsTest::aLayerGoesRightAfterItHasEverything()
{
    const QString few = folder.filePath("few.gpkg");
    QVERIFY(makeVectors(few, shapes({square(1, 1), square(3, 3)})));
    for (int i = 0; i < deletions; ++i) {
        auto layer = std::make_unique<OgrVectorLayer>();
        layer->setProgressive(i % 2 == 0);
        layer->setDataSource(few);
        QTRY_VERIFY(layer->isValid());
        everything.set(*layer);
        while (layer->getPercentComplete() < 100) { // asked without pause, without an event loop
        }
        layer.reset();
        QCoreApplication::processEvents();
    }
}

void VectorThreadsTest::aLayerGoesWhileItOpens()
{
    SlowServer server(streamed, false);
    {
        OgrVectorLayer layer;
        QVERIFY(layer.setDataSource(server.url("gone.fgb")));
        QTRY_VERIFY(server.requests() > 0);
        QVERIFY(!layer.isValid());
        QCOMPARE(int(layer.getPercentComplete()), 0);
    } // the server holds its answer, so the layer does not wait
    server.setOpen(true);
}

void VectorThreadsTest::aMapGoesWithItsLayers()
{
    for (int i = 0; i < 5; ++i) {
        MapView view;
        view.setAttribute(Qt::WA_DeleteOnClose, false);
        view.resize(480, 480);
        view.show();
        for (int j = 0; j < 3; ++j) {
            auto* const layer = new OgrVectorLayer;
            QVERIFY(layer->setDataSource(squares));
            view.addLayer(layer, -1);
        }
        for (int j = 0; j < i; ++j) {
            QCoreApplication::processEvents();
        }
    }
}

void VectorThreadsTest::aViewThatWandersIsCompleted()
{
    OgrVectorLayer layer;
    QVERIFY(layer.setDataSource(squares));
    QTRY_VERIFY(layer.isValid());
    for (int i = 0; i < 200; ++i) {
        WorldView view = everything;
        view.left += (i % 7) * 30.0;
        view.unitsPerPixel /= 1.0 + i % 5;
        view.set(layer);
        painted(layer, view);
        QCoreApplication::processEvents();
    }
    everything.set(layer);
    QTRY_COMPARE(int(layer.getPercentComplete()), 100);
    QVERIFY(difference(painted(layer, everything), expected(layer)) <= 3);
}

void VectorThreadsTest::aViewThatWandersInABracketIsCompleted()
{
    OgrVectorLayer layer;
    QVERIFY(layer.setDataSource(squares));
    QTRY_VERIFY(layer.isValid());
    layer.beginUpdate(false);
    for (int i = 0; i < 200; ++i) {
        WorldView view = everything;
        view.left += i * 0.33; // no whole pixels
        view.set(layer);
        painted(layer, view);
        QCoreApplication::processEvents();
    }
    everything.set(layer);
    layer.endUpdate();
    QTRY_COMPARE(int(layer.getPercentComplete()), 100);
    QVERIFY(difference(painted(layer, everything), expected(layer)) <= 3);
}

void VectorThreadsTest::settingsChangeWhileFeaturesAreRead()
{
    OgrVectorLayer layer;
    QVERIFY(layer.setDataSource(squares));
    QTRY_VERIFY(layer.isValid());
    for (int i = 0; i < 10; ++i) {
        everything.set(layer);
        layer.setLabelField(i % 2 == 0 ? "name" : "");
        layer.setPointSize(i);
        SpatialReference reference;
        reference.setEpsg(i % 3 == 0 ? 32634 : 32633);
        layer.setSpatialRef(reference);
        QCoreApplication::processEvents();
    }
    SpatialReference own;
    own.setEpsg(32633);
    layer.setSpatialRef(own);
    layer.setLabelField(QString());
    everything.set(layer);
    QTRY_COMPARE(int(layer.getPercentComplete()), 100);
    QVERIFY(difference(painted(layer, everything), expected(layer)) <= 3);
}

void VectorThreadsTest::anotherSourceReplacesOneThatIsBeingRead()
{
    const QString other = folder.filePath("other.gpkg");
    QVERIFY(makeVectors(other, shapes({square(1, 1)})));
    OgrVectorLayer layer;
    QVERIFY(layer.setDataSource(squares));
    QTRY_VERIFY(layer.isValid());
    everything.set(layer);
    QVERIFY(layer.setDataSource(other));
    QTRY_VERIFY(layer.isValid());
    QCOMPARE(layer.getBounds(), QRectF(1.0, 1.75, 0.75, -0.75));
    const QImage picture = complete(layer, everything);
    QVERIFY(inked(picture) > 0 && inked(picture) < 100);
}

void VectorThreadsTest::severalLayersReadTheSameFile()
{
    std::vector<std::unique_ptr<OgrVectorLayer>> layers;
    for (int i = 0; i < 6; ++i) {
        layers.push_back(std::make_unique<OgrVectorLayer>());
        QVERIFY(layers.back()->setDataSource(squares));
    }
    for (const auto& layer : layers) {
        QTRY_VERIFY(layer->isValid());
        everything.set(*layer);
    }
    for (const auto& layer : layers) {
        QTRY_COMPARE(int(layer->getPercentComplete()), 100);
        QVERIFY(difference(painted(*layer, everything), expected(*layer)) <= 3);
    }
}

void VectorThreadsTest::withoutProgressEveryViewIsWholeOnReturn()
{
    OgrVectorLayer layer;
    layer.setProgressive(false);
    QVERIFY(layer.setDataSource(squares));
    QVERIFY(layer.isValid());
    layer.beginUpdate(false); // a bracket changes nothing here
    everything.set(layer);
    QCOMPARE(int(layer.getPercentComplete()), 100);
    QVERIFY(difference(painted(layer, everything), expected(layer)) <= 3);
    WorldView part = everything;
    part.left = 50.1;
    part.set(layer);
    QCOMPARE(int(layer.getPercentComplete()), 100);
}

void VectorThreadsTest::aSlowServerLeavesTheThreadFree()
{
    SlowServer server(streamed, false);
    OgrVectorLayer layer;
    QSignalSpy opened(&layer, &OgrVectorLayer::sourceOpened);
    QVERIFY(layer.setDataSource(server.url("slow.fgb")));
    QTRY_VERIFY(server.requests() > 0);
    QVERIFY(!layer.isValid());
    QCOMPARE(layer.getProtocol(), QString("http"));
    QCOMPARE(opened.size(), 0);
    server.setOpen(true);
    QTRY_COMPARE(opened.size(), 1);
    QCOMPARE(opened.first().first().toBool(), true);
    QVERIFY(layer.isValid());
    everything.set(layer);
    QTRY_COMPARE(int(layer.getPercentComplete()), 100);
    QVERIFY(difference(painted(layer, everything), expected(layer)) <= 3);
}

void VectorThreadsTest::aServerThatBreaksDownLeavesWhatWasRead()
{
    SlowServer server(streamed, true);
    const QString url = server.url("breaks.fgb");
    const LogLines log;
    OgrVectorLayer layer;
    QVERIFY(layer.setDataSource(url));
    QTRY_VERIFY(layer.isValid());
    server.breakDown();
    everything.set(layer);
    QTRY_COMPARE(int(layer.getPercentComplete()), 100);
    QVERIFY(layer.isValid());
    QVERIFY(!layer.getLastError().isEmpty());
    QCOMPARE(log.holding("cannot read " + url + ": " + layer.getLastError()).size(), 1);
}

void VectorThreadsTest::aServerThatHangsIsWaitedForOnlySoLong()
{
    SlowServer server(streamed, true);
    const QString url = server.url("hangs.fgb");
    const LogLines log;
    OgrVectorLayer layer;
    QVERIFY(layer.setDataSource(url));
    QTRY_VERIFY(layer.isValid());
    server.setOpen(false);
    layer.setProgressive(false);
    layer.setWaitLimit(shortWait);
    everything.set(layer);
    QCOMPARE(log.holding(url), QStringList({url + " does not answer; the view lacks some of it"}));
    QVERIFY(layer.getPercentComplete() < 100);
    server.setOpen(true);
    QTRY_COMPARE(int(layer.getPercentComplete()), 100); // and comes in the end
    QTRY_VERIFY(difference(painted(layer, everything), expected(layer)) <= 3);
}

void VectorThreadsTest::aServerThatRefusesFailsLater()
{
    SlowServer server(streamed, false);
    OgrVectorLayer layer;
    QSignalSpy opened(&layer, &OgrVectorLayer::sourceOpened);
    QVERIFY(layer.setDataSource(server.url("refused.fgb")));
    QTRY_VERIFY(server.requests() > 0);
    server.breakDown();
    QTRY_COMPARE(opened.size(), 1);
    QCOMPARE(opened.first().first().toBool(), false);
    QVERIFY(!layer.isValid());
    QVERIFY(!layer.getLastError().isEmpty());
    QCOMPARE(int(layer.getPercentComplete()), 100);
}

int main(int argc, char** argv)
{
    qputenv("GDAL_HTTP_MAX_RETRY", "0");
    QLoggingCategory::setFilterRules("corvane.tiles.debug=false\ndefault.debug=false");
    Application application(argc, argv, "VectorThreadsTest");
    VectorThreadsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "VectorThreadsTest.moc"
