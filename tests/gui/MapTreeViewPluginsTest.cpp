#include <corvane/gui/MapTreeView.h>

#include <corvane/core/Application.h>
#include <corvane/map/MapCanvas.h>
#include <corvane/map/MapView.h>
#include <tests/core/PluginFolder.h>
#include <tests/gui/DialogAnswers.h>
#include <tests/gui/MapTreeTools.h>
#include <tests/gui/PanelLayers.h>
#include <tests/gui/PanelPictures.h>
#include <tests/plugins/TestRasters.h>

#include <QAction>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QLoggingCategory>
#include <QMenu>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using namespace Corvane;
using namespace Corvane::Tests;
using Map::MapTreeView;
using Map::MapView;

/// The tree with the layers of plugin files. One tree for all tests, since the plugins end with it;
/// the last test ends it.
class MapTreeViewPluginsTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void init();
    void cleanup();

    void aSpyFromBeforeTheFirstMapSeesTheActivatedLayer();
    void theAddMenuHoldsTheActionsOfThePlugins();
    void aLayerIsMadeWithThePluginsDialogsAndPutOnTop();
    void aLayerIsMadeAndDroppedWithoutAMap();
    void aClassThatNobodyMakesAddsNothing();

    void aDropAddsFilesInTheirOrder();
    void aDropOfAnUnknownTypeTellsAndGoesOn();
    void aDropWithoutFilesRebuildsTheTree();
    void aDropWithoutAMapIsRefused();
    void aDragOutDoesNoHarm();

    void aRasterFileIsListedAsItsPluginTells();
    void aVectorFileIsListedAsItsPluginTells();
    void thePropertiesHoldThePluginsPage();
    void picturesOfATreeOfFiles();

    void theEndOfTheTreeIsThatOfThePlugins();

private:
    QMimeData* files(const QStringList& names)
    {
        QList<QUrl> urls;
        for (const QString& name : names) {
            urls << QUrl::fromLocalFile(folder.filePath(name));
        }
        data = std::make_unique<QMimeData>();
        data->setUrls(urls);
        return data.get();
    }

    QTemporaryDir folder;
    std::unique_ptr<MapTreeView> tree;
    std::unique_ptr<QSignalSpy> activated;
    std::unique_ptr<MapView> view;
    std::unique_ptr<DialogAnswers> answers;
    std::unique_ptr<QMimeData> data;
    QStringList journal;
};

void MapTreeViewPluginsTest::initTestCase()
{
    QVERIFY(folder.isValid());
    QVERIFY(makeRaster(folder.filePath("image.tif"), RasterRecipe()));
    QVERIFY(makeLandscape(folder.filePath("landscape.geojson")));
    PluginFolder plugins;
    QVERIFY(plugins.add("TestVectorPlugin"));
    QVERIFY(QFile::link(CORVANE_RASTER_PLUGIN, plugins.path("corvane-raster" PLUGIN_SUFFIX)));
    QVERIFY(QFile::link(CORVANE_VECTOR_PLUGIN, plugins.path("corvane-vector" PLUGIN_SUFFIX)));
    tree = std::make_unique<MapTreeView>(nullptr);
    activated = std::make_unique<QSignalSpy>(tree.get(), &MapTreeView::layerActivated);
    tree->setObjectName("tree");
    tree->resize(260, 240);
    tree->show();
    Tests::record(*tree, &journal);
}

void MapTreeViewPluginsTest::init()
{
    view = std::make_unique<MapView>();
    view->resize(100, 100);
    tree->setMapView(view.get());
    answers = std::make_unique<DialogAnswers>();
    journal.clear();
    takeNotes();
}

void MapTreeViewPluginsTest::cleanup()
{
    if (answers) {
        QVERIFY(answers->isDone());
    }
    answers.reset();
    if (tree) {
        tree->setMapView(nullptr);
    }
    view.reset();
}

void MapTreeViewPluginsTest::aSpyFromBeforeTheFirstMapSeesTheActivatedLayer()
{
    tree->onAddLayer("TestVectorLayer");
    Map::Layer* const layer = view->getMapCanvas()->getLayerAt(0);
    activated->clear();

    emit tree->layerActivated(layer);

    QCOMPARE(activated->count(), 1);
    QCOMPARE(activated->at(0).at(0).value<Map::Layer*>(), layer);
}

void MapTreeViewPluginsTest::theAddMenuHoldsTheActionsOfThePlugins()
{
    const QMenu* const menu = actionOf(*tree, "Add layer")->menu();
    QStringList texts;
    for (QAction* action : menu->actions()) {
        texts << action->text();
        if (action->text() == "Add test vectors...") {
            action->trigger();
        }
    }
    texts.sort();
    QCOMPARE(texts, QStringList({"Add raster...", "Add test vectors...", "Add vector layer..."}));
    QCOMPARE(takeNotes(), QStringList("add action"));
}

