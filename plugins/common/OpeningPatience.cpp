#include <plugins/common/OpeningPatience.h>

#include <QDeadlineTimer>

#include <algorithm>

namespace Corvane::Map {

namespace {

constexpr int longestWait = 40; // milliseconds
constexpr int quietTime = 200;  // milliseconds after which the next document has come

struct DocumentWaits
{
    int depth = 0; // of Document objects
    long long spent = 0;
    long long lastEnd = 0;
};

DocumentWaits& documentWaits()
{
    static DocumentWaits waits;
    return waits;
}

long long now()
{
    return QDeadlineTimer::current().deadline(); // milliseconds
}

} // namespace

OpeningPatience::Document::Document()
{
    DocumentWaits& waits = documentWaits();
    if (waits.depth++ == 0 && now() - waits.lastEnd > quietTime) {
        waits.spent = 0;
    }
}

OpeningPatience::Document::~Document()
{
    --documentWaits().depth;
    documentWaits().lastEnd = now();
}

OpeningPatience::OpeningPatience() : start(now()) {}

OpeningPatience::~OpeningPatience()
{
    if (documentWaits().depth > 0) {
        documentWaits().spent += now() - start;
    }
}

int OpeningPatience::left() const
{
    const long long spent = documentWaits().depth > 0 ? documentWaits().spent : 0;
    return static_cast<int>(std::max(longestWait - spent, 0LL));
}

} // namespace Corvane::Map
