#include <corvane/gui/HistogramDisplay.h>

#include <corvane/core/PluginManager.h>
#include <corvane/map/Layer.h>
#include <tests/gui/PanelLayers.h>
#include <tests/gui/PanelPictures.h>
#include <tests/map/MapViewTools.h>
#include <tests/plugins/TestRasters.h>

#include <gdal.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDockWidget>
#include <QFrame>
#include <QGridLayout>
#include <QGroupBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QTranslator>
#include <QtTest>

#include <algorithm>
#include <array>
#include <memory>

using namespace Corvane;
using namespace Corvane::Tests;
using Corvane::Gui::HistogramDisplay;

namespace {

constexpr char settingKey[] = "Gui/HistogramDisplay/ShowAllBands";

using LayerPointer = std::unique_ptr<Map::Layer>;

/// A band for the layer of the test's plugin.
QVariantMap band(const QString& name, const QList<int>& counts, int peak)
{
    QVariantList list;
    for (const int count : counts) {
        list << count;
    }
    return {{"name", name}, {"counts", list}, {"peak", peak}};
}

LayerPointer pluginLayer(const QVariantList& bands)
{
    LayerPointer layer(PluginManager::createLayer("PanelPluginLayer", false));
    if (layer) {
        layer->setProperty("bands", bands);
    }
    return layer;
}

/// What the layer was asked for since the last call.
QStringList takeAsked(const LayerPointer& layer)
{
    const QStringList asked = layer->property("asked").toStringList();
    layer->setProperty("asked", QStringList());
    return asked;
}

QWidget* part(QWidget& panel, const char* name)
{
    return panel.findChild<QWidget*>(name);
}

QString field(QWidget& panel, const char* name)
{
    return panel.findChild<QLineEdit*>(name)->text();
}

/// Mean, deviation, median, mode, largest and smallest value, pointer's value and count.
QStringList fields(QWidget& panel)
{
    QStringList texts;
    for (const char* name :
         {"mean", "stddev", "median", "mode", "max", "min", "histogramValue", "histogramCount"})
    {
        texts << field(panel, name);
    }
    return texts;
}

QStringList bandNames(QWidget& panel)
{
    const auto* const box = panel.findChild<QComboBox*>("bandComboBox");
    QStringList names;
    for (int i = 0; i < box->count(); ++i) {
        names << box->itemText(i);
    }
    return names;
}

const QStringList noFields = {"", "", "", "", "", "", "", ""};

QImage painted(QWidget& panel)
{
    QImage picture(panel.size(), QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    panel.render(&picture);
    return picture;
}

/// The frame's place in the panel, without the line around it.
QRect insideFrame(QWidget& panel)
{
    const QWidget* const frame = part(panel, "histogramFrame");
    return QRect(frame->mapTo(&panel, QPoint()), frame->size()).adjusted(1, 1, -1, -1);
}

/// The panel's plot as the panel paints it.
QImage plotOf(QWidget& panel)
{
    return painted(panel).copy(insideFrame(panel));
}

/// A curve by its corners, which count from the top left of the frame.
struct Curve
{
    QColor colour;
    QPolygon corners;
};

/// The curves on white, the inside of a frame of this size.
QImage drawn(const QSize& frame, const QVector<Curve>& curves)
{
    QImage picture(frame, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::white);
    QPainter painter(&picture);
    painter.setClipRect(0, 0, frame.width() - 1, frame.height() - 1);
    painter.setRenderHint(QPainter::Antialiasing);
    for (const Curve& curve : curves) {
        QColor fill = curve.colour;
        fill.setAlpha(50);
        painter.setPen(curve.colour);
        painter.setBrush(fill);
        painter.drawPolygon(curve.corners);
    }
    return picture.copy(QRect(QPoint(), frame).adjusted(1, 1, -1, -1));
}

bool isWhite(const QImage& picture)
{
    QImage white(picture.size(), picture.format());
    white.fill(Qt::white);
    return picture == white;
}

/// Keeps the texts that are looked up with their contexts.
class Lookups : public QTranslator
{
public:
    QString translate(const char* context, const char* source, const char*, int) const override
    {
        found << QStringLiteral("%1: %2").arg(context, source);
        return QString();
    }
    bool isEmpty() const override { return false; }

    mutable QStringList found;
};

/// A panel whose plot is 100 wide and 50 high, between pixels.
class SmallPanel : public HistogramDisplay
{
public:
    SmallPanel() : HistogramDisplay(nullptr)
    {
        part(*this, "histogramFrame")->setFixedSize(frameSize);
        show();
    }

    const QSize frameSize = QSize(101, 51);
};

} // namespace

class HistogramDisplayTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();

    void theFormIsThatOfTheDesign();
    void theControlsStandInTheirRows();
    void itLooksRight();
    void theParentIsIgnored();
    void theSlotsAreFoundByName();

    void theBandsOfAFileAreListedWithTheirStatistics();
    void theCurveIsThatOfGdalsCounts();
    void thePointerReadsGdalsCounts();

