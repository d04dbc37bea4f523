#include <plugins/vector/OgrVectorLayer.h>

#include <plugins/common/GdalAccess.h>
#include <plugins/common/LayerElement.h>
#include <plugins/common/OpeningPatience.h>
#include <plugins/common/ServerSource.h>
#include <plugins/common/TileBudget.h>
#include <plugins/vector/MapProjection.h>
#include <plugins/vector/VectorChunk.h>
#include <plugins/vector/VectorReading.h>
#include <plugins/vector/VectorSource.h>

#include <corvane/core/Application.h>
#include <corvane/core/Integer.h>
#include <corvane/map/GeoPainter.h>
#include <corvane/map/MapCanvas.h>
#include <corvane/map/MapView.h>

#include <QDateTime>
#include <QDir>
#include <QDomElement>
#include <QFileInfo>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Corvane::Map {

namespace {

constexpr int remoteWaitLimit = 60 * 1000; // milliseconds, for what has to come before we go on
constexpr double millisecondsPerSecond = 1000.0;
constexpr int usualWaitLimit = 60 * 1000; // milliseconds
constexpr QRgb usualPen = 0xffe03c1e;     // stands out from imagery
constexpr QRgb usualFill = 0xfff0d9a0;
constexpr double usualPointSize = 7.0;

// The base class knows no pens.
void removePens(QDomNode& node)
{
    for (const QString& tag : {QStringLiteral("pen"), QStringLiteral("brush")}) {
        node.removeChild(node.firstChildElement(tag));
    }
}

} // namespace

OgrVectorLayer::OgrVectorLayer(IRendererClient* client)
    : VectorLayer(client),
      waitLimit(usualWaitLimit),
      opening(this, [this] { tryAgain(); }),
      view([this] { QMetaObject::invokeMethod(this, "takeDrawn", Qt::QueuedConnection); })
{
    QPen line{QColor(usualPen)};
    line.setCapStyle(Qt::RoundCap);
    line.setJoinStyle(Qt::RoundJoin);
    setPen(line);
    QBrush fill(QColor(usualFill), Qt::NoBrush); // the colour is there once a style is chosen
    setBrush(fill);
    look.pointSize = usualPointSize;
    look.labelColor = Qt::black;
}

OgrVectorLayer::~OgrVectorLayer()
{
    closeSource();
}

