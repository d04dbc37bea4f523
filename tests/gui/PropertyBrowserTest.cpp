#include <corvane/gui/PropertyBrowser.h>

#include <corvane/core/PluginManager.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>
#include <tests/gui/PanelLayers.h>
#include <tests/gui/PanelPictures.h>
#include <tests/map/MapViewTools.h>
#include <tests/plugins/TestRasters.h>
#include <tests/support/MessageLines.h>

#include <QComboBox>
#include <QLineEdit>
#include <QMdiSubWindow>
#include <QSpinBox>
#include <QTreeWidget>
#include <QtBoolPropertyManager>
#include <QtEnumPropertyManager>
#include <QtIntPropertyManager>
#include <QtRectPropertyManager>
#include <QtSizePolicyPropertyManager>
#include <QtSizePropertyManager>
#include <QtStringPropertyManager>
#include <QtTest>
#include <QtVariantPropertyManager>

#include <memory>
#include <new>

using namespace Corvane;
using namespace Corvane::Tests;
using Corvane::Gui::PropertyBrowser;

namespace {

using LayerPointer = std::unique_ptr<Map::Layer>;

LayerPointer pluginLayer()
{
    return LayerPointer(PluginManager::createLayer("PanelPluginLayer", false));
}

QTreeWidget* treeOf(const PropertyBrowser& panel)
{
    return panel.findChild<QTreeWidget*>();
}

/// What the panel shows, "name: value" in each row.
QStringList rows(const PropertyBrowser& panel)
{
    QStringList lines;
    const QTreeWidget* const tree = treeOf(panel);
    for (int i = 0; i < tree->topLevelItemCount(); ++i) {
        const QTreeWidgetItem* const item = tree->topLevelItem(i);
        lines << item->text(0) + ": " + item->text(1);
    }
    return lines;
}

QStringList names(const PropertyBrowser& panel)
{
    QStringList result;
    for (const QtProperty* property : panel.properties()) {
        result << property->propertyName();
    }
    return result;
}

QtVariantPropertyManager* variantManagerOf(const PropertyBrowser& panel)
{
    return panel.findChild<QtVariantPropertyManager*>(QString(), Qt::FindDirectChildrenOnly);
}

/// The class of the editor that opens in the row, empty for none.
QString editorOf(PropertyBrowser& panel, QtBrowserItem* item)
{
    panel.editItem(item);
    const QTreeWidget* const tree = treeOf(panel);
    for (const QWidget* child : tree->viewport()->findChildren<QWidget*>()) {
        for (const char* known :
             {"QSpinBox", "QDoubleSpinBox", "QComboBox", "QtBoolEdit", "QLineEdit"}) {
            const QWidget* const owner = child->parentWidget();
            if (child->inherits(known) && !owner->inherits("QAbstractSpinBox")) {
                return known;
            }
        }
    }
    return QString();
}

} // namespace

class PropertyBrowserTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();

    void itIsSetUp();
    void itLooksRight();
    void typedRowsHaveTheirEditors_data();
    void typedRowsHaveTheirEditors();
    void theSlotsAreFoundByName();

    void aRasterOfAPluginShowsItsOwnPropertiesToo();
    void aVectorOfAPluginShowsItsOwnPropertiesToo();
    void theValuesAreThoseOfTheLayer();
    void whatTheManagerDoesNotKnowIsSaidAndLeftOut();
    void nothingThatTheTreeShowsStandsHere();
    void compoundValuesAreFolded();
    void noEditorOpens();

    void noLayerDisablesAndEmpties();
    void theSameLayerAgainBuildsNothing();
    void aChangedValueWaitsForTheNextActivation();
    void anotherLayerReplacesAllRows();
    void aNewLayerAtTheSamePlaceIsAnother();
    void theRowsStayWithTheManagerUntilThePanelGoes();
    void aPanelAtThePlaceOfAnotherHasItsOwnEditors();
    void windowsAndMapsChangeNothing();

    void anEditedRowIsWrittenBackAsText();
    void aPartOfAValueIsWrittenUnderItsOwnName();
    void aChangeWithoutALayerIsNotWritten();

