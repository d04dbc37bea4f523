#include <plugins/common/TileAttempts.h>

#include <plugins/common/WebClock.h>

#include <algorithm>
#include <utility>

namespace Corvane::Map {

namespace {

constexpr qint64 firstPause = 1000; // milliseconds, doubled each time
constexpr qint64 longestPause = 60000;
constexpr qint64 askedAgain = 10000; // for what is fetched again, if nothing is heard of it

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
    attempt.isStale = false;
}

void TileAttempts::markStale(const TileId& tile, qint64 notBefore)
{
    failed(tile, notBefore);
    const std::lock_guard<std::mutex> guard(mutex);
    attempts[tile].isStale = true;
}

bool TileAttempts::showsStale() const
{
    const std::lock_guard<std::mutex> guard(mutex);
    return std::any_of(attempts.begin(), attempts.end(),
                       [](const auto& entry) { return entry.second.isStale; });
}

std::vector<TileId> TileAttempts::takeDueStale(std::size_t most,
                                               const std::function<bool(const TileId&)>& isWanted)
{
    const qint64 now = WebClock::now();
    std::vector<TileId> due;
    const std::lock_guard<std::mutex> guard(mutex);
    for (auto& [tile, attempt] : attempts) {
        if (due.size() < most && attempt.isStale && attempt.due <= now && isWanted(tile)) {
            due.push_back(tile);
            attempt.due = now + askedAgain;
        }
    }
    return due;
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
    return entry == attempts.end() || !entry->second.isWaiting || entry->second.isStale ||
           entry->second.due <= now;
}

bool TileAttempts::isWaiting() const
{
    const std::lock_guard<std::mutex> guard(mutex);
    return isHeldBack || std::any_of(attempts.begin(), attempts.end(),
                                     [](const auto& entry) { return entry.second.isWaiting; });
}

void TileAttempts::makeDue()
{
    const std::lock_guard<std::mutex> guard(mutex);
    for (auto& entry : attempts) {
        entry.second.due = 0;
    }
}

bool TileAttempts::takeDue()
{
    const qint64 now = WebClock::now();
    const std::lock_guard<std::mutex> guard(mutex);
    bool due = std::exchange(isHeldBack, false);
    for (auto& entry : attempts) {
        Attempt& attempt = entry.second;
        if (attempt.isWaiting && !attempt.isStale && attempt.due <= now) {
            attempt.isWaiting = false;
            due = true;
        }
    }
    return due;
}

} // namespace Corvane::Map
