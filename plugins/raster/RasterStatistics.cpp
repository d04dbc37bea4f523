#include <plugins/raster/RasterStatistics.h>

#include <plugins/raster/BandCounter.h>
#include <plugins/raster/RasterSource.h>

#include <corvane/core/Integer.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>
#include <vector>

namespace Corvane::Map {

namespace {

constexpr qint64 mostValuesAtOnce = 2 << 20; // of all bands, 16 MB

// What is counted: a window of the image or of an overview, maybe reduced while reading.
struct Sample
{
    int overview = -1;
    QRect window;
    QSize size; // after reducing; the window's own where nothing is reduced
};

using Visitor = std::function<void(std::size_t band, const double* values,
                                   const unsigned char* valid, std::size_t count)>;

class SampleReader
{
public:
    // madeAlpha is the band that tells where warping has put nothing, 0 for none.
    SampleReader(const RasterHandle& handle, GDALDatasetH dataset, int bandCount, int madeAlpha,
                 Sample sampled)
        : sample(std::move(sampled))
    {
        const auto bandOf = [&](int number) {
            return sample.overview >= 0 ? handle.overviewBand(number, sample.overview)
                                        : GDALGetRasterBand(dataset, number);
        };
        for (int i = 1; i <= bandCount; ++i) {
            bands.push_back(bandOf(i));
            numbers.push_back(i);
        }
        if (madeAlpha > 0) {
            alpha = bandOf(madeAlpha);
        }
        GDALDatasetH own = GDALGetBandDataset(bands.front());
        readsAllBands = own && GDALGetRasterCount(own) >= bandCount;
        for (int i = 0; readsAllBands && i < bandCount; ++i) {
            readsAllBands = GDALGetRasterBand(own, i + 1) == bands[static_cast<std::size_t>(i)];
        }
    }

    // Piece by piece, in whole blocks: no block is decoded twice. False where a read failed.
    bool visit(const Visitor& visitor)
    {
        if (sample.size != sample.window.size()) {
            return visitPiece(sample.window, sample.size, visitor);
        }
        QSize step = pieceSize();
        for (int y = sample.window.top(); y <= sample.window.bottom();) {
            const int bottom = std::min((y / step.height() + 1) * step.height(),
                                        sample.window.top() + sample.window.height());
            for (int x = sample.window.left(); x <= sample.window.right();) {
                const int right = std::min((x / step.width() + 1) * step.width(),
                                           sample.window.left() + sample.window.width());
                const QRect piece(x, y, right - x, bottom - y);
                if (!visitPiece(piece, piece.size(), visitor)) {
                    return false;
                }
                x = right;
            }
            y = bottom;
        }
        return true;
    }

private:
    QSize pieceSize() const
    {
        int blockWidth = 1;
        int blockHeight = 1;
        GDALGetBlockSize(bands.front(), &blockWidth, &blockHeight);
        const qint64 block = qint64{blockWidth} * blockHeight * static_cast<qint64>(bands.size());
        const auto fitting = static_cast<int>(std::max<qint64>(1, mostValuesAtOnce / block));
        const bool strips = blockWidth >= GDALGetRasterBandXSize(bands.front());
        return strips ? QSize(blockWidth, std::max(1, blockHeight) * fitting)
                      : QSize(blockWidth * fitting, blockHeight);
    }

    bool visitPiece(const QRect& piece, const QSize& size, const Visitor& visitor)
    {
        const auto count =
            static_cast<std::size_t>(size.width()) * static_cast<std::size_t>(size.height());
        values.resize(count * bands.size());
        if (!readValues(piece, size, count)) {
            return false;
        }
        for (std::size_t b = 0; b < bands.size(); ++b) {
            const unsigned char* valid = nullptr;
            if (!readValid(bands[b], piece, size, count, &valid)) {
                return false;
            }
            visitor(b, values.data() + b * count, valid, count);
        }
        return true;
    }

