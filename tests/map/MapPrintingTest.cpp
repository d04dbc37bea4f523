#include "MapViewTools.h"

#include <tests/support/MessageLines.h>
#include <tests/support/PointPrinter.h>
#include <tests/support/VirtualSlot.h>

#include <corvane/map/MapCanvas.h>

#include <QProgressBar>
#include <QProgressDialog>

#include <functional>

using Corvane::GeoPainter;
using Corvane::Map::Layer;
using Corvane::Map::MapCanvas;

namespace {

constexpr QRgb frameColour = qRgb(44, 44, 44);

/// Like TestLayer, and a test may look at the painter.
class PrintedLayer : public TestLayer
{
    Q_OBJECT
public:
    void paint(GeoPainter& painter, QRectF* worldRect, QRect* device) override
    {
        TestLayer::paint(painter, worldRect, device);
        if (onPaint) {
            onPaint(painter);
        }
    }

    std::function<void(GeoPainter&)> onPaint;
};

/// A layer that declares what printing sets.
class SettingsLayer : public TestLayer
{
    Q_OBJECT
    Q_PROPERTY(bool Progressive MEMBER progressive)
    Q_PROPERTY(bool AdaptiveRoam MEMBER adaptiveRoam)
    Q_PROPERTY(bool PixmapSmoothing MEMBER smoothing)
public:
    bool progressive = true;
    bool adaptiveRoam = true;
    bool smoothing = false;
};

/// A dialog that keeps its values; reset would put it back at the end.
class KeepingDialog : public QProgressDialog
{
public:
    KeepingDialog()
    {
        setRange(0, 100);
        setAutoReset(false);
        setMinimumDuration(1000000);
        connect(findChild<QProgressBar*>(), &QProgressBar::valueChanged, this,
                [this](int value) { values << value; });
    }

    QList<int> values;
};

/// A canvas with one layer that is told of a view of 20100 units across, of which a page of 201 by
/// 1025 pixels shows 102500 units: 1024 pixels span those, so that a strip has the half of them.
struct PrintedMap
{
    PrintedMap() : canvas(nullptr)
    {
        canvas.addLayer(layer);
        canvas.setView(300, 200, 0.9, 500000.9, 20100.9, 480000.0);
        layer->log.clear();
    }

    MapCanvas canvas;
    PrintedLayer* layer = new PrintedLayer; // the canvas's
};

constexpr QSize threeStrips(201, 1025);

QString paintOfThePage()
{
    return QStringLiteral("paint(0 500000 20100 397500, 0 0 200 1024)");
}

QStringList firstStrip()
{
    return {"beginUpdate(roam)", "setView(201x512, 0 500000 20200.5 448750)", paintOfThePage(),
            "endUpdate"};
}

QStringList secondStrip()
{
    return {"beginUpdate(roam)", "setView(201x512, 0 448750 20200.5 397500)", paintOfThePage(),
            "endUpdate"};
}

QStringList thirdStrip()
{
    return {"beginUpdate(roam)", "setView(201x512, 0 397500 20200.5 346250)", paintOfThePage(),
            "endUpdate"};
}

class OtherCanvas : public MapCanvas
{
public:
    using MapCanvas::MapCanvas;
    void print(QPrinter&, QProgressDialog*) override { printed = true; }

    bool printed = false;
};

} // namespace

class MapPrintingTest : public QObject
{
    Q_OBJECT
private slots:
    void theOperationStandsRightBehindThoseOfQObject();
    void aCanvasOfTheProgramsOwnPrintsInItsOwnWay();

    void aNorthUpWorldKeepsItsWidthAndItsTop_data();
    void aNorthUpWorldKeepsItsWidthAndItsTop();
    void aWorldThatIsNotNorthUpIsGrownToThePage_data();
    void aWorldThatIsNotNorthUpIsGrownToThePage();
    void theViewIsTruncatedToWholeUnits_data();
    void theViewIsTruncatedToWholeUnits();
    void extentsArePrintedAsTheyAre();
    void aWorldOfLessThanAUnitIsPrintedAsAPoint();
    void thePageIsWhatTheMarginsLeave();
    void aPageInsideOutIsTurned();