private:
    QTemporaryDir folder;
    QString file;
    QString landscape;
};

void PropertyBrowserTest::initTestCase()
{
    QVERIFY(folder.isValid());
    file = folder.filePath("rgb.tif");
    QVERIFY(makeRaster(file, RasterRecipe()));
    landscape = folder.filePath("landscape.gpkg");
    QVERIFY(makeLandscape(landscape));
}

void PropertyBrowserTest::itIsSetUp()
{
    QWidget parent;
    PropertyBrowser panel(&parent);
    QCOMPARE(panel.parentWidget(), &parent);
    QVERIFY(panel.isEnabled());
    QVERIFY(panel.properties().isEmpty());
    QVERIFY(panel.propertiesWithoutValueMarked());
    QVERIFY(panel.alternatingRowColors());
    QVERIFY(panel.rootIsDecorated());
    const QtTreePropertyBrowser plain;
    QCOMPARE(panel.resizeMode(), plain.resizeMode());
    QCOMPARE(panel.isHeaderVisible(), plain.isHeaderVisible());
    QStringList managersAndFactories;
    for (const QObject* child : panel.children()) {
        const QString name = child->metaObject()->className();
        if (name.endsWith("Manager") || name.endsWith("Factory")) {
            managersAndFactories << name;
        }
    }
    QCOMPARE(
        managersAndFactories,
        QStringList({"QtVariantPropertyManager", "QtBoolPropertyManager", "QtIntPropertyManager",
                     "QtStringPropertyManager", "QtSizePropertyManager", "QtRectPropertyManager",
                     "QtSizePolicyPropertyManager", "QtEnumPropertyManager",
                     "QtGroupPropertyManager", "QtVariantEditorFactory", "QtCheckBoxFactory",
                     "QtSpinBoxFactory", "QtLineEditFactory", "QtEnumEditorFactory"}));
}

void PropertyBrowserTest::itLooksRight()
{
    const LayerPointer layer(PluginManager::createLayer(rasterClass, false));
    QVERIFY(layer->setDataSource(file));
    layer->setDescription("Three bands of a test");
    layer->setMaxScale(50000.0);
    PropertyBrowser panel;
    panel.resize(340, 560);
    panel.show();
    panel.onLayerActivated(layer.get());
    QCOMPARE(takePictures(panel, "PropertyBrowser"), QStringList());
    const LayerPointer vectors = openLayer(vectorClass, landscape);
    QVERIFY(vectors);
    vectors->setDescription("Lakes and rivers");
    vectors->setProperty("LabelField", "name");
    panel.onLayerActivated(vectors.get());
    QCOMPARE(takePictures(panel, "PropertyBrowserOfVectors"), QStringList());
    panel.onLayerActivated(nullptr);
    QCOMPARE(takePictures(panel, "PropertyBrowserWithoutALayer"), QStringList());
}

void PropertyBrowserTest::typedRowsHaveTheirEditors_data()
{
    QTest::addColumn<QString>("manager");
    QTest::addColumn<int>("part"); // -1 for the row itself
    QTest::addColumn<QString>("editor");
    QTest::newRow("a variant's whole number") << "QtVariantPropertyManager" << -1 << "QSpinBox";
    QTest::newRow("a truth") << "QtBoolPropertyManager" << -1 << "QtBoolEdit";
    QTest::newRow("a whole number") << "QtIntPropertyManager" << -1 << "QSpinBox";
    QTest::newRow("a text") << "QtStringPropertyManager" << -1 << "QLineEdit";
    QTest::newRow("a width") << "QtSizePropertyManager" << 0 << "QSpinBox";
    QTest::newRow("a left edge") << "QtRectPropertyManager" << 0 << "QSpinBox";
    QTest::newRow("a policy") << "QtSizePolicyPropertyManager" << 0 << "QComboBox";
    QTest::newRow("a stretch") << "QtSizePolicyPropertyManager" << 2 << "QSpinBox";
    QTest::newRow("a choice") << "QtEnumPropertyManager" << -1 << "QComboBox";
    QTest::newRow("a group has none") << "QtGroupPropertyManager" << -1 << "";
}

