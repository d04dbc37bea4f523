#include <plugins/raster/RasterCells.h>

#include <plugins/common/PoolActivity.h>
#include <plugins/raster/CellText.h>
#include <plugins/raster/RasterSource.h>

#include <corvane/core/Integer.h>
#include <corvane/map/CellRequest.h>

#include <gdal_alg.h>

#include <QRect>

#include <cmath>
#include <optional>
#include <vector>

namespace Corvane::Map {

namespace {

// Called by GDAL between the blocks of a read.
int goOn(double, const char*, void* request)
{
    const bool stop =
        static_cast<const CellRequest*>(request)->isCancelled() || PoolActivity::isEnding();
    return stop ? FALSE : TRUE;
}

// A place of the image that is shown, in the pixels of the source.
std::optional<QPointF> inSource(const RasterHandle& handle, const QPointF& shown)
{
    if (!handle.warped) {
        return shown;
    }
    void* const transformer =
        GDALCreateGenImgProjTransformer2(handle.original.get(), handle.warped.get(), nullptr);
    if (!transformer) {
        return std::nullopt;
    }
    double x = shown.x();
    double y = shown.y();
    double z = 0.0;
    int success = 0;
    GDALGenImgProjTransform(transformer, TRUE, 1, &x, &y, &z, &success);
    GDALDestroyGenImgProjTransformer(transformer);
    return success != 0 ? std::optional(QPointF(x, y)) : std::nullopt;
}

// The cells of all bands around one, for as far as the source reaches.
class WindowReader
{
public:
    WindowReader(GDALDatasetH original, const CellRequest* cellRequest, const QPoint& middle)
        : dataset(original),
          request(cellRequest),
          edge(request->getWindow().edge),
          corner(middle - QPoint(edge / 2, edge / 2)),
          part(QRect(corner, QSize(edge, edge)) &
               QRect(0, 0, GDALGetRasterXSize(dataset), GDALGetRasterYSize(dataset)))
    {
    }

    bool read(int number, const BandFacts& facts, CellBand* result) const
    {
        GDALRasterBandH band = GDALGetRasterBand(dataset, number);
        const auto bytes = static_cast<std::size_t>(GDALGetDataTypeSizeBytes(facts.type));
        std::vector<unsigned char> values(count() * bytes);
        std::vector<unsigned char> mask;
        if (!readInto(band, facts.type, values.data())) {
            return false;
        }
        if ((GDALGetMaskFlags(band) & (GMF_PER_DATASET | GMF_ALPHA)) == GMF_PER_DATASET) {
            mask.resize(count());
            if (!readInto(GDALGetMaskBand(band), GDT_Byte, mask.data())) {
                return false;
            }
        }
        result->name = facts.description.isEmpty() ? facts.name() : facts.description;
        result->type = cellTypeName(facts);
        result->values.resize(edge * edge);
        for (std::size_t i = 0; i < count(); ++i) {
            const auto columns = static_cast<std::size_t>(part.width());
            const int x = part.left() - corner.x() + static_cast<int>(i % columns);
            const int y = part.top() - corner.y() + static_cast<int>(i / columns);
            const void* const value = values.data() + i * bytes;
            const bool masked = !mask.empty() && mask[i] == 0;
            const bool empty = masked || isNoDataCell(facts, band, value);
            result->values[y * edge + x] = {
                empty ? CellValue::Kind::NoData : CellValue::Kind::Value, cellText(facts, value)};
        }
        return true;
    }

private:
    std::size_t count() const
    {
        return static_cast<std::size_t>(part.width()) * static_cast<std::size_t>(part.height());
    }

    bool readInto(GDALRasterBandH band, GDALDataType type, void* buffer) const
    {
        GDALRasterIOExtraArg extra;
        INIT_RASTERIO_EXTRA_ARG(extra);
        extra.pfnProgress = &goOn;
        extra.pProgressData = const_cast<CellRequest*>(request);
        return GDALRasterIOEx(band, GF_Read, part.x(), part.y(), part.width(), part.height(),
                              buffer, part.width(), part.height(), type, 0, 0, &extra) == CE_None;
    }

    GDALDatasetH dataset;
    const CellRequest* request;
    int edge;
    QPoint corner; // of the window, maybe outside
    QRect part;    // of it that the source has
};

CellReading ofState(CellReading::State state, const QString& failure = QString())
{
    CellReading reading;
    reading.state = state;
    reading.failure = failure;
    return reading;
}

CellReading failed(RasterSource& source, const QString& reason)
{
    source.reportFailure(reason);
    return ofState(CellReading::State::Failed, reason);
}

// Null where it lies outside.
std::optional<QPoint> cellAt(const RasterHandle& handle, const RasterFacts& facts,
                             const QPointF& world)
{
    const QPointF shown((world.x() - facts.bounds.left()) / facts.cellX,
                        (world.y() - facts.bounds.top()) / facts.cellY);
    const std::optional<QPointF> place = inSource(handle, shown);
    const int width = GDALGetRasterXSize(handle.original.get());
    const int height = GDALGetRasterYSize(handle.original.get());
    // written so that a NaN lies outside
    const bool inside = place && place->x() >= 0.0 && place->x() < width && place->y() >= 0.0 &&
                        place->y() < height;
    return inside ? std::optional(
                        QPoint(Util::truncateToInt(place->x()), Util::truncateToInt(place->y())))
                  : std::nullopt;
}

CellReading readCells(RasterSource& source, const CellRequest& request)
{
    if (request.isCancelled() || PoolActivity::isEnding()) {
        return ofState(CellReading::State::Dropped);
    }
    const GdalErrors errors;
    QString error;
    const GdalHandlePool::Lease handle = source.acquire(&error);
    if (!handle) {
        return failed(source, error);
    }
    const RasterFacts& facts = source.facts();
    const CellRequest::Window& window = request.getWindow();
    const std::optional<QPoint> middle = cellAt(*handle.operator->(), facts, window.world);
    if (!middle) {
        return ofState(CellReading::State::Outside);
    }
    CellReading reading = ofState(CellReading::State::Read);
    reading.column = middle->x();
    reading.row = middle->y();
    const WindowReader reader(handle->original.get(), &request, *middle);
    const int last = window.band > 0 ? window.band : static_cast<int>(facts.bands.size());
    for (int number = window.band > 0 ? window.band : 1; number <= last; ++number) {
        const auto index = static_cast<std::size_t>(number - 1);
        CellBand band;
        if (index < facts.bands.size() && !reader.read(number, facts.bands[index], &band)) {
            return request.isCancelled() ? ofState(CellReading::State::Dropped)
                                         : failed(source, errors.text());
        }
        reading.bands.append(band);
    }
    return reading;
}

} // namespace

void answerCells(RasterSource& source, const std::shared_ptr<CellRequest>& request)
{
    request->finish(readCells(source, *request));
}

} // namespace Corvane::Map