    void aPdfFileTakesOneViewAndOnePaint();
    void aPdfFileLeavesTheDialogAlone();
    void aPdfFileIsPaintedWithoutAClip();
    void aDeviceTakesStripsOf512Rows();
    void aLowPageTakesOneWholeStrip();
    void aPageOfWholeStripsTakesNoFurtherOne();
    void theClipIsTheWorldOnThePage();
    void thePainterMapsTheWorldToThePage();
    void theScaleRangeIsThatOfThePage();

    void eachStripIsTold();
    void theDialogFollowsTheStrips();
    void withoutADialogAllStripsArePrinted();
    void eventsAreProcessedBetweenStrips();
    void withoutADialogNoEventIsProcessed();
    void aCancelStopsBehindTheStripInProgress();
    void aCancelLeavesAPartOfThePageAndItsFrame();
    void aPageWithoutHeightGetsItsFrameOnly();

    void everyLayerGetsTheSettingsOfAPrintAndKeepsThem_data();
    void everyLayerGetsTheSettingsOfAPrintAndKeepsThem();
    void theSettingsStandBeforeTheFirstView();
    void layersBesideTheStackKeepTheirSettings();
    void hiddenAndInvalidLayersAreNotPrinted();
    void theCanvasKeepsTheViewOfThePrint_data();
    void theCanvasKeepsTheViewOfThePrint();
    void theManagerOfTheViewIsToldNothing();
    void theFrameLiesOverAllWithoutAClip();
};

void MapPrintingTest::theOperationStandsRightBehindThoseOfQObject()
{
    QCOMPARE(slotOf(&MapCanvas::print), lastSlotOfQObject() + 1);
}

void MapPrintingTest::aCanvasOfTheProgramsOwnPrintsInItsOwnWay()
{
    OtherCanvas canvas(nullptr);
    PointPrinter printer(threeStrips);

    static_cast<MapCanvas&>(canvas).print(printer, nullptr);

    QVERIFY(canvas.printed);
}

void MapPrintingTest::aNorthUpWorldKeepsItsWidthAndItsTop_data()
{
    QTest::addColumn<QRectF>("view");
    QTest::addColumn<QSize>("page");
    QTest::addColumn<QString>("printed");

    QTest::newRow("a wide world is stretched")
        << world(0, 100, 200, 50) << QSize(100, 100) << QStringLiteral("0 100 200 -100");
    QTest::newRow("a high world is cut")
        << world(10, 400, 110, 0) << QSize(100, 50) << QStringLiteral("10 400 110 350");
    QTest::newRow("the bottom is truncated towards zero")
        << world(0, 10, 100, 0) << QSize(300, 100) << QStringLiteral("0 10 100 -23");
    QTest::newRow("a world from right to left keeps its width, and is turned over")
        << world(100, 100, 0, 50) << QSize(100, 100) << QStringLiteral("100 100 0 200");
}

void MapPrintingTest::aNorthUpWorldKeepsItsWidthAndItsTop()
{
    QFETCH(QRectF, view);
    QFETCH(QSize, page);
    PrintedMap map;
    map.canvas.setView(10, 10, view.left(), view.top(), view.right(), view.bottom());
    map.layer->log.clear();
    PointPrinter printer(page, PointPrinter::Pdf);

    map.canvas.print(printer, nullptr);

    QTEST(QString(map.layer->log.first()).section(' ', 1).chopped(1), "printed");
}