void PropertyBrowserTest::typedRowsHaveTheirEditors()
{
    QFETCH(QString, manager);
    QFETCH(int, part);
    QFETCH(QString, editor);
    PropertyBrowser panel;
    panel.resize(400, 400);
    panel.show();
    for (auto* candidate :
         panel.findChildren<QtAbstractPropertyManager*>(QString(), Qt::FindDirectChildrenOnly))
    {
        if (candidate->metaObject()->className() != manager) {
            continue;
        }
        auto* const variants = qobject_cast<QtVariantPropertyManager*>(candidate);
        QtProperty* const property =
            variants ? variants->addProperty(QVariant::Int, "row") : candidate->addProperty("row");
        QtBrowserItem* const item = panel.addProperty(property);
        QCOMPARE(editorOf(panel, part < 0 ? item : item->children().at(part)), editor);
        return;
    }
    QFAIL("no such manager");
}

void PropertyBrowserTest::theSlotsAreFoundByName()
{
    for (const char* slot : {"onLayerActivated(Map::Layer*)",
                             "onSubWindowActivated(QMdiSubWindow*)", "mapActivated(Map::MapView*)"})
    {
        QVERIFY2(PropertyBrowser::staticMetaObject.indexOfSlot(slot) >= 0, slot);
    }
    QCOMPARE(PropertyBrowser::staticMetaObject.indexOfMethod("setObjectProps(Map::Layer*)"), -1);
}

void PropertyBrowserTest::aRasterOfAPluginShowsItsOwnPropertiesToo()
{
    const LayerPointer layer(PluginManager::createLayer(rasterClass, false));
    QVERIFY(layer->setDataSource(file));
    PropertyBrowser panel;
    panel.onLayerActivated(layer.get());
    QVERIFY(panel.isEnabled());
    const QStringList shown = names(panel);
    // those of each base first, in the order of their declaration
    QCOMPARE(shown.mid(0, 14),
             QStringList({"DataSource", "Description", "Comments", "MinScale", "MaxScale", "format",
                          "coordSysName", "Transparency", "CellSizeX", "CellSizeY", "NumberOfBands",
                          "Size", "CellType", "Opacity"}));
    QVERIFY(shown.contains("Driver"));
    QVERIFY(shown.contains("Epsg"));
    QVERIFY(shown.contains("BlockSize"));

    QStringList expected;
    const QMetaObject* const meta = layer->metaObject();
    for (int i = 0; i < meta->propertyCount(); ++i) {
        expected << meta->property(i).name();
    }
    for (const char* name : {"objectName", "Valid", "Visible", "Icon", "Uid", "BandList"}) {
        QVERIFY2(expected.removeOne(name), name);
    }
    QCOMPARE(shown, expected);
}

void PropertyBrowserTest::aVectorOfAPluginShowsItsOwnPropertiesToo()
{
    const LayerPointer layer = openLayer(vectorClass, landscape);
    QVERIFY(layer);
    layer->setProperty("LabelField", "name");
    PropertyBrowser panel;
    const MessageLines messages;
    panel.onLayerActivated(layer.get());
    QCOMPARE(
        names(panel),
        QStringList({"DataSource",  "Description",  "Comments",  "MinScale",     "MaxScale",
                     "format",      "coordSysName", "LayerName", "Transparency", "PointSymbol",
                     "PointSize",   "LabelField",   "LabelSize", "LabelColor",   "Antialiasing",
                     "Progressive", "WaitLimit",    "Driver",    "GeometryType", "Epsg",
                     "Wkt"}));
    QCOMPARE(messages.all(),
             QStringList({"debug: PropertyBrowser: INVALID PROPERTY! [Icon] VALUE[]",
                          "debug: PropertyBrowser: INVALID PROPERTY! [Uid] VALUE[" +
                              layer->getUid().toString() + "]",
                          "debug: PropertyBrowser: INVALID PROPERTY! [pen] VALUE[]",
                          "debug: PropertyBrowser: INVALID PROPERTY! [brush] VALUE[]",
                          "debug: PropertyBrowser: INVALID PROPERTY! [LayerNames] VALUE[landscape]",
                          "debug: PropertyBrowser: INVALID PROPERTY! [FeatureCount] VALUE[5]",
                          "debug: PropertyBrowser: INVALID PROPERTY! [Fields] VALUE[name]"}));
    const QStringList shown = rows(panel);
    for (const QString& row :
         {"DataSource: " + landscape, QString("format: GeoPackage"),
          QString("coordSysName: WGS 84 / UTM zone 33N"), QString("LayerName: landscape"),
          QString("PointSymbol: Circle"), QString("LabelField: name"), QString("Driver: GPKG"),
          QString("LabelColor: [0, 0, 0] (255)"), QString("Antialiasing: True"),
          QString("Epsg: 32633")})
    {
        QVERIFY2(shown.contains(row), qPrintable(row + " is not among\n" + shown.join('\n')));
    }
}

