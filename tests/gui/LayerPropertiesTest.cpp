#include <corvane/gui/LayerProperties.h>

#include <corvane/core/Application.h>
#include <corvane/core/PluginManager.h>
#include <tests/core/PluginFolder.h>
#include <tests/gui/PanelLayers.h>
#include <tests/gui/PanelPictures.h>
#include <tests/map/TestLayers.h>
#include <tests/plugins/TestRasters.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QLoggingCategory>
#include <QPushButton>
#include <QSettings>
#include <QPen>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTextEdit>
#include <QtTest>

#include <memory>

using namespace Corvane;
using namespace Corvane::Tests;
using Gui::LayerProperties;

namespace {

const QStringList rasterFields = {"formatLineEdit",     "widthLineEdit", "heightLineEdit",
                                  "gigaPixelsLineEdit", "bandsLineEdit", "hasAlphaLineEdit",
                                  "cellXLineEdit",      "cellYLineEdit", "cellTypeLineEdit",
                                  "colorSpaceLineEdit", "topLineEdit",   "leftLineEdit",
                                  "bottomLineEdit",     "rightLineEdit", "rotationLineEdit"};

/// A vector layer that no plugin knows.
class OwnVectorLayer : public PlainLayer<Map::VectorLayer>
{
    Q_OBJECT
public:
    OwnVectorLayer() : PlainLayer(nullptr) {}
};

/// Counts how often its comments are written.
class CommentedLayer : public TestRasterLayer
{
public:
    void setComments(QString text) override
    {
        ++writes;
        TestRasterLayer::setComments(text);
    }
    int writes = 0;
};

} // namespace

class LayerPropertiesTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

    void theDialogHasATitleAndAFrameOfItsOwn();
    void theSlotsAreFoundByName();
    void threePagesStandInTheFormAndTheLastIsInFront();
    void theFieldsHaveTheirLabels_data();
    void theFieldsHaveTheirLabels();
    void theGroupsHaveTheirTitles();
    void theCellUnitsAreHidden();
    void theScaleRangeIsThereAndCannotBeUsed();
    void theTabKeyGoesFromFieldToField();

    void aRasterLayerFillsThePages();
    void numbersAreWrittenAsTheLocaleWritesThem();
    void alphaIsTrueOrFalse();
    void longValuesShowFromTheirStart();
    void aLayerOfTheRasterPluginIsShown();
    void aLayerOfTheVectorPluginIsShown();
    void thePageOfTheVectorPluginIsAppliedByOkAlone();
    void aColourLikeThatOfItsButtonHasAnEdge();
    void longNamesOfASourceDoNotWidenTheDialog();
    void aVectorLayerShowsABlankRasterPage();
    void anotherLayerShowsABlankRasterPageToo();
    void aSecondRasterLayerDoublesNoPage();
    void withoutALayerTheDialogIsDisabledAndStaysAsItIs();
    void aLayerEnablesTheDialogAgain();

    void pagesOfThePluginFollow();
    void aPageWithoutTheInterfaceIsShownAsItIs();
    void acceptingLetsThePagesApply();
    void cancellingLeavesThePagesUnapplied();
    void pagesGoWithTheDialog();

    void okWritesTheComments();
    void okWritesCommentsThatNobodyChanged();
    void cancelLeavesTheComments();
    void escapeLeavesTheComments();
    void commentsKeepTheirCharacters();
    void aLayerThatGoesLeavesAnEmptyHandedDialog();

    void picturesOfEveryPage();

private:
    QLineEdit* field(const QString& name) const { return dialog->findChild<QLineEdit*>(name); }
    QString textOf(const QString& name) const { return field(name)->text(); }
    QTabWidget* tabs() const { return dialog->findChild<QTabWidget*>("tabWidget"); }
    QStringList tabTexts() const;
    QTextEdit* comments() const { return dialog->findChild<QTextEdit*>("commentsTextEdit"); }
    void click(QDialogButtonBox::StandardButton button) const;
    void show() const;

    QTemporaryDir folder;
    QString image;
    QString landscape;
    std::unique_ptr<Map::Layer> vectorLayer; // of the test plugin
    std::unique_ptr<LayerProperties> dialog;
};

