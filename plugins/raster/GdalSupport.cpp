#include <plugins/raster/GdalSupport.h>

#include <algorithm>
#include <mutex>
#include <set>

namespace Corvane::Map {

namespace {

constexpr GIntBig mebibyte = 1 << 20;
// Small blocks are decoded once, so a larger cache only costs: 8 threads decode about a third more
// JPEG tiles a second with it than with GDAL's own default of a twentieth of the memory.
constexpr GIntBig blockCacheBytes = 16 * mebibyte;
// A run of tiles over strips reads whole rows, and a reduced read comes back for each band: what
// does not stay is inflated again.
constexpr int cachedReads = 4;
constexpr GIntBig leastLargeCache = 64 * mebibyte;
constexpr GIntBig mostLargeCache = 512 * mebibyte;

std::mutex cacheMutex; // guards wantedBytes and the calls that follow from it
std::multiset<qint64>& wantedBytes()
{
    static auto& all = *new std::multiset<qint64>; // see PoolActivity
    return all;
}

void applyCacheSize()
{
    const auto& all = wantedBytes();
    const qint64 largest = all.empty() ? 0 : *all.rbegin();
    const GIntBig large =
        std::clamp<GIntBig>(largest * cachedReads, leastLargeCache, mostLargeCache);
    GDALSetCacheMax64(largest > 0 ? large : blockCacheBytes);
}

} // namespace

DatasetPointer openRasterDataset(const QString& name, bool remote, QString* error)
{
    return openDataset(name, GDAL_OF_RASTER, nullptr, remote, error);
}

BlockCacheShare::BlockCacheShare(qint64 bytes) : wanted(bytes)
{
    const std::lock_guard<std::mutex> guard(cacheMutex);
    wantedBytes().insert(wanted);
    applyCacheSize();
}

BlockCacheShare::~BlockCacheShare()
{
    const std::lock_guard<std::mutex> guard(cacheMutex);
    auto& all = wantedBytes();
    all.erase(all.find(wanted));
    applyCacheSize();
}

} // namespace Corvane::Map
