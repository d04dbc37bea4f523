// corvane-bench-webtiles [REPS]
//
// Tiles per second that a web tile layer fetches from nginx on loopback, decodes and paints, with
// the pool's eight threads, beside bare curl handles that are reused by eight threads, with the
// same decoding and painting; at once, and with 50 milliseconds of latency at the server. And the
// connections that the layer opened.

#include <bench/BenchResult.h>
#include <bench/BenchStage.h>
#include <bench/NginxServer.h>
#include <corvane/core/PluginManager.h>
#include <corvane/map/GeoPainter.h>
#include <corvane/map/RasterLayer.h>

#include <curl/curl.h>

#include <QCoreApplication>
#include <QImage>
#include <QSettings>

#include <array>
#include <atomic>
#include <cstdio>
#include <memory>
#include <mutex>
#include <thread>

using namespace Corvane;
using namespace Corvane::Bench;

namespace {

constexpr int threads = 8;
constexpr int tileEdge = 256;
constexpr int viewTiles = 10; ///< on each side of a view
constexpr int viewEdge = viewTiles * tileEdge;
constexpr int maxZoom = 12;
constexpr int firstTile = 1000;

std::size_t appendTo(char* data, std::size_t size, std::size_t count, void* target)
{
    static_cast<QByteArray*>(target)->append(data, static_cast<int>(size * count));
    return size * count;
}

/// Fetches and decodes with a handle for each thread and paints what came: the limit.
double bareSeconds(const QString& root, int tileCount)
{
    const Stopwatch watch;
    std::atomic<int> next{0};
    std::mutex mutex; // guards frame
    QImage frame(viewEdge, viewEdge, QImage::Format_RGB32);
    std::vector<std::thread> fetchers;
    for (int t = 0; t < threads; ++t) {
        fetchers.emplace_back([&] {
            CURL* handle = curl_easy_init();
            for (int i = next++; i < tileCount; i = next++) {
                const QByteArray url =
                    QString("%1/%2/%3.jpg").arg(root).arg(i / 50).arg(i % 50).toUtf8();
                QByteArray body;
                curl_easy_setopt(handle, CURLOPT_URL, url.constData());
                curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, &appendTo);
                curl_easy_setopt(handle, CURLOPT_WRITEDATA, &body);
                curl_easy_perform(handle);
                const QImage tile = QImage::fromData(body).convertToFormat(QImage::Format_RGB32);
                const std::lock_guard<std::mutex> guard(mutex);
                QPainter(&frame).drawImage(i % viewTiles * tileEdge,
                                           i / viewTiles % viewTiles * tileEdge, tile);
            }
            curl_easy_cleanup(handle);
        });
    }
    for (std::thread& fetcher : fetchers) {
        fetcher.join();
    }
    return watch.milliseconds() / 1000.0;
}

std::unique_ptr<Map::RasterLayer> makeLayer(const QString& root)
{
    Map::Layer* made = PluginManager::createLayer("Corvane::Map::WebTileLayer", false);
    std::unique_ptr<Map::RasterLayer> layer(qobject_cast<Map::RasterLayer*>(made));
    if (!layer) {
        std::fprintf(stderr, "the web tile plugin is not beside this program\n");
        std::exit(2);
    }
    layer->setProperty("MaxZoom", maxZoom);
    if (!layer->setDataSource(root + "/{z}/{x}/{y}.jpg") || !layer->isValid()) {
        std::fprintf(stderr, "%s\n", qPrintable(layer->getLastError()));
        std::exit(2);
    }
    return layer;
}

/// One of the maps that are looked at: views side by side, each painted once it is complete.
class Walk
{
public:
    Walk(const QString& root, int firstRow)
        : layer(makeLayer(root)),
          row(firstRow),
          frame(viewEdge, viewEdge, QImage::Format_RGB32)
    {
    }

    void lookOn()
    {
        const QRectF bounds = layer->getBounds();
        const double tileX = layer->getCellSizeX() * tileEdge;
        const double tileY = layer->getCellSizeY() * tileEdge;
        // a hair inside the tiles, so that no neighbour is touched
        world = QRectF(bounds.x() + (firstTile + views * viewTiles + 1e-6) * tileX,
                       bounds.y() + (row + 1e-6) * tileY, tileX * (viewTiles - 2e-6),
                       tileY * (viewTiles - 2e-6));
        ++views;
        shown = false;
        layer->setView(viewEdge, viewEdge, world.left(), world.top(), world.right(),
                       world.bottom());
    }
    /// Whether the view is complete and not painted yet.
    bool isDue() const { return !shown && layer->getPercentComplete() == 100; }
    void paint()
    {
        shown = true;
        QRect device = frame.rect();
        GeoPainter painter(&frame, world, device);
        layer->paint(painter, &world, &device);
    }

private:
    std::unique_ptr<Map::RasterLayer> layer;
    int row;
    int views = 0;
    bool shown = true;
    QRectF world;
    QImage frame;
};

/// Two maps, as windows side by side: what one of them paints, the other still fetches.
double layerSeconds(const QString& root, int tileCount)
{
    std::array<Walk, 2> walks = {Walk(root, firstTile), Walk(root, firstTile + viewTiles)};
    int begun = 0;
    int painted = 0;
    const int views = tileCount / (viewTiles * viewTiles);

    const Stopwatch watch;
    for (Walk& walk : walks) {
        walk.lookOn();
        ++begun;
    }
    while (painted < views) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        for (Walk& walk : walks) {
            if (walk.isDue()) {
                walk.paint();
                ++painted;
                if (begun < views) {
                    walk.lookOn();
                    ++begun;
                }
            }
        }
    }
    return watch.milliseconds() / 1000.0;
}

void measure(const NginxServer& server, const QString& place, int tileCount, int repetitions)
{
    BenchResult result{"webtiles." + place + "_per_second", "1/s", {}, {}, {"min_ratio", 0.9}};
    BenchResult connections{"webtiles." + place + "_connections", "", {}, {}, {"max", threads}};
    const QString root = server.url() + "/" + place;
    int opened = 0; // in all rounds
    for (int i = 0; i <= repetitions; ++i) {
        const double bare = bareSeconds(root, tileCount);
        const int before = server.acceptedConnections();
        const double ours = layerSeconds(root, tileCount);
        opened += server.acceptedConnections() - before;
        if (i > 0) { // the first round starts threads and connections
            result.samples.push_back(tileCount / ours);
            result.limitSamples.push_back(tileCount / bare);
        }
    }
    connections.samples.push_back(opened);
    result.print();
    connections.print();
}

} // namespace

int main(int argc, char** argv)
{
    BenchStage stage(argc, argv);
    Application::instance()->getSettings()->setValue("Plugins/WebTiles/DiskCacheMB", 0);
    const int repetitions = argc > 1 ? atoi(argv[1]) : 5;
    const NginxServer server;
    if (!server.isRunning()) {
        return 2;
    }
    measure(server, "fast", 2000, repetitions);
    measure(server, "slow", 400, repetitions);
    return 0;
}