void LayerPropertiesTest::initTestCase()
{
    QVERIFY(folder.isValid());
    QLocale::setDefault(QLocale("en_US"));
    image = folder.filePath("image.tif");
    QVERIFY(makeRaster(image, RasterRecipe()));
    landscape = folder.filePath("landscape.gpkg");
    QVERIFY(makeLandscape(landscape));
    PluginFolder plugins;
    QVERIFY(plugins.add("TestVectorPlugin"));
    QVERIFY(QFile::link(CORVANE_RASTER_PLUGIN, plugins.path("corvane-raster" PLUGIN_SUFFIX)));
    QVERIFY(QFile::link(CORVANE_VECTOR_PLUGIN, plugins.path("corvane-vector" PLUGIN_SUFFIX)));
}

void LayerPropertiesTest::init()
{
    takeNotes();
    vectorLayer.reset(PluginManager::createLayer("TestVectorLayer", false));
    QVERIFY(vectorLayer);
    vectorLayer->setDescription("Roads");
    dialog = std::make_unique<LayerProperties>(nullptr);
    takeNotes();
}

void LayerPropertiesTest::cleanup()
{
    dialog.reset();
    vectorLayer.reset();
    QLocale::setDefault(QLocale("en_US"));
}

QStringList LayerPropertiesTest::tabTexts() const
{
    QStringList texts;
    for (int i = 0; i < tabs()->count(); ++i) {
        texts << tabs()->tabText(i);
    }
    return texts;
}

void LayerPropertiesTest::click(QDialogButtonBox::StandardButton button) const
{
    QTest::mouseClick(dialog->findChild<QDialogButtonBox*>("buttonBox")->button(button),
                      Qt::LeftButton);
}

void LayerPropertiesTest::show() const
{
    dialog->show();
    QVERIFY(QTest::qWaitForWindowActive(dialog.get()));
}

void LayerPropertiesTest::theDialogHasATitleAndAFrameOfItsOwn()
{
    QCOMPARE(dialog->windowTitle(), QString("Layer Properties"));
    QCOMPARE(dialog->windowFlags(), Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                                        Qt::WindowCloseButtonHint);
    auto* const buttons = dialog->findChild<QDialogButtonBox*>("buttonBox");
    QVERIFY(buttons);
    QVERIFY(buttons->y() >= tabs()->y());
    QWidget parent;
    const LayerProperties child(&parent);
    QCOMPARE(child.parentWidget(), &parent);
}

void LayerPropertiesTest::theSlotsAreFoundByName()
{
    const QMetaObject& type = LayerProperties::staticMetaObject;
    QStringList methods;
    for (int i = type.methodOffset(); i < type.methodCount(); ++i) {
        QCOMPARE(type.method(i).methodType(), QMetaMethod::Slot);
        QCOMPARE(type.method(i).access(), QMetaMethod::Public);
        methods << type.method(i).methodSignature();
    }
    QCOMPARE(methods, QStringList({"setLayer(Map::Layer*)", "accept()", "reject()"}));
}

void LayerPropertiesTest::threePagesStandInTheFormAndTheLastIsInFront()
{
    QCOMPARE(tabTexts(), QStringList({"General", "Vector Info", "Raster Info"}));
    QCOMPARE(tabs()->widget(0)->objectName(), QString("generalTab"));
    QCOMPARE(tabs()->widget(1)->objectName(), QString("vectorInfoTab"));
    QCOMPARE(tabs()->widget(2)->objectName(), QString("rasterInfoTab"));
    QCOMPARE(tabs()->currentIndex(), 2);
    QVERIFY(tabs()->widget(1)->findChildren<QWidget*>().isEmpty());
}