void MapPrintingTest::aWorldThatIsNotNorthUpIsGrownToThePage_data()
{
    QTest::addColumn<QRectF>("view");
    QTest::addColumn<QSize>("page");
    QTest::addColumn<QString>("printed");

    QTest::newRow("a wide one downwards")
        << world(0, 0, 200, 50) << QSize(100, 100) << QStringLiteral("0 0 200 200");
    QTest::newRow("a high one to the right")
        << world(5, 0, 55, 100) << QSize(300, 100) << QStringLiteral("5 0 305 100");
    QTest::newRow("one of the page's shape stays")
        << world(5, 5, 55, 55) << QSize(100, 100) << QStringLiteral("5 5 55 55");
    QTest::newRow("the right edge is truncated towards zero")
        << world(-50, 0, -49, 10) << QSize(100, 300) << QStringLiteral("-50 0 -46 10");
    QTest::newRow("a flat one becomes as high as the page")
        << world(0, 7, 30, 7) << QSize(100, 100) << QStringLiteral("0 7 30 37");
}

void MapPrintingTest::aWorldThatIsNotNorthUpIsGrownToThePage()
{
    aNorthUpWorldKeepsItsWidthAndItsTop();
}

void MapPrintingTest::theViewIsTruncatedToWholeUnits_data()
{
    QTest::addColumn<QRectF>("view");
    QTest::addColumn<QSize>("page");
    QTest::addColumn<QString>("printed");

    QTest::newRow("downwards above zero")
        << world(0.9, 100.9, 50.9, 50.9) << QSize(100, 100) << QStringLiteral("0 100 50 50");
    QTest::newRow("upwards below zero")
        << world(-50.9, -0.9, -0.9, -50.9) << QSize(100, 100) << QStringLiteral("-50 0 0 -50");
}

void MapPrintingTest::theViewIsTruncatedToWholeUnits()
{
    aNorthUpWorldKeepsItsWidthAndItsTop();
}

void MapPrintingTest::extentsArePrintedAsTheyAre()
{
    PrintedMap map;
    PointPrinter pdf(QSize(100, 50), PointPrinter::Pdf);

    map.canvas.printExtents(pdf, nullptr, world(0.125, 0.75, 0.625, 0.25));

    QCOMPARE(map.layer->log, QStringList({"setView(100x50, 0.125 0.75 0.625 0.25)",
                                          "paint(0.125 0.75 0.625 0.25, 0 0 99 49)"}));
    map.layer->log.clear();
    PointPrinter device(QSize(101, 513));

    map.canvas.printExtents(device, nullptr, world(0.0, 1.0, 0.5, 0.0));

    QCOMPARE(map.layer->log, QStringList({"beginUpdate(roam)", "setView(101x512, 0 1 0.505 0)",
                                          "paint(0 1 0.5 0, 0 0 100 512)", "endUpdate",
                                          "beginUpdate(roam)", "setView(101x512, 0 0 0.505 -1)",
                                          "paint(0 1 0.5 0, 0 0 100 512)", "endUpdate"}));
}

void MapPrintingTest::aWorldOfLessThanAUnitIsPrintedAsAPoint()
{
    PrintedMap map;
    map.canvas.setView(10, 10, 0.25, 0.75, 0.75, 0.25);
    map.layer->log.clear();
    PointPrinter printer(QSize(100, 100), PointPrinter::Pdf);

    map.canvas.print(printer, nullptr);

    QCOMPARE(map.layer->log.first(), QStringLiteral("setView(100x100, 0 0 0 0)"));
}

void MapPrintingTest::thePageIsWhatTheMarginsLeave()
{
    PrintedMap map;
    PointPrinter printer(QSize(120, 130), PointPrinter::Pdf);
    printer.setPageMargins(QMarginsF(5, 20, 15, 10), QPageLayout::Point);
    QCOMPARE(printer.page(), QRect(5, 20, 100, 100));

    map.canvas.print(printer, nullptr);

    QCOMPARE(map.layer->log, QStringList({"setView(100x100, 0 500000 20100 479900)",
                                          "paint(0 500000 20100 479900, 0 0 99 99)"}));
}

