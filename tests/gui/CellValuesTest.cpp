#include <corvane/gui/CellValues.h>

#include <corvane/core/PluginManager.h>
#include <corvane/map/Layer.h>
#include <tests/gui/MapWindows.h>
#include <tests/gui/PanelPictures.h>
#include <tests/map/MapViewTools.h>
#include <tests/plugins/TestRasters.h>
#include <tests/support/MessageLines.h>

#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QSpacerItem>
#include <QTableWidget>
#include <QtTest>

#include <array>
#include <memory>

using namespace Corvane;
using namespace Corvane::Tests;
using Corvane::Gui::CellValues;

namespace {

/// The panel beside a map window and one without a map, wired as a viewer wires it.
class Stage : public MapWindows
{
public:
    Stage()
    {
        view = add(QRect(0, 0, 200, 200));
        other = addOther();
        addPanel(&panel);
        QObject::connect(&area, SIGNAL(subWindowActivated(QMdiSubWindow*)), &panel,
                         SLOT(onSubWindowActivated(QMdiSubWindow*)));
        isOpen = open();
        activate(view);
    }
    ~Stage() override { area.closeAllSubWindows(); }

    CellValues panel;
    Map::MapView* view = nullptr;
    QMdiSubWindow* other = nullptr;
    bool isOpen = false;
};

QStringList texts(const CellValues& panel)
{
    QStringList all;
    for (const QLineEdit* line : panel.findChildren<QLineEdit*>()) {
        all << line->text();
    }
    const auto* const bands = panel.findChild<QComboBox*>("comboBox");
    const auto* const table = panel.findChild<QTableWidget*>("tableWidget");
    all << QString::number(bands->count()) << QString::number(table->rowCount())
        << QString::number(table->columnCount());
    return all;
}

const QStringList nothing = {"", "", "", "", "", "", "0", "0", "0"};

/// "name row,column" of a widget in the grid.
QString placeOf(const QGridLayout& grid, QWidget* widget)
{
    std::array<int, 4> cell{};
    grid.getItemPosition(grid.indexOf(widget), &cell[0], &cell[1], &cell[2], &cell[3]);
    return QStringLiteral("%1 %2,%3").arg(widget->objectName()).arg(cell[0]).arg(cell[1]);
}

} // namespace

class CellValuesTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();

    void theFormIsThatOfTheDesign();
    void itLooksRight();
    void theSlotsAreFoundByName();

    void itFollowsTheActiveWindow();
    void hiddenItIgnoresTheActiveWindow();
    void aRastersSourceIsSaidInTheDebugLog();
    void otherLayersAreTakenInSilence();
    void thePointerNeverChangesAField();
    void theFieldsCanBeTypedIn();

private:
    QTemporaryDir folder;
    QString file;
};

void CellValuesTest::initTestCase()
{
    QVERIFY(folder.isValid());
    file = folder.filePath("rgb.tif");
    QVERIFY(makeRaster(file, RasterRecipe()));
}

void CellValuesTest::theFormIsThatOfTheDesign()
{
    QWidget parent;
    const CellValues panel(&parent);
    QCOMPARE(panel.parentWidget(), &parent);
    QCOMPARE(panel.objectName(), QString("CellValues"));
    QCOMPARE(panel.windowTitle(), QString("Raster Cell Values"));
    const auto* const coordinates = panel.findChild<QGroupBox*>("groupBox");
    QCOMPARE(coordinates->title(), QString("Raster Cell Coordinates"));
    const auto* const grid = qobject_cast<QGridLayout*>(coordinates->layout());
    QVERIFY(grid);
    QStringList places;
    for (const char* name : {"label", "lineEdit", "lineEdit_2", "label_3", "lineEdit_3",
                             "lineEdit_4", "label_2", "lineEdit_5", "lineEdit_6"})
    {
        places << placeOf(*grid, coordinates->findChild<QWidget*>(name));
    }
    QCOMPARE(places.join("; "),
             QString("label 0,0; lineEdit 0,1; lineEdit_2 0,2; label_3 1,0; lineEdit_3 1,1; "
                     "lineEdit_4 1,2; label_2 2,0; lineEdit_5 2,1; lineEdit_6 2,2"));
    const struct
    {
        const char* name;
        const char* text;
    } labels[] = {{"label", "Dataset X, Y:"},
                  {"label_3", "Easting, Northing:"},
                  {"label_2", "Latitude, Longitude:"},
                  {"label_4", "Band:"}};
    for (const auto& label : labels) {
        QCOMPARE(panel.findChild<QLabel*>(label.name)->text(), QString(label.text));
    }
    const auto* const profile = panel.findChild<QGroupBox*>("groupBox_2");
    QCOMPARE(profile->title(), QString("Raster Cell Values Profile"));
    QLayout* const row = profile->layout()->itemAt(0)->layout();
    QVERIFY(row);
    QCOMPARE(row->itemAt(0)->widget()->objectName(), QString("label_4"));
    QCOMPARE(row->itemAt(1)->widget()->objectName(), QString("comboBox"));
    QVERIFY(row->itemAt(2)->spacerItem());
    QCOMPARE(row->itemAt(2)->spacerItem()->expandingDirections(), Qt::Horizontal);
    QCOMPARE(profile->layout()->itemAt(1)->widget()->objectName(), QString("tableWidget"));
    QCOMPARE(texts(panel), nothing);
}

