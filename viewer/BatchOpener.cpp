#include <viewer/BatchOpener.h>

#include <viewer/LayerOpener.h>

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>

namespace Corvane::Viewer {
namespace {

constexpr int pollingMilliseconds = 2;

} // namespace

BatchOpener::BatchOpener(const QStringList& sources)
{
    for (const QString& source : sources) {
        openers.push_back(std::make_unique<LayerOpener>(source));
        openers.back()->start();
    }
}

BatchOpener::~BatchOpener() = default;

bool BatchOpener::wait(const QDeadlineTimer& deadline)
{
    while (!isFinished() && !deadline.hasExpired()) {
        runEventLoopBriefly();
    }
    return isFinished();
}

const std::vector<std::unique_ptr<LayerOpener>>& BatchOpener::getOpeners() const
{
    return openers;
}

bool BatchOpener::isFinished() const
{
    return std::all_of(openers.begin(), openers.end(),
                       [](const auto& opener) { return opener->isFinished(); });
}

void runEventLoopBriefly()
{
    QEventLoop loop;
    QTimer::singleShot(pollingMilliseconds, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace Corvane::Viewer