void LayerPropertiesTest::theFieldsHaveTheirLabels_data()
{
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("group");
    QTest::addColumn<bool>("readOnly");
    const auto row = [](const char* name, const char* label, const char* group, bool readOnly) {
        QTest::newRow(name) << QString(label) << QString(group) << readOnly;
    };
    row("dataSourceLineEdit", "Data Source:", "groupBox_4", true);
    row("descriptionLineEdit", "Description:", "groupBox_4", true);
    row("commentsTextEdit", "Comments:", "groupBox_4", false);
    row("coordSysLineEdit", "Reference:", "groupBox_2", true);
    row("cellUnitsLineEdit", "Cell Units:", "groupBox_2", true);
    row("minScaleLineEdit", "Min Scale:", "groupBox", false);
    row("maxScaleLineEdit", "Max Scale:", "groupBox", false);
    const QStringList labels = {"Format:",
                                "Width:",
                                "Height:",
                                "Gigapixels:",
                                "Bands:",
                                "Has Alpha:",
                                "Cell Size X:",
                                "Cell Size Y:",
                                "Cell Type:",
                                "Color Space:",
                                "Top Coordinate:",
                                "Left Coordinate:",
                                "Bottom Coordinate:",
                                "Right Coordinate:",
                                "Rotation:"};
    for (int i = 0; i < rasterFields.size(); ++i) {
        row(qPrintable(rasterFields.at(i)), qPrintable(labels.at(i)), "groupBox_6", true);
    }
}

void LayerPropertiesTest::theFieldsHaveTheirLabels()
{
    QFETCH(QString, label);
    QFETCH(QString, group);
    QFETCH(bool, readOnly);
    auto* const widget = dialog->findChild<QWidget*>(QTest::currentDataTag());
    QVERIFY(widget);
    QCOMPARE(widget->property("readOnly").toBool(), readOnly);
    QCOMPARE(widget->parentWidget()->objectName(), group);
    QStringList labels;
    for (const QLabel* candidate : dialog->findChildren<QLabel*>()) {
        if (candidate->buddy() == widget) {
            labels << candidate->text();
        }
    }
    QCOMPARE(labels, QStringList(label));
}

void LayerPropertiesTest::theGroupsHaveTheirTitles()
{
    QStringList titles;
    for (const char* name : {"groupBox_4", "groupBox_2", "groupBox", "groupBox_6"}) {
        titles << dialog->findChild<QGroupBox*>(name)->title();
    }
    QCOMPARE(titles,
             QStringList({"General", "Spatial Reference System", "Scale Range:", "Raster Info"}));
    QCOMPARE(field("gigaPixelsLineEdit")->toolTip(),
             QString("1 Gigapixel = 1,000 Megapixels, calculated as width x height, and does not "
                     "include number of bands."));
}

void LayerPropertiesTest::theCellUnitsAreHidden()
{
    show();
    tabs()->setCurrentIndex(0);
    QVERIFY(field("coordSysLineEdit")->isVisible());
    QVERIFY(!field("cellUnitsLineEdit")->isVisible());
    auto* const label = dialog->findChild<QLabel*>("label_10");
    QCOMPARE(label->text(), QString("Cell Units:"));
    QVERIFY(!label->isVisible());
}

