#include <pluginchecker/CheckStep.h>

#include <pluginchecker/BrokenLink.h>
#include <pluginchecker/DamagedFiles.h>
#include <pluginchecker/LayerUnderTest.h>
#include <pluginchecker/LogLines.h>
#include <pluginchecker/StepRecord.h>

#include <corvane/map/Layer.h>

#include <QElapsedTimer>
#include <QFileInfo>

#include <utility>

namespace Corvane::PluginChecker {

namespace {

const QSize usualSize(400, 300);
constexpr qint64 watchingTime = 200; // milliseconds in which answers may come

// A source that has nothing to show has to be refused with a reason and a line in the log.
void checkRefusal(Map::Layer& layer, bool accepted, int logged, bool mustFail, const QString& what,
                  StepRecord& record)
{
    if (layer.isValid()) {
        if (mustFail) {
            record.fail(QStringLiteral("%1 makes a valid layer").arg(what));
        }
        return;
    }
    if (layer.getLastError().isEmpty()) {
        record.fail(QStringLiteral("%1 is refused, and getLastError is empty").arg(what));
    }
    if (logged == 0) {
        record.fail(QStringLiteral("%1 is refused without a line in the log (setDataSource "
                                   "returned %2)")
                        .arg(what, accepted ? QStringLiteral("true") : QStringLiteral("false")));
    }
}

void lookAt(LayerUnderTest& layer, const std::function<bool()>& enough)
{
    for (const View& view : {layer.wholeView(usualSize), layer.innerView(usualSize)}) {
        view.set(*layer);
        view.painted(*layer);
        waitUntil(enough);
        view.painted(*layer);
    }
}

// What can be opened of it is shown to its end.
void tryFile(const QString& file, const QString& what, bool mustFail, StepContext& context)
{
    LayerUnderTest layer(context);
    if (!layer.exists()) {
        return;
    }
    const LogLines log;
    context.record.doing(QStringLiteral("opening %1").arg(what));
    const bool accepted = layer->setDataSource(file);
    if (accepted) {
        waitUntil([&] { return layer->isValid() || !layer->getLastError().isEmpty(); });
    }
    checkRefusal(*layer, accepted, log.count(), mustFail, what, context.record);
    context.record.doing(QStringLiteral("showing %1").arg(what));
    lookAt(layer, [&] { return !layer->isValid() || layer->getPercentComplete() == 100; });
    context.record.doing(QStringLiteral("deleting the layer of %1").arg(what));
}

// A server may never come back, so nothing is waited for longer than a moment.
void tryLink(BrokenLink::Damage damage, const char* what, StepContext& context)
{
    const BrokenLink link(context.source, damage);
    LayerUnderTest layer(context);
    if (!layer.exists()) {
        return;
    }
    QElapsedTimer timer;
    timer.start();
    context.record.doing(
        QStringLiteral("opening a source whose server %1").arg(QLatin1String(what)));
    layer->setDataSource(link.source());
    waitUntil([&] {
        return layer->isValid() || !layer->getLastError().isEmpty() ||
               timer.elapsed() > watchingTime;
    });
    context.record.doing(
        QStringLiteral("showing a source whose server %1").arg(QLatin1String(what)));
    timer.restart();
    lookAt(layer, [&timer] { return timer.elapsed() > watchingTime; });
    context.record.doing(
        QStringLiteral("deleting the layer of a source whose server %1").arg(QLatin1String(what)));
}

void damageFile(StepContext& context)
{
    DamagedFiles files(context.source, context.folder);
    tryFile(files.missing(), QStringLiteral("a missing file"), true, context);
    tryFile(files.emptyFolder(), QStringLiteral("an empty folder"), true, context);
    tryFile(files.cutTo(0), QStringLiteral("a file of zero bytes"), true, context);
    tryFile(files.noise(), QStringLiteral("a file of noise"), false, context);
    for (const qint64 length : files.lengthsToTry()) {
        tryFile(files.cutTo(length), QStringLiteral("a file cut to %1 bytes").arg(length), false,
                context);
    }
    for (int seed = 1; seed <= DamagedFiles::seeds; ++seed) {
        tryFile(files.flipped(seed),
                QStringLiteral("a file with flipped bits, version %1").arg(seed), false, context);
    }
}

} // namespace

void checkDamage(StepContext& context)
{
    if (QFileInfo(context.source).isFile()) {
        damageFile(context);
    } else if (BrokenLink::fits(context.source)) {
        for (const auto& [damage, what] :
             {std::pair(BrokenLink::HangUp, "hangs up"),
              std::pair(BrokenLink::Nothing, "sends nothing"),
              std::pair(BrokenLink::Missing, "has not found it"),
              std::pair(BrokenLink::Noise, "sends noise"), std::pair(BrokenLink::Cut, "breaks off"),
              std::pair(BrokenLink::Flipped, "sends flipped bits")})
        {
            tryLink(damage, what, context);
        }
    } else {
        context.record.skip(QStringLiteral("the source is neither a file nor a URL"));
    }
    context.record.doing(QStringLiteral("waiting for the pool"));
    drainPool();
}

} // namespace Corvane::PluginChecker
