#include <tests/map/MapViewTools.h>
#include <tests/support/PointPrinter.h>

#include <viewer/output/MapPrinting.h>

#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>

#include <QProgressBar>
#include <QProgressDialog>
#include <QTimer>

#include <chrono>
#include <memory>

using namespace Corvane;
using namespace Corvane::Viewer;

namespace {

constexpr std::chrono::minutes generous(1);
constexpr std::chrono::milliseconds hardlyAnything(1);

/// A layer that declares what printing sets.
class PrintableLayer : public TestLayer
{
    Q_OBJECT
    Q_PROPERTY(bool Progressive MEMBER progressive)
    Q_PROPERTY(bool AdaptiveRoam MEMBER adaptiveRoam)
    Q_PROPERTY(bool PixmapSmoothing MEMBER smoothing)
    Q_PROPERTY(double WaitLimit MEMBER waitLimit)
public:
    bool progressive = true;
    bool adaptiveRoam = true;
    bool smoothing = false;
    double waitLimit = 60.0;
};

/// A dialog as the program uses it, with the values that it showed.
class LoadingDialog : public QProgressDialog
{
public:
    LoadingDialog()
    {
        setRange(0, 100);
        setAutoReset(false);
        setAutoClose(false);
        connect(findChild<QProgressBar*>(), &QProgressBar::valueChanged, this,
                [this](int value) { values << value; });
    }

    QList<int> values;
};

/// A view of 101 by 101 pixels on the world (0, 100) to (100, 0) with one layer.
struct PrintedView
{
    PrintedView() : view(makeView(Motion::Direct))
    {
        view->addLayer(layer);
        view->setBounds(0.0, 100.0, 100.0, 0.0);
        layer->log.clear();
    }

    std::unique_ptr<Map::MapView> view;
    PrintableLayer* layer = new PrintableLayer; // the view's
};

} // namespace

/// The map of a view on its way to a page and back to the screen.
class MapPrintingTest : public QObject
{
    Q_OBJECT
private slots:
    void aPageShowsTheWholeViewInItsMiddle_data();
    void aPageShowsTheWholeViewInItsMiddle();
    void aMapOfManyUnitsIsPrintedInWholeOnes();
    void aMapOfFewUnitsIsPrintedWithItsFractions();
    void aWideMapLiesOnItsSide();

    void layersGetTheirSettingsBack();
    void theScreenGetsItsViewBack();
    void theScreenIsNotPaintedMeanwhile();

    void loadingLastsUntilTheLayersAreComplete();
    void loadingIsProgressiveForLayersThatAreNot();
    void aLayerThatIsStillOpeningIsWaitedFor();
    void hiddenAndFailedLayersAreNotWaitedFor();
    void loadingEndsWhenNothingComesAnyMore();
    void loadingCanBeCancelled();
    void aLayerMayGoMeanwhile();
    void theMapMayGoMeanwhile();
    void aHugePageIsLoadedCoarser();
};

void MapPrintingTest::aPageShowsTheWholeViewInItsMiddle_data()
{
    QTest::addColumn<QSize>("page");
    QTest::addColumn<QRectF>("shown");
    QTest::addColumn<QString>("printed");

    const QRectF northUp = world(0, 100, 100, 0);
    QTest::newRow("on a wide page") << QSize(200, 100) << northUp << "-50 100 150 0";
    QTest::newRow("on a high page") << QSize(100, 200) << northUp << "0 150 100 -50";
    QTest::newRow("on a page of its shape") << QSize(70, 70) << northUp << "0 100 100 0";
    QTest::newRow("with y downwards")
        << QSize(100, 200) << world(0, 0, 100, 100) << "0 -50 100 150";
    QTest::newRow("from right to left")
        << QSize(200, 100) << world(100, 100, 0, 0) << "150 100 -50 0";
    QTest::newRow("on no page") << QSize(0, 100) << northUp << "0 100 100 0";
}

void MapPrintingTest::aPageShowsTheWholeViewInItsMiddle()
{
    QFETCH(QSize, page);
    QFETCH(QRectF, shown);
    QFETCH(QString, printed);
    QCOMPARE(text(MapPrinting::grownTo(page, shown)), printed);
}

