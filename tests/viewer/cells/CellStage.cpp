#include "CellStage.h"

#include <viewer/maps/MapWindow.h>

#include <corvane/core/Application.h>
#include <corvane/map/MapView.h>
#include <corvane/map/ViewManager.h>

#include <QAction>
#include <QApplication>
#include <QMouseEvent>
#include <QSettings>
#include <QTableWidget>
#include <QTreeWidget>
#include <QtTest>

using Corvane::Viewer::MapWindow;
using Corvane::Viewer::ViewerWindow;

namespace Corvane::Tests {

double CellStage::numbered(int band, int x, int y)
{
    return band * 1000000 + y * 1000 + x;
}

RasterRecipe CellStage::numbers()
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

void CellStage::initTestCase()
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

void CellStage::init()
{
    window = std::make_unique<ViewerWindow>();
    window->resize(1200, 800);
    window->show();
    QVERIFY(QTest::qWaitForWindowActive(window.get()));
}

void CellStage::cleanup()
{
    window.reset();
}

MapWindow* CellStage::openMap(const QString& name)
{
    window->openFiles({path(name)});
    MapWindow* const map = window->getActiveMapWindow();
    view = map->getView();
    if (!QTest::qWaitFor([this] { return view->getNumberOfLayers() == 1; }, patience)) {
        qWarning("%s does not open", qPrintable(name));
    }
    return map;
}

QAction* CellStage::action(const QString& name) const
{
    return window->findChild<QAction*>(name);
}

/// Of a cell of 2 by 2, at (1000, 5000).
QPoint CellStage::deviceOf(int column, int row) const
{
    QPoint place;
    view->getViewManager()->convertWorldToDevice(
        1000.0 + 2.0 * column + 1.0, 5000.0 - 2.0 * row - 1.0, &place.rx(), &place.ry());
    return place;
}

/// The view has whole cells of several pixels where this is used.
void CellStage::pointAt(int column, int row) const
{
    const QPoint place = deviceOf(column, row);
    QMouseEvent move(QEvent::MouseMove, place, view->mapToGlobal(place), Qt::NoButton, Qt::NoButton,
                     Qt::NoModifier);
    QApplication::sendEvent(view, &move);
}

void CellStage::click(const QPoint& place) const
{
    QTest::mouseClick(view, Qt::LeftButton, Qt::NoModifier, place);
}

/// "numbers.tif: column 3, row 4", then " Red: 1004003" for each band.
QStringList CellStage::identified() const
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

QStringList CellStage::gridRow(int row) const
{
    const auto* const table = part<QTableWidget>("cellGridTable");
    QStringList texts;
    for (int column = 0; column < table->columnCount(); ++column) {
        texts << table->item(row, column)->text();
    }
    return texts;
}

QStringList CellStage::gridHeads(Qt::Orientation orientation) const
{
    const auto* const table = part<QTableWidget>("cellGridTable");
    QStringList texts;
    for (int i = 0; i < table->columnCount(); ++i) {
        texts << table->model()->headerData(i, orientation).toString();
    }
    return texts;
}

} // namespace Corvane::Tests
