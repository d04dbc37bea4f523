#include <plugins/raster/TileReader.h>

#include <plugins/common/PoolActivity.h>
#include <plugins/raster/PixelTransparency.h>
#include <plugins/raster/RasterSource.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <type_traits>
#include <utility>

namespace Corvane::Map {

static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN, "bands are read into the bytes of a pixel");

namespace {

constexpr int pixelBytes = 4;
constexpr qint64 sliceBytes = 8 << 20; // of a reduced read; the block cache holds several
// A pixel that stands for more of them, both ways, is one of them rather than their mean: GDAL would take
// all of them into memory at once.
constexpr int mostAveraged = 512;
constexpr QRgb opaqueWhite = 0xffffffffU;

std::size_t area(const QSize& size)
{
    return static_cast<std::size_t>(size.width()) * static_cast<std::size_t>(size.height());
}

// Pixels of a picture in those of an image that is so often twice as large; what is made of an image
// may be a pixel short of it, or over: the last pixel is read twice then.
QRect enlarged(const QRect& pixels, unsigned int halvings, const QSize& size)
{
    const auto scaled = [halvings](int pixel, int limit) {
        return static_cast<int>(std::min<qint64>(qint64{pixel} << halvings, limit));
    };
    const int left = scaled(pixels.left(), size.width() - 1);
    const int top = scaled(pixels.top(), size.height() - 1);
    return QRect(left, top, scaled(pixels.left() + pixels.width(), size.width()) - left,
                 scaled(pixels.top() + pixels.height(), size.height()) - top);
}

// Spreads a range of values over the grey levels. A range without a width parts black from white.
template <typename Value>
class GreyScale
{
public:
    explicit GreyScale(const StretchRange& range)
        : low(static_cast<Value>(range.low)),
          factor(range.high > range.low ? static_cast<Value>(255.0 / (range.high - range.low))
                                        : std::numeric_limits<Value>::max())
    {
    }
    QRgb operator()(Value value) const
    {
        const Value grey = (value - low) * factor + Value(0.5);
        return static_cast<QRgb>(std::clamp(grey, Value(0), Value(255)));
    }

private:
    Value low;
    Value factor;
};

} // namespace

// What is read for a picture: a window of an overview or, reduced, of the full image.
struct TileReader::Window
{
    const LevelFacts* facts;
    QSize size;   // of the picture
    QRect source; // in the pixels of what is read
    QRect full;   // the same in full resolution, where masks may have to be read

    // How many pixels of what is read make one of the picture, both ways.
    int reduction() const { return 1 << facts->halvings; }
};

// Distances in the buffer, in bytes; all bands in one block.
struct TileReader::Layout
{
    GSpacing pixel;
    GSpacing line;
    GSpacing band;
};

TileReader::TileReader(std::shared_ptr<RasterSource> rasterSource, BandPlan bandPlan,
                       const std::atomic<bool>* cancelledFlag)
    : theSource(std::move(rasterSource)),
      plan(std::move(bandPlan)),
      cancelled(cancelledFlag)
{
}

QRect TileReader::tilePixels(unsigned int level, unsigned int x, unsigned int y) const
{
    const RasterFacts& facts = theSource->facts();
    const QSize size = facts.levels[level].size;
    const int edge = static_cast<int>(facts.tileSize);
    const int left = static_cast<int>(x) * edge;
    const int top = static_cast<int>(y) * edge;
    return QRect(left, top, std::min(edge, size.width() - left),
                 std::min(edge, size.height() - top));
}

QImage TileReader::read(unsigned int level, const QRect& pixels, QString* error) const
{
    const GdalHandlePool::Lease handle = theSource->acquire(error);
    return handle ? read(*handle.operator->(), level, pixels, error) : QImage();
}

QImage TileReader::read(const RasterHandle& handle, unsigned int level, const QRect& pixels,
                        QString* error) const
{
    const GdalErrors errors;
    const Window window = windowFor(level, pixels);
    QImage image(window.size, QImage::Format_RGB32);
    bool done = false;
    if (image.isNull()) {
        *error = QStringLiteral("no memory for a tile");
        return QImage();
    }
    image.fill(opaqueWhite);
    if (plan.look == BandPlan::Look::Palette ||
        (plan.look == BandPlan::Look::Grey && allPlainBytes())) {
        done = readIndexed(window, handle, image);
    } else if (allPlainBytes()) {
        done = readByteColour(window, handle, image);
    } else {
        const BandFacts& first =
            theSource->facts().bands[static_cast<std::size_t>(plan.bands.front() - 1)];
        const bool small = GDALGetDataTypeSizeBits(first.type) <= 16 || first.type == GDT_Float32;
        done = small ? readStretched<float>(window, handle, image)
                     : readStretched<double>(window, handle, image);
    }
    std::vector<unsigned char> alpha;
    if (done && (plan.usesAlpha || plan.usesMask)) {
        done = plan.usesAlpha ? readAlpha(window, handle, alpha) : readMask(window, handle, alpha);
        if (done) {
            makeTransparent(image, alpha);
        }
    }
    if (!done) {
        *error = errors.text();
        return QImage();
    }
    return image;
}