void PropertyBrowserTest::theValuesAreThoseOfTheLayer()
{
    const LayerPointer layer(PluginManager::createLayer(rasterClass, false));
    QVERIFY(layer->setDataSource(file));
    layer->setDescription("A test");
    PropertyBrowser panel;
    panel.onLayerActivated(layer.get());
    const QStringList shown = rows(panel);
    for (const QString& row :
         {"DataSource: " + file, QString("Description: A test"), QString("Comments: "),
          QString("CellSizeX: 2.00"), QString("NumberOfBands: 3"), QString("Size: 600 x 500"),
          QString("Opacity: False"), QString("Driver: GTiff"), QString("Epsg: 32633"),
          QString("BlockSize: 256 x 256")})
    {
        QVERIFY2(shown.contains(row), qPrintable(row + " is not among\n" + shown.join('\n')));
    }
}

void PropertyBrowserTest::whatTheManagerDoesNotKnowIsSaidAndLeftOut()
{
    const LayerPointer layer = pluginLayer();
    QVERIFY(layer);
    PropertyBrowser panel;
    const MessageLines messages;
    panel.onLayerActivated(layer.get());
    QCOMPARE(messages.all(),
             QStringList({"debug: PropertyBrowser: INVALID PROPERTY! [Icon] VALUE[]",
                          "debug: PropertyBrowser: INVALID PROPERTY! [Uid] VALUE[" +
                              layer->getUid().toString() + "]",
                          "debug: PropertyBrowser: INVALID PROPERTY! [BandList] VALUE[]",
                          "debug: PropertyBrowser: INVALID PROPERTY! [Tags] VALUE[]",
                          "debug: PropertyBrowser: INVALID PROPERTY! [Page] "
                          "VALUE[http://127.0.0.1/]"}));
    // the walk goes on behind each of them; a value that is not there makes neither row nor line
    QCOMPARE(names(panel).mid(14), QStringList({"Tint", "Origin", "Window", "Gain"}));
}

void PropertyBrowserTest::nothingThatTheTreeShowsStandsHere()
{
    TestLayer layer;
    layer.setObjectName("named");
    PropertyBrowser panel;
    panel.onLayerActivated(&layer);
    QCOMPARE(names(panel), QStringList({"DataSource", "Description", "Comments", "MinScale",
                                        "MaxScale", "format", "coordSysName"}));
    for (const char* name : {"objectName", "Valid", "Visible"}) {
        QVERIFY(layer.property(name).isValid());
    }
}

void PropertyBrowserTest::compoundValuesAreFolded()
{
    const LayerPointer layer = pluginLayer();
    PropertyBrowser panel;
    panel.resize(300, 600);
    panel.show();
    panel.onLayerActivated(layer.get());
    int compound = 0;
    for (QtBrowserItem* item : panel.topLevelItems()) {
        QVERIFY(!panel.isExpanded(item));
        compound += item->children().isEmpty() ? 0 : 1;
    }
    QCOMPARE(compound, 4); // Size, Tint, Origin, Window
    QtBrowserItem* const size = panel.topLevelItems().at(names(panel).indexOf("Size"));
    QCOMPARE(size->children().size(), 2);
}

