#include <viewer/frame/BriefEventLoop.h>

#include <QEventLoop>
#include <QTimer>

namespace Corvane::Viewer {
namespace {

constexpr int pollingMilliseconds = 2;

} // namespace

void runEventLoopBriefly()
{
    QEventLoop loop;
    QTimer::singleShot(pollingMilliseconds, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace Corvane::Viewer