void MapTreeViewPluginsTest::aLayerIsMadeWithThePluginsDialogsAndPutOnTop()
{
    QSignalSpy added(view.get(), &MapView::layerAdded);
    for (const char* name : {"first", "second"}) {
        tree->onAddLayer("testvectorLAYER");
        view->getMapCanvas()->getLayers().last()->setDescription(name);
        tree->setMapView(view.get());
    }
    QCOMPARE(takeNotes(), QStringList({"createLayer with dialogs", "createLayer with dialogs"}));
    QCOMPARE(listed(*tree), QStringList({"[second]", "first"}));
    QCOMPARE(added.count(), 0); // the canvas takes it, without a word from the view
}

void MapTreeViewPluginsTest::aLayerIsMadeAndDroppedWithoutAMap()
{
    tree->setMapView(nullptr);
    tree->onAddLayer("TestVectorLayer");
    QCOMPARE(takeNotes(), QStringList({"createLayer with dialogs", "layer deleted"}));
    QCOMPARE(tree->topLevelItemCount(), 0);
    QCOMPARE(journal, QStringList());
    QCOMPARE(answers->shown, QStringList());
}

void MapTreeViewPluginsTest::aClassThatNobodyMakesAddsNothing()
{
    tree->onAddLayer("NoSuchLayer");
    QCOMPARE(view->getNumberOfLayers(), 0);
    QCOMPARE(journal, QStringList()); // nor a rebuild
}

void MapTreeViewPluginsTest::aDropAddsFilesInTheirOrder()
{
    QCOMPARE(dragOnto(*tree, *files({"a.testvector", "b.TESTVECTOR"})),
             QStringList({"enter", "move", "drop"}));
    QCOMPARE(view->getNumberOfLayers(), 2);
    QCOMPARE(view->getLayerAt(0)->getDataSource(), folder.filePath("a.testvector"));
    QCOMPARE(view->getLayerAt(1)->getDataSource(), folder.filePath("b.TESTVECTOR"));
    QCOMPARE(view->getLayerAt(0)->getDescription(), QString());
    QCOMPARE(takeNotes(),
             QStringList({"createLayer without dialogs", "createLayer without dialogs"}));
    QCOMPARE(rootOf(*tree)->childCount(), 2);
    QCOMPARE(rootOf(*tree)->child(0)->data(0, Qt::UserRole).toUuid(),
             view->getLayerAt(1)->getUid());
    QCOMPARE(journal, QStringList({"layer ", "map -", "layer "})); // one rebuild at the end
    QCOMPARE(answers->shown, QStringList());
}

void MapTreeViewPluginsTest::aDropOfAnUnknownTypeTellsAndGoesOn()
{
    answers->expectMessage();
    QCOMPARE(dragOnto(*tree, *files({"a.unheardof", "b.testvector"})),
             QStringList({"enter", "move", "drop"}));
    QCOMPARE(answers->shown, QStringList("warning MapView: Unknown data type. [OK] on tree"));
    QCOMPARE(view->getNumberOfLayers(), 1);
    QCOMPARE(view->getLayerAt(0)->getDataSource(), folder.filePath("b.testvector"));
}

void MapTreeViewPluginsTest::aDropWithoutFilesRebuildsTheTree()
{
    QMimeData text;
    text.setText("no file");
    QCOMPARE(dragOnto(*tree, text), QStringList({"enter", "move", "drop"}));
    QCOMPARE(journal, QStringList("layer -"));
    QCOMPARE(view->getNumberOfLayers(), 0);
}

void MapTreeViewPluginsTest::aDropWithoutAMapIsRefused()
{
    tree->setMapView(nullptr);
    answers->expectMessage();
    QCOMPARE(dragOnto(*tree, *files({"a.testvector"})), QStringList("enter"));
    QCOMPARE(answers->shown,
             QStringList("warning MapView: Open a map window before dropping files on the "
                         "workspace. [OK] on tree"));
    QCOMPARE(takeNotes(), QStringList());
}

void MapTreeViewPluginsTest::aDragOutDoesNoHarm()
{
    QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, files({"a.testvector"}), Qt::LeftButton,
                          Qt::NoModifier);
    QApplication::sendEvent(tree->viewport(), &enter);
    QDragLeaveEvent leave;
    leave.ignore();
    QApplication::sendEvent(tree->viewport(), &leave);
    QVERIFY(leave.isAccepted());
    QCOMPARE(journal, QStringList());
}