// Margins that meet beyond one another leave a page of negative height. The world is fitted to it as
// it is, so it comes out mirrored, which no scale range shows; the page itself is turned.
void MapPrintingTest::aPageInsideOutIsTurned()
{
    PrintedMap map;
    PointPrinter printer(QSize(100, 200));
    printer.setPageMargins(QMarginsF(0, 150, 0, 100), QPageLayout::Point);
    QCOMPARE(printer.page(), QRect(0, 150, 100, -50));
    map.canvas.setView(10, 10, 0, 100, 100, 0);
    map.layer->log.clear();

    map.canvas.print(printer, nullptr);

    QCOMPARE(map.layer->log,
             QStringList(
                 {"beginUpdate(roam)", "setView(100x512, 0 100 -202.02 -903.922)", "endUpdate"}));
    QCOMPARE(printer.pixels().pixel(50, 149), frameColour);
}

void MapPrintingTest::aPdfFileTakesOneViewAndOnePaint()
{
    PrintedMap map;
    PointPrinter printer(threeStrips, PointPrinter::Pdf);
    MessageLines lines;

    map.canvas.print(printer, nullptr);

    QCOMPARE(map.layer->log,
             QStringList({"setView(201x1025, 0 500000 20100 397500)", paintOfThePage()}));
    QCOMPARE(lines.all(), QStringList());
}

void MapPrintingTest::aPdfFileLeavesTheDialogAlone()
{
    PrintedMap map;
    PointPrinter printer(threeStrips, PointPrinter::Pdf);
    KeepingDialog dialog;
    dialog.cancel();

    map.canvas.print(printer, &dialog);

    QCOMPARE(map.layer->log.size(), 2);
    QVERIFY(dialog.wasCanceled());
    QCOMPARE(dialog.value(), -1);
    QCOMPARE(dialog.values, QList<int>());
}

void MapPrintingTest::aPdfFileIsPaintedWithoutAClip()
{
    PrintedMap map;
    bool clipped = true;
    map.layer->onPaint = [&clipped](GeoPainter& painter) { clipped = painter.hasClipping(); };
    PointPrinter printer(threeStrips, PointPrinter::Pdf);

    map.canvas.print(printer, nullptr);

    QVERIFY(!clipped);
}

void MapPrintingTest::aDeviceTakesStripsOf512Rows()
{
    PrintedMap map;
    PointPrinter printer(threeStrips);
    QCOMPARE(printer.outputFormat(), QPrinter::NativeFormat);

    map.canvas.print(printer, nullptr);

    QCOMPARE(map.layer->log, firstStrip() + secondStrip() + thirdStrip());
    QCOMPARE(PrinterQueue::takeJobs().size(), 1);
}

void MapPrintingTest::aLowPageTakesOneWholeStrip()
{
    PrintedMap map;
    PointPrinter printer(QSize(201, 65));

    map.canvas.print(printer, nullptr);

    QCOMPARE(map.layer->log,
             QStringList({"beginUpdate(roam)", "setView(201x512, 0 500000 20200.5 448000)",
                          "paint(0 500000 20100 493500, 0 0 200 64)", "endUpdate"}));
}

void MapPrintingTest::aPageOfWholeStripsTakesNoFurtherOne()
{
    PrintedMap map;
    PointPrinter printer(QSize(201, 1024));
    MessageLines lines;

    map.canvas.print(printer, nullptr);

    QCOMPARE(map.layer->log.filter(QStringLiteral("setView")).size(), 2);
    QCOMPARE(lines.all().last(), QStringLiteral("debug: Printing 50% complete"));
}

void MapPrintingTest::theClipIsTheWorldOnThePage()
{
    PrintedMap map;
    QList<QRectF> clips;
    map.layer->onPaint = [&clips](GeoPainter& painter) { clips << painter.clipBoundingRect(); };
    PointPrinter printer(threeStrips);

    map.canvas.print(printer, nullptr);

    const QRectF page(0, 0, 200, 1024); // up to the pixel of the far corner
    QCOMPARE(clips, QList<QRectF>({page, page, page}));
}

