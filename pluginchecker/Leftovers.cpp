#include <pluginchecker/Leftovers.h>

#include <pluginchecker/LayerUnderTest.h>

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEvent>
#include <QMap>

namespace Corvane::PluginChecker {

namespace {

constexpr qint64 watchingTime = 500; // milliseconds
constexpr int again = 3;             // a timer that fires once or twice is about to end

/// Counts the timer events of each object.
class TimerWatch final : public QObject
{
public:
    TimerWatch() { QCoreApplication::instance()->installEventFilter(this); }
    bool eventFilter(QObject* receiver, QEvent* event) override
    {
        if (event->type() == QEvent::Timer) {
            ++counts[receiver];
            names[receiver] = QString::fromLatin1(receiver->metaObject()->className());
        }
        return false;
    }
    QStringList repeating() const
    {
        QStringList found;
        for (auto it = counts.begin(); it != counts.end(); ++it) {
            if (it.value() >= again) {
                found.append(names.value(it.key()));
            }
        }
        return found;
    }

private:
    QMap<QObject*, int> counts; // never looked into: the objects may be gone
    QMap<QObject*, QString> names;
};

int entriesOf(const char* folder)
{
    return QDir(QLatin1String(folder))
        .entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System)
        .size();
}

} // namespace

Leftovers Leftovers::count()
{
    return {entriesOf("/proc/self/task"), entriesOf("/proc/self/fd"),
            QApplication::topLevelWidgets().size()};
}

QStringList Leftovers::runningTimers()
{
    const TimerWatch watch;
    QElapsedTimer timer;
    timer.start();
    waitUntil([&timer] { return timer.elapsed() > watchingTime; });
    return watch.repeating();
}

} // namespace Corvane::PluginChecker
