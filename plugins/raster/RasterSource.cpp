#include <plugins/raster/RasterSource.h>

#include <plugins/common/PoolActivity.h>
#include <plugins/common/WebClock.h>
#include <plugins/raster/OverviewStore.h>
#include <plugins/raster/RasterStretch.h>

#include <corvane/core/Application.h>

#include <QDateTime>

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

} // namespace

std::shared_ptr<RasterSource> RasterSource::open(const QString& dataSource, QString* error)
{
    setUpGdal();
    const PoolActivity activity;
    const QString name = gdalName(dataSource);
    const bool overNetwork = Map::isRemote(dataSource);
    const qint64 begin = WebClock::now();
    const QString overviews = overNetwork ? QString() : OverviewStore::find(name);
    std::unique_ptr<RasterHandle> first = openHandle(name, overNetwork, error, overviews);
    if (!first) {
        if (overNetwork) {
            forgetRemote(name); // else the next attempt would hear the same without asking
        }
        return nullptr;
    }
    const QString used = first->overviews ? overviews : QString();
    const std::shared_ptr<RasterSource> source(
        new RasterSource(dataSource, name, overNetwork, used, std::move(first)));
    if (overNetwork) {
        source->health.succeeded((WebClock::now() - begin) / requestsToOpen);
    }
    return source;
}

RasterSource::RasterSource(QString source, const QString& name, bool overNetwork,
                           const QString& overviews, std::unique_ptr<RasterHandle> first)
    : health(source),
      dataSource(std::move(source)),
      remote(overNetwork),
      partOfFile(QString::fromUtf8(GDALGetDescription(first->original.get())) != name),
      theFacts(readFacts(*first)),
      handles(name, overNetwork, overviews, std::move(first)),
      cacheShare(std::make_unique<BlockCacheShare>(wantedCache(theFacts)))
{
    for (std::size_t i = 0; i < theFacts.bands.size(); ++i) {
        stretches.push_back(std::make_unique<BandStretch>());
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
        GDALDatasetH sampled = handle.overviews ? handle.overviews.get() : handle.original.get();
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
