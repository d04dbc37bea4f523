#include <plugins/common/WebClock.h>

#include <QDateTime>

#include <atomic>

namespace Corvane::Map::WebClock {

namespace {

std::atomic<qint64> standing{-1};

} // namespace

qint64 now()
{
    const qint64 fixed = standing;
    return fixed >= 0 ? fixed : QDateTime::currentMSecsSinceEpoch();
}

void standAt(qint64 milliseconds)
{
    standing = milliseconds;
}

} // namespace Corvane::Map::WebClock
