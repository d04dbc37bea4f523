#include <tests/viewer/cells/CellStage.h>

#include <viewer/batch/Startup.h>
#include <viewer/window/ViewerWindow.h>

#include <corvane/core/Application.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>
#include <corvane/map/ViewManager.h>
#include <tests/support/EachInItsProcess.h>

#include <QAction>
#include <QClipboard>
#include <QLabel>
#include <QToolButton>
#include <QTreeWidget>
#include <QtTest>

using namespace Corvane;
using namespace Corvane::Tests;
using namespace Corvane::Viewer;

/// The panel that names the values under the pointer, in the program's window, on real images.
class IdentifyPanelTest : public CellStage
{
    Q_OBJECT
private slots:
    void everyBandUnderThePointerIsNamedAtFullResolution();
    void noDataIsSaid();
    void layersStandTopmostFirstAndHiddenOnesAreLeftOut();
    void besideTheRasterThereIsNothing();
    void allValuesAreCopied();
};

void IdentifyPanelTest::everyBandUnderThePointerIsNamedAtFullResolution()
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

void IdentifyPanelTest::noDataIsSaid()
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

void IdentifyPanelTest::layersStandTopmostFirstAndHiddenOnesAreLeftOut()
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

void IdentifyPanelTest::besideTheRasterThereIsNothing()
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

void IdentifyPanelTest::allValuesAreCopied()
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

int main(int argc, char** argv)
{
    setUpLogging(false);
    Application application(argc, argv, "Corvane Identify Panel Test");
    IdentifyPanelTest test;
    return runEachInItsProcess(test, argc, argv); // the window ends the plugins
}

#include "IdentifyPanelTest.moc"
