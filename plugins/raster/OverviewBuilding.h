#pragma once

#include <plugins/raster/OverviewBuilder.h>

#include <plugins/common/PoolJob.h>

#include <QString>

#include <functional>
#include <memory>

namespace Corvane::Map {

class RasterSource;

/// Overviews that are being built for an open source, and the sources that read it with those that
/// there are so far. On the layer's thread.
class OverviewBuilding
{
public:
    /// How it ended.
    struct End
    {
        QString file;                         ///< that holds them; empty on failure
        std::shared_ptr<RasterSource> source; ///< which reads them; null where it cannot be opened
        QString failure;
    };

    /// Begins. tell posts to a slot of the layer that there is news, see takeSource and isOver; on the
    /// background thread, while the layer is there.
    OverviewBuilding(std::shared_ptr<RasterSource> plain, std::function<void()> tell);
    /// Gives them up, unless it is over. The layer is not touched once this returns.
    ~OverviewBuilding();
    OverviewBuilding(const OverviewBuilding&) = delete;
    OverviewBuilding& operator=(const OverviewBuilding&) = delete;

    int percent() const;
    /// The source without them.
    const std::shared_ptr<RasterSource>& plainSource() const { return plain; }
    /// One that reads more of them than the last; null where there is none since.
    std::shared_ptr<RasterSource> takeSource();
    bool isOver();
    /// Once it is over.
    End end();

private:
    struct News;
    using Job = PoolJob<End>;

    std::shared_ptr<RasterSource> plain;
    std::shared_ptr<News> news; // outlives this while the background thread builds
    std::shared_ptr<Job> job;
};

} // namespace Corvane::Map