TileReader::Window TileReader::windowFor(unsigned int level, const QRect& pixels) const
{
    const RasterFacts& facts = theSource->facts();
    const LevelFacts& levelFacts = facts.levels[level];
    const auto halvings = static_cast<unsigned int>(levelFacts.halvings);
    return {&levelFacts, pixels.size(), enlarged(pixels, halvings, levelFacts.sourceSize),
            enlarged(pixels, level, facts.size)};
}

// Called by GDAL between the blocks of a read.
int TileReader::goOn(double, const char*, void* reader)
{
    const auto* const self = static_cast<const TileReader*>(reader);
    const bool stop = (self->cancelled && *self->cancelled) || PoolActivity::isEnding();
    return stop ? FALSE : TRUE;
}

// A reduced read that GDAL resamples band by band must find its blocks in the cache for each of
// them: it is taken in slices of whole rows of the picture that fit.
bool TileReader::readBands(const Window& window, const RasterHandle& handle,
                           const std::vector<int>& bands, GDALDataType type, void* buffer,
                           const Layout& layout) const
{
    const int height = window.size.height();
    int rows = height;
    const int factor = window.reduction();
    if (factor > 1) {
        const qint64 rowBytes =
            qint64{window.source.width()} * factor * theSource->facts().pixelBytes();
        rows = static_cast<int>(std::clamp<qint64>(sliceBytes / rowBytes, 1, height));
    }
    for (int first = 0; first < height; first += rows) {
        Window slice = window;
        slice.size.setHeight(std::min(rows, height - first));
        if (factor > 1) {
            slice.source.setTop(window.source.top() + first * factor);
            slice.source.setHeight(
                std::min(slice.size.height() * factor, window.source.height() - first * factor));
        }
        if (!readSlice(slice, handle, bands, type,
                       static_cast<unsigned char*>(buffer) + first * layout.line, layout))
        {
            return false;
        }
    }
    return true;
}

bool TileReader::readSlice(const Window& window, const RasterHandle& handle,
                           const std::vector<int>& bands, GDALDataType type, void* buffer,
                           const Layout& layout) const
{
    GDALRasterIOExtraArg extra;
    INIT_RASTERIO_EXTRA_ARG(extra);
    extra.pfnProgress = &TileReader::goOn;
    extra.pProgressData = const_cast<TileReader*>(this);
    const int reduction = window.reduction();
    if (reduction > 1 && reduction <= mostAveraged && plan.look != BandPlan::Look::Palette) {
        extra.eResampleAlg = GRIORA_Average;
    }
    const QRect& from = window.source;
    GDALDatasetH dataset = handle.shown();
    const int overview = window.facts->overview;
    if (overview < 0 || window.facts->readsAllBands) {
        if (overview >= 0) {
            dataset = GDALGetBandDataset(handle.overviewBand(1, overview));
        }
        return GDALDatasetRasterIOEx(dataset, GF_Read, from.x(), from.y(), from.width(),
                                     from.height(), buffer, window.size.width(),
                                     window.size.height(), type, static_cast<int>(bands.size()),
                                     const_cast<int*>(bands.data()), layout.pixel, layout.line,
                                     layout.band, &extra) == CE_None;
    }
    auto* plane = static_cast<unsigned char*>(buffer);
    for (const int number : bands) {
        GDALRasterBandH band = handle.overviewBand(number, overview);
        if (!band || GDALRasterIOEx(band, GF_Read, from.x(), from.y(), from.width(), from.height(),
                                    plane, window.size.width(), window.size.height(), type,
                                    layout.pixel, layout.line, &extra) != CE_None)
        {
            return false;
        }
        plane += layout.band;
    }
    return true;
}

bool TileReader::allPlainBytes() const
{
    const RasterFacts& facts = theSource->facts();
    return std::all_of(plan.bands.begin(), plan.bands.end(), [&facts](int band) {
        return facts.bands[static_cast<std::size_t>(band - 1)].isPlainByte();
    });
}

// Blue, green and red go right into the first three bytes of each pixel.
bool TileReader::readByteColour(const Window& window, const RasterHandle& handle,
                                QImage& image) const
{
    const std::vector<int> bands = {plan.bands[2], plan.bands[1], plan.bands[0]};
    if (!readBands(window, handle, bands, GDT_Byte, image.bits(),
                   {pixelBytes, image.bytesPerLine(), 1}))
    {
        return false;
    }
    if (plan.usesNoData) {
        std::array<double, 3> values{};
        for (std::size_t i = 0; i < values.size(); ++i) {
            values[i] =
                theSource->facts().bands[static_cast<std::size_t>(plan.bands[i] - 1)].noData;
        }
        makeColourTransparent(image, values);
    }
    return true;
}

