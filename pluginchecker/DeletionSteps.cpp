#include <pluginchecker/CheckStep.h>

#include <pluginchecker/LayerUnderTest.h>
#include <pluginchecker/Leftovers.h>
#include <pluginchecker/SlowSource.h>
#include <pluginchecker/StepRecord.h>

#include <corvane/map/Layer.h>

#include <vector>

namespace Corvane::PluginChecker {

namespace {

const QSize usualSize(400, 300);
constexpr int deletions = 100;
constexpr int slowDeletions = 20;
constexpr int cycles = 15;     // the pool of 8 threads may still be making some as it needs them
constexpr int usualCycles = 3; // what helpers a library starts once is there by then
constexpr int noise = 2;       // threads of others that may have ended since

using Clients = std::vector<std::shared_ptr<WatchingClient>>;

void tellLateCalls(const Clients& clients, StepRecord& record)
{
    int late = 0;
    for (const auto& client : clients) {
        late += client->lateCalls();
    }
    if (late > 0) {
        record.fail(QStringLiteral("layers called their client %1 times after they were deleted")
                        .arg(late));
    }
}

// Four moments of a layer's life, in turn.
void useFor(LayerUnderTest& layer, int turn, StepContext& context)
{
    layer->setDataSource(context.source);
    if (turn % 4 == 0) {
        return;
    }
    if (turn % 4 == 3) {
        waitUntil([&layer] { return layer->isValid() || !layer->getLastError().isEmpty(); });
    }
    for (const View& view : {layer.wholeView(usualSize), layer.innerView(usualSize)}) {
        view.set(*layer);
        view.painted(*layer);
    }
    if (turn % 4 == 2) {
        handleEvents();
    }
}

void showOnce(StepContext& context)
{
    LayerUnderTest layer(context);
    if (layer.exists() && layer.open()) {
        const View view = layer.wholeView(usualSize);
        view.set(*layer);
        layer.waitForAll();
        view.painted(*layer);
    }
}

} // namespace

void checkDeletion(StepContext& context)
{
    Clients clients;
    for (int i = 0; i < deletions; ++i) {
        context.record.doing(QStringLiteral("using layer %1 of %2").arg(i + 1).arg(deletions));
        LayerUnderTest layer(context);
        if (!layer.exists()) {
            return;
        }
        clients.push_back(layer.client());
        useFor(layer, i, context);
        context.record.doing(QStringLiteral("deleting layer %1 of %2 with work in flight")
                                 .arg(i + 1)
                                 .arg(deletions));
        layer.destroy();
        if (i % 10 == 0) {
            handleEvents();
        }
    }
    context.record.doing(QStringLiteral("waiting for what deleted layers left on the pool"));
    drainPool();
    tellLateCalls(clients, context.record);
}

void checkSlowSource(StepContext& context)
{
    const std::unique_ptr<SlowSource> slow = SlowSource::make(context.source, context.folder);
    if (!slow) {
        context.record.skip(QStringLiteral("the source is neither a file nor a URL"));
        return;
    }
    Clients clients;
    for (int i = 0; i < slowDeletions; ++i) {
        context.record.doing(QStringLiteral("opening a source that does not answer"));
        LayerUnderTest layer(context);
        if (!layer.exists()) {
            return;
        }
        clients.push_back(layer.client());
        layer->setDataSource(slow->name());
        const View view{usualSize, QRectF(0.0, 1.0, 1.0, -1.0)};
        context.record.doing(QStringLiteral("showing a layer whose source does not answer"));
        view.set(*layer);
        view.painted(*layer);
        handleEvents();
        context.record.doing(QStringLiteral("deleting a layer whose source does not answer"));
        layer.destroy();
    }
    context.record.doing(QStringLiteral("waiting for the pool once the source has ended"));
    slow->end();
    tellLateCalls(clients, context.record);
}

void checkLeftovers(StepContext& context)
{
    Leftovers before;
    for (int i = 0; i < cycles; ++i) {
        showOnce(context);
        context.record.doing(QStringLiteral("waiting for the pool"));
        drainPool();
        if (i + 1 == usualCycles) {
            before = Leftovers::count();
        }
    }
    const Leftovers after = Leftovers::count();
    const int layers = cycles - usualCycles;
    const auto compare = [&](int now, int then, const char* what) {
        if (now - then >= layers - noise) {
            context.record.fail(QStringLiteral("%1 more %2 after %3 more layers")
                                    .arg(now - then)
                                    .arg(QLatin1String(what))
                                    .arg(layers));
        }
    };
    compare(after.threads, before.threads, "threads");
    compare(after.files, before.files, "open files");
    compare(after.widgets, before.widgets, "windows");
    context.record.doing(QStringLiteral("looking for timers"));
    for (const QString& timer : Leftovers::runningTimers()) {
        context.record.fail(QStringLiteral("a timer of %1 still runs").arg(timer));
    }
}

} // namespace Corvane::PluginChecker
