// corvane-bench-tiles FILE [REPS]
//
// Tiles per second that a raster layer fills at full resolution, with the pool's threads, beside
// bare GDAL reads of the same tiles with as many threads; and the bytes held per tile.

#include <bench/BareReader.h>
#include <bench/BenchResult.h>
#include <bench/BenchStage.h>
#include <corvane/map/RasterLayer.h>

#include <QThreadPool>

#include <malloc.h>

#include <cstdio>

using namespace Corvane;
using namespace Corvane::Bench;

namespace {

constexpr int viewEdge = 5120; ///< pixels of the square view: 400 tiles of 256
constexpr int viewsPerSample = 4;

QRectF pixelsOf(int index, const QSize& size)
{
    const int step = viewEdge + 512;
    const int across = (size.width() - viewEdge) / step;
    return QRectF((index % across) * step, (index / across) * step, viewEdge, viewEdge);
}

QRectF worldOf(Map::RasterLayer& layer, const QRectF& pixels)
{
    const QRectF bounds = layer.getBounds();
    return QRectF(bounds.x() + pixels.x() * layer.getCellSizeX(),
                  bounds.y() + pixels.y() * layer.getCellSizeY(),
                  pixels.width() * layer.getCellSizeX(), pixels.height() * layer.getCellSizeY());
}

void fill(Map::RasterLayer& layer, const QRectF& pixels)
{
    const QRectF world = worldOf(layer, pixels);
    layer.setView(viewEdge, viewEdge, world.left(), world.top(), world.right(), world.bottom());
    if (layer.getPercentComplete() < 100) {
        std::fprintf(stderr, "setView returned before the view was complete\n");
        std::exit(2);
    }
}

std::size_t bytesAllocated()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

} // namespace

int main(int argc, char** argv)
{
    BenchStage stage(argc, argv);
    const QStringList arguments = Application::arguments();
    if (arguments.size() < 2) {
        std::fprintf(stderr, "usage: corvane-bench-tiles FILE [REPS]\n");
        return 1;
    }
    const QString file = arguments[1];
    const int repetitions = arguments.size() > 2 ? arguments[2].toInt() : 5;
    const int threads = QThreadPool::globalInstance()->maxThreadCount();

    BenchResult rate{"tiles.filled_per_second", "1/s", {}, {}, {"min_ratio", 0.9}};
    BenchResult bytes{"tiles.bytes_per_pixel_byte", "", {}, {}, {"max", 1.1}};
    for (int i = 0; i < repetitions + 1; ++i) {
        std::vector<QRectF> views;
        for (int v = 0; v < viewsPerSample; ++v) {
            views.push_back(pixelsOf(i * viewsPerSample + v, QSize(40000, 30000)));
        }
        BareReader bare(file, threads);
        std::size_t tiles = 0;
        for (const QRectF& view : views) { // the same blocks come from the page cache in both
            tiles += bare.tilesOf(0, view).size();
            bare.read(0, bare.tilesOf(0, view));
        }

        std::unique_ptr<Map::RasterLayer> layer = stage.open(file);
        layer->setProperty("Progressive", false);
        fill(*layer, QRectF(0, 0, 256, 256)); // the handles are open in both
        const std::size_t before = bytesAllocated();
        const Stopwatch filling;
        for (const QRectF& view : views) {
            fill(*layer, view);
        }
        const double filled = static_cast<double>(tiles) / filling.milliseconds() * 1000.0;
        const double held = static_cast<double>(bytesAllocated() - before);

        const Stopwatch reading;
        std::vector<std::vector<QImage>> kept;
        for (const QRectF& view : views) {
            kept.push_back(bare.read(0, bare.tilesOf(0, view)));
        }
        const double read = static_cast<double>(tiles) / reading.milliseconds() * 1000.0;
        if (i == 0) {
            continue;
        }
        const double pixelBytes =
            static_cast<double>(tiles) * bare.tileSize() * bare.tileSize() * 4.0;
        rate.samples.push_back(filled);
        rate.limitSamples.push_back(read);
        bytes.samples.push_back(held / pixelBytes);
    }
    rate.print();
    bytes.print();
    return 0;
}