void PropertyBrowserTest::noEditorOpens()
{
    const LayerPointer layer = pluginLayer();
    PropertyBrowser panel;
    panel.resize(400, 700);
    panel.show();
    panel.onLayerActivated(layer.get());
    QTreeWidget* const tree = treeOf(panel);
    for (QtBrowserItem* item : panel.topLevelItems()) {
        const QString name = item->property()->propertyName();
        QVERIFY2(!item->property()->isEnabled(), qPrintable(name));
        QCOMPARE(editorOf(panel, item), QString());
    }
    for (int i = 0; i < tree->topLevelItemCount(); ++i) {
        QTreeWidgetItem* const item = tree->topLevelItem(i);
        QVERIFY(!(item->flags() & Qt::ItemIsEnabled));
        const QPoint middle = tree->visualRect(tree->model()->index(i, 1)).center();
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, middle);
        QTest::mouseDClick(tree->viewport(), Qt::LeftButton, {}, middle);
        QTest::keyClick(tree, Qt::Key_F2);
    }
    QVERIFY(tree->viewport()->findChildren<QWidget*>().isEmpty());
}

void PropertyBrowserTest::noLayerDisablesAndEmpties()
{
    const LayerPointer layer = pluginLayer();
    PropertyBrowser panel;
    panel.onLayerActivated(layer.get());
    QVERIFY(!rows(panel).isEmpty());
    panel.onLayerActivated(nullptr);
    QVERIFY(!panel.isEnabled());
    QCOMPARE(rows(panel), QStringList());
    panel.onLayerActivated(layer.get());
    QVERIFY(panel.isEnabled());
    QVERIFY(!rows(panel).isEmpty());
}

void PropertyBrowserTest::theSameLayerAgainBuildsNothing()
{
    const LayerPointer layer = pluginLayer();
    PropertyBrowser panel;
    panel.onLayerActivated(layer.get());
    const QList<QtProperty*> before = panel.properties();
    const MessageLines messages;
    panel.onLayerActivated(layer.get());
    QCOMPARE(panel.properties(), before);
    QCOMPARE(messages.all(), QStringList());
}

void PropertyBrowserTest::aChangedValueWaitsForTheNextActivation()
{
    const LayerPointer layer = pluginLayer();
    PropertyBrowser panel;
    panel.onLayerActivated(layer.get());
    layer->setProperty("Gain", 8);
    panel.onLayerActivated(layer.get());
    QVERIFY(rows(panel).contains("Gain: 7"));
    panel.onLayerActivated(nullptr);
    panel.onLayerActivated(layer.get());
    QVERIFY(rows(panel).contains("Gain: 8"));
}

void PropertyBrowserTest::anotherLayerReplacesAllRows()
{
    const LayerPointer first = pluginLayer();
    TestLayer second;
    second.setDescription("second");
    PropertyBrowser panel;
    panel.onLayerActivated(first.get());
    panel.onLayerActivated(&second);
    QCOMPARE(rows(panel).size(), 7);
    QVERIFY(rows(panel).contains("Description: second"));
    QVERIFY(!names(panel).contains("Gain"));
}

void PropertyBrowserTest::aNewLayerAtTheSamePlaceIsAnother()
{
    alignas(TestLayer) unsigned char place[sizeof(TestLayer)];
    auto* layer = new (place) TestLayer;
    layer->setDescription("first");
    PropertyBrowser panel;
    panel.onLayerActivated(layer);
    layer->~TestLayer();
    layer = new (place) TestLayer;
    layer->setDescription("second");
    panel.onLayerActivated(layer);
    QVERIFY(rows(panel).contains("Description: second"));
    layer->~TestLayer();
}

void PropertyBrowserTest::theRowsStayWithTheManagerUntilThePanelGoes()
{
    TestLayer layer;
    auto panel = std::make_unique<PropertyBrowser>();
    const QtVariantPropertyManager* const manager = variantManagerOf(*panel);
    panel->onLayerActivated(&layer);
    QCOMPARE(manager->properties().size(), 7);
    panel->onLayerActivated(nullptr);
    QCOMPARE(manager->properties().size(), 7);
    panel->onLayerActivated(&layer);
    QCOMPARE(manager->properties().size(), 14);
    QSignalSpy destroyed(manager, &QObject::destroyed);
    panel.reset();
    QCOMPARE(destroyed.size(), 1);
}

