#include <tests/plugins/LayerPluginFile.h>

#include <corvane/core/Application.h>
#include <corvane/core/PluginManager.h>
#include <corvane/map/RasterLayer.h>
#include <corvane/tiles/ITiledLayer.h>

#include <QLoggingCategory>
#include <QtTest>

#include <memory>

using namespace Corvane;
using namespace Corvane::Tests;

namespace {

constexpr char className[] = "Corvane::Map::ImageServerLayer";
constexpr char pluginName[] = "corvane-imageserver-layer.so";

} // namespace

/// The plugin as a program meets it: a file that is loaded at run time.
class ImageServerPluginFileTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();

    void theFileOffersTheThreeInterfaces();
    void theManagerMakesItsLayerByClassName();
    void noFileExtensionBelongsToIt_data();
    void noFileExtensionBelongsToIt();
    void theFileDialogGetsNoFilterOfIt();
};

void ImageServerPluginFileTest::initTestCase()
{
    offerPlugin(pluginName);
}

void ImageServerPluginFileTest::theFileOffersTheThreeInterfaces()
{
    verifyInterfaces(pluginName, className);
}

void ImageServerPluginFileTest::theManagerMakesItsLayerByClassName()
{
    const std::unique_ptr<Map::Layer> layer(
        PluginManager::createLayer("corvane::map::imageserverlayer", false));
    QVERIFY(layer);
    QCOMPARE(layer->metaObject()->className(), className);
    QVERIFY(qobject_cast<Map::RasterLayer*>(layer.get()));
    QVERIFY(qobject_cast<Map::ITiledLayer*>(layer.get()));
    QVERIFY(!layer->isValid());
    QVERIFY(!layer->setDataSource("/data/a.tif"));
}

void ImageServerPluginFileTest::noFileExtensionBelongsToIt_data()
{
    QTest::addColumn<QString>("extension");
    QTest::addColumn<QString>("found");
    for (const char* extension : {"zwtp", "zwt", "xml", "tif", "jp2", "png", "img", "vrt", "webp"})
    {
        QTest::newRow(extension) << QString(extension) << QString();
    }
}

void ImageServerPluginFileTest::noFileExtensionBelongsToIt()
{
    QFETCH(QString, extension);
    QFETCH(QString, found);
    QCOMPARE(PluginManager::findLayerClassname(extension), found);
}

void ImageServerPluginFileTest::theFileDialogGetsNoFilterOfIt()
{
    QCOMPARE(PluginManager::getFileChooserReadFilter(),
             QString("All supported files ( *.xml);;All Files (*.*);;Map View Context (*.xml)"));
    QVERIFY(PluginManager::getLayerPluginAddLayerActions().isEmpty());
}

int main(int argc, char** argv)
{
    QLoggingCategory::setFilterRules("corvane.tiles.debug=false");
    Application application(argc, argv, "ImageServerPluginFileTest");
    ImageServerPluginFileTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "ImageServerPluginFileTest.moc"
