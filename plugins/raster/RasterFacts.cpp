#include <plugins/raster/RasterFacts.h>

#include <plugins/common/GdalAccess.h>
#include <plugins/raster/GdalHandlePool.h>

#include <cpl_conv.h>
#include <ogr_srs_api.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <optional>

namespace Corvane::Map {

namespace {

constexpr int usualTileSize = 256;
constexpr int leastTileSize = 128;
constexpr int mostTileSize = 1024;
constexpr int mostLevels = 31;
constexpr int cheapReduction = 4; // by which the coarsest level may be reduced when it is read
constexpr double negligibleShear = 1e-3; // in pixels, over the whole image

/// Where the overviews of what is shown come from.
struct Overviews
{
    int count = 0;
    std::function<GDALRasterBandH(int band, int overview)> band;
};

using Transform = std::array<double, 6>;

// Null without a usable one. Drivers that know nothing give pixels with y down.
std::optional<Transform> geoTransform(GDALDatasetH dataset)
{
    Transform t{};
    const Transform nothing{0.0, 1.0, 0.0, 0.0, 0.0, 1.0};
    if (GDALGetGeoTransform(dataset, t.data()) != CE_None || t == nothing ||
        t[1] * t[5] - t[2] * t[4] == 0.0 ||
        !std::all_of(t.begin(), t.end(), [](double term) { return std::isfinite(term); }))
    {
        return std::nullopt;
    }
    if (std::abs(t[2]) * GDALGetRasterYSize(dataset) < negligibleShear * std::abs(t[1]) &&
        std::abs(t[4]) * GDALGetRasterXSize(dataset) < negligibleShear * std::abs(t[5]))
    {
        t[2] = 0.0;
        t[4] = 0.0;
    }
    return t;
}

bool isNorthUp(const Transform& t)
{
    return t[2] == 0.0 && t[4] == 0.0 && t[1] > 0.0 && t[5] < 0.0;
}

QString metadata(GDALMajorObjectH object, const char* key, const char* domain)
{
    return QString::fromUtf8(GDALGetMetadataItem(object, key, domain));
}

// What is written with more digits than floats have is the nearest float. The outermost float is often
// written with fewer digits, and then stands a little before the end of the range: all beyond is none.
void setNoDataRange(BandFacts& facts)
{
    constexpr double outermost = std::numeric_limits<float>::max();
    constexpr double nearlyOutermost = 3.39e38; // a little below 3.4e38 as a float
    facts.noDataLow = facts.noData;
    facts.noDataHigh = facts.noData;
    const bool isSingle = facts.type == GDT_Float32 || facts.type == GDT_CFloat32;
    if (!isSingle || !(std::abs(facts.noData) <= outermost)) {
        return;
    }
    facts.noDataLow = static_cast<double>(static_cast<float>(facts.noData));
    facts.noDataHigh = facts.noDataLow;
    if (facts.noData >= nearlyOutermost) {
        facts.noDataLow = nearlyOutermost;
        facts.noDataHigh = outermost;
    } else if (facts.noData <= -nearlyOutermost) {
        facts.noDataLow = -outermost;
        facts.noDataHigh = -nearlyOutermost;
    }
}

BandFacts bandFacts(GDALRasterBandH band)
{
    BandFacts facts;
    facts.type = GDALGetRasterDataType(band);
    facts.isSignedByte = facts.type == GDT_Byte && metadata(band, "PIXELTYPE", "IMAGE_STRUCTURE") ==
                                                       QLatin1String("SIGNEDBYTE");
    facts.meaning = GDALGetRasterColorInterpretation(band);
    facts.description = QString::fromUtf8(GDALGetDescription(band));
    int hasNoData = 0;
    facts.noData = GDALGetRasterNoDataValue(band, &hasNoData);
    facts.hasNoData = hasNoData != 0;
    setNoDataRange(facts);
    return facts;
}

void readGeoreference(GDALDatasetH original, GDALDatasetH shown, RasterFacts& facts)
{
    facts.isWarped = original != shown;
    facts.size = QSize(GDALGetRasterXSize(shown), GDALGetRasterYSize(shown));
    const std::optional<Transform> source = geoTransform(original);
    if (source) {
        facts.rotation = std::atan2((*source)[4], (*source)[1]) * 180.0 / M_PI;
    }
    const std::optional<Transform> t = geoTransform(shown);
    facts.isGeoreferenced = t && isNorthUp(*t);
    if (facts.isGeoreferenced) {
        facts.cellX = (*t)[1];
        facts.cellY = (*t)[5];
        facts.bounds = QRectF((*t)[0], (*t)[3], facts.cellX * facts.size.width(),
                              facts.cellY * facts.size.height());
    } else {
        facts.bounds = QRectF(0.0, facts.size.height(), facts.size.width(), -facts.size.height());
    }
}

void readCoordinateSystem(GDALDatasetH original, GDALDatasetH shown, RasterFacts& facts)
{
    OGRSpatialReferenceH system = GDALGetSpatialRef(shown);
    if (!system) {
        system = GDALGetGCPSpatialRef(original);
    }
    if (!system) {
        return;
    }
    const SystemName named = nameOf(system);
    facts.wkt = named.wkt;
    facts.coordSysName = named.name;
    facts.epsg = named.epsg;
}

void readBands(GDALDatasetH original, GDALDatasetH shown, RasterFacts& facts)
{
    const int count = GDALGetRasterCount(original);
    for (int i = 1; i <= count; ++i) {
        facts.bands.push_back(bandFacts(GDALGetRasterBand(original, i)));
        if (facts.bands.back().meaning == GCI_AlphaBand && facts.alphaBand == 0) {
            facts.alphaBand = i;
        }
    }
    if (GDALGetRasterCount(shown) > count) {
        facts.alphaBand = count + 1; // made by warping: transparent outside of the source
    }
    const int flags = GDALGetMaskFlags(GDALGetRasterBand(shown, 1));
    facts.hasMask = (flags & GMF_PER_DATASET) != 0 && (flags & GMF_ALPHA) == 0;
}

void readPalette(GDALDatasetH original, RasterFacts& facts)
{
    GDALRasterBandH band = GDALGetRasterBand(original, 1);
    GDALColorTableH table = GDALGetRasterColorTable(band);
    if (!table || GDALGetPaletteInterpretation(table) != GPI_RGB) {
        return;
    }
    for (int i = 0; i < GDALGetColorEntryCount(table); ++i) {
        GDALColorEntry entry{};
        GDALGetColorEntryAsRGB(table, i, &entry);
        facts.palette.append(qRgba(entry.c1, entry.c2, entry.c3, entry.c4));
    }
}

// A tile is a block or a whole number of them, so that no block is decoded for two tiles.
unsigned int tileSizeFor(const QSize& block, const QSize& image)
{
    const int larger = std::max(block.width(), block.height());
    const int smaller = std::min(block.width(), block.height());
    const bool strips = block.width() >= image.width();
    if (strips || larger % smaller != 0 || larger > mostTileSize) {
        return usualTileSize;
    }
    if (larger >= leastTileSize) {
        return static_cast<unsigned int>(larger);
    }
    return static_cast<unsigned int>(std::max(1, qRound(usualTileSize / double(larger))) * larger);
}

bool isCloseTo(const QSize& a, const QSize& b)
{
    return std::abs(a.width() - b.width()) <= 1 && std::abs(a.height() - b.height()) <= 1;
}

// The overview's dataset answers for all bands only where it is a dataset of its own.
bool isDatasetOfAllBands(const Overviews& overviews, GDALDatasetH shown, int overview)
{
    GDALDatasetH dataset = GDALGetBandDataset(overviews.band(1, overview));
    if (!dataset || dataset == shown || GDALGetRasterCount(dataset) != GDALGetRasterCount(shown)) {
        return false;
    }
    for (int i = 1; i <= GDALGetRasterCount(shown); ++i) {
        if (GDALGetRasterBand(dataset, i) != overviews.band(i, overview)) {
            return false;
        }
    }
    return true;
}

LevelFacts levelFacts(GDALDatasetH shown, const Overviews& overviews, int level,
                      const RasterFacts& facts)
{
    const auto reduced = [level](int pixels) {
        return static_cast<int>((qint64{pixels} + (qint64{1} << level) - 1) >> level);
    };
    LevelFacts result;
    result.sourceSize = facts.size;
    if (level > 0) { // without an overview of its own it is read where the one before it is
        result = facts.levels.back();
        ++result.halvings;
    }
    result.size = QSize(reduced(facts.size.width()), reduced(facts.size.height()));
    for (int i = 0; level > 0 && i < facts.overviews.size(); ++i) {
        if (isCloseTo(facts.overviews[i], result.size)) {
            result.overview = i;
            result.halvings = 0;
            result.sourceSize = facts.overviews[i];
            result.readsAllBands = isDatasetOfAllBands(overviews, shown, i);
            break;
        }
    }
    GDALRasterBandH band =
        result.overview < 0 ? GDALGetRasterBand(shown, 1) : overviews.band(1, result.overview);
    QSize block;
    GDALGetBlockSize(band, &block.rwidth(), &block.rheight());
    const int tile = static_cast<int>(facts.tileSize);
    result.inStrips = block.width() >= result.sourceSize.width() && result.size.width() > tile;
    return result;
}

void readStructure(GDALDatasetH original, GDALDatasetH shown, const Overviews& overviews,
                   RasterFacts& facts)
{
    GDALRasterBandH band = GDALGetRasterBand(shown, 1);
    QSize shownBlock;
    GDALGetBlockSize(band, &shownBlock.rwidth(), &shownBlock.rheight());
    facts.tileSize = tileSizeFor(shownBlock, facts.size);
    GDALGetBlockSize(GDALGetRasterBand(original, 1), &facts.blockSize.rwidth(),
                     &facts.blockSize.rheight());
    facts.layout = facts.blockSize.width() >= GDALGetRasterXSize(original)
                       ? QStringLiteral("strips")
                       : QStringLiteral("tiles");
    for (int i = 0; i < overviews.count; ++i) {
        GDALRasterBandH overview = overviews.band(1, i);
        facts.overviews.append(
            overview ? QSize(GDALGetRasterBandXSize(overview), GDALGetRasterBandYSize(overview))
                     : QSize(0, 0));
    }
    for (int level = 0; level < mostLevels; ++level) {
        facts.levels.push_back(levelFacts(shown, overviews, level, facts));
    }
}

} // namespace

QString BandFacts::name() const
{
    if (meaning == GCI_Undefined) {
        return description;
    }
    return QString::fromUtf8(GDALGetColorInterpretationName(meaning));
}

int RasterFacts::pixelBytes() const
{
    int bytes = 0;
    for (const BandFacts& band : bands) {
        bytes += GDALGetDataTypeSizeBytes(band.type);
    }
    return bytes;
}

bool RasterFacts::lacksOverviews() const
{
    return levels[1].overview < 0 && std::min(size.width(), size.height()) >= 2 * int(tileSize) + 2;
}

bool RasterFacts::isCoarsestCheap() const
{
    std::size_t level = 0;
    for (qint64 side = std::min(size.width(), size.height()) / 2; side > tileSize; side /= 2) {
        ++level;
    }
    const LevelFacts& coarsest = levels[std::min(level, levels.size() - 1)];
    return coarsest.sourceSize.width() <= coarsest.size.width() * cheapReduction;
}

bool RasterFacts::showsLike(const RasterFacts& other) const
{
    return size == other.size && bounds == other.bounds && tileSize == other.tileSize &&
           bands.size() == other.bands.size() && alphaBand == other.alphaBand;
}

std::uint32_t RasterFacts::stripLevels() const
{
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < levels.size(); ++i) {
        bits |= levels[i].inStrips ? 1U << i : 0U;
    }
    return bits;
}