void MapPrintingTest::thePainterMapsTheWorldToThePage()
{
    PrintedMap map;
    QPoint farCorner;
    map.layer->onPaint = [&farCorner](GeoPainter& painter) {
        int x = 0;
        int y = 0;
        painter.mapWorldToDevice(20100, 397500, &x, &y);
        farCorner = QPoint(x, y);
    };
    PointPrinter printer(threeStrips);

    map.canvas.print(printer, nullptr);

    QCOMPARE(farCorner, QPoint(200, 1024));
}

// 20100 units on 201 pixels are 1 : 377953.255..., whatever a strip shows.
void MapPrintingTest::theScaleRangeIsThatOfThePage()
{
    PrintedMap map;
    auto* const tooCoarse = new PrintedLayer;
    tooCoarse->setMaxScale(377953.0);
    map.canvas.addLayer(tooCoarse);
    auto* const fitting = new PrintedLayer;
    fitting->setMinScale(377953.0);
    fitting->setMaxScale(377954.0);
    map.canvas.addLayer(fitting);
    PointPrinter printer(threeStrips);

    map.canvas.print(printer, nullptr);

    QCOMPARE(tooCoarse->log.filter(QStringLiteral("setView")).size(), 3);
    QCOMPARE(tooCoarse->log.filter(QStringLiteral("paint")).size(), 0);
    QCOMPARE(fitting->log.filter(QStringLiteral("paint")).size(), 3);
}

void MapPrintingTest::eachStripIsTold()
{
    PrintedMap map;
    PointPrinter printer(threeStrips);
    MessageLines lines;

    map.canvas.print(printer, nullptr);

    QCOMPARE(lines.all(),
             QStringList({"debug: Printing strip 0 of 2", "debug: Printing 0% complete",
                          "debug: Printing strip 1 of 2", "debug: Printing 49% complete",
                          "debug: Printing strip 2 of 2", "debug: Printing 99% complete"}));
}

void MapPrintingTest::theDialogFollowsTheStrips()
{
    PrintedMap map;
    PointPrinter printer(threeStrips);
    KeepingDialog dialog;

    map.canvas.print(printer, &dialog);

    QCOMPARE(dialog.values, QList<int>({0, 49, 99, 100}));
}

void MapPrintingTest::withoutADialogAllStripsArePrinted()
{
    PrintedMap map;
    PointPrinter printer(QSize(201, 5121));

    map.canvas.print(printer, nullptr);

    QCOMPARE(map.layer->log.filter(QStringLiteral("setView")).size(), 11);
}

void MapPrintingTest::eventsAreProcessedBetweenStrips()
{
    PrintedMap map;
    PointPrinter printer(threeStrips);
    KeepingDialog dialog;
    QStringList& log = map.layer->log;
    QMetaObject::invokeMethod(
        &dialog, [&log] { log << QStringLiteral("event"); }, Qt::QueuedConnection);

    map.canvas.print(printer, &dialog);

    QCOMPARE(log, firstStrip() + QStringList{"event"} + secondStrip() + thirdStrip());
}

void MapPrintingTest::withoutADialogNoEventIsProcessed()
{
    PrintedMap map;
    PointPrinter printer(threeStrips);
    QObject receiver;
    bool processed = false;
    QMetaObject::invokeMethod(
        &receiver, [&processed] { processed = true; }, Qt::QueuedConnection);

    map.canvas.print(printer, nullptr);
    QVERIFY(!processed);

    QCoreApplication::processEvents();
    QVERIFY(processed);
}

void MapPrintingTest::aCancelStopsBehindTheStripInProgress()
{
    PrintedMap map;
    PointPrinter printer(threeStrips);
    KeepingDialog dialog;
    map.layer->onPaint = [&](GeoPainter&) {
        if (map.layer->log.size() > 4) { // in the second strip
            dialog.cancel();
        }
    };
    MessageLines lines;

    map.canvas.print(printer, &dialog);

    QCOMPARE(map.layer->log, firstStrip() + secondStrip());
    QCOMPARE(lines.all().last(), QStringLiteral("debug: Printing 49% complete"));
    QCOMPARE(dialog.values.last(), 100);
    QVERIFY(!dialog.values.contains(49));
}

