#pragma once

#include <plugins/common/SourceHealth.h>
#include <plugins/raster/GdalHandlePool.h>
#include <plugins/raster/OverviewStore.h>
#include <plugins/raster/RasterFacts.h>

#include <QString>

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace Corvane::Map {

/// The range of values that is spread over the grey levels.
struct StretchRange
{
    double low = 0.0;
    double high = 255.0;
};

/// An open source: its facts, which do not change, its handles, the stretch of its bands and
/// what went wrong with it. Shared by the layer and its requests. Any thread.
class RasterSource
{
public:
    /// Opens a data source; null with the reason in error. May take long.
    static std::shared_ptr<RasterSource> open(const QString& dataSource, QString* error);
    /// The same source once more, with the overviews that it has by now or, where it has none, those
    /// of the file. What it shows is spread over the grey levels as before.
    static std::shared_ptr<RasterSource> openAgain(const RasterSource& before,
                                                   const OverviewFile& overviews, QString* error);

    const RasterFacts& facts() const { return theFacts; }
    GdalHandlePool::Lease acquire(QString* error) { return handles.acquire(error); }

    /// 0 to 255 for a plain byte band, else a cut that leaves out the 2 percent at either end,
    /// worked out from a sample on the first call, which may take long. None where goOn stops it, or
    /// where a server does not give the sample for now.
    std::optional<StretchRange> stretchOf(int band, const RasterHandle& handle,
                                          GDALProgressFunc goOn, void* goOnData);

    /// Whether reads go over the network.
    bool isRemote() const { return remote; }

    /// What overviews for it would belong to; a null one where they cannot.
    const OverviewOwner& overviewOwner() const { return owner; }

    /// A tile could not be read. The first reason is logged, the last kept.
    void reportFailure(const QString& reason);
    QString lastFailure() const;

    /// How the server is doing; unasked where there is none.
    SourceHealth health;

private:
    RasterSource(QString dataSource, const QString& name, bool remote, OverviewOwner owner,
                 const OverviewFile& overviews, std::unique_ptr<RasterHandle> first);
    static std::shared_ptr<RasterSource> openWith(const QString& dataSource,
                                                  const OverviewFile* overviews, QString* error);

    QString dataSource;
    bool remote;
    OverviewOwner owner;
    RasterFacts theFacts;
    GdalHandlePool handles;
    std::unique_ptr<BlockCacheShare> cacheShare;

    struct BandStretch
    {
        std::mutex mutex; // guards range; whoever wants it waits for who works it out
        std::optional<StretchRange> range;
    };
    std::vector<std::shared_ptr<BandStretch>> stretches; // by band

    mutable std::mutex failureMutex; // guards failure
    QString failure;
    bool failureLogged = false; // under failureMutex too
};

} // namespace Corvane::Map
