#include <viewer/cells/CellGridPanel.h>
#include <viewer/cells/IdentifyPanel.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/cells/ProbePoint.h>
#include <viewer/batch/Startup.h>
#include <viewer/window/ViewerWindow.h>

#include <corvane/core/Application.h>
#include <corvane/gui/MapTreeView.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>
#include <corvane/map/ViewManager.h>
#include <tests/gui/MapTreeTools.h>
#include <tests/gui/PanelPictures.h>
#include <tests/plugins/SlowServer.h>
#include <tests/plugins/TestRasters.h>
#include <tests/support/EachInItsProcess.h>

#include <QAction>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDockWidget>
#include <QFile>
#include <QLabel>
#include <QMdiArea>
#include <QSettings>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QThreadPool>
#include <QToolButton>
#include <QTreeWidget>
#include <QtTest>

#include <memory>
#include <thread>

using namespace Corvane;
using namespace Corvane::Tests;
using namespace Corvane::Viewer;

namespace {

constexpr int patience = 30000; // milliseconds, for what has to come at some time

/// What the rasters hold: the cell's own numbers, so that a cell beside it shows.
double numbered(int band, int x, int y)
{
    return band * 1000000 + y * 1000 + x;
}

RasterRecipe numbers()
{
    RasterRecipe recipe;
    recipe.bands = 3;
    recipe.type = GDT_Int32;
    recipe.value = numbered;
    recipe.overviews = {2, 4};
    recipe.finish = [](GDALDatasetH dataset) {
        GDALSetDescription(GDALGetRasterBand(dataset, 2), "Heat");
        GDALSetRasterNoDataValue(GDALGetRasterBand(dataset, 1), numbered(1, 50, 40));
    };
    return recipe;
}

} // namespace

/// The panels that name the values of cells, in the program's window, on real images.
class CellToolsTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

    void theCommandsShowAndHideThePanels();
    void everyBandUnderThePointerIsNamedAtFullResolution();
    void noDataIsSaid();
    void layersStandTopmostFirstAndHiddenOnesAreLeftOut();
    void besideTheRasterThereIsNothing();
    void allValuesAreCopied();

    void aClickFixesThePlace();
    void aDragFixesNothing();
    void theButtonFixesAndReleases();
    void keysMoveThePlaceByCells();
    void anotherMapBeginsAnew();

    void theGridShowsTheCellsAroundThePointer();
    void theGridTakesTheSelectedLayer();
    void theGridKeepsToTheImagesEdge();
    void theGridIsCopiedForASpreadsheet();
    void theSelectedCellsAreCopied();
    void theGridKeepsItsSize();

    void aServerThatKeepsOneWaitingIsToldOf();
    void aServerWithoutAnAnswerIsToldOf();
    void layersAndMapsMayGoWhileThePanelsLook();
    void theWindowMayGoWhileAServerKeepsThePanelsWaiting();
    void picturesOfThePanels();

private:
    MapWindow* openMap(const QString& name);
    bool openFrom(SlowServer& server);
    QByteArray largeFile();
    QString path(const QString& name) const { return folder.filePath(name); }
    QAction* action(const QString& name) const { return window->findChild<QAction*>(name); }
    QPoint deviceOf(int column, int row) const;
    void pointAt(int column, int row) const;
    void click(const QPoint& place) const;
    QStringList identified() const;
    QStringList gridRow(int row) const;
    QStringList gridHeads(Qt::Orientation orientation) const;
    template <typename Widget>
    Widget* part(const char* name) const
    {
        return window->findChild<Widget*>(name);
    }

    QTemporaryDir folder;
    std::unique_ptr<ViewerWindow> window;
    Map::MapView* view = nullptr;
};

void CellToolsTest::initTestCase()
{
    QVERIFY(folder.isValid());
    Application::instance()->getSettings()->clear();
    Application::instance()->getSettings()->setValue("Gui/MapView/UseAnimation", false);
    QVERIFY(makeRaster(path("numbers.tif"), numbers()));
    RasterRecipe plain;
    plain.transform = {1000.0, 4.0, 0.0, 5000.0, 0.0, -4.0};
    plain.size = QSize(300, 250);
    plain.bands = 1;
    plain.value = [](int, int x, int y) { return (x + y) % 200; };
    QVERIFY(makeRaster(path("plain.tif"), plain));
}

