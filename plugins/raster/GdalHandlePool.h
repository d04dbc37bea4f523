#pragma once

#include <plugins/raster/GdalSupport.h>
#include <plugins/raster/OverviewFile.h>

#include <QString>

#include <memory>
#include <mutex>
#include <vector>

namespace Corvane::Map {

/// One way into a source: the dataset and, where it does not lie north-up, the warped view of it.
/// Used by one thread at a time.
struct RasterHandle
{
    DatasetPointer original;
    DatasetPointer warped; ///< closed before the original, which it reads
    DatasetPointer
        overviews; ///< of what is shown, from elsewhere; null where it has its own or none

    GDALDatasetH shown() const { return warped ? warped.get() : original.get(); }
    int overviewCount() const;
    /// The overview, by number from the finest, of what is shown. band counts from 1.
    GDALRasterBandH overviewBand(int band, int overview) const;
};

/// Opens name for reading; null with the reason in error. Any thread; may take long.
std::unique_ptr<RasterHandle> openHandle(const QString& name, bool remote, QString* error);
/// A view of an image that lies north-up, made of the image's own pixels where that can be; kept in a
/// file where one is named. Null on failure. Any thread.
DatasetPointer warpToNorthUp(GDALDatasetH original, const QString& file = QString());
/// Has the handle read overviews from there, where they fit, rather than its own. Any thread.
void addOverviews(RasterHandle& handle, const OverviewFile& overviews);

/// The open handles of one source that nobody uses at the moment. Any thread.
class GdalHandlePool
{
public:
    GdalHandlePool(QString name, bool remote, OverviewFile overviews,
                   std::unique_ptr<RasterHandle> first);
    ~GdalHandlePool();
    GdalHandlePool(const GdalHandlePool&) = delete;
    GdalHandlePool& operator=(const GdalHandlePool&) = delete;

    /// A handle while it lives; gives it back to the pool. The pool must outlive it.
    class Lease
    {
    public:
        Lease(GdalHandlePool* pool, std::unique_ptr<RasterHandle> handle);
        ~Lease();
        Lease(Lease&& other) = default;
        Lease& operator=(Lease&& other) = delete;

        explicit operator bool() const { return handle != nullptr; }
        RasterHandle* operator->() const { return handle.get(); }

    private:
        GdalHandlePool* pool; // not owned
        std::unique_ptr<RasterHandle> handle;
    };

    /// A free handle, or a new one; empty with the reason in error where none can be opened.
    Lease acquire(QString* error);

private:
    void release(std::unique_ptr<RasterHandle> handle);

    QString name;
    bool remote;
    OverviewFile overviews;
    std::mutex mutex;                                // guards idle
    std::vector<std::unique_ptr<RasterHandle>> idle; // used last at the end: its caches are warm
};

} // namespace Corvane::Map