void LayerPropertiesTest::theScaleRangeIsThereAndCannotBeUsed()
{
    TestRasterLayer layer;
    layer.setMinScale(1000.0);
    dialog->setLayer(&layer);
    show();
    tabs()->setCurrentIndex(0);
    QVERIFY(!dialog->findChild<QGroupBox*>("groupBox")->isEnabled());
    auto* const box = dialog->findChild<QCheckBox*>("scaleRangeCheckbox");
    QCOMPARE(box->text(), QString("Specify a scale range where this layer is visible:"));
    QVERIFY(box->isVisible());
    QTest::mouseClick(box, Qt::LeftButton);
    QVERIFY(!box->isChecked());
    for (const char* name : {"snapshotMinScaleButton", "snapshotMaxScaleButton"}) {
        auto* const button = dialog->findChild<QPushButton*>(name);
        QCOMPARE(button->text(), QString("Snapshot map window"));
        QSignalSpy clicks(button, &QPushButton::clicked);
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(clicks.count(), 0);
    }
    QCOMPARE(textOf("minScaleLineEdit"), QString());
    QCOMPARE(textOf("maxScaleLineEdit"), QString());
}

void LayerPropertiesTest::theTabKeyGoesFromFieldToField()
{
    show();
    tabs()->setCurrentIndex(2);
    field("formatLineEdit")->setFocus();
    for (const QString& name : rasterFields) {
        QVERIFY(QApplication::focusWidget());
        QCOMPARE(QApplication::focusWidget()->objectName(), name);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    tabs()->setCurrentIndex(0);
    tabs()->setFocus();
    for (const char* name : {"dataSourceLineEdit", "descriptionLineEdit", "commentsTextEdit"}) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QCOMPARE(QApplication::focusWidget()->objectName(), QString(name));
    }
}

void LayerPropertiesTest::aRasterLayerFillsThePages()
{
    TestRasterLayer layer;
    layer.dataSource = "/data/image.tif";
    layer.setDescription("An image");
    layer.setComments("Seen twice");
    layer.coordSysName = "WGS 84 / UTM zone 33N";
    layer.format = "GeoTIFF";
    layer.size = QSize(1234567, 89);
    layer.bandList = {1, 2, 3, 4};
    layer.cellSizeX = 0.123456789;
    layer.cellSizeY = -25.0;
    layer.cellType = "UInt16";
    layer.colorSpace = Map::RasterLayer::ColorSpace::Multiband;
    layer.bounds = QRectF(QPointF(-1234.5, 5000000.1234567), QPointF(2000.25, -7.0));
    layer.rotation = 12.34567;
    dialog->setLayer(&layer);

    QCOMPARE(tabTexts(), QStringList({"General", "Raster Info"}));
    QStringList values = {textOf("dataSourceLineEdit"), textOf("descriptionLineEdit"),
                          comments()->toPlainText(), textOf("coordSysLineEdit")};
    for (const QString& name : rasterFields) {
        values << textOf(name);
    }
    QCOMPARE(values,
             QStringList({"/data/image.tif", "An image", "Seen twice", "WGS 84 / UTM zone 33N",
                          "GeoTIFF", "1,234,567", "89", "0.11", "4", "false", "0.123457", "-25",
                          "UInt16", "Multiband", "5,000,000.123457", "-1,234.500000", "-7.000000",
                          "2,000.250000", "12.3457"}));
    QCOMPARE(textOf("cellUnitsLineEdit"), QString());
}

void LayerPropertiesTest::numbersAreWrittenAsTheLocaleWritesThem()
{
    TestRasterLayer layer;
    layer.size = QSize(50000, 40000);
    layer.bounds = QRectF(QPointF(1234.5, 0.0), QPointF(2000.25, -7.0));
    layer.cellSizeX = 0.5;
    dialog->setLayer(&layer);
    QCOMPARE(textOf("gigaPixelsLineEdit"), QString("2.00"));
    QCOMPARE(textOf("widthLineEdit"), QString("50,000"));
    QLocale::setDefault(QLocale("de_DE"));
    dialog->setLayer(&layer);
    QCOMPARE(textOf("gigaPixelsLineEdit"), QString("2,00"));
    QCOMPARE(textOf("widthLineEdit"), QString("50.000"));
    QCOMPARE(textOf("heightLineEdit"), QString("40.000"));
    QCOMPARE(textOf("leftLineEdit"), QString("1.234,500000"));
    QCOMPARE(textOf("cellXLineEdit"), QString("0.5"));
    QCOMPARE(textOf("rotationLineEdit"), QString("0.0000"));
}