void CellToolsTest::init()
{
    window = std::make_unique<ViewerWindow>();
    window->resize(1200, 800);
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
}

void CellToolsTest::cleanup()
{
    window.reset();
}

MapWindow* CellToolsTest::openMap(const QString& name)
{
    window->openFiles({path(name)});
    MapWindow* const map = window->getActiveMapWindow();
    view = map->getView();
    if (!QTest::qWaitFor([this] { return view->getNumberOfLayers() == 1; }, patience)) {
        qWarning("%s does not open", qPrintable(name));
    }
    return map;
}

/// Of which the view of all of it reads an overview.
QByteArray CellToolsTest::largeFile()
{
    RasterRecipe recipe = numbers();
    recipe.size = QSize(2400, 2000);
    recipe.bands = 1;
    recipe.finish = nullptr;
    QFile file(path("large.tif"));
    return makeRaster(file.fileName(), recipe) && file.open(QIODevice::ReadOnly) ? file.readAll()
                                                                                 : QByteArray();
}

bool CellToolsTest::openFrom(SlowServer& server)
{
    window->openFiles({server.url("far.tif")});
    view = window->getActiveMapWindow()->getView();
    return QTest::qWaitFor([this] { return view->getNumberOfLayers() == 1; }, patience) &&
           QTest::qWaitFor([this] { return view->getLayerAt(0)->getPercentComplete() == 100; },
                           patience) &&
           QThreadPool::globalInstance()->waitForDone(patience);
}

/// Of a cell of 2 by 2, at (1000, 5000).
QPoint CellToolsTest::deviceOf(int column, int row) const
{
    QPoint place;
    view->getViewManager()->convertWorldToDevice(
        1000.0 + 2.0 * column + 1.0, 5000.0 - 2.0 * row - 1.0, &place.rx(), &place.ry());
    return place;
}

/// The view has whole cells of several pixels where this is used.
void CellToolsTest::pointAt(int column, int row) const
{
    const QPoint place = deviceOf(column, row);
    QMouseEvent move(QEvent::MouseMove, place, view->mapToGlobal(place), Qt::NoButton, Qt::NoButton,
                     Qt::NoModifier);
    QApplication::sendEvent(view, &move);
}

void CellToolsTest::click(const QPoint& place) const
{
    QTest::mouseClick(view, Qt::LeftButton, Qt::NoModifier, place);
}

/// "numbers.tif: column 3, row 4", then " Red: 1004003" for each band.
QStringList CellToolsTest::identified() const
{
    const auto* const tree = part<QTreeWidget>("identifyTree");
    QStringList lines;
    for (int i = 0; i < tree->topLevelItemCount(); ++i) {
        const QTreeWidgetItem* const item = tree->topLevelItem(i);
        lines << item->text(0) + ": " + item->text(1);
        for (int band = 0; band < item->childCount(); ++band) {
            lines << ' ' + item->child(band)->text(0) + ": " + item->child(band)->text(1);
        }
    }
    return lines;
}

QStringList CellToolsTest::gridRow(int row) const
{
    const auto* const table = part<QTableWidget>("cellGridTable");
    QStringList texts;
    for (int column = 0; column < table->columnCount(); ++column) {
        texts << table->item(row, column)->text();
    }
    return texts;
}

QStringList CellToolsTest::gridHeads(Qt::Orientation orientation) const
{
    const auto* const table = part<QTableWidget>("cellGridTable");
    QStringList texts;
    for (int i = 0; i < table->columnCount(); ++i) {
        texts << table->model()->headerData(i, orientation).toString();
    }
    return texts;
}

