#include <plugins/raster/GdalHandlePool.h>

#include <plugins/raster/RasterFacts.h>

#include <cpl_string.h>
#include <gdal_utils.h>

#include <atomic>
#include <utility>

namespace Corvane::Map {

namespace {

// Idle handles of all sources together. Beyond this a handle is closed instead of kept: a map of a
// hundred files stays below the usual limit of open files.
constexpr int mostIdleHandles = 200;
std::atomic<int> idleHandles{0};

// A container without an image of its own stands for its first image. Some drivers offer the list
// only as a whole, not item by item.
QString firstSubdataset(GDALDatasetH dataset)
{
    char** const images = GDALGetMetadata(dataset, "SUBDATASETS");
    return QString::fromUtf8(CSLFetchNameValue(images, "SUBDATASET_1_NAME"));
}

// The first one has half the size of the image, as many bands, and the others within.
bool fits(GDALDatasetH overviews, GDALDatasetH image)
{
    const auto isHalf = [](int half, int whole) { return half == (whole + 1) / 2; };
    return GDALGetRasterCount(overviews) == GDALGetRasterCount(image) &&
           isHalf(GDALGetRasterXSize(overviews), GDALGetRasterXSize(image)) &&
           isHalf(GDALGetRasterYSize(overviews), GDALGetRasterYSize(image));
}

} // namespace

int RasterHandle::overviewCount() const
{
    return overviews ? 1 + GDALGetOverviewCount(GDALGetRasterBand(overviews.get(), 1))
                     : GDALGetOverviewCount(GDALGetRasterBand(shown(), 1));
}

GDALRasterBandH RasterHandle::overviewBand(int band, int overview) const
{
    if (!overviews) {
        return GDALGetOverview(GDALGetRasterBand(shown(), band), overview);
    }
    GDALRasterBandH finest = GDALGetRasterBand(overviews.get(), band);
    return overview == 0 ? finest : GDALGetOverview(finest, overview - 1);
}

std::unique_ptr<RasterHandle> openHandle(const QString& name, bool remote, QString* error)
{
    auto handle = std::make_unique<RasterHandle>();
    handle->original = openRasterDataset(name, remote, error);
    if (handle->original && GDALGetRasterCount(handle->original.get()) == 0) {
        const QString inner = firstSubdataset(handle->original.get());
        handle->original =
            inner.isEmpty() ? DatasetPointer() : openRasterDataset(inner, remote, error);
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

DatasetPointer warpToNorthUp(GDALDatasetH original, const QString& file)
{
    GDALRasterBandH first = GDALGetRasterBand(original, 1);
    const bool mirrored = isOnlyMirrored(original);
    const bool nearest = mirrored || GDALGetRasterColorTable(first) != nullptr;
    std::vector<const char*> arguments = {"-of", "VRT", "-r", nearest ? "near" : "bilinear"};
    // GDAL would take the scale from the boxes around a chunk: that of a turned one is larger in the
    // source, and the picture would be blurred as if it were reduced
    arguments.insert(arguments.end(), {"-wo", "XSCALE=1", "-wo", "YSCALE=1"});
    if (!mirrored) {
        arguments.push_back("-dstalpha");
    }
    arguments.push_back(nullptr);
    GDALWarpAppOptions* const options =
        GDALWarpAppOptionsNew(const_cast<char**>(arguments.data()), nullptr);
    if (!options) {
        return nullptr;
    }
    GDALDatasetH sources[] = {original};
    int usageError = 0;
    DatasetPointer warped(
        GDALWarp(file.toUtf8().constData(), nullptr, 1, sources, options, &usageError));
    GDALWarpAppOptionsFree(options);
    return warped;
}

void addOverviews(RasterHandle& handle, const OverviewFile& overviews)
{
    if (overviews.isEmpty()) {
        return;
    }
    const GdalErrors errors;            // without them it goes as well
    constexpr bool looksAround = false; // for files that lie beside it
    DatasetPointer opened = openRasterDataset(overviews.name, !looksAround, nullptr);
    if (opened && fits(opened.get(), handle.shown())) {
        handle.overviews = std::move(opened);
    }
}

GdalHandlePool::GdalHandlePool(QString datasetName, bool overNetwork, OverviewFile overviewFile,
                               std::unique_ptr<RasterHandle> first)
    : name(std::move(datasetName)),
      remote(overNetwork),
      overviews(std::move(overviewFile))
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
    std::unique_ptr<RasterHandle> opened = openHandle(name, remote, error);
    if (opened) {
        addOverviews(*opened, overviews);
    }
    if (opened && !overviews.isEmpty() && !opened->overviews) {
        *error = QStringLiteral("the overviews are gone"); // which the first handle has seen
        opened.reset();
    }
    return Lease(this, std::move(opened));
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
