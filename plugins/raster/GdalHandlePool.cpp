#include <plugins/raster/GdalHandlePool.h>

#include <plugins/raster/RasterFacts.h>

#include <gdal_utils.h>

#include <atomic>
#include <utility>

namespace Corvane::Map {

namespace {

// Idle handles of all sources together. Beyond this a handle is closed instead of kept: a map of a
// hundred files stays below the usual limit of open files.
constexpr int mostIdleHandles = 200;
std::atomic<int> idleHandles{0};

// A view of a source that lies north-up, made of the source's own pixels where that can be.
DatasetPointer warpToNorthUp(GDALDatasetH original)
{
    GDALRasterBandH first = GDALGetRasterBand(original, 1);
    const bool mirrored = isOnlyMirrored(original);
    const bool nearest = mirrored || GDALGetRasterColorTable(first) != nullptr;
    std::vector<const char*> arguments = {"-of", "VRT", "-r", nearest ? "near" : "bilinear",
                                          mirrored ? nullptr : "-dstalpha"};
    arguments.push_back(nullptr);
    GDALWarpAppOptions* const options =
        GDALWarpAppOptionsNew(const_cast<char**>(arguments.data()), nullptr);
    if (!options) {
        return nullptr;
    }
    GDALDatasetH sources[] = {original};
    int usageError = 0;
    DatasetPointer warped(GDALWarp("", nullptr, 1, sources, options, &usageError));
    GDALWarpAppOptionsFree(options);
    return warped;
}

// A container without an image of its own stands for its first image.
QString firstSubdataset(GDALDatasetH dataset)
{
    return QString::fromUtf8(GDALGetMetadataItem(dataset, "SUBDATASET_1_NAME", "SUBDATASETS"));
}

} // namespace

std::unique_ptr<RasterHandle> openHandle(const QString& name, bool remote, QString* error)
{
    auto handle = std::make_unique<RasterHandle>();
    handle->original = openDataset(name, remote, error);
    if (handle->original && GDALGetRasterCount(handle->original.get()) == 0) {
        const QString inner = firstSubdataset(handle->original.get());
        handle->original = inner.isEmpty() ? DatasetPointer() : openDataset(inner, remote, error);
        if (!handle->original && error && error->isEmpty()) {
            *error = QStringLiteral("it holds no image");
        }
    }
    if (!handle->original || GDALGetRasterCount(handle->original.get()) == 0) {
        return nullptr;
    }
    if (needsWarping(handle->original.get())) {
        const GdalErrors errors; // a transform that cannot be made leaves plain pixels
        handle->warped = warpToNorthUp(handle->original.get());
    }
    return handle;
}

GdalHandlePool::GdalHandlePool(QString datasetName, bool overNetwork,
                               std::unique_ptr<RasterHandle> first)
    : name(std::move(datasetName)),
      remote(overNetwork)
{
    release(std::move(first));
}

GdalHandlePool::~GdalHandlePool()
{
    idleHandles -= static_cast<int>(idle.size());
}

GdalHandlePool::Lease GdalHandlePool::acquire(QString* error)
{
    {
        const std::lock_guard<std::mutex> guard(mutex);
        if (!idle.empty()) {
            std::unique_ptr<RasterHandle> handle = std::move(idle.back());
            idle.pop_back();
            --idleHandles;
            return Lease(this, std::move(handle));
        }
    }
    return Lease(this, openHandle(name, remote, error));
}

void GdalHandlePool::release(std::unique_ptr<RasterHandle> handle)
{
    if (idleHandles >= mostIdleHandles) {
        return; // closed here
    }
    const std::lock_guard<std::mutex> guard(mutex);
    ++idleHandles;
    idle.push_back(std::move(handle));
}

GdalHandlePool::Lease::Lease(GdalHandlePool* owner, std::unique_ptr<RasterHandle> leased)
    : pool(owner),
      handle(std::move(leased))
{
}

GdalHandlePool::Lease::~Lease()
{
    if (handle) {
        pool->release(std::move(handle));
    }
}

} // namespace Corvane::Map