void MapPrintingTest::aMapOfManyUnitsIsPrintedInWholeOnes()
{
    PrintedView map;
    map.view->setBounds(1000.5, 3000.5, 3000.5, 1000.5);
    map.layer->log.clear();
    PointPrinter printer(QSize(100, 100), PointPrinter::Pdf);
    {
        MapPrinting printing(*map.view);
        printing.print(printer, nullptr);
    }
    QCOMPARE(map.layer->log.filter("setView(100x100").last(),
             QString("setView(100x100, 1000 3000 3000 1000)"));
    QCOMPARE(map.layer->log.filter("paint"), QStringList{"paint(1000 3000 3000 1000, 0 0 99 99)"});
}

void MapPrintingTest::aMapOfFewUnitsIsPrintedWithItsFractions()
{
    PrintedView map;
    map.view->setBounds(0.25, 0.75, 0.75, 0.25);
    map.layer->log.clear();
    PointPrinter printer(QSize(100, 200), PointPrinter::Pdf);
    {
        MapPrinting printing(*map.view);
        printing.print(printer, nullptr);
    }
    QCOMPARE(map.layer->log.filter("paint"), QStringList{"paint(0.25 1 0.75 0, 0 0 99 199)"});
}

void MapPrintingTest::aWideMapLiesOnItsSide()
{
    PrintedView map;
    map.view->resize(300, 200);
    QVERIFY(MapPrinting::isLandscape(*map.view));
    map.view->resize(200, 300);
    QVERIFY(!MapPrinting::isLandscape(*map.view));
}

void MapPrintingTest::layersGetTheirSettingsBack()
{
    PrintedView map;
    map.view->addLayer(new TestLayer);
    PointPrinter printer(QSize(100, 1000));
    {
        MapPrinting printing(*map.view);
        printing.hurry();
        printing.print(printer, nullptr);
        QVERIFY(!map.layer->progressive && !map.layer->adaptiveRoam && map.layer->smoothing);
        QCOMPARE(map.layer->waitLimit, 0.001);
    }
    QVERIFY(map.layer->progressive && map.layer->adaptiveRoam && !map.layer->smoothing);
    QCOMPARE(map.layer->waitLimit, 60.0);
    QCOMPARE(map.view->getLayerAt(1)->dynamicPropertyNames(), QList<QByteArray>());
}

void MapPrintingTest::theScreenGetsItsViewBack()
{
    PrintedView map;
    const QRectF bounds = map.view->getBounds();
    QStringList journal;
    record(*map.view, &journal);
    PointPrinter printer(QSize(100, 1000));
    {
        MapPrinting printing(*map.view);
        printing.print(printer, nullptr);
    }
    QCOMPARE(map.layer->log.last(), QString("setView(101x101, 0 100 100 0)"));
    QCOMPARE(map.view->getBounds(), bounds);
    QCOMPARE(journal, QStringList()); // linked views stay where they are
}

void MapPrintingTest::theScreenIsNotPaintedMeanwhile()
{
    PrintedView map;
    {
        MapPrinting printing(*map.view);
        QVERIFY(!map.view->updatesEnabled());
    }
    QVERIFY(map.view->updatesEnabled());
    map.layer->log.clear();
    QTRY_COMPARE(map.layer->log.filter("paint").size(), 1);
    {
        map.view->setUpdatesEnabled(false);
        MapPrinting printing(*map.view);
    }
    QVERIFY(!map.view->updatesEnabled());
}

void MapPrintingTest::loadingLastsUntilTheLayersAreComplete()
{
    PrintedView map;
    map.layer->percentComplete = 0;
    auto* const second = new TestLayer;
    map.view->addLayer(second);
    PointPrinter printer(QSize(200, 100), PointPrinter::Pdf);
    LoadingDialog dialog;
    QTimer::singleShot(0, &dialog, [&] {
        map.layer->percentComplete = 50;
        QTimer::singleShot(50, &dialog, [&] { map.layer->percentComplete = 100; });
    });
    MapPrinting printing(*map.view);
    map.layer->log.clear();

    QCOMPARE(printing.load(printer, dialog), MapPrinting::Loading::Complete);

    QCOMPARE(map.layer->log, QStringList{"setView(200x100, -50 100 150 0)"});
    QCOMPARE(dialog.values, QList<int>({50, 75}));
    QCOMPARE(map.layer->waitLimit, 60.0);
}

void MapPrintingTest::loadingIsProgressiveForLayersThatAreNot()
{
    PrintedView map;
    map.layer->progressive = false;
    PointPrinter printer(QSize(200, 100), PointPrinter::Pdf);
    LoadingDialog dialog;
    {
        MapPrinting printing(*map.view);
        QCOMPARE(printing.load(printer, dialog), MapPrinting::Loading::Complete);
        QVERIFY(map.layer->progressive);
        QCOMPARE(map.view->getLayerAt(0)->dynamicPropertyNames(), QList<QByteArray>());
    }
    QVERIFY(!map.layer->progressive);
}

