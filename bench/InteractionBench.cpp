// corvane-bench-interaction FILE [REPS]
//
// What a user does with a large file that lies in the page cache: open it, jump to full
// resolution, pan by a tenth, zoom out, return. Each from the command until every tile is loaded
// and the frame is painted, beside bare GDAL reads of the tiles that the step needs and their
// drawImage calls.

#include <bench/BareReader.h>
#include <bench/BenchResult.h>
#include <bench/BenchStage.h>
#include <corvane/map/MapCanvas.h>
#include <corvane/map/RasterLayer.h>

#include <QPainter>

#include <algorithm>
#include <cstdio>

using namespace Corvane;
using namespace Corvane::Bench;

namespace {

constexpr int threads = 8;

/// Reads the tiles of a view that have not been read before and draws all of them.
class BareViewer
{
public:
    explicit BareViewer(const QString& file) : reader(file, threads) {}

    double show(double left, double top, double pixelsPerPixel)
    {
        const Stopwatch watch;
        const int level = reader.levelFor(pixelsPerPixel);
        const QRectF pixels(left, top, BenchStage::width * pixelsPerPixel,
                            BenchStage::height * pixelsPerPixel);
        std::vector<QRect> missing;
        for (const QRect& tile : reader.tilesOf(level, pixels)) {
            if (std::find(seen.begin(), seen.end(), std::make_pair(level, tile.topLeft())) ==
                seen.end()) {
                missing.push_back(tile);
                seen.emplace_back(level, tile.topLeft());
            }
        }
        const std::vector<QImage> images = reader.read(level, missing);
        QPainter painter(&frame);
        for (std::size_t i = 0; i < images.size(); ++i) {
            painter.drawImage(missing[i].topLeft() - missing.front().topLeft(), images[i]);
        }
        return watch.milliseconds();
    }

private:
    BareReader reader;
    std::vector<std::pair<int, QPoint>> seen;
    QImage frame{BenchStage::width, BenchStage::height, QImage::Format_RGB32};
};

} // namespace

int main(int argc, char** argv)
{
    BenchStage stage(argc, argv);
    const QStringList arguments = Application::arguments();
    if (arguments.size() < 2) {
        std::fprintf(stderr, "usage: corvane-bench-interaction FILE [REPS]\n");
        return 1;
    }
    const QString file = arguments[1];
    const int repetitions = arguments.size() > 2 ? arguments[2].toInt() : 9;

    BenchResult open{"interaction.open", "ms", {}, {}, {"max", 12.0}};
    BenchResult jump{"interaction.jump_1_1", "ms", {}, {}, {"max", 8.0}};
    BenchResult pan{"interaction.pan_tenth", "ms", {}, {}, {"max", 3.0}};
    BenchResult zoom{"interaction.zoom_out", "ms", {}, {}, {"max", 20.0}};
    BenchResult back{"interaction.return", "ms", {}, {}, {"max", 1.0}};
    for (int i = 0; i <= repetitions; ++i) {
        stage.reset();
        const Stopwatch watch;
        Map::RasterLayer* layer = stage.open(file).release();
        stage.view().addLayer(layer, -1);
        stage.complete(*layer);
        const double opened = watch.milliseconds();

        const Stopwatch bareWatch;
        BareViewer bare(file);
        bare.show(0, 0, layer->getSize().height() / double(BenchStage::height));
        const double bareOpened = bareWatch.milliseconds();

        const double left = 3000.0 + i * 2500.0;
        const double top = 4000.0 + i * 2000.0;
        const auto window = [&](double x, double y, double scale) {
            return BenchStage::window(*layer, x, y, scale);
        };
        const double jumped = stage.show(*layer, window(left, top, 1.0));
        const double panned = stage.show(*layer, window(left + BenchStage::width / 10, top, 1.0));
        const double zoomed = stage.show(*layer, window(left, top, 2.9));
        const double returned = stage.show(*layer, window(left, top, 1.0));
        const double bareJumped = bare.show(left, top, 1.0);
        const double barePanned = bare.show(left + BenchStage::width / 10, top, 1.0);
        const double bareZoomed = bare.show(left, top, 2.9);
        const double bareReturned = bare.show(left, top, 1.0);
        if (i == 0) { // brings the file into the page cache
            continue;
        }
        open.samples.push_back(opened);
        open.limitSamples.push_back(bareOpened);
        jump.samples.push_back(jumped);
        jump.limitSamples.push_back(bareJumped);
        pan.samples.push_back(panned);
        pan.limitSamples.push_back(barePanned);
        zoom.samples.push_back(zoomed);
        zoom.limitSamples.push_back(bareZoomed);
        back.samples.push_back(returned);
        back.limitSamples.push_back(bareReturned);
    }
    for (const BenchResult* result : {&open, &jump, &pan, &zoom, &back}) {
        result->print();
    }
    return 0;
}
