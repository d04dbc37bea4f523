#include <bench/BenchStage.h>

#include <bench/BenchResult.h>
#include <corvane/core/PluginManager.h>
#include <corvane/map/MapCanvas.h>
#include <corvane/map/RasterLayer.h>

#include <QLoggingCategory>
#include <QSettings>

#include <cstdio>
#include <cstdlib>

namespace Corvane::Bench {

namespace {

[[noreturn]] void fail(const QString& message)
{
    std::fprintf(stderr, "%s\n", qPrintable(message));
    std::exit(2);
}

} // namespace

BenchStage::BenchStage(int& argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QLoggingCategory::setFilterRules("corvane.tiles=false");
    application = std::make_unique<Application>(argc, argv, "Corvane Bench");
    application->getSettings()->setValue("Gui/MapView/UseAnimation", false);
    reset();
}

BenchStage::~BenchStage() = default;

Map::MapView& BenchStage::view()
{
    return *mapView;
}

void BenchStage::reset()
{
    mapView = std::make_unique<Map::MapView>();
    mapView->setAttribute(Qt::WA_DeleteOnClose, false);
    mapView->resize(width, height);
    mapView->show();
    QCoreApplication::processEvents();
}

std::unique_ptr<Map::RasterLayer> BenchStage::open(const QString& file)
{
    Map::Layer* made = PluginManager::createLayer("Corvane::Map::GdalRasterLayer", false);
    std::unique_ptr<Map::RasterLayer> layer(qobject_cast<Map::RasterLayer*>(made));
    if (!layer) {
        fail("the raster plugin is not beside this program");
    }
    if (!layer->setDataSource(file)) {
        fail(file + ": " + layer->getLastError());
    }
    while (!layer->isValid()) {
        if (!layer->getLastError().isEmpty()) {
            fail(file + ": " + layer->getLastError());
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return layer;
}

Map::RasterLayer* BenchStage::stage(const QString& file)
{
    reset();
    Map::RasterLayer* layer = open(file).release();
    mapView->getMapCanvas()->addLayer(layer, -1); // the canvas shows nothing by itself
    return layer;
}

double BenchStage::show(Map::Layer& layer, const QRectF& world)
{
    const Stopwatch watch;
    mapView->setBounds(world);
    complete(layer);
    return watch.milliseconds();
}

void BenchStage::complete(Map::Layer& layer)
{
    while (layer.getPercentComplete() < 100) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    mapView->repaint();
}

QRectF BenchStage::window(Map::RasterLayer& layer, double left, double top, double pixelsPerPixel)
{
    const QRectF bounds = layer.getBounds();
    const double cellX = layer.getCellSizeX();
    const double cellY = layer.getCellSizeY();
    return QRectF(bounds.x() + left * cellX, bounds.y() + top * cellY,
                  width * pixelsPerPixel * cellX, height * pixelsPerPixel * cellY);
}

} // namespace Corvane::Bench