void PropertyBrowserTest::aPanelAtThePlaceOfAnotherHasItsOwnEditors()
{
    alignas(PropertyBrowser) unsigned char place[sizeof(PropertyBrowser)];
    for (int time = 0; time < 20; ++time) {
        auto* const panel = new (place) PropertyBrowser;
        panel->show();
        QtVariantProperty* const row = variantManagerOf(*panel)->addProperty(QVariant::Int, "row");
        QCOMPARE(editorOf(*panel, panel->addProperty(row)), QString("QSpinBox"));
        panel->~PropertyBrowser();
    }
}

void PropertyBrowserTest::windowsAndMapsChangeNothing()
{
    TestLayer layer;
    PropertyBrowser panel;
    panel.onLayerActivated(&layer);
    QMdiSubWindow window;
    Map::MapView map;
    const QList<QtProperty*> before = panel.properties();
    panel.onSubWindowActivated(&window);
    panel.onSubWindowActivated(nullptr);
    panel.mapActivated(&map);
    panel.mapActivated(nullptr);
    QCOMPARE(panel.properties(), before);
    QVERIFY(panel.isEnabled());
}

void PropertyBrowserTest::anEditedRowIsWrittenBackAsText()
{
    const LayerPointer layer = pluginLayer();
    PropertyBrowser panel;
    panel.resize(400, 800);
    panel.show();
    panel.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&panel));
    panel.onLayerActivated(layer.get());
    QtVariantPropertyManager* const manager = variantManagerOf(panel);
    QtVariantProperty* const gain = manager->addProperty(QVariant::Int, "Gain");
    QtVariantProperty* const description = manager->addProperty(QVariant::String, "Description");
    QtVariantProperty* const transparency = manager->addProperty(QVariant::Double, "Transparency");
    const MessageLines messages;
    for (QtVariantProperty* property : {gain, description, transparency}) {
        QVERIFY(!editorOf(panel, panel.addProperty(property)).isEmpty());
        QWidget* const editor = QApplication::focusWidget();
        QVERIFY(editor);
        QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(editor, "42");
        QTest::keyClick(editor, Qt::Key_Enter);
    }
    QCOMPARE(layer->property("Gain"), QVariant(42));
    QCOMPARE(layer->getDescription(), QString("42"));
    QCOMPARE(layer->property("Transparency"), QVariant(42.0));
    QVERIFY(messages.all().contains("debug: property changed"));
    QCOMPARE(messages.all().filter("INVALID"), QStringList());

    // the base does not hear of it, so the row of the tree keeps its text
    const QString shown = rows(panel).filter("Gain").last();
    manager->setValue(gain, 43);
    QCOMPARE(layer->property("Gain"), QVariant(43));
    QCOMPARE(rows(panel).filter("Gain").last(), shown);
}

void PropertyBrowserTest::aPartOfAValueIsWrittenUnderItsOwnName()
{
    const LayerPointer layer = pluginLayer();
    PropertyBrowser panel;
    panel.onLayerActivated(layer.get());
    const MessageLines messages;
    QtVariantPropertyManager* const manager = variantManagerOf(panel);
    QtProperty* const size = panel.properties().at(names(panel).indexOf("Size"));
    manager->setValue(size, QSize(64, 48));
    // Size cannot be written, and "Width" is no property of the layer's class
    QCOMPARE(layer->property("Size"), QVariant(QSize(100, 100)));
    QCOMPARE(layer->property("Width"), QVariant("64"));
    QCOMPARE(layer->property("Height"), QVariant("48"));
    QCOMPARE(messages.all(), QStringList({"debug: property changed", "debug: property changed",
                                          "debug: property changed"}));
}

void PropertyBrowserTest::aChangeWithoutALayerIsNotWritten()
{
    PropertyBrowser panel;
    QtVariantPropertyManager* const manager = variantManagerOf(panel);
    QtVariantProperty* const row = manager->addProperty(QVariant::Int, "Gain");
    panel.addProperty(row);
    const MessageLines messages;
    manager->setValue(row, 5);
    QCOMPARE(messages.all(), QStringList());
}

MAP_TEST_MAIN(PropertyBrowserTest)

#include "PropertyBrowserTest.moc"