void CellValuesTest::itLooksRight()
{
    Stage stage;
    QVERIFY(stage.isOpen);
    QCOMPARE(stage.view->addLayer("Corvane::Map::GdalRasterLayer", file), 0);
    QTRY_COMPARE(int(stage.view->getLayerAt(0)->getPercentComplete()), 100);
    stage.panel.onLayerActivated(stage.view->getLayerAt(0));
    QCOMPARE(takePictures(stage.panel, "CellValues"), QStringList());
    stage.area.setActiveSubWindow(stage.other);
    QCOMPARE(takePictures(stage.panel, "CellValuesWithoutAMap"), QStringList());
}

void CellValuesTest::theSlotsAreFoundByName()
{
    for (const char* slot :
         {"onSubWindowActivated(QMdiSubWindow*)", "onLayerActivated(Map::Layer*)",
          "onPointerPositionChanged(QPoint&,QPointF&)"})
    {
        QVERIFY2(CellValues::staticMetaObject.indexOfSlot(slot) >= 0, slot);
    }
}

void CellValuesTest::itFollowsTheActiveWindow()
{
    Stage stage;
    QVERIFY(stage.panel.isEnabled());
    stage.area.setActiveSubWindow(stage.other);
    QVERIFY(!stage.panel.isEnabled());
    stage.activate(stage.view);
    QVERIFY(stage.panel.isEnabled());
    stage.panel.onSubWindowActivated(nullptr);
    QVERIFY(!stage.panel.isEnabled());
}

void CellValuesTest::hiddenItIgnoresTheActiveWindow()
{
    Stage stage;
    stage.panel.hide();
    stage.area.setActiveSubWindow(stage.other);
    QVERIFY(stage.panel.isEnabled());
    stage.panel.onSubWindowActivated(nullptr);
    QVERIFY(stage.panel.isEnabled());
    // shown again it is as it was, until the next activation
    stage.panel.show();
    QVERIFY(stage.panel.isEnabled());
    stage.activate(stage.view);
    stage.area.setActiveSubWindow(stage.other);
    QVERIFY(!stage.panel.isEnabled());
    stage.panel.hide();
    stage.activate(stage.view);
    stage.panel.show();
    QVERIFY(!stage.panel.isEnabled());
}

void CellValuesTest::aRastersSourceIsSaidInTheDebugLog()
{
    const std::unique_ptr<Map::Layer> layer(
        PluginManager::createLayer("Corvane::Map::GdalRasterLayer", false));
    QVERIFY(layer);
    QVERIFY(layer->setDataSource(file));
    CellValues panel;
    const MessageLines messages;
    panel.onLayerActivated(layer.get());
    QCOMPARE(messages.all(), QStringList({"debug: " + file}));
    QVERIFY(panel.isEnabled());
    QCOMPARE(texts(panel), nothing);
}

void CellValuesTest::otherLayersAreTakenInSilence()
{
    CellValues panel;
    TestVectorLayer vector;
    const MessageLines messages;
    panel.onLayerActivated(&vector);
    panel.onLayerActivated(nullptr);
    QCOMPARE(messages.all(), QStringList());
    QCOMPARE(texts(panel), nothing);
}

void CellValuesTest::thePointerNeverChangesAField()
{
    CellValues panel;
    TestRasterLayer layer;
    panel.onLayerActivated(&layer);
    QPoint screen(10, 20);
    QPointF world(500000.0, 4650000.0);
    QVERIFY(QMetaObject::invokeMethod(&panel, "onPointerPositionChanged",
                                      QArgument<QPoint&>("QPoint&", screen),
                                      QArgument<QPointF&>("QPointF&", world)));
    QCOMPARE(screen, QPoint(10, 20));
    QCOMPARE(world, QPointF(500000.0, 4650000.0));
    QCOMPARE(texts(panel), nothing);
}

void CellValuesTest::theFieldsCanBeTypedIn()
{
    CellValues panel;
    panel.show();
    for (QLineEdit* line : panel.findChildren<QLineEdit*>()) {
        QTest::keyClicks(line, "12");
        QCOMPARE(line->text(), QString("12"));
    }
}

MAP_TEST_MAIN(CellValuesTest)

#include "CellValuesTest.moc"
