#pragma once

#include <plugins/common/SourceHealth.h>
#include <plugins/raster/GdalHandlePool.h>
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

    const RasterFacts& facts() const { return theFacts; }
    GdalHandlePool::Lease acquire(QString* error) { return handles.acquire(error); }

    /// 0 to 255 for a plain byte band, else a cut that leaves out the 2 percent at either end,
    /// worked out from a sample on the first call, which may take long. None where goOn stops it, or
    /// where a server does not give the sample for now.
    std::optional<StretchRange> stretchOf(int band, const RasterHandle& handle,
                                          GDALProgressFunc goOn, void* goOnData);

    /// Whether reads go over the network.
    bool isRemote() const { return remote; }

    /// Whether it is an image within a container of several.
    bool isPartOfFile() const { return partOfFile; }

    /// A tile could not be read. The first reason is logged, the last kept.
    void reportFailure(const QString& reason);
    QString lastFailure() const;

    /// How the server is doing; unasked where there is none.
    SourceHealth health;

private:
    RasterSource(QString dataSource, const QString& name, bool remote, const QString& overviews,
                 std::unique_ptr<RasterHandle> first);

    QString dataSource;
    bool remote;
    bool partOfFile;
    RasterFacts theFacts;
    GdalHandlePool handles;
    std::unique_ptr<BlockCacheShare> cacheShare;

    struct BandStretch
    {
        std::mutex mutex; // guards range; whoever wants it waits for who works it out
        std::optional<StretchRange> range;
    };
    std::vector<std::unique_ptr<BandStretch>> stretches; // by band

    mutable std::mutex failureMutex; // guards failure
    QString failure;
    bool failureLogged = false; // under failureMutex too
};

} // namespace Corvane::Map