void LayerPropertiesTest::alphaIsTrueOrFalse()
{
    TestRasterLayer layer;
    layer.opacity = true;
    dialog->setLayer(&layer);
    QCOMPARE(textOf("hasAlphaLineEdit"), QString("true"));
}

void LayerPropertiesTest::longValuesShowFromTheirStart()
{
    TestRasterLayer layer;
    layer.format = "GeoTIFF";
    dialog->setLayer(&layer);
    for (const QString& name : rasterFields) {
        const bool stays = name == "gigaPixelsLineEdit" || name == "cellTypeLineEdit" ||
                           name == "colorSpaceLineEdit";
        QVERIFY2(!textOf(name).isEmpty(), qPrintable(name));
        QVERIFY2(field(name)->cursorPosition() == (stays ? textOf(name).size() : 0),
                 qPrintable(name));
    }
}

void LayerPropertiesTest::aLayerOfTheRasterPluginIsShown()
{
    const std::unique_ptr<Map::Layer> layer = openLayer(rasterClass, image);
    QVERIFY(layer);
    dialog->setLayer(layer.get());
    QCOMPARE(tabTexts(), QStringList({"General", "Raster Info", "Raster"}));
    QCOMPARE(textOf("dataSourceLineEdit"), image);
    QCOMPARE(textOf("coordSysLineEdit"), QString("WGS 84 / UTM zone 33N"));
    QCOMPARE(textOf("widthLineEdit"), QString("600"));
    QCOMPARE(textOf("heightLineEdit"), QString("500"));
    QCOMPARE(textOf("gigaPixelsLineEdit"), QString("0.00"));
    QCOMPARE(textOf("bandsLineEdit"), QString("3"));
    QCOMPARE(textOf("cellXLineEdit"), QString("2"));
    QCOMPARE(textOf("cellYLineEdit"), QString("-2"));
    QCOMPARE(textOf("colorSpaceLineEdit"), QString("RGB"));
    QCOMPARE(textOf("topLineEdit"), QString("5,000.000000"));
    QCOMPARE(textOf("leftLineEdit"), QString("1,000.000000"));
    QCOMPARE(textOf("bottomLineEdit"), QString("4,000.000000"));
    QCOMPARE(textOf("rightLineEdit"), QString("2,200.000000"));
    QCOMPARE(textOf("formatLineEdit"), layer->getFormat());
    QVERIFY(!textOf("formatLineEdit").isEmpty());
}

void LayerPropertiesTest::aLayerOfTheVectorPluginIsShown()
{
    const std::unique_ptr<Map::Layer> layer = openLayer(vectorClass, landscape);
    QVERIFY(layer);
    dialog->setLayer(layer.get());
    QCOMPARE(tabTexts(), QStringList({"General", "Raster Info", "Vector Info", "Vector"}));
    QCOMPARE(textOf("dataSourceLineEdit"), landscape);
    QCOMPARE(textOf("coordSysLineEdit"), QString()); // which only rasters fill
    for (const QString& name : rasterFields) {
        QCOMPARE(textOf(name), QString());
    }
    QVERIFY(tabs()->widget(2)->findChildren<QWidget*>().isEmpty());
    QVERIFY(tabs()->widget(3)->isEnabled());
    QCOMPARE(textOf("driverLineEdit"), QString("GPKG"));
    QCOMPARE(textOf("featuresLineEdit"), QString("5"));
    QCOMPARE(textOf("attributesLineEdit"), QString("1"));
    QCOMPARE(textOf("epsgLineEdit"), QString("32633"));
}

