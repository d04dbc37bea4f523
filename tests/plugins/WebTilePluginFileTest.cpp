#include <tests/plugins/LayerPluginFile.h>

#include <corvane/core/Application.h>
#include <corvane/core/PluginManager.h>
#include <corvane/map/RasterLayer.h>
#include <corvane/tiles/ITiledLayer.h>

#include <QAction>
#include <QLoggingCategory>
#include <QtTest>

#include <memory>

using namespace Corvane;
using namespace Corvane::Tests;

namespace {

constexpr char className[] = "Corvane::Map::WebTileLayer";
constexpr char pluginName[] = "corvane-webtiles.so";

} // namespace

/// The plugin as a program meets it: a file that is loaded at run time.
class WebTilePluginFileTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();

    void theFileOffersTheThreeInterfaces();
    void theManagerMakesItsLayerByClassName();
    void theManagerFindsItByFileExtension_data();
    void theManagerFindsItByFileExtension();
    void thePropertyPageIsFoundByClassName();
    void thereIsAnActionThatAddsWebTiles();
};

void WebTilePluginFileTest::initTestCase()
{
    offerPlugin(pluginName);
}

void WebTilePluginFileTest::theFileOffersTheThreeInterfaces()
{
    verifyInterfaces(pluginName, className);
}

void WebTilePluginFileTest::theManagerMakesItsLayerByClassName()
{
    const std::unique_ptr<Map::Layer> layer(
        PluginManager::createLayer("corvane::map::webtilelayer", false));
    QVERIFY(layer);
    QCOMPARE(layer->metaObject()->className(), className);
    QVERIFY(qobject_cast<Map::RasterLayer*>(layer.get()));
    QVERIFY(qobject_cast<Map::ITiledLayer*>(layer.get()));
    QVERIFY(!layer->isValid());
    QVERIFY(layer->setDataSource("http://127.0.0.1:9/{z}/{x}/{y}.png"));
    QVERIFY(layer->isValid());
}

void WebTilePluginFileTest::theManagerFindsItByFileExtension_data()
{
    QTest::addColumn<QString>("extension");
    QTest::addColumn<QString>("found");
    QTest::newRow("a preset") << "webtiles" << className;
    for (const char* extension : {"xml", "tif", "jp2", "png", "img", "vrt", "webp"}) {
        QTest::newRow(extension) << QString(extension) << QString();
    }
}

void WebTilePluginFileTest::theManagerFindsItByFileExtension()
{
    QFETCH(QString, extension);
    QFETCH(QString, found);
    QCOMPARE(PluginManager::findLayerClassname(extension), found);
}

void WebTilePluginFileTest::thePropertyPageIsFoundByClassName()
{
    const QList<QWidget*> pages = PluginManager::getLayerPropertyWidgets(className);
    QCOMPARE(pages.size(), 1);
    const std::unique_ptr<QWidget> page(pages.first());
    QVERIFY(page->qt_metacast("com.corvane.viewer.ILayerPropertiesWidget/1.0"));
    QCOMPARE(page->windowTitle(), QString("Web Tiles"));
}

void WebTilePluginFileTest::thereIsAnActionThatAddsWebTiles()
{
    const QList<QAction*> actions = PluginManager::getLayerPluginAddLayerActions();
    QCOMPARE(actions.size(), 1);
    QCOMPARE(actions.first()->objectName(), QString("actionAddWebTiles"));
    QCOMPARE(actions.first()->text(), QString("Add web tiles..."));
    QCOMPARE(PluginManager::getLayerPluginAddLayerActions(), actions);
}

int main(int argc, char** argv)
{
    QLoggingCategory::setFilterRules("corvane.tiles.debug=false");
    Application application(argc, argv, "WebTilePluginFileTest");
    WebTilePluginFileTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "WebTilePluginFileTest.moc"