void CellToolsTest::theCommandsShowAndHideThePanels()
{
    QCOMPARE(action("actionIdentify")->shortcut(), QKeySequence("Ctrl+Shift+I"));
    for (const auto& [command, name] :
         {std::pair("actionIdentify", "identifyDock"), std::pair("actionCellGrid", "cellGridDock")})
    {
        auto* const dock = part<QDockWidget>(name);
        QVERIFY(dock && !dock->isVisible());
        QVERIFY(!action(command)->isChecked());
        action(command)->trigger();
        QVERIFY(dock->isVisible());
        QVERIFY(action(command)->isChecked());
        dock->close();
        QVERIFY(!action(command)->isChecked());
        action(command)->trigger();
        action(command)->trigger();
        QVERIFY(!dock->isVisible());
    }
    action("actionIdentify")->trigger();
    QCOMPARE(part<QLabel>("identifyHint")->text(), QString("There is no map."));
}

void CellToolsTest::everyBandUnderThePointerIsNamedAtFullResolution()
{
    openMap("numbers.tif");
    view->setBounds(800.0, 5200.0, 2800.0, 3400.0); // where an overview is shown
    QVERIFY(view->getBounds().width() / view->width() > 2.0);
    action("actionIdentify")->trigger();
    const QPoint place = deviceOf(401, 303);
    pointAt(401, 303);
    double x = 0.0;
    double y = 0.0;
    view->getViewManager()->convertDeviceToWorld(place.x(), place.y(), &x, &y);
    const int column = int((x - 1000.0) / 2.0);
    const int row = int((5000.0 - y) / 2.0);

    QTRY_COMPARE_WITH_TIMEOUT(
        identified(),
        QStringList({QString("numbers.tif: column %1, row %2").arg(column).arg(row),
                     QString(" Gray: %1").arg(int(numbered(1, column, row))),
                     QString(" Heat: %1").arg(int(numbered(2, column, row))),
                     QString(" Band 3: %1").arg(int(numbered(3, column, row)))}),
        patience);
    QVERIFY(part<QLabel>("identifyPosition")->text().startsWith("X: 180"));
}

void CellToolsTest::noDataIsSaid()
{
    openMap("numbers.tif");
    view->setBounds(1080.0, 4940.0, 1180.0, 4880.0);
    action("actionIdentify")->trigger();
    pointAt(50, 40);
    QTRY_COMPARE_WITH_TIMEOUT(identified(),
                              QStringList({"numbers.tif: column 50, row 40", " Gray: no data",
                                           " Heat: 2040050", " Band 3: 3040050"}),
                              patience);
    const QTreeWidgetItem* const band =
        part<QTreeWidget>("identifyTree")->topLevelItem(0)->child(0);
    QCOMPARE(band->toolTip(1), QString("no data: 1040050 (Int32)"));
    QVERIFY(band->font(1).italic());
    pointAt(51, 40);
    QTRY_COMPARE_WITH_TIMEOUT(identified().value(1), QString(" Gray: 1040051"), patience);
    QVERIFY(!band->font(1).italic());
}

void CellToolsTest::layersStandTopmostFirstAndHiddenOnesAreLeftOut()
{
    MapWindow* const map = openMap("numbers.tif");
    window->addFiles({path("plain.tif")}, map);
    QTRY_COMPARE_WITH_TIMEOUT(view->getNumberOfLayers(), 2, patience);
    view->setBounds(1080.0, 4940.0, 1180.0, 4880.0);
    action("actionIdentify")->trigger();
    pointAt(50, 41);
    const QStringList plain{"plain.tif: column 25, row 20", " Gray: 45"};
    const QStringList numbersToo{"numbers.tif: column 50, row 41", " Gray: 1041050",
                                 " Heat: 2041050", " Band 3: 3041050"};
    QTRY_COMPARE_WITH_TIMEOUT(identified(), plain + numbersToo, patience);
    view->moveLayer(0, 1);
    QTRY_COMPARE_WITH_TIMEOUT(identified(), numbersToo + plain, patience);
    view->getLayerAt(1)->setVisible(false);
    pointAt(50, 41);
    QTRY_COMPARE_WITH_TIMEOUT(identified(), plain, patience);
}

void CellToolsTest::besideTheRasterThereIsNothing()
{
    openMap("numbers.tif");
    view->setBounds(900.0, 5100.0, 1100.0, 4980.0);
    action("actionIdentify")->trigger();
    pointAt(10, 1);
    QTRY_COMPARE_WITH_TIMEOUT(identified().size(), 4, patience);
    pointAt(-10, 1);
    QTRY_COMPARE_WITH_TIMEOUT(identified(), QStringList(), patience);
    const auto* const hint = part<QLabel>("identifyHint");
    QVERIFY(hint->isVisible());
    QCOMPARE(hint->text(), QString("There is no raster at this place."));
}

