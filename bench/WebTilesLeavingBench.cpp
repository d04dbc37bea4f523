// corvane-bench-webtiles-leaving [REPS]
//
// How long a map of web tiles takes to close, and a program with one to end, while hundreds of
// tiles are asked for and the server answers nothing. Until the last transfer has ended.

#include <bench/BenchResult.h>
#include <bench/BenchStage.h>
#include <corvane/core/PluginManager.h>
#include <corvane/map/MapView.h>
#include <corvane/map/RasterLayer.h>

#include <QProcess>
#include <QSettings>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThreadPool>

#include <cstdio>
#include <cstring>
#include <memory>

using namespace Corvane;
using namespace Corvane::Bench;

namespace {

constexpr int threads = 8;
constexpr int zoom = 5;
constexpr int tileEdge = 256;
constexpr int viewTiles = 20;   ///< on each side of the view
constexpr int patience = 30000; ///< milliseconds
constexpr double goal = 1000.0; ///< milliseconds
const char* const childMark = "--child";

/// Takes connections and requests, and answers nothing.
class SilentServer
{
public:
    SilentServer() { server.listen(QHostAddress::LocalHost); }
    QString tiles() const
    {
        return QString("http://127.0.0.1:%1/{z}/{x}/{y}.png").arg(server.serverPort());
    }
    /// Waits until all threads of the pool have asked for something since the last call.
    bool waitUntilAsked()
    {
        for (int i = 0; i < threads; ++i) {
            if (!server.hasPendingConnections() && !server.waitForNewConnection(patience)) {
                return false;
            }
            // a child of the server, which closes it at the end
            if (!server.nextPendingConnection()->waitForReadyRead(patience)) {
                return false;
            }
        }
        return true;
    }

private:
    QTcpServer server;
};

[[noreturn]] void giveUp(const char* reason)
{
    std::fprintf(stderr, "%s\n", reason);
    std::exit(2);
}

/// Puts a layer into the view and asks for hundreds of its tiles.
void askForTiles(Map::MapView& view, const QString& source)
{
    Map::Layer* const made = PluginManager::createLayer("Corvane::Map::WebTileLayer", false);
    auto* const layer = qobject_cast<Map::RasterLayer*>(made);
    if (!layer) {
        giveUp("the web tile plugin is not beside this program");
    }
    layer->setProperty("MaxZoom", zoom);
    layer->setProperty("Deadline", 600.0);
    if (!layer->setDataSource(source)) {
        giveUp("the source does not open");
    }
    view.addLayer(layer, -1);
    const QRectF bounds = layer->getBounds();
    constexpr int edge = viewTiles * tileEdge;
    layer->setView(edge, edge, bounds.left(), bounds.top(),
                   bounds.left() + edge * layer->getCellSizeX(),
                   bounds.top() + edge * layer->getCellSizeY());
}

double closing(BenchStage& stage)
{
    SilentServer server;
    askForTiles(stage.view(), server.tiles());
    if (!server.waitUntilAsked()) {
        giveUp("the layer asks for nothing");
    }
    const Stopwatch watch;
    stage.reset();
    QThreadPool::globalInstance()->waitForDone();
    return watch.milliseconds();
}

/// The program that is to end: it does when it is told to.
int runChild(BenchStage& stage, const QString& source)
{
    askForTiles(stage.view(), source);
    std::getchar();
    return 0;
}

double ending(const char* program)
{
    SilentServer server;
    QProcess child;
    child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    child.start(program, {childMark, server.tiles()});
    if (!server.waitUntilAsked()) {
        giveUp("the child asks for nothing");
    }
    const Stopwatch watch;
    child.write("\n");
    if (!child.waitForFinished(patience) || child.exitCode() != 0) {
        giveUp("the child does not end");
    }
    return watch.milliseconds();
}

} // namespace

int main(int argc, char** argv)
{
    BenchStage stage(argc, argv);
    Application::instance()->getSettings()->setValue("Plugins/WebTiles/DiskCacheMB", 0);
    if (argc > 2 && std::strcmp(argv[1], childMark) == 0) {
        return runChild(stage, argv[2]);
    }
    const int repetitions = argc > 1 ? atoi(argv[1]) : 5;
    BenchResult close{"webtiles.close_unanswered", "ms", {}, {}, {"max", goal}};
    BenchResult end{"webtiles.end_unanswered", "ms", {}, {}, {"max", goal}};
    for (int i = 0; i < repetitions; ++i) {
        close.samples.push_back(closing(stage));
        end.samples.push_back(ending(argv[0]));
    }
    close.print();
    end.print();
    return 0;
}