void LayerPropertiesTest::thePageOfTheVectorPluginIsAppliedByOkAlone()
{
    const std::unique_ptr<Map::Layer> layer = openLayer(vectorClass, landscape);
    QVERIFY(layer);
    for (const auto button : {QDialogButtonBox::Cancel, QDialogButtonBox::Ok}) {
        dialog = std::make_unique<LayerProperties>(nullptr);
        dialog->setLayer(layer.get());
        show();
        tabs()->setCurrentIndex(3);
        auto* const width = dialog->findChild<QSpinBox*>("lineWidthSpinBox");
        QCOMPARE(width->value(), 1);
        width->setFocus();
        QTest::keyClick(width, Qt::Key_Up);
        click(button);
        const bool isTaken = button == QDialogButtonBox::Ok;
        QCOMPARE(layer->property("pen").value<QPen>().width(), isTaken ? 2 : 1);
    }
}

void LayerPropertiesTest::aColourLikeThatOfItsButtonHasAnEdge()
{
    const std::unique_ptr<Map::Layer> layer = openLayer(vectorClass, landscape);
    QVERIFY(layer);
    for (const QColor& colour : {QColor(Qt::white), QColor(Qt::black)}) {
        layer->setProperty("LabelColor", colour);
        dialog = std::make_unique<LayerProperties>(nullptr);
        dialog->setLayer(layer.get());
        const auto* const button = dialog->findChild<QPushButton*>("labelColorButton");
        const QImage swatch = button->icon().pixmap(button->iconSize()).toImage();
        QCOMPARE(swatch.pixelColor(5, 5), colour);
        QCOMPARE(swatch.pixelColor(0, 0), QColor(Qt::darkGray));
        QCOMPARE(swatch.pixelColor(swatch.width() - 1, 5).alpha(), 0); // not glued to the text
    }
}

void LayerPropertiesTest::longNamesOfASourceDoNotWidenTheDialog()
{
    const QString path = folder.filePath("long.gpkg");
    VectorRecipe recipe = shapes({"POINT(1000 5000)"});
    recipe.layer = QString("villages_and_towns_").repeated(8);
    recipe.fields = QStringList(QString("name_in_the_language_").repeated(8));
    QVERIFY(makeVectors(path, recipe));
    QList<int> widths;
    for (const QString& file : {landscape, path}) {
        const std::unique_ptr<Map::Layer> layer = openLayer(vectorClass, file);
        QVERIFY(layer);
        layer->setProperty("LabelField", layer->property("Fields").toStringList().first());
        dialog = std::make_unique<LayerProperties>(nullptr);
        dialog->setLayer(layer.get());
        tabs()->setCurrentIndex(3);
        show();
        widths << dialog->width();
    }
    QCOMPARE(widths.last(), widths.first());
    QCOMPARE(dialog->findChild<QComboBox*>("layerNameComboBox")->toolTip(), recipe.layer);
    QCOMPARE(dialog->findChild<QComboBox*>("labelFieldComboBox")->toolTip(), recipe.fields.first());
    QCOMPARE(takePictures(*dialog, "LayerProperties-vector-long").join("; "), QString());
}

void LayerPropertiesTest::aVectorLayerShowsABlankRasterPage()
{
    OwnVectorLayer layer;
    dialog->setLayer(&layer);
    QCOMPARE(tabTexts(), QStringList({"General", "Raster Info", "Vector Info"}));
    for (const QString& name : rasterFields) {
        QCOMPARE(textOf(name), QString());
    }
    QCOMPARE(textOf("coordSysLineEdit"), QString());
    QCOMPARE(tabs()->widget(2)->objectName(), QString("vectorInfoTab"));
}

void LayerPropertiesTest::anotherLayerShowsABlankRasterPageToo()
{
    TestLayer layer;
    layer.coordSysName = "not shown";
    dialog->setLayer(&layer);
    QCOMPARE(tabTexts(), QStringList({"General", "Raster Info"}));
    QCOMPARE(textOf("coordSysLineEdit"), QString());
    QCOMPARE(textOf("widthLineEdit"), QString());
}

