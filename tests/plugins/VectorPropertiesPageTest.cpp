#include <plugins/vector/VectorPropertiesPage.h>

#include <plugins/vector/LayerChoiceDialog.h>
#include <plugins/vector/OgrVectorLayer.h>

#include <tests/plugins/LayerProbe.h>
#include <tests/plugins/TestVectors.h>
#include <tests/plugins/VectorProbe.h>

#include <corvane/gui/ColorButton.h>

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QListWidget>
#include <QLoggingCategory>
#include <QPushButton>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

using namespace Corvane;
using namespace Corvane::Gui;
using namespace Corvane::Map;
using namespace Corvane::Tests;

/// The page "Vector" of the layer properties, and the small widgets of the plugin.
class VectorPropertiesPageTest : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void showsTheLayersSettingsAndFacts();
    void changesNothingBeforeApply();
    void appliesStyleAndLabels();
    void applyingWhatWasShownChangesNothing();
    void aPatternThatTheListLacksStays();
    void choosesAnotherLayerOfTheSource();
    void isDisabledWithoutAVectorLayer();
    void survivesTheLayersEnd();
    void aColourIsChosenInADialog();
    void theChoiceOfLayersBeginsWithTheFirst();
    void nothingChosenCannotBeAccepted();

private:
    template <typename Widget>
    Widget* find(const char* name)
    {
        return page->findChild<Widget*>(name);
    }
    void pick(const char* name, const QVariant& data)
    {
        auto* const combo = find<QComboBox>(name);
        combo->setCurrentIndex(combo->findData(data));
    }

    QTemporaryDir folder;
    std::unique_ptr<OgrVectorLayer> layer;
    std::unique_ptr<VectorPropertiesPage> page;
};

void VectorPropertiesPageTest::init()
{
    const QString path = folder.filePath("two.gpkg");
    if (!QFile::exists(path)) {
        VectorRecipe first = shapes({"POLYGON((10 10,90 10,90 90,10 10))", "POINT(1e300 0)"});
        first.fields = QStringList({"name", "kind"});
        QVERIFY(makeVectors(path, first));
        VectorRecipe second = shapes({"POINT(110 120)", "POINT(130 160)"});
        second.layer = "second";
        second.append = true;
        QVERIFY(makeVectors(path, second));
    }
    layer = std::make_unique<OgrVectorLayer>();
    QVERIFY(layer->setDataSource(path));
    QTRY_VERIFY(layer->isValid());
    layer->setTransparency(0.25);
    complete(*layer, WorldView());
    page = std::make_unique<VectorPropertiesPage>();
    page->setLayer(layer.get());
}

void VectorPropertiesPageTest::showsTheLayersSettingsAndFacts()
{
    QVERIFY(page->isEnabled());
    QCOMPARE(page->windowTitle(), QString("Vector"));
    QCOMPARE(find<QComboBox>("layerNameComboBox")->currentText(), QString("shapes"));
    QCOMPARE(find<QComboBox>("layerNameComboBox")->count(), 2);
    QCOMPARE(find<QComboBox>("lineStyleComboBox")->currentText(), QString("Solid"));
    QCOMPARE(find<ColorButton>("lineColorButton")->getColor(), layer->getPen().color());
    QCOMPARE(find<QSpinBox>("lineWidthSpinBox")->value(), 1);
    QCOMPARE(find<QComboBox>("fillStyleComboBox")->currentText(), QString("No fill"));
    QCOMPARE(find<ColorButton>("fillColorButton")->getColor(), QColor("#f0d9a0"));
    QCOMPARE(find<QComboBox>("pointSymbolComboBox")->currentText(), QString("Circle"));
    QCOMPARE(find<QDoubleSpinBox>("pointSizeSpinBox")->value(), 7.0);
    QCOMPARE(find<QDoubleSpinBox>("transparencySpinBox")->value(), 25.0);
    QVERIFY(find<QCheckBox>("antialiasingCheckBox")->isChecked());
    auto* const field = find<QComboBox>("labelFieldComboBox");
    QCOMPARE(field->currentText(), QString("(none)"));
    QCOMPARE(field->itemText(1) + "," + field->itemText(2), QString("name,kind"));
    QCOMPARE(find<QLineEdit>("driverLineEdit")->text(), QString("GPKG"));
    QCOMPARE(find<QLineEdit>("geometryLineEdit")->text(), QString("Unknown (any)"));
    QCOMPARE(find<QLineEdit>("featuresLineEdit")->text(), QString("2"));
    QCOMPARE(find<QLineEdit>("attributesLineEdit")->text(), QString("2"));
    QCOMPARE(find<QLineEdit>("attributesLineEdit")->toolTip(), QString("name, kind"));
    QCOMPARE(find<QLineEdit>("epsgLineEdit")->text(), QString("32633"));
    QCOMPARE(find<QLineEdit>("leftOutLineEdit")->text(), QString("1"));
    QVERIFY(find<QLineEdit>("driverLineEdit")->isReadOnly());
}

void VectorPropertiesPageTest::changesNothingBeforeApply()
{
    pick("lineStyleComboBox", int(Qt::DotLine));
    find<QSpinBox>("lineWidthSpinBox")->setValue(9);
    pick("labelFieldComboBox", "kind");
    QCOMPARE(layer->getPen().style(), Qt::SolidLine);
    QCOMPARE(layer->getPen().width(), 1);
    QCOMPARE(layer->getLabelField(), QString());
}

