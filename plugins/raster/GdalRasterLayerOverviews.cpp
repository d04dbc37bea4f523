// How a GdalRasterLayer gets overviews that its image lacks.
#include <plugins/raster/GdalRasterLayer.h>

#include <plugins/raster/OverviewBuilding.h>
#include <plugins/raster/RasterSource.h>
#include <plugins/raster/RasterTileLoader.h>

#include <corvane/core/Application.h>

#include <QDateTime>
#include <QFileInfo>
#include <QSettings>

#include <utility>

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

// Nothing here asks the disk, which may be far away: what is known of the file is from its opening.
bool GdalRasterLayer::wantsOverviews()
{
    if (!source || opening || building || source->overviewOwner().isNull()) {
        return false;
    }
    const RasterFacts& known = *facts();
    const qint64 pixels = qint64{known.size.width()} * known.size.height();
    return known.lacksOverviews() && pixels >= largeImage();
}

bool GdalRasterLayer::buildOverviews()
{
    if (!wantsOverviews()) {
        return false;
    }
    overviewFailure.clear();
    overviewFile.clear();
    building = std::make_unique<OverviewBuilding>(
        source, [this] { QMetaObject::invokeMethod(this, "takeOverviews", Qt::QueuedConnection); });
    return true;
}

// What is shown stays: it is the same, whatever it was read from.
void GdalRasterLayer::cancelOverviews()
{
    if (building) {
        const std::shared_ptr<RasterSource> plain = building->plainSource();
        building.reset();
        carryOnWith(plain, false);
    }
}

OverviewProgress GdalRasterLayer::getOverviewProgress()
{
    OverviewProgress progress;
    progress.reason = overviewFailure;
    progress.folder = overviewFile.isEmpty() ? QString() : QFileInfo(overviewFile).absolutePath();
    if (building) {
        progress.state = OverviewProgress::State::Building;
        progress.percent = building->percent();
    } else if (!overviewFailure.isEmpty()) {
        progress.state = OverviewProgress::State::Failed;
    } else if (!overviewFile.isEmpty()) {
        progress.state = OverviewProgress::State::Done;
        progress.percent = 100;
    }
    return progress;
}

// Told when a level has come and at the end; late, perhaps, of some that were given up.
void GdalRasterLayer::takeOverviews()
{
    if (!building) {
        return;
    }
    if (const std::shared_ptr<RasterSource> more = building->takeSource()) {
        carryOnWith(more, true);
    }
    if (building->isOver()) {
        endOverviews();
    }
}

void GdalRasterLayer::endOverviews()
{
    const OverviewBuilding::End end = building->end();
    if (end.file.isEmpty()) {
        cancelOverviews();
        overviewFailure = end.failure.isEmpty() ? tr("the image cannot be read") : end.failure;
        Application::logMessage(
            QStringLiteral("cannot build overviews of %1: %2").arg(dataSource, overviewFailure),
            LogLevel::Warning, QDateTime::currentDateTime());
        return;
    }
    building.reset();
    overviewFile = end.file;
    if (!end.source) {
        startOpening(true);
        return;
    }
    carryOnWith(end.source, true);
    emit sourceOpened(true);
}

// The same pixels from another source. readsAnew: tiles that it reads from elsewhere come once more,
// and what is there stays in view until they have come.
void GdalRasterLayer::carryOnWith(std::shared_ptr<RasterSource> next, bool readsAnew)
{
    if (!source || next == source) {
        return;
    }
    const std::shared_ptr<RasterSource> before = std::exchange(source, std::move(next));
    const RasterFacts& known = source->facts();
    if (!known.showsLike(before->facts())) {
        restartTiles();
        refreshAll();
        return;
    }
    loader = std::make_shared<RasterTileLoader>(this, source,
                                                planFor(known, validBands(known, bandList)));
    carryOnTiles(loader, "raster", known.isCoarsestCheap(), [&](unsigned int level) {
        return !readsAnew || known.levels[level].readsLike(before->facts().levels[level]);
    });
}

} // namespace Corvane::Map