    void theCurveHasItsCornersAtTheLeftOfEachBin();
    void theHighestPeakOfAllBandsIsTheScale();
    void allBandsAreDrawnInTheirOrder();
    void aBandIsDrawnInTheColourOfItsName_data();
    void aBandIsDrawnInTheColourOfItsName();
    void aPeakOfZeroDrawsAFlatCurve();
    void aCountAboveThePeakLeavesThePlot();
    void aBandWithoutCountsDrawsNothing();

    void bandsWithoutANameAreNumberedFromZero();
    void statisticsHaveFourDecimalsAndWholeLimits();
    void choosingABandShowsItsStatisticsWithoutAFetch();
    void aBandBeyondTheHistogramsIsNotShown();

    void anActiveVectorLayerEmptiesAndDisables();
    void aRasterThatCannotCountEmptiesAndDisables();
    void noLayerEmptiesAndDisables();
    void anEmptyAnswerIsSaidInThePlot();
    void anEmptyAnswerCanBeReadOnADarkStyle();
    void theSourceControlsStayDisabled();

    void eachPathAsksInItsOwnWay();
    void aFetchOfAnotherSourceLeavesBandsAndStatistics();
    void theSlotsWithoutALayerDoNothing();
    void aLayerThatIsGoneIsNotAsked();

    void aPressAndADragReadTheBinUnderThePointer();
    void aMoveWithoutAButtonReadsNothing();
    void beyondTheFrameTheReadingStays();
    void withoutAHistogramAPressClearsTheReading();
    void eventsAreNotConsumed();

    void showAllBandsIsKeptForTheNextStart();

private:
    QTemporaryDir folder;
    QString file;
    QString landscape;
};

void HistogramDisplayTest::initTestCase()
{
    QVERIFY(folder.isValid());
    file = folder.filePath("rgb.tif");
    RasterRecipe recipe;
    recipe.size = QSize(400, 300);
    recipe.value = [](int bandNumber, int x, int y) {
        return bandNumber == 1   ? (x * x / 700 + y / 3) % 256
               : bandNumber == 2 ? 40 + (x + y) / 5
                                 : (x ^ y) % 200;
    };
    QVERIFY(makeRaster(file, recipe));
    landscape = folder.filePath("landscape.gpkg");
    QVERIFY(makeLandscape(landscape));
    QApplication::setStyle("windows"); // its group boxes do not tint what is below them
}

void HistogramDisplayTest::init()
{
    Application::instance()->getSettings()->remove(settingKey);
}

void HistogramDisplayTest::theFormIsThatOfTheDesign()
{
    HistogramDisplay panel;
    QCOMPARE(panel.windowTitle(), QString("HistogramDisplay"));
    QCOMPARE(panel.findChildren<QGroupBox*>().size(), 1);
    QVERIFY(panel.findChild<QGroupBox*>()->title().isEmpty());
    QCOMPARE(panel.findChild<QLabel*>("label")->text(), QString("Band:"));
    QVERIFY(bandNames(panel).isEmpty());
    QCOMPARE(panel.findChild<QCheckBox*>("allBandsCheckBox")->text(), QString("Show all bands"));
    QVERIFY(!panel.findChild<QCheckBox*>("allBandsCheckBox")->isChecked());
    QCOMPARE(panel.findChild<QLabel*>("sourceLabel")->text(), QString("Source:"));
    const auto* const source = panel.findChild<QComboBox*>("sourceComboBox");
    QCOMPARE(source->count(), 2);
    QCOMPARE(source->itemText(0), QString("Entire Image"));
    QCOMPARE(source->itemText(1), QString("Current Viewport"));
    QCOMPARE(source->currentIndex(), 0);
    QCOMPARE(panel.findChild<QCheckBox*>("approxCheckBox")->text(),
             QString("Approximate (faster)"));
    const auto* const refresh = panel.findChild<QPushButton*>("refreshButton");
    QCOMPARE(refresh->text(), QString("Refresh"));
    QCOMPARE(refresh->toolTip(), QString("Refresh histogram"));
    QCOMPARE(refresh->icon().pixmap(16).toImage(),
             QIcon(":/resources/refresh.png").pixmap(16).toImage());
    for (const char* name : {"sourceLabel", "sourceComboBox", "approxCheckBox", "refreshButton"}) {
        QVERIFY2(!part(panel, name)->isEnabled(), name);
    }
    const auto* const frame = panel.findChild<QFrame*>("histogramFrame");
    QCOMPARE(frame->minimumSize(), QSize(50, 50));
    QCOMPARE(frame->frameShape(), QFrame::Panel);
    QCOMPARE(frame->frameShadow(), QFrame::Plain);
    QVERIFY(!frame->hasMouseTracking());
    QCOMPARE(panel.findChild<QFrame*>("frame")->frameShape(), QFrame::HLine);
    for (const QLineEdit* line : panel.findChildren<QLineEdit*>()) {
        QVERIFY2(line->isReadOnly(), qPrintable(line->objectName()));
        QVERIFY(line->text().isEmpty());
    }
}

