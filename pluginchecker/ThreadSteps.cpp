#include <pluginchecker/CheckStep.h>

#include <pluginchecker/LayerUnderTest.h>
#include <pluginchecker/StepRecord.h>

#include <corvane/map/Layer.h>

#include <QElapsedTimer>
#include <QMap>
#include <QRunnable>
#include <QSemaphore>
#include <QThreadPool>

namespace Corvane::PluginChecker {

namespace {

const QSize usualSize(400, 300);
constexpr qint64 longestCall = 50; // milliseconds, so that a window does not stand still
constexpr int timedViews = 40;

/// While it lives, all threads of the pool are busy with something else.
class BusyPool
{
public:
    BusyPool()
    {
        for (int i = 0; i < threads; ++i) {
            QThreadPool::globalInstance()->start(QRunnable::create([this] {
                started.release();
                end.acquire();
            }));
        }
        started.acquire(threads);
    }
    ~BusyPool()
    {
        end.release(threads);
        drainPool(); // the tasks use the semaphores to their last breath
    }
    BusyPool(const BusyPool&) = delete;
    BusyPool& operator=(const BusyPool&) = delete;

private:
    int threads = QThreadPool::globalInstance()->maxThreadCount();
    QSemaphore started;
    QSemaphore end;
};

// Whether the call handles events of this thread.
template <typename Call>
bool handlesEvents(const Call& call)
{
    bool handled = false;
    QObject target;
    QMetaObject::invokeMethod(
        &target, [&handled] { handled = true; }, Qt::QueuedConnection);
    call();
    return handled;
}

/// The longest time of each kind of call.
class CallTimes
{
public:
    template <typename Call>
    void measure(const char* name, const Call& call)
    {
        QElapsedTimer timer;
        timer.start();
        call();
        qint64& longest = times[QLatin1String(name)];
        longest = std::max(longest, timer.elapsed());
    }
    void report(StepRecord& record) const
    {
        for (auto it = times.begin(); it != times.end(); ++it) {
            if (it.value() > longestCall) {
                record.warn(QStringLiteral("%1 took %2 ms; windows stand still after %3")
                                .arg(it.key())
                                .arg(it.value())
                                .arg(longestCall));
            }
        }
    }

private:
    QMap<QString, qint64> times;
};

} // namespace

void checkThreads(StepContext& context)
{
    LayerUnderTest layer(context);
    if (!layer.exists() || !layer.open()) {
        return;
    }
    const View view = layer.wholeView(usualSize);
    context.record.doing(QStringLiteral("setting a view"));
    if (handlesEvents([&] { view.set(*layer); })) {
        context.record.fail(QStringLiteral("setView runs an event loop"));
    }
    context.record.doing(QStringLiteral("painting"));
    if (handlesEvents([&] { view.painted(*layer); })) {
        context.record.fail(QStringLiteral("paint runs an event loop"));
    }
    layer.waitForAll();
    {
        const BusyPool busy;
        context.record.doing(QStringLiteral("showing views while the pool is busy elsewhere"));
        LayerUnderTest other(context);
        if (other.exists()) {
            other->setDataSource(context.source);
            for (const View& one : {layer.innerView(usualSize), view}) {
                one.set(*layer);
                one.painted(*layer);
                one.set(*other);
                one.painted(*other);
            }
            handleEvents();
        }
        context.record.doing(QStringLiteral("deleting a layer while the pool is busy elsewhere"));
    }
    layer.waitForAll();
}

void checkResponsiveness(StepContext& context)
{
    CallTimes times;
    {
        LayerUnderTest layer(context);
        if (!layer.exists()) {
            return;
        }
        times.measure("setDataSource", [&] { layer->setDataSource(context.source); });
        if (!layer.open()) {
            return;
        }
        const QRectF all = layer->getBounds();
        for (int i = 0; i < timedViews; ++i) {
            context.record.doing(QStringLiteral("setting and painting views"));
            const double part = 1.0 / (1 + i % 9);
            const View view{usualSize, QRectF(all.left() + i % 5 * all.width() / 10.0, all.top(),
                                              all.width() * part, all.height() * part)};
            times.measure("setView", [&] { view.set(*layer); });
            times.measure("paint", [&] { view.painted(*layer); });
            times.measure("an event", handleEvents);
        }
        times.measure("the destructor", [&] { layer.destroy(); });
    }
    drainPool();
    times.report(context.record);
}

} // namespace Corvane::PluginChecker