    bool readValues(const QRect& piece, const QSize& size, std::size_t count)
    {
        if (readsAllBands) {
            return GDALDatasetRasterIO(GDALGetBandDataset(bands.front()), GF_Read, piece.x(),
                                       piece.y(), piece.width(), piece.height(), values.data(),
                                       size.width(), size.height(), GDT_Float64,
                                       static_cast<int>(bands.size()), numbers.data(), 0, 0,
                                       0) == CE_None;
        }
        for (std::size_t b = 0; b < bands.size(); ++b) {
            if (GDALRasterIO(bands[b], GF_Read, piece.x(), piece.y(), piece.width(), piece.height(),
                             values.data() + b * count, size.width(), size.height(), GDT_Float64, 0,
                             0) != CE_None)
            {
                return false;
            }
        }
        return true;
    }

    // No-data values are told from the values themselves; an alpha band always counts.
    bool readValid(GDALRasterBandH band, const QRect& piece, const QSize& size, std::size_t count,
                   const unsigned char** valid)
    {
        const int flags = GDALGetMaskFlags(band);
        *valid = nullptr;
        if (alpha) {
            return readAlpha(piece, size, count, valid);
        }
        if ((flags & (GMF_ALL_VALID | GMF_NODATA)) != 0 ||
            GDALGetRasterColorInterpretation(band) == GCI_AlphaBand)
        {
            return true;
        }
        mask.resize(count);
        *valid = mask.data();
        return GDALRasterIO(GDALGetMaskBand(band), GF_Read, piece.x(), piece.y(), piece.width(),
                            piece.height(), mask.data(), size.width(), size.height(), GDT_Byte, 0,
                            0) == CE_None;
    }

    // Of whatever type: GDAL takes alpha for a mask only where it is unsigned, of 8 or 16 bits.
    bool readAlpha(const QRect& piece, const QSize& size, std::size_t count,
                   const unsigned char** valid)
    {
        std::vector<float> opacity(count);
        if (GDALRasterIO(alpha, GF_Read, piece.x(), piece.y(), piece.width(), piece.height(),
                         opacity.data(), size.width(), size.height(), GDT_Float32, 0, 0) != CE_None)
        {
            return false;
        }
        mask.resize(count);
        std::transform(opacity.begin(), opacity.end(), mask.begin(), [](float value) {
            return static_cast<unsigned char>(value > 0.0F ? 255 : 0);
        });
        *valid = mask.data();
        return true;
    }