void HistogramDisplayTest::theControlsStandInTheirRows()
{
    HistogramDisplay panel;
    const auto rowsOf = [&panel](const QList<const char*>& names) {
        QStringList rows;
        for (const char* name : names) {
            QWidget* const widget = part(panel, name);
            for (const QGridLayout* grid : panel.findChildren<QGridLayout*>()) {
                const int index = grid->indexOf(widget);
                if (index >= 0) {
                    std::array<int, 4> cell{};
                    grid->getItemPosition(index, &cell[0], &cell[1], &cell[2], &cell[3]);
                    rows << QStringLiteral("%1 %2,%3").arg(name).arg(cell[0]).arg(cell[1]);
                }
            }
        }
        return rows.join("; ");
    };
    QCOMPARE(rowsOf({"label", "bandComboBox", "allBandsCheckBox", "sourceLabel", "sourceComboBox",
                     "approxCheckBox", "refreshButton"}),
             QString("label 0,0; bandComboBox 0,1; allBandsCheckBox 0,2; sourceLabel 2,0; "
                     "sourceComboBox 2,1; approxCheckBox 2,2; refreshButton 2,3"));
    QCOMPARE(rowsOf({"histogramValue", "histogramCount", "frame", "mean", "max", "stddev", "min",
                     "median", "mode"}),
             QString("histogramValue 0,1; histogramCount 0,3; frame 1,0; mean 2,1; max 2,3; "
                     "stddev 3,1; min 3,3; median 4,1; mode 4,3"));
    // each field stands behind the label that names it
    QStringList labels;
    for (const QGridLayout* grid : panel.findChildren<QGridLayout*>()) {
        for (const QLineEdit* line : panel.findChildren<QLineEdit*>()) {
            const int index = grid->indexOf(const_cast<QLineEdit*>(line));
            if (index >= 0) {
                std::array<int, 4> cell{};
                grid->getItemPosition(index, &cell[0], &cell[1], &cell[2], &cell[3]);
                const auto* const label =
                    qobject_cast<QLabel*>(grid->itemAtPosition(cell[0], cell[1] - 1)->widget());
                labels << label->text() + line->objectName();
            }
        }
    }
    labels.sort();
    QCOMPARE(labels,
             QStringList({"Count:histogramCount", "Max Val:max", "Mean:mean", "Median:median",
                          "Min Val:min", "Mode:mode", "Std Dev:stddev", "Value:histogramValue"}));
}

void HistogramDisplayTest::itLooksRight()
{
    const LayerPointer layer(PluginManager::createLayer(rasterClass, false));
    QVERIFY(layer->setDataSource(file));
    QTRY_VERIFY(layer->isValid());
    HistogramDisplay panel;
    panel.show();
    panel.onLayerActivated(layer.get());
    QWidget* const frame = part(panel, "histogramFrame");
    press(*frame, QPoint(frame->width() / 3, 20));
    release(*frame, QPoint(frame->width() / 3, 20));
    QCOMPARE(takePictures(panel, "HistogramOfOneBand"), QStringList());
    panel.findChild<QCheckBox*>("allBandsCheckBox")->click();
    QCOMPARE(takePictures(panel, "HistogramOfAllBands"), QStringList());
    const LayerPointer vectors = openLayer(vectorClass, landscape);
    QVERIFY(vectors);
    panel.onLayerActivated(vectors.get());
    QCOMPARE(takePictures(panel, "HistogramOfVectors"), QStringList());
    const LayerPointer empty = pluginLayer({});
    panel.onLayerActivated(empty.get());
    QCOMPARE(takePictures(panel, "HistogramNotAvailable"), QStringList());
    panel.onLayerActivated(nullptr);
    QCOMPARE(takePictures(panel, "HistogramWithoutALayer"), QStringList());
}

void HistogramDisplayTest::theParentIsIgnored()
{
    QWidget parent;
    const HistogramDisplay panel(&parent);
    QVERIFY(!panel.parent());
    QCOMPARE(panel.windowFlags() & Qt::WindowType_Mask, Qt::WindowFlags(Qt::Window));
    QVERIFY(parent.children().isEmpty());
}

void HistogramDisplayTest::theSlotsAreFoundByName()
{
    for (const char* slot :
         {"onLayerActivated(Map::Layer*)", "on_bandComboBox_activated(int)",
          "on_sourceComboBox_activated(int)", "on_refreshButton_clicked(bool)",
          "on_approxCheckBox_stateChanged(int)", "on_allBandsCheckBox_stateChanged(int)"})
    {
        QVERIFY2(HistogramDisplay::staticMetaObject.indexOfSlot(slot) >= 0, slot);
    }
}

