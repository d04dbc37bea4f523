// How the remote source of an OgrVectorLayer is doing, and how it is asked again.
#include <plugins/vector/OgrVectorLayer.h>

#include <plugins/common/GdalAccess.h>
#include <plugins/common/SourceReports.h>

namespace Corvane::Map {

// Everything is in memory once it has been read.
SourceReport OgrVectorLayer::getSourceReport()
{
    if (!isRemote(dataSource)) {
        return SourceReport();
    }
    if (!facts) {
        return reportClosed(dataSource, bool(opening), opening.retry, lastError);
    }
    SourceReport report;
    report.host = hostOf(dataSource);
    report.reason = lastError;
    report.state =
        lastError.isEmpty() ? SourceReport::State::Reachable : SourceReport::State::Failed;
    return report;
}

// What was read stays in the picture until all of it has come anew.
void OgrVectorLayer::retrySource()
{
    if (!isRemote(dataSource) || opening || reading) {
        return;
    }
    if (!facts) {
        tryAgain();
    } else if (!lastError.isEmpty()) {
        lastError.clear();
        readAgain(false);
    }
}

void OgrVectorLayer::tryAgain()
{
    opening.retry.stop();
    lastError.clear();
    openSource(true);
}

} // namespace Corvane::Map