    Sample sample;
    std::vector<GDALRasterBandH> bands;
    GDALRasterBandH alpha = nullptr;
    std::vector<int> numbers;
    bool readsAllBands = false;
    std::vector<double> values;
    std::vector<unsigned char> mask;
};

// The pixels that area touches; empty where it lies outside.
QRect pixelsIn(const RasterFacts& facts, const QRectF& area)
{
    const QRectF wanted = area.normalized();
    const double left = (wanted.left() - facts.bounds.left()) / facts.cellX;
    const double right = (wanted.right() - facts.bounds.left()) / facts.cellX;
    const double top = (wanted.bottom() - facts.bounds.top()) / facts.cellY;
    const double bottom = (wanted.top() - facts.bounds.top()) / facts.cellY;
    const auto clamped = [](double value, int limit) {
        return Util::truncateToInt(std::clamp(value, 0.0, static_cast<double>(limit)));
    };
    // a border that lies on a pixel's edge but for the last digits touches no further pixel
    constexpr double touch = 1e-6;
    const int x0 = clamped(std::floor(left + touch), facts.size.width());
    const int x1 = clamped(std::ceil(right - touch), facts.size.width());
    const int y0 = clamped(std::floor(top + touch), facts.size.height());
    const int y1 = clamped(std::ceil(bottom - touch), facts.size.height());
    return QRect(x0, y0, x1 - x0, y1 - y0);
}

// The same window in an overview; at least one pixel of it.
QRect windowIn(const QSize& overview, const QSize& full, const QRect& window)
{
    const double scaleX = static_cast<double>(overview.width()) / full.width();
    const double scaleY = static_cast<double>(overview.height()) / full.height();
    const int x0 = std::min(static_cast<int>(window.left() * scaleX), overview.width() - 1);
    const int y0 = std::min(static_cast<int>(window.top() * scaleY), overview.height() - 1);
    const int x1 = static_cast<int>(std::ceil((window.left() + window.width()) * scaleX));
    const int y1 = static_cast<int>(std::ceil((window.top() + window.height()) * scaleY));
    return QRect(x0, y0, std::clamp(x1 - x0, 1, overview.width() - x0),
                 std::clamp(y1 - y0, 1, overview.height() - y0));
}

Sample sampleOf(const RasterFacts& facts, const QRect& window, const QSize& wanted)
{
    Sample sample{-1, window, window.size()};
    if (!wanted.isValid() || wanted.isEmpty()) {
        return sample;
    }
    for (int i = 0; i < facts.overviews.size(); ++i) {
        if (facts.overviews[i].isEmpty()) {
            continue;
        }
        const QRect part = windowIn(facts.overviews[i], facts.size, window);
        const bool enough = part.width() >= wanted.width() && part.height() >= wanted.height();
        if (enough && part.width() < sample.window.width()) {
            sample = {i, part, part.size()};
        }
    }
    if (sample.overview < 0) {
        sample.size = window.size().boundedTo(wanted);
    }
    return sample;
}

} // namespace

RasterStatistics::RasterStatistics(std::shared_ptr<RasterSource> rasterSource)
    : source(std::move(rasterSource))
{
}

// The whole image is counted in the source itself, not in what warping makes of it.
QVector<HistogramT<unsigned long long>> RasterStatistics::histograms(const QRectF& area,
                                                                     const QSize& sampleSize) const
{
    const GdalErrors errors;
    const RasterFacts& facts = source->facts();
    QString error;
    const GdalHandlePool::Lease handle = source->acquire(&error);
    if (!handle) {
        source->reportFailure(error);
        return {};
    }
    QRect window = pixelsIn(facts, area);
    if (window.isEmpty()) {
        return {};
    }
    GDALDatasetH dataset = handle->shown();
    const bool whole = window == QRect(QPoint(0, 0), facts.size) && !sampleSize.isValid();
    if (whole) {
        dataset = handle->original.get();
        window = QRect(0, 0, GDALGetRasterXSize(dataset), GDALGetRasterYSize(dataset));
    }
    std::vector<BandCounter> counters(facts.bands.begin(), facts.bands.end());
    const auto bandCount = static_cast<int>(counters.size());
    const bool hasBare = dataset == handle->warped.get() && facts.alphaBand > bandCount;
    SampleReader reader(*handle.operator->(), dataset, bandCount, hasBare ? facts.alphaBand : 0,
                        sampleOf(facts, window, sampleSize));
    bool done = reader.visit([&](std::size_t band, const double* values, const unsigned char* valid,
                                 std::size_t count) { counters[band].add(values, valid, count); });
    const bool deep = std::any_of(counters.begin(), counters.end(),
                                  [](const BandCounter& c) { return c.needsSecondPass(); });
    if (done && deep) {
        done = reader.visit([&](std::size_t band, const double* values, const unsigned char* valid,
                                std::size_t count) {
            if (counters[band].needsSecondPass()) {
                counters[band].addSecondPass(values, valid, count);
            }
        });
    }
    if (!done) {
        source->reportFailure(errors.text());
        return {};
    }
    QVector<HistogramT<unsigned long long>> result;
    const bool any = std::any_of(counters.begin(), counters.end(),
                                 [](const BandCounter& c) { return c.validCount() > 0; });
    for (std::size_t i = 0; any && i < counters.size(); ++i) {
        result.append(counters[i].histogram());
    }
    return result;
}

} // namespace Corvane::Map