void CellToolsTest::allValuesAreCopied()
{
    openMap("numbers.tif");
    view->setBounds(1080.0, 4940.0, 1180.0, 4880.0);
    action("actionIdentify")->trigger();
    pointAt(50, 40);
    QTRY_COMPARE_WITH_TIMEOUT(identified().value(0), QString("numbers.tif: column 50, row 40"),
                              patience);
    QTest::mouseClick(part<QToolButton>("identifyCopyButton"), Qt::LeftButton);
    QCOMPARE(QApplication::clipboard()->text(), QString("Layer\tColumn\tRow\tBand\tValue\n"
                                                        "numbers.tif\t50\t40\tGray\tno data\n"
                                                        "numbers.tif\t50\t40\tHeat\t2040050\n"
                                                        "numbers.tif\t50\t40\tBand 3\t3040050\n"));
    QApplication::clipboard()->clear();
    part<QTreeWidget>("identifyTree")->setFocus();
    QTest::keyClick(part<QTreeWidget>("identifyTree"), Qt::Key_C, Qt::ControlModifier);
    QVERIFY(QApplication::clipboard()->text().endsWith("3040050\n"));
}

void CellToolsTest::aClickFixesThePlace()
{
    openMap("numbers.tif");
    view->setBounds(1080.0, 4940.0, 1180.0, 4880.0);
    action("actionIdentify")->trigger();
    pointAt(60, 45);
    click(deviceOf(60, 45));
    QVERIFY(part<QToolButton>("identifyFixed")->isChecked());
    pointAt(70, 45);
    QTRY_COMPARE_WITH_TIMEOUT(identified().value(0), QString("numbers.tif: column 60, row 45"),
                              patience);
    auto* marker = view->findChild<QWidget*>("probeMarker");
    QVERIFY(marker && marker->isVisible());
    QCOMPARE(marker->geometry().center(), deviceOf(60, 45));

    view->setBounds(1060.0, 4950.0, 1200.0, 4870.0);
    QCOMPARE(marker->geometry().center(), deviceOf(60, 45)); // it keeps to the world

    click(deviceOf(65, 46)); // another place
    QTRY_COMPARE_WITH_TIMEOUT(identified().value(0), QString("numbers.tif: column 65, row 46"),
                              patience);
    click(deviceOf(65, 46)); // the same again: follow the pointer
    QVERIFY(!part<QToolButton>("identifyFixed")->isChecked());
    QVERIFY(!view->findChild<QWidget*>("probeMarker"));
    pointAt(70, 46);
    QTRY_COMPARE_WITH_TIMEOUT(identified().value(0), QString("numbers.tif: column 70, row 46"),
                              patience);
}

