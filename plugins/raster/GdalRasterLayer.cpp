#include <plugins/raster/GdalRasterLayer.h>

#include <plugins/common/GdalAccess.h>
#include <plugins/common/PoolTask.h>
#include <plugins/common/ServerSource.h>
#include <plugins/raster/OverviewBuilding.h>
#include <plugins/raster/RasterCells.h>
#include <plugins/raster/RasterSource.h>
#include <plugins/raster/RasterStatistics.h>
#include <plugins/raster/RasterTileLoader.h>
#include <plugins/raster/RasterTileRequest.h>

#include <corvane/core/Application.h>
#include <corvane/map/CellRequest.h>
#include <corvane/map/GeoImage.h>
#include <corvane/map/GeoPainter.h>

#include <QDateTime>
#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Corvane::Map {

namespace {

constexpr int remoteWaitLimit = 60 * 1000; // milliseconds, for what has to come before we go on
constexpr int cellPriority = 2;            // on the pool, before sources that open and tiles

} // namespace

GdalRasterLayer::GdalRasterLayer(IRendererClient* client)
    : TiledRasterLayer(client),
      opening(this, [this] { tryAgain(); }),
      tileRetry(&view, [this] { tileRetry.look(isVisible()); })
{
    view.whileWaiting = [this] { return tileRetry.lookWhileWaiting(); };
}

GdalRasterLayer::~GdalRasterLayer()
{
    closeSource();
}

bool GdalRasterLayer::setDataSource(QString newSource)
{
    if (!nameInDocument.isEmpty()) {
        newSource = nameInDocument;
    }
    static const QString objectStore = QStringLiteral("/vsis3/");
    if (newSource.startsWith(objectStore)) { // kept in the form that people know
        newSource.replace(0, objectStore.size(), QStringLiteral("s3://"));
    }
    if (newSource == dataSource && (source || opening)) {
        return true; // documents name a source twice
    }
    closeSource();
    opening.retry.reset();
    if (ServerSource::isForImageServer(newSource))
    { // it may hold a password, which no log is to hold
        dataSource.clear();
        return false;
    }
    dataSource = newSource;
    if (dataSource.isEmpty()) {
        return fail(tr("no data source"));
    }
    if (ServerSource::isForTiles(dataSource)) {
        lastError = tr("the URL has places for tile numbers");
        return false; // without a word: it is for another plugin
    }
    if (description.isEmpty()) {
        description = QFileInfo(dataSource).fileName();
    }
    startOpening(false);
    return opening.goesOn(view.progressive, isRemote(dataSource) ? remoteWaitLimit : -1) ||
           takeOpened();
}

void GdalRasterLayer::startOpening(bool tells)
{
    opening.start(
        [name = dataSource](QString* error, const std::atomic<bool>&) {
            const bool isMissing = isPlainFile(name) && !QFileInfo::exists(name);
            *error = isMissing ? tr("the file does not exist") : QString();
            return isMissing ? nullptr : RasterSource::open(name, error);
        },
        isRemote(dataSource), tells);
}

// Whether a source is open now.
bool GdalRasterLayer::takeOpened()
{
    auto ended = opening.take();
    if (!ended) {
        return source != nullptr; // told late, of a source that was given up
    }
    if (ended->source) {
        opening.retry.reset();
        adopt(std::move(ended->source));
    } else {
        fail(ended->error);
        if (isRemote(dataSource) && mayPass(ended->error)) {
            opening.retry.failed();
        }
    }
    if (ended->inBackground) {
        refreshAll();
        emit sourceOpened(source != nullptr);
    }
    return source != nullptr;
}

void GdalRasterLayer::adopt(std::shared_ptr<RasterSource> opened)
{
    source = std::move(opened);
    spatialRef.setEpsg(source->facts().epsg);
    setSourceWaitLimit(isRemote(dataSource) ? remoteWaitLimit : 0);
    TileBudget::instance().setLimit(TileBudget::limitFor(QStringLiteral("Raster")));
    restartTiles();
}

bool GdalRasterLayer::fail(const QString& reason)
{
    lastError = reason;
    Application::logMessage(QStringLiteral("cannot open %1: %2").arg(dataSource, reason),
                            opening.retry.hasFailedBefore() ? LogLevel::Debug : LogLevel::Warning,
                            QDateTime::currentDateTime());
    return false;
}

void GdalRasterLayer::closeSource()
{
    opening.giveUp();
    tileRetry.stop();
    building.reset();
    overviewFile.clear();
    overviewFailure.clear();
    stopTiles();
    loader.reset();
    source.reset();
    lastError.clear();
}

void GdalRasterLayer::forgetSource()
{
    if (isRemote(dataSource)) {
        forgetRemote(gdalName(dataSource));
    }
}

void GdalRasterLayer::restartTiles()
{
    const RasterFacts& known = source->facts();
    const BandPlan plan = planFor(known, validBands(known, bandList));
    tileRetry.stop();
    loader = std::make_shared<RasterTileLoader>(this, source, plan);
    startTiles(loader, "raster", known.tileSize, known.isCoarsestCheap());
    if (source->isRemote()) {
        tileRetry.follow(&loader->attempts, &source->health);
    }
}

qint8 GdalRasterLayer::getPercentComplete()
{
    return static_cast<qint8>(opening ? 0 : view.percentComplete());
}

bool GdalRasterLayer::readXML(QDomNode& theNode, QDir& baseDir, QString* pErrorMessage)
{
    nameInDocument = nameForGdal(theNode, baseDir);
    const bool read = TiledRasterLayer::readXML(theNode, baseDir, pErrorMessage);
    nameInDocument.clear();
    return read;
}

// Nothing is built here: this runs for every tile of every view.
QString GdalRasterLayer::getTileUrl(unsigned int, unsigned int, unsigned int, unsigned int,
                                    unsigned int, double, double, double, double)
{
    return dataSource;
}

// On a pool thread, inside the lifeline. A tile that cannot be read comes as a marked one; what
// gets here was not wanted any more.
void GdalRasterLayer::tileFailed(ITileRequest*) {}

ITileRequest* GdalRasterLayer::createTileRequest(const QString& key, const QString&,
                                                 unsigned int level, unsigned int tx,
                                                 unsigned int ty, double tlx, double tly,
                                                 double brx, double bry)
{
    const TileId tile{level, tx, ty};
    loader->exchange.ask(tile);
    return new RasterTileRequest(this, loader, key, tile, source->facts().tileSize, tlx, tly, brx,
                                 bry);
}

QRectF GdalRasterLayer::areaToCount(bool viewport, double tlx, double tly, double brx, double bry)
{
    if (!viewport) {
        return getBounds();
    }
    if (std::isnan(tlx) || std::isnan(tly) || std::isnan(brx) || std::isnan(bry)) {
        return view.hasView() ? view.getWorld() : getBounds();
    }
    return QRectF(tlx, tly, brx - tlx, bry - tly);
}

QVector<HistogramT<unsigned long long>>
GdalRasterLayer::getHistograms(bool viewport, bool approximate, QSize sampleSize, double tlx,
                               double tly, double brx, double bry)
{
    if (!source) {
        return {};
    }
    return RasterStatistics(source).histograms(areaToCount(viewport, tlx, tly, brx, bry),
                                               approximate ? sampleSize : QSize());
}

void GdalRasterLayer::readCells(std::shared_ptr<CellRequest> request)
{
    if (!source) {
        CellReading reading;
        reading.failure = opening ? tr("the source is still opening") : lastError;
        request->finish(reading);
        return;
    }
    startOnPool([from = source, request] { answerCells(*from, request); }, cellPriority);
}

} // namespace Corvane::Map