void MapPrintingTest::aCancelLeavesAPartOfThePageAndItsFrame()
{
    PrintedMap map;
    PointPrinter printer(threeStrips);
    KeepingDialog dialog;
    int strip = 0;
    map.layer->onPaint = [&](GeoPainter& painter) {
        painter.fillRect(0, strip * 512, 201, 512, Qt::red);
        if (++strip == 2) {
            dialog.cancel();
        }
    };

    map.canvas.print(printer, &dialog);

    const QImage page = printer.pixels();
    QCOMPARE(page.size(), threeStrips);
    QCOMPARE(page.pixel(100, 100), qRgb(255, 0, 0));
    QCOMPARE(page.pixel(100, 1000), qRgb(255, 0, 0));
    QCOMPARE(page.pixel(100, 1023), qRgb(255, 0, 0)); // the frame's inner row lies on 1024
    QCOMPARE(page.pixel(0, 500), frameColour);
    QCOMPARE(page.pixel(100, 0), frameColour);
    QCOMPARE(page.pixel(100, 1024), frameColour);
}

void MapPrintingTest::aPageWithoutHeightGetsItsFrameOnly()
{
    PrintedMap map;
    PointPrinter printer(QSize(100, 200));
    printer.setPageMargins(QMarginsF(0, 100, 0, 100), QPageLayout::Point);
    QCOMPARE(printer.page(), QRect(0, 100, 100, 0));
    KeepingDialog dialog;

    map.canvas.print(printer, &dialog);

    QCOMPARE(map.layer->log, QStringList());
    QCOMPARE(dialog.values, QList<int>({100}));
    const QImage page = printer.pixels();
    QCOMPARE(page.pixel(50, 50), qRgb(255, 255, 255));
    QCOMPARE(page.pixel(50, 100), frameColour);
}

void MapPrintingTest::everyLayerGetsTheSettingsOfAPrintAndKeepsThem_data()
{
    QTest::addColumn<bool>("pdf");
    QTest::addColumn<bool>("visible");
    QTest::addColumn<bool>("valid");

    QTest::newRow("a shown layer on a device") << false << true << true;
    QTest::newRow("a shown layer in a PDF file") << true << true << true;
    QTest::newRow("a hidden layer") << false << false << true;
    QTest::newRow("an invalid layer") << true << true << false;
}

void MapPrintingTest::everyLayerGetsTheSettingsOfAPrintAndKeepsThem()
{
    QFETCH(bool, pdf);
    QFETCH(bool, visible);
    QFETCH(bool, valid);
    PrintedMap map;
    auto* const layer = new SettingsLayer;
    layer->visible = visible;
    layer->valid = valid;
    map.canvas.getLayers().append(nullptr);
    map.canvas.addLayer(layer);
    PointPrinter printer(threeStrips, pdf ? PointPrinter::Pdf : PointPrinter::Device);

    map.canvas.print(printer, nullptr);

    QVERIFY(!layer->progressive);
    QVERIFY(!layer->adaptiveRoam);
    QVERIFY(layer->smoothing);
    // one that declares none of them has them all the same
    QCOMPARE(map.layer->property("Progressive"), QVariant(false));
    QCOMPARE(map.layer->property("AdaptiveRoam"), QVariant(false));
    QCOMPARE(map.layer->property("PixmapSmoothing"), QVariant(true));
    QCOMPARE(map.layer->dynamicPropertyNames(),
             QList<QByteArray>({"Progressive", "AdaptiveRoam", "PixmapSmoothing"}));
}

void MapPrintingTest::theSettingsStandBeforeTheFirstView()
{
    class WatchingLayer : public SettingsLayer
    {
    public:
        void setView(int, int, double, double, double, double) override { see(); }
        void beginUpdate(bool) override { see(); }
        QStringList seen;

    private:
        void see()
        {
            seen << QStringLiteral("%1%2%3").arg(progressive).arg(adaptiveRoam).arg(smoothing);
        }
    };
    PrintedMap map;
    auto* const layer = new WatchingLayer;
    map.canvas.addLayer(layer);
    PointPrinter printer(QSize(201, 65));

    map.canvas.print(printer, nullptr);

    QCOMPARE(layer->seen, QStringList({"001", "001"}));
}

