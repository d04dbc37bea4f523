// A program with requests for the URL given, queued and running. It returns from main once a byte
// has come on its standard input, and tells on its standard output how far it has come.

#include <corvane/tiles/HttpTileRequest.h>
#include <corvane/tiles/TileRequestRegistry.h>
#include <tests/tiles/PlainTiledLayer.h>

#include <QCoreApplication>

#include <unistd.h>

#include <cstdlib>
#include <cstring>

using namespace Corvane::Map;

namespace {

constexpr int requests = 12;

void say(const char* line)
{
    const auto written = ::write(STDOUT_FILENO, line, std::strlen(line));
    static_cast<void>(written);
}

/// Outlives everything, and drops its tiles.
class ChildLayer : public PlainTiledLayer
{
public:
    ChildLayer() : PlainTiledLayer(256, 256, 1.0, -1.0) {}

    void tileReady(ITileRequest* request) override
    {
        delete request->getImage();
        say("ready\n");
    }
    void tileFailed(ITileRequest*) override { say("failed\n"); }
};

} // namespace

int main(int count, char** arguments)
{
    if (count != 2) {
        return 2;
    }
    std::atexit([] { say("exit\n"); });
    const QCoreApplication application(count, arguments);
    static ChildLayer& layer = *new ChildLayer; // never destroyed
    for (int i = 0; i < requests; ++i) {
        TileRequestRegistry::instance().queue(
            new HttpTileRequest(&layer, QString::number(i), 0, 0, 0,
                                QString::fromUtf8(arguments[1]), 256, 256, 0.0, 256.0, 256.0, 0.0));
    }
    char byte = 0;
    if (::read(STDIN_FILENO, &byte, 1) != 1) {
        return 3;
    }
    say("main returns\n");
    return 0;
}
