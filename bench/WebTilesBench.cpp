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

#include <QImage>
#include <QSettings>

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
                QPainter(&frame).drawImage((i % viewTiles) * tileEdge, 0, tile);
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
    layer->setProperty("Progressive", false);
    if (!layer->setDataSource(root + "/{z}/{x}/{y}.jpg") || !layer->isValid()) {
        std::fprintf(stderr, "%s\n", qPrintable(layer->getLastError()));
        std::exit(2);
    }
    return layer;
}

double layerSeconds(const QString& root, int tileCount)
{
    const std::unique_ptr<Map::RasterLayer> layer = makeLayer(root);
    const QRectF bounds = layer->getBounds();
    const double tileX = layer->getCellSizeX() * tileEdge;
    const double tileY = layer->getCellSizeY() * tileEdge;
    QImage frame(viewEdge, viewEdge, QImage::Format_RGB32);
    QRect device = frame.rect();

    const Stopwatch watch;
    for (int view = 0; view < tileCount / (viewTiles * viewTiles); ++view) {
        // a hair inside the tiles, so that no neighbour is touched
        QRectF world(bounds.x() + (firstTile + view * viewTiles + 1e-6) * tileX,
                     bounds.y() + (firstTile + 1e-6) * tileY, tileX * (viewTiles - 2e-6),
                     tileY * (viewTiles - 2e-6));
        layer->setView(viewEdge, viewEdge, world.left(), world.top(), world.right(),
                       world.bottom());
        if (layer->getPercentComplete() < 100) {
            std::fprintf(stderr, "setView returned before the view was complete\n");
            std::exit(2);
        }
        GeoPainter painter(&frame, world, device);
        layer->paint(painter, &world, &device);
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