void HistogramDisplayTest::theBandsOfAFileAreListedWithTheirStatistics()
{
    const LayerPointer layer(PluginManager::createLayer(rasterClass, false));
    QVERIFY(layer->setDataSource(file));
    HistogramDisplay panel;
    panel.show();
    panel.onLayerActivated(layer.get());
    QVERIFY(panel.isEnabled());
    QCOMPARE(bandNames(panel), QStringList({"Red", "Green", "Blue"}));
    const Dataset dataset = openRaster(file);
    auto* const bands = panel.findChild<QComboBox*>("bandComboBox");
    bands->setFocus();
    for (int number = 1; number <= 3; ++number) {
        double low = 0.0;
        double high = 0.0;
        double mean = 0.0;
        double deviation = 0.0;
        QCOMPARE(GDALComputeRasterStatistics(GDALGetRasterBand(dataset.get(), number), FALSE, &low,
                                             &high, &mean, &deviation, nullptr, nullptr),
                 CE_None);
        QCOMPARE(bands->currentIndex(), number - 1);
        QCOMPARE(field(panel, "mean"), QString::number(mean, 'f', 4));
        QCOMPARE(field(panel, "stddev"), QString::number(deviation, 'f', 4));
        QCOMPARE(field(panel, "max"), QString::number(high, 'f', 0));
        QCOMPARE(field(panel, "min"), QString::number(low, 'f', 0));
        QTest::keyClick(bands, Qt::Key_Down);
    }
}

namespace {

/// GDAL's own counts of a byte band.
std::vector<GUIntBig> gdalCounts(GDALDatasetH dataset, int number)
{
    std::vector<GUIntBig> counts(256);
    GDALGetRasterHistogramEx(GDALGetRasterBand(dataset, number), -0.5, 255.5, 256, counts.data(),
                             TRUE, FALSE, nullptr, nullptr);
    return counts;
}

} // namespace

void HistogramDisplayTest::theCurveIsThatOfGdalsCounts()
{
    const LayerPointer layer(PluginManager::createLayer(rasterClass, false));
    QVERIFY(layer->setDataSource(file));
    HistogramDisplay panel;
    QWidget* const frame = part(panel, "histogramFrame");
    frame->setFixedSize(256 * 4 + 1, 401);
    panel.show();
    panel.onLayerActivated(layer.get());
    const Dataset dataset = openRaster(file);
    GUIntBig peak = 0;
    for (int number = 1; number <= 3; ++number) {
        const std::vector<GUIntBig> counts = gdalCounts(dataset.get(), number);
        peak = std::max(peak, *std::max_element(counts.begin(), counts.end()));
    }
    const QColor colours[] = {Qt::red, Qt::green, Qt::blue};
    auto* const bands = panel.findChild<QComboBox*>("bandComboBox");
    bands->setFocus();
    for (int number = 1; number <= 3; ++number) {
        QPolygon corners({QPoint(0, 400)});
        const std::vector<GUIntBig> counts = gdalCounts(dataset.get(), number);
        for (int value = 0; value < 256; ++value) {
            const double share = static_cast<double>(counts[value]) / static_cast<double>(peak);
            corners << QPoint(value * 4, 400 - static_cast<int>(400 * share));
        }
        corners << QPoint(1024, 400);
        QCOMPARE(plotOf(panel), drawn(frame->size(), {{colours[number - 1], corners}}));
        QTest::keyClick(bands, Qt::Key_Down);
    }
}

void HistogramDisplayTest::thePointerReadsGdalsCounts()
{
    const LayerPointer layer(PluginManager::createLayer(rasterClass, false));
    QVERIFY(layer->setDataSource(file));
    HistogramDisplay panel;
    QWidget* const frame = part(panel, "histogramFrame");
    frame->setFixedSize(512, 60);
    panel.show();
    panel.onLayerActivated(layer.get());
    const std::vector<GUIntBig> counts = gdalCounts(openRaster(file).get(), 1);
    press(*frame, QPoint(0, 30));
    for (int x = 0; x < 512; ++x) {
        move(*frame, QPoint(x, 30));
        QCOMPARE(field(panel, "histogramValue"), QString::number(x / 2));
        QCOMPARE(field(panel, "histogramCount"), QString::number(counts[x / 2]));
    }
    release(*frame, QPoint(511, 30));
}

void HistogramDisplayTest::theCurveHasItsCornersAtTheLeftOfEachBin()
{
    const LayerPointer layer = pluginLayer({band("grey", {10, 40, 20, 0}, 40)});
    SmallPanel panel;
    panel.onLayerActivated(layer.get());
    const QPolygon corners({QPoint(0, 50), QPoint(0, 38), QPoint(25, 0), QPoint(50, 25),
                            QPoint(75, 50), QPoint(100, 50)});
    QCOMPARE(plotOf(panel), drawn(panel.frameSize, {{QColor(128, 128, 128), corners}}));
}

void HistogramDisplayTest::theHighestPeakOfAllBandsIsTheScale()
{
    const LayerPointer layer = pluginLayer({band("low", {5, 5}, 5), band("high", {20, 20}, 20)});
    SmallPanel panel;
    panel.onLayerActivated(layer.get());
    // 50 * 5 / 20 = 12.5 high
    const QPolygon corners({QPoint(0, 50), QPoint(0, 38), QPoint(50, 38), QPoint(100, 50)});
    QCOMPARE(plotOf(panel), drawn(panel.frameSize, {{QColor(128, 128, 128), corners}}));
}

