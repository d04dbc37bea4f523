#include <plugins/raster/GdalRasterLayer.h>

#include <plugins/raster/RasterOpening.h>
#include <plugins/raster/RasterSource.h>
#include <plugins/raster/RasterStatistics.h>
#include <plugins/raster/RasterTileLoader.h>
#include <plugins/raster/RasterTileRequest.h>

#include <corvane/core/Application.h>
#include <corvane/core/System.h>
#include <corvane/map/GeoImage.h>
#include <corvane/map/GeoPainter.h>

#include <QDateTime>
#include <QDir>
#include <QDomElement>
#include <QFileInfo>
#include <QSettings>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Corvane::Map {

namespace {

constexpr int openingPatience = 40;        // milliseconds on the GUI thread
constexpr int remoteWaitLimit = 60 * 1000; // milliseconds, for what has to come before we go on
constexpr int cheapReduction = 4;          // by which the coarsest level may be reduced when read

// Megabytes from the settings, else a quarter of the machine's memory.
qint64 budgetBytes()
{
    Application* const application = Application::instance();
    const qint64 wanted = application
                              ? application->getSettings()
                                    ->value(QStringLiteral("Plugins/Raster/MemoryBudgetMB"), 0)
                                    .toLongLong()
                              : 0;
    const qint64 quarter = std::max<qint64>(System::getTotalRAM() / 4, 256);
    return (wanted > 0 ? wanted : quarter) * (qint64{1} << 20);
}

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

QString newTileLayerId()
{
    static int count = 0;
    return QStringLiteral("raster%1").arg(++count);
}

} // namespace

GdalRasterLayer::GdalRasterLayer(IRendererClient* client)
    : RasterLayer(client),
      view(this, &levels),
      pacer([this] { refreshAll(); })
{
}

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
    opening = std::make_shared<RasterOpening>(this, dataSource);
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
    TileBudget::instance().setLimit(budgetBytes());
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
    if (loader) {
        loader->close();
        loader.reset();
    }
    view.stop();
    source.reset();
    lastError.clear();
}

// Tiles under way keep their old keys, so the new ones get keys of their own.
void GdalRasterLayer::restartTiles()
{
    if (loader) {
        loader->close();
    }
    const RasterFacts& known = source->facts();
    const BandPlan plan = planFor(known, validBands(known, bandList));
    tileLayerId = newTileLayerId();
    loader = std::make_shared<RasterTileLoader>(this, source, plan);
    view.start(std::shared_ptr<TileExchange>(loader, &loader->exchange), known.tileSize,
               coarsestIsCheap(known));
}

void GdalRasterLayer::refreshAll()
{
    const QRectF bounds = getBounds();
    refresh(bounds.left(), bounds.top(), bounds.right(), bounds.bottom());
}

void GdalRasterLayer::setView(int width, int height, double tlx, double tly, double brx, double bry)
{
    viewMayBeStale = false;
    view.setView(width, height, tlx, tly, brx, bry);
}

void GdalRasterLayer::setViewAgain()
{
    if (loader) {
        loader->viewCallHeard();
    }
    view.askAgain();
}

void GdalRasterLayer::showArrived()
{
    if (loader) {
        loader->repaintCallHeard();
        pacer.tilesArrived(view.percentComplete() == 100);
    }
}

void GdalRasterLayer::beginUpdate(bool)
{
    view.beginUpdate();
}

void GdalRasterLayer::endUpdate()
{
    view.endUpdate();
}

// A layer that was not valid, or hidden, has not been told of the view: it takes the painter's.
void GdalRasterLayer::paint(GeoPainter& painter, QRectF* world, QRect* device)
{
    if (!source) {
        return;
    }
    const bool outdated =
        viewMayBeStale && !view.showsView(device->width(), device->height(), *world);
    if (!view.hasView() || outdated) {
        setView(device->width(), device->height(), world->left(), world->top(),
                world->left() + world->width(), world->top() + world->height());
    }
    viewMayBeStale = false;
    const double opacity = painter.opacity();
    painter.setOpacity(opacity * (1.0 - transparency));
    view.paint(painter, world, device);
    painter.setOpacity(opacity);
}

qint8 GdalRasterLayer::getPercentComplete()
{
    return static_cast<qint8>(opening ? 0 : view.percentComplete());
}

// A URL that the base class would take for a relative path goes through as GDAL's own name for it,
// and the data source comes last and once: opening takes time.
bool GdalRasterLayer::readXML(QDomNode& theNode, QDir& baseDir, QString* pErrorMessage)
{
    QDomNode node = theNode.cloneNode();
    QDomElement child = node.firstChildElement();
    while (!child.isNull()) {
        const QDomElement next = child.nextSiblingElement();
        const QString value = child.attribute(QStringLiteral("value"));
        if (child.tagName() == QLatin1String("param") &&
            child.attribute(QStringLiteral("name")) == QLatin1String("DataSource"))
        {
            node.removeChild(child);
        } else if (child.tagName() == QLatin1String("datasource") &&
                   value.startsWith(QLatin1String("s3://"), Qt::CaseInsensitive))
        {
            child.setAttribute(QStringLiteral("value"), gdalName(value));
        }
        child = next;
    }
    return RasterLayer::readXML(node, baseDir, pErrorMessage);
}

// Nothing is built here: this runs for every tile of every view.
QString GdalRasterLayer::getTileUrl(unsigned int, unsigned int, unsigned int, unsigned int,
                                    unsigned int, double, double, double, double)
{
    return dataSource;
}

// On a pool thread, inside the lifeline.
void GdalRasterLayer::tileReady(ITileRequest* request)
{
    auto* const own = static_cast<RasterTileRequest*>(request);
    own->deliver(own->takeImage());
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

QString GdalRasterLayer::getTileLayerId()
{
    return tileLayerId;
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