// Grey bytes and palettes: each value has one colour.
bool TileReader::readIndexed(const Window& window, const RasterHandle& handle, QImage& image) const
{
    const RasterFacts& facts = theSource->facts();
    const BandFacts& band = facts.bands[static_cast<std::size_t>(plan.bands.front() - 1)];
    QVector<QRgb> colours;
    if (plan.look == BandPlan::Look::Palette) {
        colours = facts.palette;
    } else {
        for (int grey = 0; grey < 256; ++grey) {
            colours.append(qRgb(grey, grey, grey));
        }
    }
    if (plan.usesNoData && band.noData >= 0.0 && band.noData < colours.size() &&
        band.noData == std::floor(band.noData))
    {
        colours[static_cast<int>(band.noData)] = 0;
    }
    std::vector<quint16> indices(area(window.size));
    const GSpacing line = GSpacing{sizeof(quint16)} * window.size.width();
    if (!readBands(window, handle, plan.bands, GDT_UInt16, indices.data(),
                   {sizeof(quint16), line, 0})) {
        return false;
    }
    fillFromColours(image, indices, colours);
    return true;
}

// Everything deeper than bytes, band by band through its stretch.
template <typename Value>
bool TileReader::readStretched(const Window& window, const RasterHandle& handle,
                               QImage& image) const
{
    const GDALDataType type = std::is_same_v<Value, float> ? GDT_Float32 : GDT_Float64;
    const std::size_t pixels = area(window.size);
    std::vector<Value> values(pixels * plan.bands.size());
    const GSpacing line = GSpacing{sizeof(Value)} * window.size.width();
    if (!readBands(window, handle, plan.bands, type, values.data(),
                   {sizeof(Value), line, line * window.size.height()}))
    {
        return false;
    }
    auto* const out = reinterpret_cast<QRgb*>(image.bits());
    std::vector<unsigned char> valid(pixels, 0);
    for (std::size_t b = 0; b < plan.bands.size(); ++b) {
        const BandFacts& band =
            theSource->facts().bands[static_cast<std::size_t>(plan.bands[b] - 1)];
        const std::optional<StretchRange> range = theSource->stretchOf(
            plan.bands[b], handle, &TileReader::goOn, const_cast<TileReader*>(this));
        if (!range) {
            return false;
        }
        const GreyScale<Value> scale(*range);
        const int shift = plan.bands.size() == 1 ? 0 : 16 - 8 * static_cast<int>(b);
        const QRgb spread = plan.bands.size() == 1 ? 0x010101U : 1U << shift;
        for (std::size_t i = 0; i < pixels; ++i) {
            Value value = values[b * pixels + i];
            if (band.isSignedByte && value > Value{127}) {
                value -= Value{256};
            }
            const bool isValid = !std::isnan(value) && !band.isNoData(value);
            valid[i] = static_cast<unsigned char>(valid[i] | (isValid ? 255 : 0));
            const QRgb grey = isValid ? scale(value) : 0U;
            out[i] = (b == 0 ? 0xff000000U : out[i]) | grey * spread;
        }
    }
    makeTransparent(image, valid);
    return true;
}

bool TileReader::readAlpha(const Window& window, const RasterHandle& handle,
                           std::vector<unsigned char>& alpha) const
{
    const RasterFacts& facts = theSource->facts();
    const int number = facts.alphaBand;
    const GDALDataType type = GDALGetRasterDataType(GDALGetRasterBand(handle.shown(), number));
    alpha.resize(area(window.size));
    if (type == GDT_Byte) {
        return readBands(window, handle, {number}, GDT_Byte, alpha.data(),
                         {1, window.size.width(), 0});
    }
    std::vector<float> values(alpha.size());
    const GSpacing line = GSpacing{sizeof(float)} * window.size.width();
    if (!readBands(window, handle, {number}, GDT_Float32, values.data(), {sizeof(float), line, 0}))
    {
        return false;
    }
    std::transform(values.begin(), values.end(), alpha.begin(), [type](float value) {
        if (type == GDT_UInt16) {
            return static_cast<unsigned char>(value / 257.0F + 0.5F);
        }
        return static_cast<unsigned char>(value > 0.0F ? 255 : 0);
    });
    return true;
}

// An overview may lack the mask of its image.
bool TileReader::readMask(const Window& window, const RasterHandle& handle,
                          std::vector<unsigned char>& alpha) const
{
    GDALRasterBandH band = GDALGetRasterBand(handle.shown(), plan.bands.front());
    QRect from = window.full;
    if (window.facts->overview >= 0) {
        GDALRasterBandH overview = handle.overviewBand(plan.bands.front(), window.facts->overview);
        if (overview && (GDALGetMaskFlags(overview) & GMF_PER_DATASET) != 0) {
            band = overview;
            from = window.source;
        }
    }
    alpha.resize(area(window.size));
    GDALRasterIOExtraArg extra;
    INIT_RASTERIO_EXTRA_ARG(extra);
    extra.pfnProgress = &TileReader::goOn;
    extra.pProgressData = const_cast<TileReader*>(this);
    return GDALRasterIOEx(GDALGetMaskBand(band), GF_Read, from.x(), from.y(), from.width(),
                          from.height(), alpha.data(), window.size.width(), window.size.height(),
                          GDT_Byte, 0, 0, &extra) == CE_None;
}

} // namespace Corvane::Map
