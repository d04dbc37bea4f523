// How a GdalRasterLayer gets overviews that its image lacks.
#include <plugins/raster/GdalRasterLayer.h>

#include <plugins/common/GdalAccess.h>
#include <plugins/raster/OverviewBuilder.h>
#include <plugins/raster/RasterSource.h>

#include <corvane/core/Application.h>

#include <QDateTime>
#include <QFileInfo>
#include <QSettings>

namespace Corvane::Map {

namespace {

// A view of all of a smaller one takes less than a second or two to read.
constexpr qint64 usualLargeImage = 100 * 1000 * 1000; // pixels

qint64 largeImage()
{
    Application* const application = Application::instance();
    return application ? application->getSettings()
                             ->value("Plugins/Raster/LargeImagePixels", usualLargeImage)
                             .toLongLong()
                       : usualLargeImage;
}

} // namespace

// A source that is warped to be shown reads the overviews of its original by GDAL's choice, and one
// within a container has no file of its own that they could belong to.
bool GdalRasterLayer::wantsOverviews()
{
    if (!source || opening || building || !isPlainFile(dataSource) ||
        !QFileInfo(gdalName(dataSource)).isFile())
    {
        return false;
    }
    const RasterFacts& known = *facts();
    const qint64 pixels = qint64{known.size.width()} * known.size.height();
    return known.lacksOverviews() && !known.isWarped && !source->isPartOfFile() &&
           pixels >= largeImage();
}

bool GdalRasterLayer::buildOverviews()
{
    if (!wantsOverviews()) {
        return false;
    }
    overviewFailure.clear();
    overviewFile.clear();
    overviewMeter = std::make_shared<OverviewMeter>();
    building = std::make_shared<PoolJob<BuiltOverviews>>(
        [order = OverviewOrder::of(gdalName(dataSource), *facts()),
         meter = overviewMeter](QString* error, const std::atomic<bool>& abandoned) {
            return Map::buildOverviews(order, *meter, abandoned, error);
        },
        [this] { QMetaObject::invokeMethod(this, "takeOverviews", Qt::QueuedConnection); });
    building->startTelling();
    building->startInBackground();
    return true;
}

void GdalRasterLayer::cancelOverviews()
{
    if (building) {
        building->abandon();
        building.reset();
    }
}

OverviewProgress GdalRasterLayer::getOverviewProgress()
{
    OverviewProgress progress;
    progress.reason = overviewFailure;
    progress.folder = overviewFile.isEmpty() ? QString() : QFileInfo(overviewFile).absolutePath();
    if (building) {
        progress.state = OverviewProgress::State::Building;
        progress.percent = overviewMeter->percent;
    } else if (!overviewFailure.isEmpty()) {
        progress.state = OverviewProgress::State::Failed;
    } else if (!overviewFile.isEmpty()) {
        progress.state = OverviewProgress::State::Done;
        progress.percent = 100;
    }
    return progress;
}

void GdalRasterLayer::takeOverviews()
{
    if (!building || !building->waitFor(0)) {
        return; // told late, of some that were given up
    }
    QString error;
    const std::shared_ptr<BuiltOverviews> built = building->result(&error);
    building.reset();
    if (built) {
        overviewFile = built->file;
        startOpening(true); // the image as it was stays in view until then
        return;
    }
    overviewFailure = error.isEmpty() ? tr("the image cannot be read") : error;
    Application::logMessage(
        QStringLiteral("cannot build overviews of %1: %2").arg(dataSource, overviewFailure),
        LogLevel::Warning, QDateTime::currentDateTime());
}

} // namespace Corvane::Map
