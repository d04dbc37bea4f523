#include <viewer/batch/BatchSources.h>

#include <viewer/opening/FolderContents.h>
#include <viewer/sources/Sources.h>

#include <QSemaphore>
#include <QThreadPool>

#include <algorithm>
#include <limits>
#include <memory>

namespace Corvane::Viewer {
namespace {

/// What the thread that looks into the folders finds, kept until it is done, however late.
struct Findings
{
    FolderContents contents;
    QStringList sources;
    QSemaphore done;
};

void lookInto(const QStringList& files, Findings& findings)
{
    for (const QString& file : files) {
        const bool source = findings.contents.isSource(absoluteSource(file));
        findings.sources << (source ? QStringList{file} : findings.contents.sourcesIn(file));
    }
    findings.done.release();
}

} // namespace

QStringList batchSources(const QStringList& files, std::chrono::milliseconds timeout)
{
    const auto findings = std::make_shared<Findings>();
    folderThreads().start([files, findings] { lookInto(files, *findings); });
    const auto patience =
        std::min<std::chrono::milliseconds::rep>(timeout.count(), std::numeric_limits<int>::max());
    return findings->done.tryAcquire(1, int(patience)) ? findings->sources : files;
}

} // namespace Corvane::Viewer
