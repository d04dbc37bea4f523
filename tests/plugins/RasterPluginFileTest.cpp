#include <tests/plugins/LayerPluginFile.h>

#include <corvane/core/Application.h>
#include <corvane/core/ILayerEditorPlugin.h>
#include <corvane/core/ILayerPlugin.h>
#include <corvane/core/ILayerPropertiesWidget.h>
#include <corvane/core/PluginManager.h>
#include <corvane/map/IRasterLayerHistogram.h>
#include <corvane/map/MapCanvas.h>
#include <corvane/map/MapView.h>
#include <corvane/map/RasterLayer.h>
#include <corvane/tiles/ITiledLayer.h>
#include <tests/plugins/TestRasters.h>

#include <QAction>
#include <QLoggingCategory>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using namespace Corvane;
using namespace Corvane::Tests;

namespace {

constexpr char className[] = "Corvane::Map::GdalRasterLayer";
constexpr char pluginName[] = "corvane-raster.so";

} // namespace

/// The plugin as a program meets it: a file that is loaded at run time.
class RasterPluginFileTest : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();

    void theFileOffersTheThreeInterfaces();
    void itsLayersOfferTheTileAndHistogramInterfaces();
    void theManagerMakesItsLayerByClassName();
    void theManagerFindsItByFileExtension_data();
    void theManagerFindsItByFileExtension();
    void eachReadFilterHoldsPatternsInItsFirstParentheses();
    void thePropertyPageIsFoundByClassName();
    void thereIsAnActionThatAddsRasters();
    void aMapViewShowsAFile();

private:
    QTemporaryDir folder;
    QString file;
};

void RasterPluginFileTest::initTestCase()
{
    QVERIFY(folder.isValid());
    file = folder.filePath("rgb.tif");
    QVERIFY(makeRaster(file, RasterRecipe()));
    offerPlugin(pluginName);
}

void RasterPluginFileTest::theFileOffersTheThreeInterfaces()
{
    verifyInterfaces(pluginName, className);
    QVERIFY(versionOf(pluginName).contains("GDAL"));
}

void RasterPluginFileTest::itsLayersOfferTheTileAndHistogramInterfaces()
{
    const std::unique_ptr<Map::Layer> layer(PluginManager::createLayer(className, false));
    QVERIFY(layer);
    QCOMPARE(layer->metaObject()->className(), className);
    QVERIFY(qobject_cast<Map::RasterLayer*>(layer.get()));
    QVERIFY(layer->qt_metacast("com.corvane.viewer.ITiledLayer/1.0"));
    QVERIFY(layer->qt_metacast("com.corvane.viewer.IRasterLayerHistogram/1.0"));
    QVERIFY(qobject_cast<Map::ITiledLayer*>(layer.get()));
    QVERIFY(qobject_cast<Map::IRasterLayerHistogram*>(layer.get()));
}

void RasterPluginFileTest::theManagerMakesItsLayerByClassName()
{
    const std::unique_ptr<Map::Layer> layer(
        PluginManager::createLayer("corvane::map::gdalrasterlayer", false));
    QVERIFY(layer);
    QVERIFY(!layer->isValid());
    QVERIFY(layer->setDataSource(file));
    QTRY_VERIFY(layer->isValid());
    QCOMPARE(layer->getBounds(), QRectF(1000.0, 5000.0, 1200.0, -1000.0));
}

void RasterPluginFileTest::theManagerFindsItByFileExtension_data()
{
    QTest::addColumn<QString>("extension");
    for (const char* extension : {"tif", "TIFF", "jp2", "png", "jpg", "vrt", "img"}) {
        QTest::newRow(extension) << QString(extension);
    }
}

void RasterPluginFileTest::theManagerFindsItByFileExtension()
{
    QFETCH(QString, extension);
    QCOMPARE(PluginManager::findLayerClassname(extension), QString(className));
}

void RasterPluginFileTest::eachReadFilterHoldsPatternsInItsFirstParentheses()
{
    const auto infos = PluginManager::getLayerPluginInfoList();
    QCOMPARE(infos.size(), 1);
    const QStringList filters = infos.first()->getReadFilter().split(";;");
    QVERIFY(filters.size() > 20);
    const QRegularExpression form("^[^()]+ \\(\\*\\.[a-z0-9_.]+( \\*\\.[a-z0-9_.]+)*\\)$");
    for (const QString& filter : filters) {
        QVERIFY2(form.match(filter).hasMatch(), qPrintable(filter));
    }
    QVERIFY(filters.contains("GeoTIFF (*.tif *.tiff)"));
}

void RasterPluginFileTest::thePropertyPageIsFoundByClassName()
{
    const QList<QWidget*> pages = PluginManager::getLayerPropertyWidgets(className);
    QCOMPARE(pages.size(), 1);
    const std::unique_ptr<QWidget> page(pages.first());
    QVERIFY(page->qt_metacast("com.corvane.viewer.ILayerPropertiesWidget/1.0"));
    QVERIFY(!page->windowTitle().isEmpty());
}

void RasterPluginFileTest::thereIsAnActionThatAddsRasters()
{
    const QList<QAction*> actions = PluginManager::getLayerPluginAddLayerActions();
    QCOMPARE(actions.size(), 1);
    QCOMPARE(actions.first()->objectName(), QString("actionAddRaster"));
    QCOMPARE(PluginManager::getLayerPluginAddLayerActions(), actions);
}

void RasterPluginFileTest::aMapViewShowsAFile()
{
    Map::MapView view;
    view.resize(600, 500);
    view.show();
    QCOMPARE(view.addLayer(className, file), 0);
    Map::Layer* const layer = view.getLayerAt(0);
    QVERIFY(layer->isValid());
    view.setBounds(1000.0, 5000.0, 2200.0, 4000.0);
    QTRY_COMPARE(int(layer->getPercentComplete()), 100);

    const QImage picture = view.grab().toImage();
    const Dataset dataset = openRaster(file);
    QVERIFY(dataset);
    const QColor middle = picture.pixelColor(300, 250);
    // the view's extent may be off by less than a pixel
    const int expected = static_cast<int>(readBand(dataset.get(), 1, 300, 250, 1, 1).front());
    QVERIFY(std::abs(middle.red() - expected) <= 20);
}

int main(int argc, char** argv)
{
    QLoggingCategory::setFilterRules("corvane.tiles.debug=false");
    Application application(argc, argv, "RasterPluginFileTest");
    RasterPluginFileTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "RasterPluginFileTest.moc"