bool OgrVectorLayer::setDataSource(QString newSource)
{
    if (!nameInDocument.isEmpty()) {
        newSource = nameInDocument;
    }
    static const QString objectStore = QStringLiteral("/vsis3/");
    if (newSource.startsWith(objectStore)) { // kept in the form that people know
        newSource.replace(0, objectStore.size(), QStringLiteral("s3://"));
    }
    if (newSource == dataSource && (facts || opening)) {
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
    if (description.isEmpty()) {
        description = QFileInfo(dataSource).fileName();
    }
    if (ServerSource::isForTiles(dataSource)) {
        lastError = tr("this is the address of tiles");
        return false; // without a word: it is for another plugin
    }
    openSource(false);
    return opening.goesOn(view.progressive, isRemote(dataSource) ? remoteWaitLimit : -1) ||
           takeOpened();
}

void OgrVectorLayer::openSource(bool tells)
{
    opening.start(
        [source = dataSource, name = layerName](QString* error, const std::atomic<bool>&) {
            const bool isMissing = isPlainFile(source) && !QFileInfo::exists(source);
            *error = isMissing ? tr("the file does not exist") : QString();
            return isMissing ? nullptr : VectorSource::open(source, name, error);
        },
        isRemote(dataSource), tells);
}

// Whether a source is open now.
bool OgrVectorLayer::takeOpened()
{
    auto ended = opening.take();
    if (!ended) {
        return facts != nullptr; // told late, of a source that was given up
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
        emit sourceOpened(facts != nullptr);
    }
    return facts != nullptr;
}

void OgrVectorLayer::adopt(std::shared_ptr<VectorSource> opened)
{
    facts = std::make_shared<VectorFacts>(opened->facts());
    unread = std::move(opened);
    spatialRef.setEpsg(facts->epsg);
    targetEpsg = 0;
    extent = facts->extent;
    reach = WorldBox();
    leftOut = 0;
}

bool OgrVectorLayer::fail(const QString& reason)
{
    lastError = reason;
    Application::logMessage(QStringLiteral("cannot open %1: %2").arg(dataSource, reason),
                            opening.retry.hasFailedBefore() ? LogLevel::Debug : LogLevel::Warning,
                            QDateTime::currentDateTime());
    return false;
}

void OgrVectorLayer::closeSource()
{
    opening.giveUp();
    stopReading();
    view.clear();
    unread.reset();
    facts.reset();
    haveRead = false;
    lastError.clear();
}

void OgrVectorLayer::stopReading()
{
    if (reading) {
        reading->abandon();
        reading.reset();
    }
    incoming.clear();
    leftOut = 0;
}

// The map's reference is that of its first layer, which may be this one, or be there only later.
void OgrVectorLayer::followMap()
{
    if (!facts || facts->wkt.isEmpty()) {
        return;
    }
    auto* const map = dynamic_cast<MapView*>(rendererClient);
    const int wanted = map ? map->getMapCanvas()->getSrs().epsg : spatialRef.epsg;
    const int target = wanted == facts->epsg ? 0 : wanted;
    if (target == targetEpsg) {
        return;
    }
    targetEpsg = target;
    spatialRef.setEpsg(target > 0 ? target : facts->epsg);
    moveExtent();
    view.setChunks({}, true, true);
    if (haveRead) {
        readAgain(true);
    }
}

void OgrVectorLayer::moveExtent()
{
    extent = facts->extent;
    reach = WorldBox();
    if (targetEpsg > 0) {
        QString error;
        const auto projection = MapProjection::make(facts->wkt, targetEpsg, &error);
        reach = projection ? projection->getReach() : WorldBox();
        extent = projection ? projection->transform(extent).within(reach) : WorldBox();
    }
}

// fresh: what was read before is of no use any longer.
void OgrVectorLayer::readAgain(bool fresh)
{
    stopReading();
    replaces = !fresh;
    startReading();
}

void OgrVectorLayer::startReading()
{
    ReadingOrder order;
    order.dataSource = dataSource;
    order.layerName = facts->layerName;
    order.labelField = labelField;
    order.sourceWkt = facts->wkt;
    order.targetEpsg = targetEpsg;
    order.mostBytes = TileBudget::limitFor(QStringLiteral("Vector"));
    reading = std::make_shared<VectorReading>(std::exchange(unread, nullptr), order, [this] {
        QMetaObject::invokeMethod(this, "takeRead", Qt::QueuedConnection);
    });
    haveRead = true;
    reading->start();
}

void OgrVectorLayer::takeRead()
{
    if (!reading) {
        return; // told late, of a reading that was given up
    }
    const ChunkList news = reading->takeChunks();
    const bool ended = reading->isDone();
    incoming.insert(incoming.end(), news.begin(), news.end());
    leftOut = reading->getLeftOut();
    if (ended) {
        endReading();
    } else if (!replaces && !news.empty()) {
        view.setChunks(incoming, true, false);
    }
}

// Where nothing came of reading once more, what was read before stays.
void OgrVectorLayer::endReading()
{
    const QString failure = reading->getFailure();
    reading->abandon(); // its thread may be about to tell what has been seen here
    reading.reset();
    if (!failure.isEmpty()) {
        lastError = failure;
        Application::logMessage(QStringLiteral("cannot read %1: %2").arg(dataSource, failure),
                                LogLevel::Warning, QDateTime::currentDateTime());
    }
    const ChunkList all = std::exchange(incoming, {});
    if (all.empty() && replaces && !failure.isEmpty()) {
        return;
    }
    view.setChunks(all, false, false);
    WorldBox seen;
    for (const auto& chunk : all) {
        seen.add(chunk->getBox());
    }
    extent = seen.isEmpty() ? extent : seen.within(reach);
    refreshAll();
}

void OgrVectorLayer::takeDrawn()
{
    if (view.takePicture()) {
        refreshAll();
    }
}

// Blocks the layer's thread, without an event loop: printing wants the whole view at once.
void OgrVectorLayer::waitForFeatures()
{
    while (reading) {
        if (!reading->waitForNews(waitLimit > 0 ? waitLimit : -1)) {
            Application::logMessage(
                QStringLiteral("%1 does not answer; the view lacks some of it").arg(dataSource),
                LogLevel::Warning, QDateTime::currentDateTime());
            return;
        }
        takeRead();
    }
}

double OgrVectorLayer::getWaitLimit() const
{
    return waitLimit / millisecondsPerSecond;
}

void OgrVectorLayer::setWaitLimit(double seconds)
{
    constexpr double longest = 1.0e6; // seconds
    waitLimit =
        seconds >= 0.0 // not a NaN either
            ? Util::roundToInt(std::ceil(std::min(seconds, longest) * millisecondsPerSecond))
            : usualWaitLimit;
}

void OgrVectorLayer::setView(int width, int height, double tlx, double tly, double brx, double bry)
{
    viewMayBeStale = !visible;
    if (!facts || !visible) { // one that is hidden takes the view when it is shown
        return;
    }
    followMap();
    if (!haveRead) {
        startReading();
    }
    if (!view.progressive) {
        waitForFeatures();
    }
    view.setStyle(currentStyle());
    view.setView(width, height, QRectF(tlx, tly, brx - tlx, bry - tly));
}

void OgrVectorLayer::beginUpdate(bool)
{
    view.beginUpdate();
}

void OgrVectorLayer::endUpdate()
{
    view.endUpdate();
}

// A layer that was not valid, or hidden, has not been told of the view: it takes the painter's.
void OgrVectorLayer::paint(GeoPainter& painter, QRectF* world, QRect* device)
{
    if (!facts) {
        return;
    }
    followMap();
    const bool outdated =
        viewMayBeStale && !view.showsView(device->width(), device->height(), *world);
    if (!view.hasView() || outdated) {
        setView(device->width(), device->height(), world->left(), world->top(),
                world->left() + world->width(), world->top() + world->height());
    }
    viewMayBeStale = false;
    restyle();
    view.takePicture();
    const double opacity = painter.opacity();
    painter.setOpacity(opacity * (1.0 - transparency));
    view.paint(painter, *world, *device);
    painter.setOpacity(opacity);
}

void OgrVectorLayer::refreshAll()
{
    const QRectF bounds = extent.toBounds();
    refresh(bounds.left(), bounds.top(), bounds.right(), bounds.bottom());
}

bool OgrVectorLayer::readXML(QDomNode& theNode, QDir& baseDir, QString* pErrorMessage)
{
    QDomElement penElement = theNode.firstChildElement(QStringLiteral("pen"));
    if (!penElement.isNull()) {
        QPen line = penFromXML(penElement);
        setPen(line);
    }
    QDomElement brushElement = theNode.firstChildElement(QStringLiteral("brush"));
    if (!brushElement.isNull()) {
        QBrush fill = brushFromXML(brushElement);
        setBrush(fill);
    }
    QDomNode node = withoutSourceProperty(theNode);
    removePens(node);
    nameInDocument = nameForGdal(node, baseDir);
    const OpeningPatience::Document document;
    if (!VectorLayer::readXML(node, baseDir, pErrorMessage) && pErrorMessage) {
        tellWhyNotOpen(node, *this, pErrorMessage);
    }
    nameInDocument.clear();
    return true;
}

bool OgrVectorLayer::writeXML(QDomNode& theNode, QDomDocument& theDoc)
{
    const bool written = VectorLayer::writeXML(theNode, theDoc);
    QPen line = getPen();
    theNode.appendChild(penToXML(theDoc, line));
    QBrush fill = getBrush();
    theNode.appendChild(brushToXML(theDoc, fill));
    return written;
}

} // namespace Corvane::Map
