#include <tests/viewer/cells/CellStage.h>

#include <viewer/cells/CellGridPanel.h>
#include <viewer/cells/ProbePoint.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/batch/Startup.h>
#include <viewer/window/ViewerWindow.h>

#include <corvane/core/Application.h>
#include <corvane/gui/MapTreeView.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>
#include <tests/gui/MapTreeTools.h>
#include <tests/support/EachInItsProcess.h>

#include <QAction>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QSettings>
#include <QTableWidget>
#include <QToolButton>
#include <QtTest>

using namespace Corvane;
using namespace Corvane::Tests;
using namespace Corvane::Viewer;

/// The panel of the cells around the pointer, in the program's window, on real images.
class CellGridPanelTest : public CellStage
{
    Q_OBJECT
private slots:
    void theGridShowsTheCellsAroundThePointer();
    void theGridTakesTheSelectedLayer();
    void theGridKeepsToTheImagesEdge();
    void theGridIsCopiedForASpreadsheet();
    void theSelectedCellsAreCopied();
    void theGridKeepsItsSize();
};

void CellGridPanelTest::theGridShowsTheCellsAroundThePointer()
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
    QCOMPARE(part<QLabel>("cellGridLayer")->textFormat(), Qt::PlainText);

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

void CellGridPanelTest::theGridTakesTheSelectedLayer()
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

void CellGridPanelTest::theGridKeepsToTheImagesEdge()
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

void CellGridPanelTest::theGridIsCopiedForASpreadsheet()
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

void CellGridPanelTest::theSelectedCellsAreCopied()
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

void CellGridPanelTest::theGridKeepsItsSize()
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

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Cell Grid Test");
    CellGridPanelTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}

#include "CellGridPanelTest.moc"
