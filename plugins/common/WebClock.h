#pragma once

#include <QtGlobal>

namespace Corvane::Map::WebClock {

/// The time that freshness and pauses are counted in, in milliseconds since 1970. Any thread.
qint64 now();
/// Makes time stand still there until the next call; a negative number lets it run again.
void standAt(qint64 milliseconds);

} // namespace Corvane::Map::WebClock
