#include <plugins/raster/GdalRasterLayer.h>

#include <plugins/raster/RasterSource.h>
#include <plugins/raster/RasterStatistics.h>
#include <plugins/raster/RasterTileLoader.h>
#include <plugins/raster/RasterTileRequest.h>

#include <corvane/core/Application.h>
#include <corvane/map/GeoImage.h>
#include <corvane/map/GeoPainter.h>

#include <QDateTime>
#include <QDir>
#include <QDomElement>
#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Corvane::Map {

namespace {

constexpr int openingPatience = 40;        // milliseconds on the GUI thread
constexpr int remoteWaitLimit = 60 * 1000; // milliseconds, for what has to come before we go on
constexpr int cheapReduction = 4;          // by which the coarsest level may be reduced when read

// Whether the coarsest level can be read beneath every view: without an overview near its size it
// takes reading most of the image.
bool coarsestIsCheap(const RasterFacts& facts)
{
    const qint64 smaller = std::min(facts.size.width(), facts.size.height());
    std::size_t level = 0;
    for (qint64 side = smaller / 2; side > facts.tileSize; side /= 2) {
        ++level;
    }
    const LevelFacts& coarsest = facts.levels[std::min(level, facts.levels.size() - 1)];
    return coarsest.sourceSize.width() <= coarsest.size.width() * cheapReduction;
}

} // namespace

GdalRasterLayer::GdalRasterLayer(IRendererClient* client) : TiledRasterLayer(client) {}

GdalRasterLayer::~GdalRasterLayer()
{
    closeSource();
}

bool GdalRasterLayer::setDataSource(QString newSource)
{
    static const QString objectStore = QStringLiteral("/vsis3/");
    if (newSource.startsWith(objectStore)) { // kept in the form that people know
        newSource.replace(0, objectStore.size(), QStringLiteral("s3://"));
    }
    if (newSource == dataSource && (source || opening)) {
        return true; // documents name a source twice
    }
    closeSource();
    dataSource = newSource;
    if (dataSource.isEmpty()) {
        return fail(tr("no data source"));
    }
    if (description.isEmpty()) {
        description = QFileInfo(dataSource).fileName();
    }
    if (isPlainFile(dataSource) && !QFileInfo::exists(dataSource)) {
        return fail(tr("the file does not exist"));
    }
    opening = std::make_shared<SourceOpening<RasterSource>>(
        [newSource](QString* error, const std::atomic<bool>&) {
            return RasterSource::open(newSource, error);
        },
        [this] { QMetaObject::invokeMethod(this, "takeOpened", Qt::QueuedConnection); });
    opening->start();
    const int unhurried = isRemote(dataSource) ? remoteWaitLimit : -1;
    opening->waitFor(view.progressive ? openingPatience : unhurried);
    if (opening->startTelling()) {
        return true;
    }
    return takeOpened();
}

// Whether a source is open now.
bool GdalRasterLayer::takeOpened()
{
    if (!opening || !opening->waitFor(0)) {
        return source != nullptr; // told late, of a source that was given up
    }
    QString error;
    const bool inBackground = opening->tellsLayer();
    std::shared_ptr<RasterSource> opened = opening->result(&error);
    opening.reset();
    if (opened) {
        adopt(std::move(opened));
    } else {
        fail(error);
    }
    if (inBackground) {
        refreshAll();
        emit sourceOpened(source != nullptr);
    }
    return source != nullptr;
}

void GdalRasterLayer::adopt(std::shared_ptr<RasterSource> opened)
{
    source = std::move(opened);
    spatialRef.setEpsg(source->facts().epsg);
    view.waitLimit = isRemote(dataSource) ? remoteWaitLimit : 0;
    TileBudget::instance().setLimit(TileBudget::limitFor(QStringLiteral("Raster")));
    restartTiles();
}

bool GdalRasterLayer::fail(const QString& reason)
{
    lastError = reason;
    Application::logMessage(QStringLiteral("cannot open %1: %2").arg(dataSource, reason),
                            LogLevel::Warning, QDateTime::currentDateTime());
    return false;
}

void GdalRasterLayer::closeSource()
{
    if (opening) {
        opening->abandon();
        opening.reset();
    }
    stopTiles();
    loader.reset();
    source.reset();
    lastError.clear();
}

void GdalRasterLayer::restartTiles()
{
    const RasterFacts& known = source->facts();
    const BandPlan plan = planFor(known, validBands(known, bandList));
    loader = std::make_shared<RasterTileLoader>(this, source, plan);
    startTiles(loader, "raster", known.tileSize, coarsestIsCheap(known));
}

qint8 GdalRasterLayer::getPercentComplete()
{
    return static_cast<qint8>(opening ? 0 : view.percentComplete());
}

// A URL that the base class would take for a relative path goes through as GDAL's own name for it.
bool GdalRasterLayer::readXML(QDomNode& theNode, QDir& baseDir, QString* pErrorMessage)
{
    QDomNode node = theNode.cloneNode();
    for (QDomElement child = node.firstChildElement(QStringLiteral("datasource")); !child.isNull();
         child = child.nextSiblingElement(QStringLiteral("datasource")))
    {
        const QString value = child.attribute(QStringLiteral("value"));
        if (value.startsWith(QLatin1String("s3://"), Qt::CaseInsensitive)) {
            child.setAttribute(QStringLiteral("value"), gdalName(value));
        }
    }
    return TiledRasterLayer::readXML(node, baseDir, pErrorMessage);
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

} // namespace Corvane::Map