void CellToolsTest::aDragFixesNothing()
{
    openMap("numbers.tif");
    view->setBounds(1080.0, 4940.0, 1180.0, 4880.0);
    action("actionIdentify")->trigger();
    QTest::mousePress(view, Qt::LeftButton, Qt::NoModifier, QPoint(100, 100));
    QMouseEvent move(QEvent::MouseMove, QPoint(120, 110), view->mapToGlobal(QPoint(120, 110)),
                     Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(view, &move);
    QTest::mouseRelease(view, Qt::LeftButton, Qt::NoModifier, QPoint(120, 110));
    QVERIFY(!part<QToolButton>("identifyFixed")->isChecked());
    QTest::mouseClick(view, Qt::RightButton, Qt::NoModifier, QPoint(100, 100));
    QTest::mouseClick(view, Qt::LeftButton, Qt::ShiftModifier, QPoint(100, 100));
    QVERIFY(!part<QToolButton>("identifyFixed")->isChecked());
}

void CellToolsTest::theButtonFixesAndReleases()
{
    openMap("numbers.tif");
    view->setBounds(1080.0, 4940.0, 1180.0, 4880.0);
    action("actionIdentify")->trigger();
    pointAt(60, 45);
    auto* const fixed = part<QToolButton>("identifyFixed");
    QTest::mouseClick(fixed, Qt::LeftButton);
    QVERIFY(fixed->isChecked());
    pointAt(70, 45);
    QTRY_COMPARE_WITH_TIMEOUT(identified().value(0), QString("numbers.tif: column 60, row 45"),
                              patience);
    QTest::keyClick(fixed, Qt::Key_Space);
    QVERIFY(!fixed->isChecked());
    action("actionIdentify")->trigger(); // and a panel that goes takes its marker along
    QVERIFY(!view->findChild<QWidget*>("probeMarker"));
    click(deviceOf(60, 45));
    QVERIFY(!fixed->isChecked());
}

void CellToolsTest::keysMoveThePlaceByCells()
{
    openMap("numbers.tif");
    view->setBounds(1080.0, 4940.0, 1180.0, 4880.0);
    action("actionIdentify")->trigger();
    pointAt(60, 45);
    view->setFocus();
    const QRectF before = view->getBounds();
    const struct
    {
        Qt::Key key;
        const char* place;
    } moves[] = {{Qt::Key_Right, "column 61, row 45"},
                 {Qt::Key_Down, "column 61, row 46"},
                 {Qt::Key_Left, "column 60, row 46"},
                 {Qt::Key_Up, "column 60, row 45"}};
    for (const auto& move : moves) {
        QTest::keyClick(view, move.key, Qt::AltModifier);
        QTRY_COMPARE_WITH_TIMEOUT(identified().value(0), QString("numbers.tif: ") + move.place,
                                  patience);
    }
    QVERIFY(part<QToolButton>("identifyFixed")->isChecked());
    auto* const tree = part<QTreeWidget>("identifyTree");
    tree->setFocus();
    QTest::keyClick(tree, Qt::Key_Right, Qt::AltModifier);
    QTRY_COMPARE_WITH_TIMEOUT(identified().value(0), QString("numbers.tif: column 61, row 45"),
                              patience);
    QCOMPARE(view->getBounds(), before);
}

void CellToolsTest::anotherMapBeginsAnew()
{
    MapWindow* const one = openMap("numbers.tif");
    action("actionIdentify")->trigger();
    click(view->rect().center());
    QVERIFY(view->findChild<QWidget*>("probeMarker"));
    Map::MapView* const first = view;
    openMap("plain.tif");
    QVERIFY(!first->findChild<QWidget*>("probeMarker"));
    QVERIFY(!part<QToolButton>("identifyFixed")->isChecked());
    QTRY_VERIFY_WITH_TIMEOUT(identified().value(0).startsWith("plain.tif: "), patience);
    window->getMdiArea()->setActiveSubWindow(one);
    QTRY_VERIFY_WITH_TIMEOUT(identified().value(0).startsWith("numbers.tif: "), patience);
}

void CellToolsTest::theGridShowsTheCellsAroundThePointer()
{
    openMap("numbers.tif");
    view->setBounds(1080.0, 4940.0, 1180.0, 4880.0);
    action("actionCellGrid")->trigger();
    pointAt(60, 45);
    QTRY_COMPARE_WITH_TIMEOUT(
        gridRow(2), QStringList({"1045058", "1045059", "1045060", "1045061", "1045062"}), patience);
    QCOMPARE(gridRow(0), QStringList({"1043058", "1043059", "1043060", "1043061", "1043062"}));
    QCOMPARE(gridHeads(Qt::Horizontal), QStringList({"58", "59", "60", "61", "62"}));
    QCOMPARE(gridHeads(Qt::Vertical), QStringList({"43", "44", "45", "46", "47"}));
    const auto* const table = part<QTableWidget>("cellGridTable");
    QVERIFY(table->item(2, 2)->font().bold());
    QVERIFY(!table->item(2, 1)->font().bold());
    QCOMPARE(part<QLabel>("cellGridLayer")->text(), QString("numbers.tif"));

    auto* const band = part<QComboBox>("cellGridBand");
    QCOMPARE(band->count(), 3);
    QCOMPARE(band->itemText(0), QString("1: Gray"));
    band->setFocus();
    QTest::keyClick(band, Qt::Key_Down);
    QTRY_COMPARE_WITH_TIMEOUT(gridRow(2).value(2), QString("2045060"), patience);
    QCOMPARE(band->currentText(), QString("2: Heat"));

    auto* const size = part<QComboBox>("cellGridSize");
    QStringList sizes;
    for (int i = 0; i < size->count(); ++i) {
        sizes << size->itemText(i);
    }
    QCOMPARE(sizes,
             QStringList({"3 x 3", "5 x 5", "7 x 7", "9 x 9", "11 x 11", "13 x 13", "15 x 15"}));
    size->setCurrentIndex(6);
    QTRY_COMPARE_WITH_TIMEOUT(gridRow(14).value(0), QString("2052053"), patience);
    QCOMPARE(table->rowCount(), 15);
    QCOMPARE(gridRow(7).value(7), QString("2045060"));
    pointAt(61, 45);
    QTRY_COMPARE_WITH_TIMEOUT(gridRow(7).value(7), QString("2045061"), patience);
}

void CellToolsTest::theGridTakesTheSelectedLayer()
{
    MapWindow* const map = openMap("numbers.tif");
    window->addFiles({path("plain.tif")}, map);
    auto* const tree = window->findChild<Map::MapTreeView*>();
    QTRY_COMPARE_WITH_TIMEOUT(listed(*tree), QStringList({"[plain.tif]", "numbers.tif"}), patience);
    view->setBounds(1080.0, 4940.0, 1180.0, 4880.0);
    action("actionCellGrid")->trigger();
    pointAt(60, 45);
    QTRY_COMPARE_WITH_TIMEOUT(gridRow(2).value(2), QString("52"), patience);
    QCOMPARE(part<QComboBox>("cellGridBand")->count(), 1);
    clickOn(*tree, itemOf(*tree, "numbers.tif"));
    QTRY_COMPARE_WITH_TIMEOUT(gridRow(2).value(2), QString("1045060"), patience);
    QCOMPARE(part<QLabel>("cellGridLayer")->text(), QString("numbers.tif"));
    QCOMPARE(part<QComboBox>("cellGridBand")->count(), 3);
    view->getLayerAt(0)->setVisible(false); // then what is in view there
    pointAt(61, 45);
    QTRY_COMPARE_WITH_TIMEOUT(gridRow(2).value(2), QString("52"), patience);
}

void CellToolsTest::theGridKeepsToTheImagesEdge()
{
    openMap("numbers.tif");
    view->setBounds(980.0, 5020.0, 1080.0, 4960.0);
    action("actionCellGrid")->trigger();
    pointAt(1, 0);
    QTRY_COMPARE_WITH_TIMEOUT(
        gridRow(2), QStringList({"", "1000000", "1000001", "1000002", "1000003"}), patience);
    QCOMPARE(gridRow(1), QStringList({"", "", "", "", ""}));
    pointAt(-4, 0);
    QTRY_COMPARE_WITH_TIMEOUT(gridRow(2), QStringList({"", "", "", "", ""}), patience);
    QCOMPARE(part<QLabel>("cellGridState")->text(), QString("There is no raster at this place."));
    QCOMPARE(part<QLabel>("cellGridLayer")->text(), QString());
}

void CellToolsTest::theGridIsCopiedForASpreadsheet()
{
    openMap("numbers.tif");
    view->setBounds(1080.0, 4940.0, 1180.0, 4880.0);
    action("actionCellGrid")->trigger();
    part<QComboBox>("cellGridSize")->setCurrentIndex(0);
    pointAt(50, 40);
    QTRY_COMPARE_WITH_TIMEOUT(gridRow(1), QStringList({"1040049", "no data", "1040051"}), patience);
    auto* const headings = part<QCheckBox>("cellGridHeadings");
    QVERIFY(headings->isChecked());
    QTest::mouseClick(part<QToolButton>("cellGridCopyButton"), Qt::LeftButton);
    QCOMPARE(QApplication::clipboard()->text(), QString("\t49\t50\t51\n"
                                                        "39\t1039049\t1039050\t1039051\n"
                                                        "40\t1040049\tno data\t1040051\n"
                                                        "41\t1041049\t1041050\t1041051\n"));
    QTest::keyClick(headings, Qt::Key_Space);
    QTest::mouseClick(part<QToolButton>("cellGridCopyButton"), Qt::LeftButton);
    QCOMPARE(QApplication::clipboard()->text(), QString("1039049\t1039050\t1039051\n"
                                                        "1040049\tno data\t1040051\n"
                                                        "1041049\t1041050\t1041051\n"));
    headings->setChecked(true);
}

void CellToolsTest::theSelectedCellsAreCopied()
{
    openMap("numbers.tif");
    view->setBounds(1080.0, 4940.0, 1180.0, 4880.0);
    action("actionCellGrid")->trigger();
    click(deviceOf(60, 45));
    QTRY_COMPARE_WITH_TIMEOUT(gridRow(2).value(2), QString("1045060"), patience);
    auto* const table = part<QTableWidget>("cellGridTable");
    table->setFocus();
    table->setCurrentCell(1, 1);
    table->clearSelection();
    QTest::keyClick(table, Qt::Key_C, Qt::ControlModifier); // nothing is selected: all of it
    QCOMPARE(QApplication::clipboard()->text().count('\n'), 6);
    table->setCurrentCell(1, 1);
    QTest::keyClick(table, Qt::Key_Right, Qt::ShiftModifier);
    QTest::keyClick(table, Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(table, Qt::Key_C, Qt::ControlModifier);
    QCOMPARE(QApplication::clipboard()->text(),
             QString("\t59\t60\n44\t1044059\t1044060\n45\t1045059\t1045060\n"));
    QTest::keyClick(table, Qt::Key_Right, Qt::AltModifier); // the probe moves, the selection stays
    QTRY_COMPARE_WITH_TIMEOUT(gridRow(2).value(2), QString("1045061"), patience);
    QCOMPARE(table->selectedItems().size(), 4);
    QStringList entries;
    for (const QAction* entry : table->actions()) {
        entries << entry->text();
    }
    QCOMPARE(entries, QStringList({"&Copy", "Copy &All", "One Cell Left", "One Cell Right",
                                   "One Cell Up", "One Cell Down"}));
}

void CellToolsTest::theGridKeepsItsSize()
{
    part<QComboBox>("cellGridSize")->setCurrentIndex(3);
    part<QCheckBox>("cellGridHeadings")->setChecked(false);
    window.reset();
    QSettings* const settings = Application::instance()->getSettings();
    QCOMPARE(settings->value("Viewer/CellGrid/Edge").toInt(), 9);
    QCOMPARE(settings->value("Viewer/CellGrid/Headings").toBool(), false);
    settings->setValue("Viewer/CellGrid/Edge", 4); // no square has such a middle
    ProbePoint probe(nullptr);
    const CellGridPanel panel(&probe, nullptr);
    QCOMPARE(panel.findChild<QComboBox*>("cellGridSize")->currentText(), QString("5 x 5"));
    QVERIFY(!panel.findChild<QCheckBox*>("cellGridHeadings")->isChecked());
}

void CellToolsTest::aServerThatKeepsOneWaitingIsToldOf()
{
    SlowServer server(largeFile(), true);
    QVERIFY(openFrom(server));
    action("actionIdentify")->trigger();
    action("actionCellGrid")->trigger();
    server.setOpen(false);
    view->setBounds(1200.0, 1200.0, 1300.0, 1140.0); // far from all that has been read
    pointAt(105, 1905);
    QTRY_COMPARE_WITH_TIMEOUT(identified().join(" | "), QString("far.tif: waiting..."), patience);
    QTRY_COMPARE_WITH_TIMEOUT(part<QLabel>("cellGridState")->text(), QString("waiting..."),
                              patience);
    QCOMPARE(gridRow(2), QStringList({"", "", "", "", ""}));
    for (int column = 106; column < 140; ++column) {
        pointAt(column, 1905); // of all of these only the last is asked for
    }
    server.setOpen(true);
    QTRY_COMPARE_WITH_TIMEOUT(identified().value(0), QString("far.tif: column 139, row 1905"),
                              patience);
    QTRY_COMPARE_WITH_TIMEOUT(gridRow(2).value(2), QString("2905139"), patience);
    QVERIFY(part<QLabel>("cellGridState")->isHidden());
}

void CellToolsTest::aServerWithoutAnAnswerIsToldOf()
{
    SlowServer server(largeFile(), true);
    QVERIFY(openFrom(server));
    server.breakDown();
    action("actionIdentify")->trigger();
    action("actionCellGrid")->trigger();
    view->setBounds(1200.0, 1200.0, 1300.0, 1140.0);
    pointAt(105, 1905);
    QTRY_VERIFY_WITH_TIMEOUT(identified().value(0).startsWith("far.tif: no answer: "), patience);
    QCOMPARE(identified().size(), 1);
    QTRY_VERIFY_WITH_TIMEOUT(part<QLabel>("cellGridState")->text().startsWith("no answer: "),
                             patience);
}

void CellToolsTest::layersAndMapsMayGoWhileThePanelsLook()
{
    MapWindow* const map = openMap("numbers.tif");
    window->addFiles({path("plain.tif")}, map);
    QTRY_COMPARE_WITH_TIMEOUT(view->getNumberOfLayers(), 2, patience);
    action("actionIdentify")->trigger();
    action("actionCellGrid")->trigger();
    click(deviceOf(60, 45));
    QTRY_COMPARE_WITH_TIMEOUT(identified().size(), 6, patience);
    view->deleteLayerAt(1);
    QTRY_COMPARE_WITH_TIMEOUT(identified().size(), 4, patience);
    QTRY_COMPARE_WITH_TIMEOUT(part<QLabel>("cellGridLayer")->text(), QString("numbers.tif"),
                              patience);
    pointAt(61, 45);
    view->deleteAllLayers();
    QTRY_COMPARE_WITH_TIMEOUT(identified(), QStringList(), patience);
    map->close();
    QTRY_COMPARE_WITH_TIMEOUT(part<QLabel>("identifyHint")->text(), QString("There is no map."),
                              patience);
    QTRY_COMPARE_WITH_TIMEOUT(part<QLabel>("cellGridState")->text(), QString("There is no map."),
                              patience);
    openMap("numbers.tif");
    QTRY_COMPARE_WITH_TIMEOUT(identified().size(), 4, patience);
}

void CellToolsTest::theWindowMayGoWhileAServerKeepsThePanelsWaiting()
{
    SlowServer server(largeFile(), true);
    QVERIFY(openFrom(server));
    server.setOpen(false);
    action("actionIdentify")->trigger();
    action("actionCellGrid")->trigger();
    view->setBounds(1200.0, 1200.0, 1300.0, 1140.0);
    pointAt(105, 1905);
    QTRY_COMPARE_WITH_TIMEOUT(identified(), QStringList("far.tif: waiting..."), patience);
    view->deleteLayerAt(0);
    QTRY_COMPARE_WITH_TIMEOUT(identified(), QStringList(), patience);
    std::thread opener([&server] { // the plugin waits for what its threads have begun
        QThread::yieldCurrentThread();
        server.setOpen(true);
    });
    window.reset();
    opener.join();
}

void CellToolsTest::picturesOfThePanels()
{
    MapWindow* const map = openMap("numbers.tif");
    window->addFiles({path("plain.tif")}, map);
    QTRY_COMPARE_WITH_TIMEOUT(view->getNumberOfLayers(), 2, patience);
    window->resize(1300, 900);
    action("actionIdentify")->trigger();
    action("actionCellGrid")->trigger();
    QCoreApplication::processEvents();
    view->setBounds(1060.0, 4950.0, 1200.0, 4870.0);
    click(deviceOf(50, 40));
    QTRY_COMPARE_WITH_TIMEOUT(identified().size(), 6, patience);
    QTRY_COMPARE_WITH_TIMEOUT(gridRow(2).value(2), QString("45"), patience);
    QTRY_COMPARE_WITH_TIMEOUT(int(view->getLayerAt(1)->getPercentComplete()), 100, patience);
    QCOMPARE(takePictures(*window, "CellTools").join("; "), QString());
}

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Cell Tools Test");
    CellToolsTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}

#include "CellToolsTest.moc"
