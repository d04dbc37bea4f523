// Returns from main with requests queued and running, and tells on its standard output what becomes
// of them. A running request waits for a byte on the standard input once it has been cancelled.

#include <corvane/tiles/ITileRequest.h>
#include <corvane/tiles/ITiledLayer.h>
#include <corvane/tiles/TileRequestRegistry.h>
#include <tests/tiles/Gate.h>

#include <QRectF>
#include <QString>

#include <unistd.h>

#include <cstring>

using namespace Corvane::Map;

namespace {

constexpr int poolThreads = 8;
constexpr int queuedBehind = 20;

void say(const char* line)
{
    const auto written = ::write(STDOUT_FILENO, line, std::strlen(line));
    static_cast<void>(written);
}

/// Outlives everything: what is running when the library unloads still has its layer.
class ChildLayer : public ITiledLayer
{
public:
    QString getTileUrl(unsigned int, unsigned int, unsigned int, unsigned int, unsigned int, double,
                       double, double, double) override
    {
        return QString();
    }
    int getWidth() override { return 256; }
    int getHeight() override { return 256; }
    double getWorldPerPixelX() override { return 1.0; }
    double getWorldPerPixelY() override { return -1.0; }
    QRectF getBounds() override { return QRectF(0.0, 256.0, 256.0, -256.0); }
    void tileReady(ITileRequest*) override { say("ready\n"); }
    void tileFailed(ITileRequest*) override { say("failed\n"); }
    ITileRequest* createTileRequest(const QString&, const QString&, unsigned int, unsigned int,
                                    unsigned int, double, double, double, double) override
    {
        return nullptr;
    }
    QString getTileLayerId() override { return QStringLiteral("child"); }

    Gate running;
    Gate cancelled;
};

class ChildRequest : public ITileRequest
{
public:
    ChildRequest(ChildLayer* source, int number)
        : ITileRequest(source, QStringLiteral("tile %1").arg(number), 0, 0, 0, 256, 256, 0.0, 0.0,
                       1.0, 1.0),
          childLayer(source)
    {
    }

    bool processTile() override
    {
        say("running\n");
        childLayer->running.pass();
        childLayer->cancelled.pass();
        char byte = 0;
        const auto count = ::read(STDIN_FILENO, &byte, 1);
        say(count == 1 ? "returned\n" : "no byte\n");
        return true;
    }

    void cancel() override
    {
        ITileRequest::cancel();
        say("cancelled\n");
        childLayer->cancelled.open();
    }

private:
    ChildLayer* childLayer;
};

} // namespace

int main()
{
    static ChildLayer& layer = *new ChildLayer; // never destroyed
    for (int i = 0; i < poolThreads + queuedBehind; ++i) {
        TileRequestRegistry::instance().queue(new ChildRequest(&layer, i));
    }
    layer.running.waitForArrivals(poolThreads);
    layer.running.open();
    say("main returns\n");
    return 0;
}