void HistogramDisplayTest::allBandsAreDrawnInTheirOrder()
{
    const LayerPointer layer = pluginLayer({band("Blue", {5, 10}, 10), band("Red", {10, 5}, 10)});
    SmallPanel panel;
    panel.onLayerActivated(layer.get());
    const Curve blue = {Qt::blue,
                        QPolygon({QPoint(0, 50), QPoint(0, 25), QPoint(50, 0), QPoint(100, 50)})};
    const Curve red = {Qt::red,
                       QPolygon({QPoint(0, 50), QPoint(0, 0), QPoint(50, 25), QPoint(100, 50)})};
    QCOMPARE(plotOf(panel), drawn(panel.frameSize, {blue}));
    QTest::mouseClick(part(panel, "allBandsCheckBox"), Qt::LeftButton, {}, QPoint(8, 8));
    QCOMPARE(plotOf(panel), drawn(panel.frameSize, {blue, red}));
    QVERIFY(plotOf(panel) != drawn(panel.frameSize, {red, blue}));
    QTest::mouseClick(part(panel, "allBandsCheckBox"), Qt::LeftButton, {}, QPoint(8, 8));
    QCOMPARE(plotOf(panel), drawn(panel.frameSize, {blue}));
}

void HistogramDisplayTest::aBandIsDrawnInTheColourOfItsName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QColor>("colour");
    QTest::newRow("red") << "red" << QColor(255, 0, 0);
    QTest::newRow("capitals") << "RED band" << QColor(255, 0, 0);
    QTest::newRow("infrared holds red") << "Infrared" << QColor(255, 0, 0);
    QTest::newRow("green") << "Green" << QColor(0, 255, 0);
    QTest::newRow("blue") << "deep Blue" << QColor(0, 0, 255);
    QTest::newRow("red wins over green") << "green and red" << QColor(255, 0, 0);
    QTest::newRow("green wins over blue") << "blue green" << QColor(0, 255, 0);
    QTest::newRow("any other") << "Band 7" << QColor(128, 128, 128);
    QTest::newRow("no name") << "" << QColor(128, 128, 128);
}

void HistogramDisplayTest::aBandIsDrawnInTheColourOfItsName()
{
    QFETCH(QString, name);
    QFETCH(QColor, colour);
    const LayerPointer layer = pluginLayer({band(name, {10, 20}, 20)});
    SmallPanel panel;
    panel.onLayerActivated(layer.get());
    const QPolygon corners({QPoint(0, 50), QPoint(0, 25), QPoint(50, 0), QPoint(100, 50)});
    QCOMPARE(plotOf(panel), drawn(panel.frameSize, {{colour, corners}}));
}

void HistogramDisplayTest::aPeakOfZeroDrawsAFlatCurve()
{
    const LayerPointer layer = pluginLayer({band("grey", {0, 0, 7}, 0)});
    SmallPanel panel;
    panel.onLayerActivated(layer.get());
    const QPolygon corners(
        {QPoint(0, 50), QPoint(0, 50), QPoint(33, 50), QPoint(66, 50), QPoint(100, 50)});
    QCOMPARE(plotOf(panel), drawn(panel.frameSize, {{QColor(128, 128, 128), corners}}));
}

void HistogramDisplayTest::aCountAboveThePeakLeavesThePlot()
{
    const LayerPointer layer = pluginLayer({band("grey", {2147483647, 1}, 1)});
    SmallPanel panel;
    panel.onLayerActivated(layer.get());
    const QImage plot = plotOf(panel);
    QVERIFY(plot.pixelColor(5, 1) != QColor(Qt::white)); // filled to the top
    QCOMPARE(plot.pixelColor(97, 1), QColor(Qt::white));
}

void HistogramDisplayTest::aBandWithoutCountsDrawsNothing()
{
    const LayerPointer layer = pluginLayer({band("grey", {}, 0)});
    SmallPanel panel;
    panel.onLayerActivated(layer.get());
    const QPolygon corners(QVector<QPoint>{QPoint(0, 50), QPoint(100, 50)});
    QCOMPARE(plotOf(panel), drawn(panel.frameSize, {{QColor(128, 128, 128), corners}}));
    press(*part(panel, "histogramFrame"), QPoint(10, 10));
    QCOMPARE(field(panel, "histogramValue"), QString());
}

void HistogramDisplayTest::bandsWithoutANameAreNumberedFromZero()
{
    const LayerPointer layer =
        pluginLayer({band("", {1}, 1), band("Near infrared", {1}, 1), band("", {1}, 1)});
    HistogramDisplay panel;
    panel.onLayerActivated(layer.get());
    QCOMPARE(bandNames(panel), QStringList({"Band #0", "Near infrared", "Band #2"}));
    panel.onLayerActivated(layer.get());
    QCOMPARE(bandNames(panel).size(), 3);
}