void MapPrintingTest::aLayerThatIsStillOpeningIsWaitedFor()
{
    PrintedView map;
    map.layer->valid = false;
    PointPrinter printer(QSize(200, 100), PointPrinter::Pdf);
    LoadingDialog dialog;
    QTimer::singleShot(0, &dialog, [&] { map.layer->valid = true; });
    MapPrinting printing(*map.view);
    printing.setPatience(generous);

    QCOMPARE(printing.load(printer, dialog), MapPrinting::Loading::Complete);

    QVERIFY(map.layer->valid);
}

void MapPrintingTest::hiddenAndFailedLayersAreNotWaitedFor()
{
    PrintedView map;
    map.layer->percentComplete = 0;
    map.layer->visible = false;
    auto* const failed = new TestLayer;
    failed->valid = false;
    failed->percentComplete = 0;
    failed->lastError = "no such file";
    map.view->addLayer(failed);
    PointPrinter printer(QSize(200, 100), PointPrinter::Pdf);
    LoadingDialog dialog;
    MapPrinting printing(*map.view);
    printing.setPatience(generous);

    QCOMPARE(printing.load(printer, dialog), MapPrinting::Loading::Complete);

    QCOMPARE(printing.missingLayers(), QStringList());
}

void MapPrintingTest::loadingEndsWhenNothingComesAnyMore()
{
    PrintedView map;
    map.layer->percentComplete = 0;
    map.layer->setDescription("silent");
    auto* const opening = new TestLayer;
    opening->valid = false;
    opening->setDescription("opening");
    map.view->addLayer(opening);
    map.view->addLayer(new TestLayer);
    PointPrinter printer(QSize(200, 100), PointPrinter::Pdf);
    LoadingDialog dialog;
    MapPrinting printing(*map.view);
    printing.setPatience(hardlyAnything);

    QCOMPARE(printing.load(printer, dialog), MapPrinting::Loading::Incomplete);

    QCOMPARE(printing.missingLayers(), QStringList({"silent", "opening"}));
    QCOMPARE(map.layer->waitLimit, 0.001); // it is not waited for once more
}

void MapPrintingTest::loadingCanBeCancelled()
{
    PrintedView map;
    map.layer->percentComplete = 0;
    PointPrinter printer(QSize(200, 100), PointPrinter::Pdf);
    LoadingDialog dialog;
    QTimer::singleShot(0, &dialog, &QProgressDialog::cancel);
    MapPrinting printing(*map.view);
    printing.setPatience(generous);

    QCOMPARE(printing.load(printer, dialog), MapPrinting::Loading::Cancelled);
}

void MapPrintingTest::aLayerMayGoMeanwhile()
{
    PrintedView map;
    map.layer->percentComplete = 0;
    PointPrinter printer(QSize(200, 100), PointPrinter::Pdf);
    LoadingDialog dialog;
    QTimer::singleShot(0, &dialog, [&] { map.view->deleteAllLayers(); });
    MapPrinting printing(*map.view);
    printing.setPatience(generous);

    QCOMPARE(printing.load(printer, dialog), MapPrinting::Loading::Complete);
    printing.print(printer, nullptr);

    QVERIFY(!printer.pixels().isNull());
}

void MapPrintingTest::theMapMayGoMeanwhile()
{
    PrintedView map;
    map.layer->percentComplete = 0;
    PointPrinter printer(QSize(200, 100), PointPrinter::Pdf);
    LoadingDialog dialog;
    QTimer::singleShot(0, &dialog, [&] { map.view.reset(); });
    MapPrinting printing(*map.view);
    printing.setPatience(generous);

    QCOMPARE(printing.load(printer, dialog), MapPrinting::Loading::Cancelled);
    printing.print(printer, nullptr); // does nothing

    QCOMPARE(printer.job(), QByteArray());
}

void MapPrintingTest::aHugePageIsLoadedCoarser()
{
    PrintedView map;
    PointPrinter printer(QSize(14000, 7000), PointPrinter::Pdf);
    LoadingDialog dialog;
    MapPrinting printing(*map.view);
    map.layer->log.clear();

    QCOMPARE(printing.load(printer, dialog), MapPrinting::Loading::Complete);

    QCOMPARE(map.layer->log, QStringList{"setView(11585x5793, -50 100 150 0)"}); // 64 Mi
}

MAP_TEST_MAIN(MapPrintingTest)

#include "MapPrintingTest.moc"