void MapTreeViewPluginsTest::aRasterFileIsListedAsItsPluginTells()
{
    dragOnto(*tree, *files({"image.tif"}));
    QCOMPARE(view->getNumberOfLayers(), 1);
    Map::Layer* const layer = view->getLayerAt(0);
    QTRY_VERIFY(layer->isValid());
    layer->setDescription("An image");
    tree->setMapView(view.get());
    QTreeWidgetItem* const item = rootOf(*tree)->child(0);
    QCOMPARE(item->checkState(0), Qt::Checked);
    QCOMPARE(item->icon(0).cacheKey() != 0, true);
    QCOMPARE(item->icon(0).pixmap(16, 16).toImage(), layer->getIcon().pixmap(16, 16).toImage());
    QVERIFY(item->toolTip(0).contains("<b>Data Source:</b> " + folder.filePath("image.tif")));
    QVERIFY(item->toolTip(0).contains("<b>Coordinate System:</b> WGS 84 / UTM zone 33N"));
}

void MapTreeViewPluginsTest::aVectorFileIsListedAsItsPluginTells()
{
    dragOnto(*tree, *files({"landscape.geojson"}));
    QCOMPARE(view->getNumberOfLayers(), 1);
    Map::Layer* const layer = view->getLayerAt(0);
    QCOMPARE(layer->metaObject()->className(), vectorClass);
    QTRY_VERIFY(layer->isValid());
    layer->setDescription("A landscape");
    tree->setMapView(view.get());
    QCOMPARE(listed(*tree), QStringList("[A landscape]"));
    QTreeWidgetItem* const item = rootOf(*tree)->child(0);
    QCOMPARE(item->checkState(0), Qt::Checked);
    QCOMPARE(item->icon(0).pixmap(16, 16).toImage(), layer->getIcon().pixmap(16, 16).toImage());
    QVERIFY(!item->icon(0).isNull());
    QVERIFY(
        item->toolTip(0).contains("<b>Data Source:</b> " + folder.filePath("landscape.geojson")));
    QVERIFY(item->toolTip(0).contains("<b>Coordinate System:</b> WGS 84 / UTM zone 33N"));
    QVERIFY(item->toolTip(0).contains("<b>Layer Type:</b> " + layer->getFormat()));
}

void MapTreeViewPluginsTest::thePropertiesHoldThePluginsPage()
{
    dragOnto(*tree, *files({"a.testvector"}));
    answers->expect([](QDialog& dialog) {
        dialog.findChild<QLineEdit*>("pageLineEdit")->setText("Rivers");
        QTest::mouseClick(
            dialog.findChild<QDialogButtonBox*>("buttonBox")->button(QDialogButtonBox::Ok),
            Qt::LeftButton);
    });
    clickOn(*tree, rootOf(*tree)->child(0));
    takeNotes();
    actionOf(*tree, "Properties")->trigger();
    QCOMPARE(takeNotes(),
             QStringList({"page.setLayer ", "page.apply after comments ''", "page deleted"}));
    QCOMPARE(view->getLayerAt(0)->getDescription(), QString("Rivers"));
    QCOMPARE(rootOf(*tree)->child(0)->text(0), QString()); // known at the next rebuild
    tree->setMapView(view.get());
    QCOMPARE(rootOf(*tree)->child(0)->text(0), QString("Rivers"));
}

void MapTreeViewPluginsTest::picturesOfATreeOfFiles()
{
    dragOnto(*tree, *files({"image.tif", "landscape.geojson", "a.testvector"}));
    QTRY_VERIFY(view->getLayerAt(0)->isValid());
    QTRY_VERIFY(view->getLayerAt(1)->isValid());
    view->getLayerAt(0)->setDescription("image.tif");
    view->getLayerAt(1)->setDescription("Lakes and rivers");
    view->getLayerAt(2)->setDescription("Roads");
    view->getLayerAt(2)->setVisible(false);
    tree->setMapView(view.get());
    QCOMPARE(takePictures(*tree, "MapTreeView-files").join("; "), QString());
}

// Layers first, as a program has to do it.
void MapTreeViewPluginsTest::theEndOfTheTreeIsThatOfThePlugins()
{
    dragOnto(*tree, *files({"a.testvector", "image.tif", "landscape.geojson"}));
    tree->setMapView(nullptr);
    takeNotes();
    view.reset();
    QCOMPARE(takeNotes(), QStringList("layer deleted"));
    tree.reset();
    QCOMPARE(takeNotes(), QStringList("plugin deleted"));
}

int main(int argc, char** argv)
{
    QLoggingCategory::setFilterRules("corvane.tiles.debug=false");
    QTemporaryDir store;
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, store.path());
    Application application(argc, argv, "MapTreeViewPluginsTest");
    MapTreeViewPluginsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "MapTreeViewPluginsTest.moc"