void VectorPropertiesPageTest::appliesStyleAndLabels()
{
    pick("lineStyleComboBox", int(Qt::DotLine));
    find<ColorButton>("lineColorButton")->setColor(QColor(1, 2, 3));
    find<QSpinBox>("lineWidthSpinBox")->setValue(9);
    pick("fillStyleComboBox", int(Qt::SolidPattern));
    find<ColorButton>("fillColorButton")->setColor(QColor(Qt::blue));
    pick("pointSymbolComboBox", "Cross");
    find<QDoubleSpinBox>("pointSizeSpinBox")->setValue(12.5);
    find<QDoubleSpinBox>("transparencySpinBox")->setValue(0.0);
    find<QCheckBox>("antialiasingCheckBox")->setChecked(false);
    pick("labelFieldComboBox", "kind");
    find<QDoubleSpinBox>("labelSizeSpinBox")->setValue(20.0);
    find<ColorButton>("labelColorButton")->setColor(QColor(Qt::red));
    page->apply();
    QCOMPARE(layer->getPen().style(), Qt::DotLine);
    QCOMPARE(layer->getPen().color(), QColor(1, 2, 3));
    QCOMPARE(layer->getPen().width(), 9);
    QCOMPARE(layer->getPen().capStyle(), Qt::RoundCap);
    QCOMPARE(layer->getBrush(), QBrush(QColor(Qt::blue)));
    QCOMPARE(layer->getPointSymbol(), QString("Cross"));
    QCOMPARE(layer->getPointSize(), 12.5);
    QCOMPARE(layer->getTransparency(), 0.0);
    QVERIFY(!layer->isAntialiasing());
    QCOMPARE(layer->getLabelField(), QString("kind"));
    QCOMPARE(layer->getLabelSize(), 20.0);
    QCOMPARE(layer->getLabelColor(), QColor(Qt::red));
    layer->setProgressive(false);
    QCOMPARE(complete(*layer, WorldView()).pixelColor(140, 140), QColor(Qt::blue));
}

void VectorPropertiesPageTest::applyingWhatWasShownChangesNothing()
{
    QPen fine(QColor(7, 8, 9), 2.5, Qt::DashLine);
    layer->setPen(fine);
    page->setLayer(layer.get());
    const QBrush brush = layer->getBrush();
    const QImage before = complete(*layer, WorldView());
    page->apply();
    QCOMPARE(layer->getPen(), fine);
    QCOMPARE(layer->getBrush(), brush);
    QCOMPARE(layer->getLayerName(), QString("shapes"));
    QCOMPARE(complete(*layer, WorldView()), before);
}

void VectorPropertiesPageTest::aPatternThatTheListLacksStays()
{
    QBrush dense(QColor(7, 8, 9), Qt::Dense1Pattern);
    layer->setBrush(dense);
    QPen custom(QColor(7, 8, 9), 2);
    custom.setDashPattern({4.0, 2.0});
    layer->setPen(custom);
    page->setLayer(layer.get());
    page->apply();
    QCOMPARE(layer->getBrush(), dense);
    QCOMPARE(layer->getPen(), custom);
}

void VectorPropertiesPageTest::choosesAnotherLayerOfTheSource()
{
    find<QComboBox>("layerNameComboBox")->setCurrentText("second");
    page->apply();
    QTRY_VERIFY(layer->isValid());
    QCOMPARE(layer->getLayerName(), QString("second"));
    QCOMPARE(layer->getBounds(), QRectF(110.0, 160.0, 20.0, -40.0));
}

void VectorPropertiesPageTest::isDisabledWithoutAVectorLayer()
{
    VectorPropertiesPage other;
    QVERIFY(!other.isEnabled());
    other.setLayer(nullptr);
    QVERIFY(!other.isEnabled());
    OgrVectorLayer closed;
    other.setLayer(&closed);
    QVERIFY(!other.isEnabled());
    other.apply();
    QCOMPARE(closed.getPen().width(), 1);
}

void VectorPropertiesPageTest::survivesTheLayersEnd()
{
    layer.reset();
    page->apply();
    QVERIFY(page->isEnabled());
}

void VectorPropertiesPageTest::aColourIsChosenInADialog()
{
    ColorButton button;
    button.setColor(QColor(1, 2, 3));
    QCOMPARE(button.text(), QString("#010203"));
    QTimer::singleShot(0, &button, [&button] {
        auto* const dialog = button.findChild<QColorDialog*>();
        dialog->setCurrentColor(QColor(4, 5, 6));
        dialog->accept();
    });
    button.click();
    QCOMPARE(button.getColor(), QColor(4, 5, 6));
    QTimer::singleShot(0, &button, [&button] { button.findChild<QColorDialog*>()->reject(); });
    button.click();
    QCOMPARE(button.getColor(), QColor(4, 5, 6));
}

void VectorPropertiesPageTest::theChoiceOfLayersBeginsWithTheFirst()
{
    LayerChoiceDialog dialog("roads.gpkg", {"motorways", "paths", "tracks"}, nullptr);
    QCOMPARE(dialog.getChosen(), QStringList({"motorways"}));
    dialog.findChild<QListWidget*>("layerList")->item(2)->setSelected(true);
    QCOMPARE(dialog.getChosen(), QStringList({"motorways", "tracks"}));
}

void VectorPropertiesPageTest::nothingChosenCannotBeAccepted()
{
    LayerChoiceDialog dialog("roads.gpkg", {"motorways", "paths"}, nullptr);
    auto* const ok = dialog.findChild<QDialogButtonBox*>("buttonBox")->button(QDialogButtonBox::Ok);
    QVERIFY(ok->isEnabled());
    dialog.findChild<QListWidget*>("layerList")->clearSelection();
    QVERIFY(!ok->isEnabled());
}

int main(int argc, char** argv)
{
    QLoggingCategory::setFilterRules("corvane.tiles.debug=false\ndefault.debug=false");
    Application application(argc, argv, "VectorPropertiesPageTest");
    VectorPropertiesPageTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "VectorPropertiesPageTest.moc"
