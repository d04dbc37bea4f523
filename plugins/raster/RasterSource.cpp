#include <plugins/raster/RasterSource.h>

#include <plugins/common/PoolActivity.h>
#include <plugins/common/WebClock.h>
#include <plugins/raster/RasterStretch.h>

#include <corvane/core/Application.h>

#include <cpl_string.h>

#include <QDateTime>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <utility>

namespace Corvane::Map {

namespace {

constexpr qint64 requestsToOpen = 2; // at the least: for its size and for its header

// What reads of neighbouring tiles want to find in the cache: the widest row of tiles in strips,
// and slices of reduced reads, several at once. 0 where whole blocks make tiles.
qint64 wantedCache(const RasterFacts& facts)
{
    constexpr qint64 reducedReads = 32 << 20;
    qint64 bytes = facts.lacksOverviews() ? reducedReads : 0;
    for (const LevelFacts& level : facts.levels) {
        if (level.inStrips) {
            const qint64 rows = std::max<qint64>(facts.tileSize, facts.blockSize.height());
            bytes = std::max(bytes, level.sourceSize.width() * rows * facts.pixelBytes());
        }
    }
    return bytes;
}

// The file that GDAL reads the dataset from; empty where that is none of its own.
QString fileOf(const QString& name, GDALDatasetH dataset)
{
    if (isPlainFile(name)) {
        return QFileInfo(name).isFile() ? name : QString();
    }
    static const auto& withinAFile = // see PoolActivity
        *new QRegularExpression(QStringLiteral("^[A-Za-z0-9_]{2,}:"));
    if (!withinAFile.match(name).hasMatch()) {
        return QString();
    }
    char** const files = GDALGetFileList(dataset);
    const QString first = files && files[0] ? QString::fromUtf8(files[0]) : QString();
    CSLDestroy(files);
    return isPlainFile(first) && QFileInfo(first).isFile() ? first : QString();
}

OverviewOwner ownerOf(const QString& name, const RasterHandle& handle)
{
    OverviewOwner owner;
    owner.file = fileOf(name, handle.original.get());
    const QString opened = QString::fromUtf8(GDALGetDescription(handle.original.get()));
    owner.part = opened == owner.file ? QString() : opened;
    owner.isWarped = handle.warped != nullptr;
    return owner;
}

} // namespace

std::shared_ptr<RasterSource> RasterSource::open(const QString& dataSource, QString* error)
{
    return openWith(dataSource, nullptr, error);
}

std::shared_ptr<RasterSource> RasterSource::openAgain(const RasterSource& before,
                                                      const OverviewFile& overviews, QString* error)
{
    std::shared_ptr<RasterSource> again = openWith(before.dataSource, &overviews, error);
    if (again && again->stretches.size() == before.stretches.size()) {
        again->stretches = before.stretches;
    }
    return again;
}

// The overviews of the store, unless others are given.
std::shared_ptr<RasterSource> RasterSource::openWith(const QString& dataSource,
                                                     const OverviewFile* given, QString* error)
{
    setUpGdal();
    const PoolActivity activity;
    const QString name = gdalName(dataSource);
    const bool overNetwork = Map::isRemote(dataSource);
    const qint64 begin = WebClock::now();
    std::unique_ptr<RasterHandle> first = openHandle(name, overNetwork, error);
    if (!first) {
        if (overNetwork) {
            forgetRemote(name); // else the next attempt would hear the same without asking
        }
        return nullptr;
    }
    const OverviewOwner owner = overNetwork ? OverviewOwner() : ownerOf(name, *first);
    const OverviewFile overviews = given ? *given : OverviewFile{OverviewStore::find(owner), {}};
    if (first->overviewCount() == 0) { // of its own; such as come later are not looked at
        addOverviews(*first, overviews);
    }
    const OverviewFile used = first->overviews ? overviews : OverviewFile();
    const std::shared_ptr<RasterSource> source(
        new RasterSource(dataSource, name, overNetwork, owner, used, std::move(first)));
    if (overNetwork) {
        source->health.succeeded((WebClock::now() - begin) / requestsToOpen);
    }
    return source;
}

RasterSource::RasterSource(QString source, const QString& name, bool overNetwork,
                           OverviewOwner overviewOwner, const OverviewFile& overviews,
                           std::unique_ptr<RasterHandle> first)
    : health(source),
      dataSource(std::move(source)),
      remote(overNetwork),
      owner(std::move(overviewOwner)),
      theFacts(readFacts(*first)),
      handles(name, overNetwork, overviews, std::move(first)),
      cacheShare(std::make_unique<BlockCacheShare>(wantedCache(theFacts)))
{
    for (std::size_t i = 0; i < theFacts.bands.size(); ++i) {
        stretches.push_back(std::make_shared<BandStretch>());
    }
}

std::optional<StretchRange> RasterSource::stretchOf(int band, const RasterHandle& handle,
                                                    GDALProgressFunc goOn, void* goOnData)
{
    const auto index = static_cast<std::size_t>(band - 1);
    const BandFacts& bandFacts = theFacts.bands[index];
    if (bandFacts.isPlainByte()) {
        return StretchRange();
    }
    BandStretch& stretch = *stretches[index];
    const std::lock_guard<std::mutex> guard(stretch.mutex);
    if (!stretch.range) {
        // what a turned image leaves bare is no value of it
        const bool reduced = handle.overviews && !handle.warped;
        GDALDatasetH sampled = reduced ? handle.overviews.get() : handle.original.get();
        stretch.range =
            percentileCut(GDALGetRasterBand(sampled, band), bandFacts, {goOn, goOnData, remote});
    }
    return stretch.range;
}

void RasterSource::reportFailure(const QString& reason)
{
    bool first = false;
    {
        const std::lock_guard<std::mutex> guard(failureMutex);
        failure = reason;
        first = !std::exchange(failureLogged, true);
    }
    if (first) {
        Application::logMessage(QStringLiteral("cannot read %1: %2").arg(dataSource, reason),
                                LogLevel::Warning, QDateTime::currentDateTime());
    }
}

QString RasterSource::lastFailure() const
{
    const std::lock_guard<std::mutex> guard(failureMutex);
    return failure;
}

} // namespace Corvane::Map