void HistogramDisplayTest::statisticsHaveFourDecimalsAndWholeLimits()
{
    QVariantMap numbers = band("b", {1}, 1);
    numbers.insert({{"mean", 12.34567},
                    {"deviation", 1e6},
                    {"median", -0.00004},
                    {"mode", 2.0},
                    {"maximum", 18446744073709551615ULL},
                    {"minimum", 9223372036854775808ULL}});
    const LayerPointer layer = pluginLayer({numbers});
    HistogramDisplay panel;
    panel.onLayerActivated(layer.get());
    QCOMPARE(fields(panel), QStringList({"12.3457", "1000000.0000", "-0.0000", "2.0000",
                                         "18446744073709551615", "9223372036854775808", "", ""}));
}

void HistogramDisplayTest::choosingABandShowsItsStatisticsWithoutAFetch()
{
    QVariantMap second = band("Blue", {20, 10}, 20);
    second.insert("mean", 2.5);
    const LayerPointer layer = pluginLayer({band("Red", {10, 20}, 20), second});
    SmallPanel panel;
    panel.onLayerActivated(layer.get());
    QCOMPARE(field(panel, "mean"), QString("0.0000"));
    takeAsked(layer);
    auto* const bands = panel.findChild<QComboBox*>("bandComboBox");
    bands->setFocus();
    QTest::keyClick(bands, Qt::Key_Down);
    QCOMPARE(field(panel, "mean"), QString("2.5000"));
    QCOMPARE(takeAsked(layer), QStringList());
    const QPolygon corners({QPoint(0, 50), QPoint(0, 0), QPoint(50, 25), QPoint(100, 50)});
    QCOMPARE(plotOf(panel), drawn(panel.frameSize, {{Qt::blue, corners}}));
}

void HistogramDisplayTest::aBandBeyondTheHistogramsIsNotShown()
{
    QVariantMap last = band("Blue", {20, 10}, 20);
    last.insert("mean", 2.5);
    const LayerPointer layer = pluginLayer({band("Red", {10, 20}, 20), last});
    SmallPanel panel;
    panel.onLayerActivated(layer.get());
    panel.on_bandComboBox_activated(2);
    QCOMPARE(field(panel, "mean"), QString("0.0000"));
    panel.on_bandComboBox_activated(-1);
    QCOMPARE(field(panel, "mean"), QString("0.0000"));
    panel.findChild<QComboBox*>("bandComboBox")->setCurrentIndex(1);
    // the layer has one band less by now
    layer->setProperty("bands", QVariantList({band("Red", {10, 20}, 20)}));
    panel.on_sourceComboBox_activated(0);
    QVERIFY(isWhite(plotOf(panel)));
    panel.on_bandComboBox_activated(1);
    QCOMPARE(field(panel, "mean"), QString("0.0000"));
}

void HistogramDisplayTest::anActiveVectorLayerEmptiesAndDisables()
{
    const LayerPointer layer = pluginLayer({band("Red", {10, 20}, 20)});
    const LayerPointer vectors = openLayer(vectorClass, landscape);
    QVERIFY(vectors);
    SmallPanel panel;
    panel.onLayerActivated(layer.get());
    press(*part(panel, "histogramFrame"), QPoint(10, 10));
    QVERIFY(!fields(panel).contains(""));
    panel.onLayerActivated(vectors.get());
    QVERIFY(!panel.isEnabled());
    QCOMPARE(fields(panel), noFields);
    QCOMPARE(bandNames(panel), QStringList());
    // the histograms of the earlier layer are left, only no band of them is chosen
    QVERIFY(isWhite(plotOf(panel)));
    panel.onLayerActivated(layer.get());
    QVERIFY(panel.isEnabled());
    QCOMPARE(bandNames(panel), QStringList({"Red"}));
}

void HistogramDisplayTest::aRasterThatCannotCountEmptiesAndDisables()
{
    const LayerPointer layer = pluginLayer({band("Red", {10, 20}, 20)});
    HistogramDisplay panel;
    panel.onLayerActivated(layer.get());
    TestRasterLayer plain;
    panel.onLayerActivated(&plain);
    QVERIFY(!panel.isEnabled());
    QCOMPARE(fields(panel), noFields);
}

void HistogramDisplayTest::noLayerEmptiesAndDisables()
{
    const LayerPointer layer = pluginLayer({band("Red", {10, 20}, 20)});
    HistogramDisplay panel;
    panel.onLayerActivated(layer.get());
    QVERIFY(panel.isEnabled());
    panel.onLayerActivated(nullptr);
    QVERIFY(!panel.isEnabled());
    QCOMPARE(fields(panel), noFields);
    QCOMPARE(bandNames(panel), QStringList());
}

