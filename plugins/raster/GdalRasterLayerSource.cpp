// How the remote source of a GdalRasterLayer is doing, and how it is asked again.
#include <plugins/raster/GdalRasterLayer.h>

#include <plugins/common/SourceReports.h>
#include <plugins/raster/RasterSource.h>
#include <plugins/raster/RasterTileLoader.h>

namespace Corvane::Map {

SourceReport GdalRasterLayer::getSourceReport()
{
    if (!isRemote(dataSource)) {
        return SourceReport();
    }
    return source ? reportOpen(dataSource, source->health.report(), false)
                  : reportClosed(dataSource, bool(opening), opening.retry, lastError);
}

void GdalRasterLayer::retrySource()
{
    if (!isRemote(dataSource)) {
        return;
    }
    if (source) {
        source->health.forgive();
        loader->attempts.makeDue();
        tileRetry.look(isVisible());
    } else if (!opening) {
        tryAgain();
    }
}

void GdalRasterLayer::tryAgain()
{
    opening.retry.stop();
    lastError.clear();
    startOpening(true);
}

void GdalRasterLayer::startRetrying()
{
    tileRetry.start();
}

} // namespace Corvane::Map