void MapPrintingTest::layersBesideTheStackKeepTheirSettings()
{
    PrintedMap map;
    SettingsLayer above;
    SettingsLayer below;
    map.canvas.getOverlayLayers().append(&above);
    map.canvas.getBackgroundLayers().append(&below);
    PointPrinter printer(threeStrips);

    map.canvas.print(printer, nullptr);

    QVERIFY(above.progressive && above.adaptiveRoam && !above.smoothing);
    QVERIFY(below.progressive && below.adaptiveRoam && !below.smoothing);
    QCOMPARE(above.log, QStringList({paintOfThePage(), paintOfThePage(), paintOfThePage()}));
    QCOMPARE(below.log, above.log);
    map.canvas.getOverlayLayers().clear();
    map.canvas.getBackgroundLayers().clear();
}

void MapPrintingTest::hiddenAndInvalidLayersAreNotPrinted()
{
    PrintedMap map;
    auto* const hidden = new PrintedLayer;
    hidden->visible = false;
    map.canvas.addLayer(hidden);
    auto* const invalid = new PrintedLayer;
    invalid->valid = false;
    map.canvas.addLayer(invalid);
    PointPrinter printer(threeStrips);

    map.canvas.print(printer, nullptr);

    QCOMPARE(hidden->log, QStringList());
    QCOMPARE(invalid->log, QStringList());
}

void MapPrintingTest::theCanvasKeepsTheViewOfThePrint_data()
{
    QTest::addColumn<bool>("pdf");
    QTest::addColumn<QString>("bounds");

    QTest::newRow("the last strip of a device") << false << QStringLiteral("0 397500 20200 346250");
    QTest::newRow("the page of a PDF file") << true << QStringLiteral("0 500000 20100 397500");
}

void MapPrintingTest::theCanvasKeepsTheViewOfThePrint()
{
    QFETCH(bool, pdf);
    PrintedMap map;
    PointPrinter printer(threeStrips, pdf ? PointPrinter::Pdf : PointPrinter::Device);

    map.canvas.print(printer, nullptr);

    QTEST(text(map.canvas.getBounds()), "bounds");
}

void MapPrintingTest::theManagerOfTheViewIsToldNothing()
{
    const auto view = makeView(Motion::Direct);
    view->addLayer(new TestLayer);
    const QString bounds = text(view->getBounds());
    QStringList journal;
    record(*view, &journal);
    PointPrinter printer(threeStrips);

    view->getMapCanvas()->print(printer, nullptr);

    QCOMPARE(text(view->getBounds()), bounds);
    QCOMPARE(journal, QStringList());
}

void MapPrintingTest::theFrameLiesOverAllWithoutAClip()
{
    for (const PointPrinter::Output output : {PointPrinter::Device, PointPrinter::Pdf}) {
        PrintedMap map;
        map.layer->onPaint = [](GeoPainter& painter) {
            painter.fillRect(0, 0, 201, 1025, Qt::yellow);
            painter.setClipRect(0, 0, 10, 10);
            painter.setPen(Qt::green);
        };
        PointPrinter printer(threeStrips, output);

        map.canvas.print(printer, nullptr);

        const QImage page = printer.pixels();
        QCOMPARE(page.size(), threeStrips);
        QCOMPARE(page.pixel(100, 0), frameColour);
        QCOMPARE(page.pixel(0, 700), frameColour);
        QCOMPARE(page.pixel(200, 700), frameColour);
        QCOMPARE(page.pixel(100, 1024), frameColour);
        QCOMPARE(page.pixel(100, 3), qRgb(255, 255, 0));
        QCOMPARE(page.pixel(3, 700), qRgb(255, 255, 0));
    }
}

MAP_TEST_MAIN(MapPrintingTest)

#include "MapPrintingTest.moc"
