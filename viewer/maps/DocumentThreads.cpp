#include <viewer/maps/DocumentThreads.h>

#include <QThreadPool>

namespace Corvane::Viewer {
namespace {

constexpr int mostThreads = 4;

} // namespace

QThreadPool& documentThreads()
{
    static QThreadPool threads;
    threads.setMaxThreadCount(mostThreads);
    return threads;
}

} // namespace Corvane::Viewer
