#include <plugins/vector/VectorReading.h>

#include <plugins/common/PoolActivity.h>
#include <plugins/common/PoolTask.h>
#include <plugins/vector/MapProjection.h>
#include <plugins/vector/VectorChunkBuilder.h>
#include <plugins/vector/VectorSource.h>

#include <corvane/core/Application.h>

#include <cpl_error.h>
#include <ogr_api.h>

#include <QDateTime>

#include <algorithm>
#include <chrono>
#include <utility>

namespace Corvane::Map {

namespace {

constexpr int readingPriority = -1; // after the tiles
// The first chunk is small, so that something shows soon; larger ones are cheaper to search.
constexpr std::size_t firstChunkFeatures = 2000;
constexpr std::size_t mostChunkFeatures = 64000;
constexpr std::size_t mostChunkVertices = 2000000;
constexpr std::size_t bytesPerVertex = 2 * sizeof(double);
constexpr qint64 bytesPerMegabyte = 1 << 20;

struct FeatureCloser
{
    void operator()(OGRFeatureH feature) const { OGR_F_Destroy(feature); }
};
using FeaturePointer = std::unique_ptr<void, FeatureCloser>;

void logInformation(const QString& message)
{
    Application::logMessage(message, LogLevel::Information, QDateTime::currentDateTime());
}

// Reading what nobody asks for takes most of the time with some formats.
void ignoreOtherFields(OGRLayerH layer, int wanted)
{
    if (!OGR_L_TestCapability(layer, OLCIgnoreFields)) {
        return;
    }
    OGRFeatureDefnH definition = OGR_L_GetLayerDefn(layer);
    std::vector<const char*> names;
    for (int i = 0; i < OGR_FD_GetFieldCount(definition); ++i) {
        if (i != wanted) {
            names.push_back(OGR_Fld_GetNameRef(OGR_FD_GetFieldDefn(definition, i)));
        }
    }
    names.push_back("OGR_STYLE");
    names.push_back(nullptr);
    OGR_L_SetIgnoredFields(layer, names.data());
}

} // namespace

VectorReading::VectorReading(std::shared_ptr<VectorSource> opened, ReadingOrder toRead,
                             Tell tellLayer)
    : order(std::move(toRead)),
      tell(std::move(tellLayer)),
      source(std::move(opened))
{
}

VectorReading::~VectorReading() = default;

void VectorReading::start()
{
    startOnPool([self = shared_from_this()] { self->readSome(); }, readingPriority);
}

void VectorReading::abandon()
{
    abandoned = true;
    lifeline.close();
}

bool VectorReading::isUnwanted() const
{
    return abandoned || PoolActivity::isEnding();
}

bool VectorReading::isFull() const
{
    const auto gathered = static_cast<qint64>(builder->countVertices() * bytesPerVertex);
    return order.mostBytes > 0 && held + gathered > order.mostBytes;
}

// On a pool thread.
void VectorReading::readSome()
{
    QString error;
    const bool more = !isUnwanted() && prepare(&error) && readChunk(&error);
    if (more) {
        start();
    } else {
        finish(error);
    }
}

bool VectorReading::prepare(QString* error)
{
    if (builder) {
        return true;
    }
    if (!source) {
        source = VectorSource::open(order.dataSource, order.layerName, error);
    }
    if (!source) {
        return false;
    }
    const GdalErrors errors;
    if (!order.labelField.isEmpty()) {
        labelIndex = OGR_FD_GetFieldIndex(OGR_L_GetLayerDefn(source->layer()),
                                          order.labelField.toUtf8().constData());
    }
    ignoreOtherFields(source->layer(), labelIndex);
    OGR_L_ResetReading(source->layer());
    builder = std::make_unique<VectorChunkBuilder>(labelIndex >= 0);
    chunkFeatures = firstChunkFeatures;
    return true;
}

// False where nothing is left to read.
bool VectorReading::readChunk(QString* error)
{
    const GdalErrors errors;
    bool more = true;
    for (std::size_t count = 0;
         count < chunkFeatures && builder->countVertices() < mostChunkVertices && !isUnwanted();
         ++count)
    {
        if (isFull()) {
            more = false;
            *error = QStringLiteral("only its first %1 features fit into %2 MB of memory")
                         .arg(featuresRead.load())
                         .arg(order.mostBytes / bytesPerMegabyte);
            break;
        }
        CPLErrorReset();
        const FeaturePointer feature(OGR_L_GetNextFeature(source->layer()));
        if (!feature) {
            more = false;
            *error = CPLGetLastErrorType() >= CE_Failure ? errors.text() : QString();
            break;
        }
        ++featuresRead;
        OGRGeometryH geometry = OGR_F_GetGeometryRef(feature.get());
        const bool labelled =
            labelIndex >= 0 && OGR_F_IsFieldSetAndNotNull(feature.get(), labelIndex);
        const char* label = labelled ? OGR_F_GetFieldAsString(feature.get(), labelIndex) : "";
        if (geometry && !OGR_G_IsEmpty(geometry) && !builder->add(geometry, label)) {
            ++unusable;
        }
    }
    if (isUnwanted()) {
        return false;
    }
    std::unique_ptr<MapProjection> projection;
    if (order.targetEpsg > 0) {
        projection = MapProjection::make(order.sourceWkt, order.targetEpsg, error);
        if (!projection) {
            *error = QStringLiteral("no way to epsg:%1: %2").arg(order.targetEpsg).arg(*error);
            return false;
        }
    }
    const auto chunk = builder->finish(projection.get(), &unreachable);
    held += chunk->getBytes();
    deliver(chunk);
    leftOut = unusable + unreachable;
    chunkFeatures = std::min(chunkFeatures * 2, mostChunkFeatures);
    return more;
}

void VectorReading::deliver(std::shared_ptr<const VectorChunk> chunk)
{
    if (chunk->getShapes().empty()) {
        return;
    }
    bool tells = false;
    {
        const std::lock_guard<std::mutex> guard(mutex);
        waiting.push_back(std::move(chunk));
        tells = !told;
        told = true;
        changed.notify_all();
    }
    if (tells && lifeline.enter()) {
        tell();
        lifeline.leave();
    }
}

void VectorReading::finish(const QString& error)
{
    source.reset();
    builder.reset();
    if (unusable > 0 && !isUnwanted()) {
        logInformation(QStringLiteral("%1 features of %2 have no usable geometry")
                           .arg(unusable)
                           .arg(order.dataSource));
    }
    if (unreachable > 0 && !isUnwanted()) {
        logInformation(QStringLiteral("%1 features of %2 have no place in epsg:%3")
                           .arg(unreachable)
                           .arg(order.dataSource)
                           .arg(order.targetEpsg));
    }
    {
        const std::lock_guard<std::mutex> guard(mutex);
        failure = error;
        done = true;
        changed.notify_all();
    }
    if (lifeline.enter()) {
        tell();
        lifeline.leave();
    }
}

std::vector<std::shared_ptr<const VectorChunk>> VectorReading::takeChunks()
{
    const std::lock_guard<std::mutex> guard(mutex);
    told = false;
    return std::exchange(waiting, {});
}

bool VectorReading::isDone()
{
    const std::lock_guard<std::mutex> guard(mutex);
    return done && waiting.empty();
}

bool VectorReading::waitForNews(int milliseconds)
{
    std::unique_lock<std::mutex> guard(mutex);
    const auto isNew = [this] { return done || !waiting.empty(); };
    if (milliseconds < 0) {
        changed.wait(guard, isNew);
        return true;
    }
    return changed.wait_for(guard, std::chrono::milliseconds(milliseconds), isNew);
}

QString VectorReading::getFailure()
{
    const std::lock_guard<std::mutex> guard(mutex);
    return failure;
}

} // namespace Corvane::Map