void HistogramDisplayTest::anEmptyAnswerIsSaidInThePlot()
{
    const LayerPointer full = pluginLayer({band("Red", {10, 20}, 20)});
    const LayerPointer empty = pluginLayer({});
    HistogramDisplay panel;
    panel.show();
    panel.onLayerActivated(full.get());
    panel.onLayerActivated(empty.get());
    QVERIFY(panel.isEnabled());
    QCOMPARE(fields(panel), noFields);
    QCOMPARE(bandNames(panel), QStringList());
    Lookups lookups;
    QVERIFY(QCoreApplication::installTranslator(&lookups));
    lookups.found.clear();
    const QImage plot = plotOf(panel);
    QCoreApplication::removeTranslator(&lookups);
    QVERIFY(lookups.found.contains("Corvane::Gui::HistogramDisplay: Histograms not available."));

    QImage expected(plot.size() + QSize(2, 2), plot.format());
    expected.fill(Qt::white);
    QPainter painter(&expected);
    painter.setFont(panel.font());
    painter.drawText(QRect(0, 0, expected.width() - 1, expected.height() - 1), Qt::AlignCenter,
                     "Histograms not available.");
    painter.end();
    QCOMPARE(plot, expected.copy(expected.rect().adjusted(1, 1, -1, -1)));
}

void HistogramDisplayTest::anEmptyAnswerCanBeReadOnADarkStyle()
{
    const LayerPointer empty = pluginLayer({});
    HistogramDisplay panel;
    QPalette dark(Qt::white, Qt::black, Qt::gray, Qt::black, Qt::darkGray, Qt::white, Qt::white,
                  Qt::black, Qt::black);
    panel.setPalette(dark);
    panel.show();
    panel.onLayerActivated(empty.get());
    QVERIFY(!isWhite(plotOf(panel)));
}

void HistogramDisplayTest::theSourceControlsStayDisabled()
{
    const LayerPointer layer = pluginLayer({band("Red", {10, 20}, 20)});
    HistogramDisplay panel;
    panel.show();
    panel.onLayerActivated(layer.get());
    for (const char* name : {"sourceComboBox", "approxCheckBox", "refreshButton"}) {
        QVERIFY2(!part(panel, name)->isEnabled(), name);
    }
    for (const char* name : {"bandComboBox", "allBandsCheckBox", "mean"}) {
        QVERIFY2(part(panel, name)->isEnabled(), name);
    }
}

void HistogramDisplayTest::eachPathAsksInItsOwnWay()
{
    // a panel of the plugin, whose controls all work: their slots were bound in the library
    std::unique_ptr<QDockWidget> dock;
    for (QDockWidget* candidate : PluginManager::getDockWidgets()) {
        if (candidate->objectName() == "PanelPluginHistogramDock") {
            dock.reset(candidate);
        } else {
            delete candidate;
        }
    }
    QVERIFY(dock);
    dock->show();
    auto* const panel = qobject_cast<HistogramDisplay*>(dock->widget());
    QVERIFY(panel);
    const LayerPointer layer = pluginLayer({band("Red", {10, 20}, 20)});
    panel->onLayerActivated(layer.get());
    QCOMPARE(takeAsked(layer), QStringList({"image approximate 500x500 no rectangle"}));
    auto* const source = panel->findChild<QComboBox*>("sourceComboBox");
    source->setFocus();
    QTest::keyClick(source, Qt::Key_Down);
    QCOMPARE(takeAsked(layer), QStringList({"viewport exact 500x500 no rectangle"}));
    panel->onLayerActivated(layer.get());
    QCOMPARE(takeAsked(layer), QStringList({"viewport approximate 500x500 no rectangle"}));
    QTest::mouseClick(panel->findChild<QPushButton*>("refreshButton"), Qt::LeftButton);
    QCOMPARE(takeAsked(layer), QStringList({"viewport exact 500x500 no rectangle"}));
    QTest::keyClick(source, Qt::Key_Up);
    QCOMPARE(takeAsked(layer), QStringList({"image approximate 500x500 no rectangle"}));
    QTest::mouseClick(panel->findChild<QPushButton*>("refreshButton"), Qt::LeftButton);
    QCOMPARE(takeAsked(layer), QStringList({"viewport exact 500x500 no rectangle"}));
    panel->findChild<QCheckBox*>("approxCheckBox")->click();
    panel->findChild<QCheckBox*>("allBandsCheckBox")->click();
    QCOMPARE(takeAsked(layer), QStringList());
    panel->on_sourceComboBox_activated(2);
    QCOMPARE(takeAsked(layer), QStringList());
}

void HistogramDisplayTest::aFetchOfAnotherSourceLeavesBandsAndStatistics()
{
    const LayerPointer layer = pluginLayer({band("Red", {10, 20}, 20)});
    SmallPanel panel;
    panel.onLayerActivated(layer.get());
    QVariantMap other = band("Blue", {20, 10}, 20);
    other.insert("mean", 3.0);
    layer->setProperty("bands", QVariantList({other, other}));
    panel.on_refreshButton_clicked(false);
    QCOMPARE(bandNames(panel), QStringList({"Red"}));
    QCOMPARE(field(panel, "mean"), QString("0.0000"));
    // the plot and the reading are those of the new histograms
    const QPolygon corners({QPoint(0, 50), QPoint(0, 0), QPoint(50, 25), QPoint(100, 50)});
    QCOMPARE(plotOf(panel), drawn(panel.frameSize, {{Qt::blue, corners}}));
    press(*part(panel, "histogramFrame"), QPoint(0, 10));
    QCOMPARE(field(panel, "histogramCount"), QString("20"));
}