void LayerPropertiesTest::aSecondRasterLayerDoublesNoPage()
{
    TestRasterLayer first;
    first.setDescription("first");
    TestRasterLayer second;
    second.setDescription("second");
    dialog->setLayer(&first);
    dialog->setLayer(&second);
    QCOMPARE(tabTexts(), QStringList({"General", "Raster Info"}));
    QCOMPARE(textOf("descriptionLineEdit"), QString("second"));
}

void LayerPropertiesTest::withoutALayerTheDialogIsDisabledAndStaysAsItIs()
{
    TestRasterLayer layer;
    layer.setDescription("An image");
    dialog->setLayer(&layer);
    dialog->setLayer(nullptr);
    QVERIFY(!dialog->isEnabled());
    QCOMPARE(textOf("descriptionLineEdit"), QString("An image"));
    QCOMPARE(textOf("widthLineEdit"), QString("100"));
    QCOMPARE(tabTexts(), QStringList({"General", "Raster Info"}));
}

void LayerPropertiesTest::aLayerEnablesTheDialogAgain()
{
    TestRasterLayer layer;
    dialog->setLayer(nullptr);
    dialog->setLayer(&layer);
    QVERIFY(dialog->isEnabled());
}

void LayerPropertiesTest::pagesOfThePluginFollow()
{
    dialog->setLayer(vectorLayer.get());
    QCOMPARE(tabTexts(),
             QStringList({"General", "Raster Info", "Vector Info", "Plugin page", "Plain page"}));
    QCOMPARE(takeNotes(), QStringList("page.setLayer Roads"));
    QCOMPARE(textOf("pageLineEdit"), QString("Roads"));
    QCOMPARE(tabs()->widget(3)->objectName(), QString("descriptionPage"));
}

void LayerPropertiesTest::aPageWithoutTheInterfaceIsShownAsItIs()
{
    dialog->setLayer(vectorLayer.get());
    show();
    tabs()->setCurrentIndex(4);
    auto* const page = dialog->findChild<QLabel*>("plainPage");
    QVERIFY(page->isVisible());
    QVERIFY(!page->qt_metacast("com.corvane.viewer.ILayerPropertiesWidget/1.0"));
    QCOMPARE(page->text(), QString("Nothing to see"));
    click(QDialogButtonBox::Ok);
    QCOMPARE(dialog->result(), int(QDialog::Accepted));
}

void LayerPropertiesTest::acceptingLetsThePagesApply()
{
    dialog->setLayer(vectorLayer.get());
    show();
    takeNotes();
    tabs()->setCurrentIndex(0);
    comments()->clear();
    QTest::keyClicks(comments(), "new");
    tabs()->setCurrentIndex(3);
    field("pageLineEdit")->setFocus();
    field("pageLineEdit")->selectAll();
    QTest::keyClicks(field("pageLineEdit"), "Rivers");
    click(QDialogButtonBox::Ok);
    QCOMPARE(takeNotes(), QStringList("page.apply after comments 'new'"));
    QCOMPARE(vectorLayer->getDescription(), QString("Rivers"));
    QCOMPARE(dialog->result(), int(QDialog::Accepted));
    QVERIFY(!dialog->isVisible());
}

void LayerPropertiesTest::cancellingLeavesThePagesUnapplied()
{
    dialog->setLayer(vectorLayer.get());
    show();
    takeNotes();
    field("pageLineEdit")->setText("Rivers");
    click(QDialogButtonBox::Cancel);
    QCOMPARE(takeNotes(), QStringList());
    QCOMPARE(vectorLayer->getDescription(), QString("Roads"));
    QCOMPARE(dialog->result(), int(QDialog::Rejected));
}

void LayerPropertiesTest::pagesGoWithTheDialog()
{
    dialog->setLayer(vectorLayer.get());
    takeNotes();
    dialog.reset();
    QCOMPARE(takeNotes(), QStringList("page deleted"));
}

