#include <plugins/imageserver/ImageServerLayer.h>

#include <plugins/common/HttpFetch.h>
#include <plugins/common/PoolTask.h>
#include <plugins/common/ServerSource.h>
#include <plugins/common/SourceReports.h>
#include <plugins/imageserver/ImageServerCells.h>
#include <plugins/imageserver/ImageServerLoader.h>
#include <plugins/imageserver/ImageServerSource.h>
#include <plugins/imageserver/ServerLogins.h>

#include <corvane/core/Application.h>
#include <corvane/core/Integer.h>
#include <corvane/map/CellRequest.h>

#include <QDateTime>
#include <QFileInfo>

#include <utility>

namespace Corvane::Map {

namespace {

constexpr int openingLimit = 30 * 1000; // milliseconds, for what has to come before we go on
constexpr int cellPriority = 2;         // on the pool, before sources that open and tiles
constexpr double millisecondsPerSecond = 1000.0;

int inMilliseconds(double seconds)
{
    return Util::roundToInt(seconds * millisecondsPerSecond);
}

} // namespace

ImageServerLayer::ImageServerLayer(IRendererClient* client)
    : ServedTileLayer(client, "ImageServer"),
      opening(this, [this] { askAnew(); })
{
}

ImageServerLayer::~ImageServerLayer()
{
    closeSource();
}

bool ImageServerLayer::setDataSource(QString newSource)
{
    const std::optional<ImageServerAddress> parsed = ImageServerAddress::parse(newSource);
    const QString plain = parsed ? parsed->plain : ServerSource::split(newSource).url;
    const bool namesNobodyElse = !parsed || parsed->credentials.isEmpty() ||
                                 parsed->credentials.authorization() == credentials.authorization();
    if (plain == dataSource && namesNobodyElse && (source || opening)) {
        return true; // documents name a source twice
    }
    closeSource();
    opening.retry.reset();
    dataSource = plain;
    address = parsed;
    if (!address) {
        return false;
    }
    if (!address->credentials.isEmpty()) {
        credentials = address->credentials;
    } else if (credentials.password.isEmpty()) {
        const ServerCredentials known = ServerLogins::find(address->serverName(), credentials.user);
        credentials = known.isEmpty() ? credentials : known;
    }
    if (description.isEmpty()) {
        description = QFileInfo(address->path).fileName();
    }
    startOpening(false);
    return opening.goesOn(view.progressive, openingLimit) || takeOpened();
}

void ImageServerLayer::startOpening(bool tells)
{
    const ImageServerAddress toOpen = *address;
    const QByteArray authorization = credentials.authorization();
    const int limit = inMilliseconds(deadline);
    opening.start(
        [=](QString* error, const std::atomic<bool>& abandoned) {
            return askForGrid(toOpen, authorization, limit, abandoned, error);
        },
        true, tells);
}

// Whether a source is open now.
bool ImageServerLayer::takeOpened()
{
    const auto ended = opening.take();
    if (!ended) {
        return source != nullptr; // told late, of a source that was given up
    }
    const bool wasOpen = source != nullptr;
    if (ended->source->grid) {
        opening.retry.reset();
        adopt(*ended->source);
    } else {
        fail(ended->error, (address->isSure || wasOpen) && !opening.retry.hasFailedBefore());
        if (isPassing(ended->source->status)) {
            opening.retry.failed();
        }
    }
    if (ended->inBackground) {
        refreshAll();
        if (!wasOpen) {
            emit sourceOpened(source != nullptr);
        }
    }
    return source != nullptr;
}

void ImageServerLayer::adopt(const GridAnswer& answer)
{
    auto opened = std::make_shared<ImageServerSource>(answer.grid, dataSource);
    opened->server = address->server;
    opened->userAgent = userAgentWith(QString());
    opened->authorization = credentials.authorization();
    opened->deadline = inMilliseconds(deadline);
    ServerLogins::remember(address->serverName(), credentials);
    const ImageGrid& grid = *opened->grid;
    lastError.clear();
    spatialRef.setEpsg(grid.epsg);
    TileBudget::instance().setLimit(TileBudget::limitFor(QStringLiteral("ImageServer")));
    source = std::move(opened); // before the pyramid, which asks for its bounds
    loader = std::make_shared<ImageServerLoader>(this, source);
    startServed(loader, "imageserver", static_cast<unsigned int>(grid.tileSize), true);
}

// Other addresses than those of image servers are tried here, too, and are none of our failures.
void ImageServerLayer::fail(const QString& reason, bool isSure)
{
    lastError = reason;
    Application::logMessage(QStringLiteral("cannot open %1: %2").arg(dataSource, reason),
                            isSure ? LogLevel::Warning : LogLevel::Debug,
                            QDateTime::currentDateTime());
}

void ImageServerLayer::closeSource()
{
    opening.giveUp();
    stopServed();
    loader.reset();
    source.reset();
    lastError.clear();
}

// What is shown stays until the answer has come.
void ImageServerLayer::askAnew()
{
    if (address) {
        opening.giveUp();
        startOpening(true); // the map has to hear of it
    }
}

bool ImageServerLayer::canRetry() const
{
    const bool isMissing =
        source ? !lastError.isEmpty() || loader->attempts.isWaiting() : address.has_value();
    return isMissing && !opening;
}

void ImageServerLayer::retryNow()
{
    if (source) {
        retryServed();
    }
    if (canRetry() && (!source || !lastError.isEmpty())) {
        askAnew();
    }
}

void ImageServerLayer::followChange()
{
    if (!opening) {
        askAnew();
    }
}

QString ImageServerLayer::getTileUrl(unsigned int level, unsigned int tx, unsigned int ty,
                                     unsigned int, unsigned int, double, double, double, double)
{
    return loader ? loader->urlOf({level, tx, ty}).toString() : QString();
}

void ImageServerLayer::readCells(std::shared_ptr<CellRequest> request)
{
    if (!loader) {
        CellReading reading;
        reading.failure = opening ? tr("the source is still opening") : lastError;
        request->finish(reading);
        return;
    }
    startOnPool([from = loader, request] { answerCells(*from, request); }, cellPriority);
}

} // namespace Corvane::Map
