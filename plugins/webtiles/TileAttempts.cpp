#include <plugins/webtiles/TileAttempts.h>

#include <plugins/webtiles/WebClock.h>

#include <algorithm>
#include <utility>

namespace Corvane::Map {

namespace {

constexpr qint64 firstPause = 1000; // milliseconds, doubled each time
constexpr qint64 longestPause = 60000;

} // namespace

void TileAttempts::markEmpty(const TileId& tile)
{
    const std::lock_guard<std::mutex> guard(mutex);
    empty.insert(tile);
    attempts.erase(tile);
}

bool TileAttempts::isEmpty(const TileId& tile) const
{
    const std::lock_guard<std::mutex> guard(mutex);
    return empty.count(tile) > 0;
}

void TileAttempts::succeeded(const TileId& tile)
{
    const std::lock_guard<std::mutex> guard(mutex);
    attempts.erase(tile);
}

void TileAttempts::failed(const TileId& tile, qint64 notBefore)
{
    const qint64 now = WebClock::now();
    const std::lock_guard<std::mutex> guard(mutex);
    Attempt& attempt = attempts[tile];
    const qint64 pause = std::min(firstPause << std::min(attempt.failures, 10), longestPause);
    ++attempt.failures;
    attempt.due = std::max(now + pause, notBefore);
    attempt.isWaiting = true;
}

void TileAttempts::heldBack()
{
    const std::lock_guard<std::mutex> guard(mutex);
    isHeldBack = true;
}

bool TileAttempts::mayAsk(const TileId& tile) const
{
    const qint64 now = WebClock::now();
    const std::lock_guard<std::mutex> guard(mutex);
    const auto entry = attempts.find(tile);
    return entry == attempts.end() || !entry->second.isWaiting || entry->second.due <= now;
}

bool TileAttempts::isWaiting() const
{
    const std::lock_guard<std::mutex> guard(mutex);
    return isHeldBack || std::any_of(attempts.begin(), attempts.end(),
                                     [](const auto& entry) { return entry.second.isWaiting; });
}

bool TileAttempts::takeDue()
{
    const qint64 now = WebClock::now();
    const std::lock_guard<std::mutex> guard(mutex);
    bool due = std::exchange(isHeldBack, false);
    for (auto& entry : attempts) {
        Attempt& attempt = entry.second;
        if (attempt.isWaiting && attempt.due <= now) {
            attempt.isWaiting = false;
            due = true;
        }
    }
    return due;
}

} // namespace Corvane::Map