void LayerPropertiesTest::okWritesTheComments()
{
    CommentedLayer layer;
    dialog->setLayer(&layer);
    show();
    tabs()->setCurrentIndex(0);
    comments()->setFocus();
    QTest::keyClicks(comments(), "Clouds in the east");
    QTest::keyClick(comments(), Qt::Key_Return);
    QTest::keyClicks(comments(), "None in the west");
    QCOMPARE(layer.getComments(), QString());
    click(QDialogButtonBox::Ok);
    QCOMPARE(layer.getComments(), QString("Clouds in the east\nNone in the west"));
    QCOMPARE(layer.writes, 1);
}

void LayerPropertiesTest::okWritesCommentsThatNobodyChanged()
{
    CommentedLayer layer;
    dialog->setLayer(&layer);
    show();
    click(QDialogButtonBox::Ok);
    QCOMPARE(layer.writes, 1);
}

void LayerPropertiesTest::cancelLeavesTheComments()
{
    CommentedLayer layer;
    dialog->setLayer(&layer);
    show();
    tabs()->setCurrentIndex(0);
    QTest::keyClicks(comments(), "Lost");
    click(QDialogButtonBox::Cancel);
    QCOMPARE(layer.writes, 0);
    QCOMPARE(layer.getComments(), QString());
}

void LayerPropertiesTest::escapeLeavesTheComments()
{
    CommentedLayer layer;
    dialog->setLayer(&layer);
    show();
    comments()->setPlainText("Lost");
    QTest::keyClick(dialog.get(), Qt::Key_Escape);
    QVERIFY(!dialog->isVisible());
    QCOMPARE(layer.writes, 0);
}

void LayerPropertiesTest::commentsKeepTheirCharacters()
{
    CommentedLayer layer;
    layer.setComments("<b>5 < 6</b> & more");
    dialog->setLayer(&layer);
    show();
    click(QDialogButtonBox::Ok);
    QCOMPARE(layer.getComments(), QString("<b>5 < 6</b> & more"));
}

void LayerPropertiesTest::aLayerThatGoesLeavesAnEmptyHandedDialog()
{
    auto layer = std::make_unique<TestRasterLayer>();
    dialog->setLayer(layer.get());
    show();
    layer.reset();
    click(QDialogButtonBox::Ok);
    QCOMPARE(dialog->result(), int(QDialog::Accepted));
}

void LayerPropertiesTest::picturesOfEveryPage()
{
    const std::unique_ptr<Map::Layer> raster = openLayer(rasterClass, image);
    QVERIFY(raster);
    raster->setDescription("image.tif");
    raster->setComments("A small image, made for this picture.");
    const std::unique_ptr<Map::Layer> vectors = openLayer(vectorClass, landscape);
    QVERIFY(vectors);
    vectors->setDescription("Lakes and rivers");
    vectors->setProperty("LabelField", "name");
    for (Map::Layer* layer : {raster.get(), vectors.get(), vectorLayer.get()}) {
        LayerProperties shown(nullptr);
        shown.setLayer(layer);
        auto* const pages = shown.findChild<QTabWidget*>("tabWidget");
        const QString kind = layer == raster.get()    ? "raster"
                             : layer == vectors.get() ? "vector"
                                                      : "plugin";
        for (int i = 0; i < pages->count(); ++i) {
            pages->setCurrentIndex(i);
            const QString name = QString("LayerProperties-%1-%2").arg(kind).arg(i);
            QCOMPARE(takePictures(shown, name).join("; "), QString());
        }
    }
}

int main(int argc, char** argv)
{
    QLoggingCategory::setFilterRules("corvane.tiles.debug=false");
    QTemporaryDir store;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, store.path());
    Application application(argc, argv, "LayerPropertiesTest");
    LayerPropertiesTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "LayerPropertiesTest.moc"