void HistogramDisplayTest::theSlotsWithoutALayerDoNothing()
{
    SmallPanel panel;
    panel.on_bandComboBox_activated(0);
    panel.on_sourceComboBox_activated(1);
    panel.on_refreshButton_clicked(true);
    QCOMPARE(fields(panel), noFields);
    QVERIFY(!isWhite(plotOf(panel))); // says that there are none
}

void HistogramDisplayTest::aLayerThatIsGoneIsNotAsked()
{
    LayerPointer layer = pluginLayer({band("Red", {10, 20}, 20)});
    SmallPanel panel;
    panel.onLayerActivated(layer.get());
    layer.reset();
    panel.on_refreshButton_clicked(false);
    panel.on_sourceComboBox_activated(0);
    panel.on_bandComboBox_activated(0);
    QCOMPARE(bandNames(panel), QStringList({"Red"}));
}

void HistogramDisplayTest::aPressAndADragReadTheBinUnderThePointer()
{
    const LayerPointer layer = pluginLayer({band("Red", {11, 22, 33}, 33)});
    SmallPanel panel;
    panel.onLayerActivated(layer.get());
    QWidget* const frame = part(panel, "histogramFrame");
    press(*frame, QPoint(0, 10), Qt::RightButton);
    QCOMPARE(field(panel, "histogramValue"), QString("0")); // the bin's number
    QCOMPARE(field(panel, "histogramCount"), QString("11"));
    move(*frame, QPoint(34, -500), Qt::RightButton);
    QCOMPARE(field(panel, "histogramValue"), QString("1"));
    QCOMPARE(field(panel, "histogramCount"), QString("22"));
    move(*frame, QPoint(100, 10), Qt::RightButton); // the last column
    QCOMPARE(field(panel, "histogramValue"), QString("2"));
    QCOMPARE(field(panel, "histogramCount"), QString("33"));
}

void HistogramDisplayTest::aMoveWithoutAButtonReadsNothing()
{
    const LayerPointer layer = pluginLayer({band("Red", {11, 22, 33}, 33)});
    SmallPanel panel;
    panel.onLayerActivated(layer.get());
    move(*part(panel, "histogramFrame"), QPoint(10, 10), Qt::NoButton);
    QCOMPARE(field(panel, "histogramValue"), QString());
}

void HistogramDisplayTest::beyondTheFrameTheReadingStays()
{
    const LayerPointer layer = pluginLayer({band("Red", {11, 22, 33}, 33)});
    SmallPanel panel;
    panel.onLayerActivated(layer.get());
    QWidget* const frame = part(panel, "histogramFrame");
    press(*frame, QPoint(50, 10));
    for (const int x : {-1, -100, 101, 5000}) {
        move(*frame, QPoint(x, 10));
        QCOMPARE(field(panel, "histogramValue"), QString("1"));
        QCOMPARE(field(panel, "histogramCount"), QString("22"));
    }
}

void HistogramDisplayTest::withoutAHistogramAPressClearsTheReading()
{
    const LayerPointer layer = pluginLayer({band("Red", {11, 22, 33}, 33)});
    SmallPanel panel;
    panel.onLayerActivated(layer.get());
    QWidget* const frame = part(panel, "histogramFrame");
    press(*frame, QPoint(50, 10));
    layer->setProperty("bands", QVariantList());
    panel.on_refreshButton_clicked(false);
    QCOMPARE(field(panel, "histogramValue"), QString("1"));
    press(*frame, QPoint(-5, 10)); // wherever it is
    QCOMPARE(fields(panel),
             QStringList({"0.0000", "0.0000", "0.0000", "0.0000", "0", "0", "", ""}));
}

void HistogramDisplayTest::eventsAreNotConsumed()
{
    SmallPanel panel;
    QWidget* const frame = part(panel, "histogramFrame");
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseMove}) {
        QMouseEvent event(type, QPointF(5, 5), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QVERIFY(!panel.eventFilter(frame, &event));
    }
}

void HistogramDisplayTest::showAllBandsIsKeptForTheNextStart()
{
    QSettings* const settings = Application::instance()->getSettings();
    {
        HistogramDisplay panel;
        panel.show();
        QTest::mouseClick(part(panel, "allBandsCheckBox"), Qt::LeftButton, {}, QPoint(8, 8));
        QVERIFY(!settings->contains(settingKey));
    }
    QCOMPARE(settings->value(settingKey), QVariant(true));
    {
        HistogramDisplay panel;
        QVERIFY(panel.findChild<QCheckBox*>("allBandsCheckBox")->isChecked());
        panel.show();
        QTest::mouseClick(part(panel, "allBandsCheckBox"), Qt::LeftButton, {}, QPoint(8, 8));
    }
    QCOMPARE(settings->value(settingKey), QVariant(false));
}

MAP_TEST_MAIN(HistogramDisplayTest)

#include "HistogramDisplayTest.moc"
