// corvane-bench-engine
//
// What the tile engine itself costs, on a layer whose tiles are all in memory: setView of a
// 1920 x 1080 view, a tile key, a lookup.

#include <bench/BenchResult.h>
#include <corvane/map/GeoImage.h>
#include <corvane/tiles/ITiledLayer.h>
#include <corvane/tiles/LayerLevel.h>

#include <benchmark/benchmark.h>

#include <QLoggingCategory>

using namespace Corvane;

namespace {

constexpr unsigned int tileEdge = 256;
constexpr unsigned int tilesAcross = 8;
constexpr unsigned int tilesDown = 5;

class CachedLayer : public Map::ITiledLayer
{
public:
    CachedLayer()
    {
        levels.init(this, tileEdge, getBounds(), 1U);
        for (unsigned int tx = 0; tx < tilesAcross; ++tx) {
            for (unsigned int ty = 0; ty < tilesDown; ++ty) {
                QString key = level()->getTileKey(tx, ty);
                level()->addTile(key,
                                 new GeoImage(1, 1, 0, 0, 1, -1, QImage::Format_RGB32, nullptr));
            }
        }
    }
    ~CachedLayer() = default;

    Map::LayerLevel* level() { return levels.at(0); }
    void setView() { levels.setView(1920, 1080, 0.0, 0.0, 1920.0, -1080.0); }

    QString getTileUrl(unsigned int, unsigned int, unsigned int, unsigned int, unsigned int, double,
                       double, double, double) override
    {
        return {};
    }
    int getWidth() override { return tilesAcross * tileEdge; }
    int getHeight() override { return tilesDown * tileEdge; }
    double getWorldPerPixelX() override { return 1.0; }
    double getWorldPerPixelY() override { return -1.0; }
    QRectF getBounds() override { return QRectF(0.0, 0.0, getWidth(), -getHeight()); }
    void tileReady(Map::ITileRequest*) override {}
    void tileFailed(Map::ITileRequest*) override {}
    Map::ITileRequest* createTileRequest(const QString&, const QString&, unsigned int, unsigned int,
                                         unsigned int, double, double, double, double) override
    {
        qFatal("every tile is in memory");
        return nullptr;
    }
    QString getTileLayerId() override { return QStringLiteral("bench"); }
};

void setViewOfCachedTiles(benchmark::State& state)
{
    CachedLayer layer;
    for (auto _ : state) {
        layer.setView();
    }
}

void buildTileKey(benchmark::State& state)
{
    CachedLayer layer;
    unsigned int tx = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(layer.level()->getTileKey(tx++ % 100000U, 4711U));
    }
}

void findTile(benchmark::State& state)
{
    CachedLayer layer;
    for (auto _ : state) {
        benchmark::DoNotOptimize(layer.level()->getTile(3, 2));
    }
}

/// Prints each run as one sample of the project's own lines of results.
class LineReporter : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override
    {
        Bench::BenchResult result;
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration) {
                result.id = "engine." + QString::fromStdString(run.run_name.function_name);
                result.unit = "us";
                result.samples.push_back(run.GetAdjustedRealTime() / 1000.0);
            }
        }
        if (!result.samples.empty()) { // the library's own means and medians come as runs as well
            result.print();
        }
    }
};

} // namespace

BENCHMARK(setViewOfCachedTiles)->Repetitions(5);
BENCHMARK(buildTileKey)->Repetitions(5);
BENCHMARK(findTile)->Repetitions(5);

int main(int argc, char** argv)
{
    QLoggingCategory::setFilterRules("corvane.tiles=false");
    benchmark::Initialize(&argc, argv);
    LineReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}