namespace {

RasterFacts readFactsWith(GDALDatasetH original, GDALDatasetH shown, const Overviews& overviews)
{
    RasterFacts facts;
    GDALDriverH driver = GDALGetDatasetDriver(original);
    facts.driver = QString::fromUtf8(GDALGetDriverShortName(driver));
    facts.format = QString::fromUtf8(GDALGetDriverLongName(driver));
    facts.compression = metadata(original, "COMPRESSION", "IMAGE_STRUCTURE");
    readGeoreference(original, shown, facts);
    readCoordinateSystem(original, shown, facts);
    readBands(original, shown, facts);
    readPalette(original, facts);
    readStructure(original, shown, overviews, facts);
    return facts;
}

} // namespace

RasterFacts readFacts(GDALDatasetH original, GDALDatasetH shown)
{
    const auto band = [shown](int number, int overview) {
        return GDALGetOverview(GDALGetRasterBand(shown, number), overview);
    };
    return readFactsWith(original, shown,
                         {GDALGetOverviewCount(GDALGetRasterBand(shown, 1)), band});
}

RasterFacts readFacts(const RasterHandle& handle)
{
    const auto band = [&handle](int number, int overview) {
        return handle.overviewBand(number, overview);
    };
    return readFactsWith(handle.original.get(), handle.shown(), {handle.overviewCount(), band});
}

bool needsWarping(GDALDatasetH dataset)
{
    const std::optional<Transform> t = geoTransform(dataset);
    return t ? !isNorthUp(*t) : GDALGetGCPCount(dataset) > 0;
}

bool isOnlyMirrored(GDALDatasetH dataset)
{
    const std::optional<Transform> t = geoTransform(dataset);
    return t && (*t)[2] == 0.0 && (*t)[4] == 0.0;
}

} // namespace Corvane::Map
