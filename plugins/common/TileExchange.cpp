#include <plugins/common/TileExchange.h>

#include <corvane/map/GeoImage.h>

#include <algorithm>
#include <chrono>
#include <tuple>
#include <utility>

namespace Corvane::Map {

TileExchange::TileExchange() = default;
TileExchange::~TileExchange() = default;

void TileExchange::setWanted(std::vector<TileRange> ranges)
{
    const std::lock_guard<std::mutex> guard(mutex);
    wanted = std::move(ranges);
    asking = true;
}

void TileExchange::endAsking()
{
    const std::lock_guard<std::mutex> guard(mutex);
    asking = false;
    askingEnded.notify_all();
}

void TileExchange::waitForAsking(std::unique_lock<std::mutex>& guard)
{
    askingEnded.wait(guard, [this] { return !asking; });
}

void TileExchange::ask(const TileId& tile)
{
    const std::lock_guard<std::mutex> guard(mutex);
    asked.insert(tile);
}

bool TileExchange::isOwed(const TileId& tile)
{
    const std::lock_guard<std::mutex> guard(mutex);
    const auto entry = asked.find(tile);
    if (entry == asked.end()) {
        return false;
    }
    if (!isWanted(tile)) {
        asked.erase(entry);
        return false;
    }
    return true;
}

void TileExchange::giveUp(const TileId& tile)
{
    const std::lock_guard<std::mutex> guard(mutex);
    asked.erase(tile);
}

std::vector<TileId> TileExchange::owedInRow(const TileId& tile)
{
    std::vector<TileId> row;
    {
        std::unique_lock<std::mutex> guard(mutex);
        waitForAsking(guard);
        for (const TileId& other : asked) {
            if (other.level == tile.level && other.y == tile.y && isWanted(other)) {
                row.push_back(other);
            }
        }
    }
    std::sort(row.begin(), row.end(), [](const TileId& a, const TileId& b) { return a.x < b.x; });
    return row;
}

bool TileExchange::wasAskedMeanwhile(const TileId& tile)
{
    const std::lock_guard<std::mutex> guard(mutex);
    if (asked.count(tile) == 0) {
        return false;
    }
    viewAsked = true;
    news.notify_all();
    return true;
}

void TileExchange::deliver(const TileId& tile, std::unique_ptr<GeoImage> image)
{
    bool isEnough = false;
    {
        const std::lock_guard<std::mutex> guard(mutex);
        asked.erase(tile);
        if (!cancelled) {
            delivered.push_back({tile, std::move(image)});
        }
        isEnough = delivered.size() >= awaited;
    }
    if (isEnough) {
        news.notify_all();
    }
}

std::vector<DeliveredTile> TileExchange::takeDelivered()
{
    const std::lock_guard<std::mutex> guard(mutex);
    // asked for once more while they lay here: they are brought now
    for (const DeliveredTile& tile : delivered) {
        asked.erase(tile.tile);
    }
    return std::exchange(delivered, {});
}

bool TileExchange::waitForNews(std::size_t enough, int milliseconds)
{
    std::unique_lock<std::mutex> guard(mutex);
    awaited = enough;
    news.wait_for(guard, std::chrono::milliseconds(milliseconds),
                  [=] { return viewAsked || delivered.size() >= enough; });
    awaited = nobodyWaits;
    return std::exchange(viewAsked, false);
}

bool TileExchange::startReadingRuns()
{
    const std::lock_guard<std::mutex> guard(mutex);
    return !std::exchange(readingRuns, true);
}

bool TileExchange::nextRun(std::uint32_t levels, TileId* tile)
{
    std::unique_lock<std::mutex> guard(mutex);
    waitForAsking(guard);
    bool found = false;
    for (auto entry = asked.begin(); entry != asked.end();) {
        if ((levels >> entry->level & 1U) == 0U) {
            ++entry;
        } else if (!isWanted(*entry)) {
            entry = asked.erase(entry);
        } else {
            if (!found || std::tie(entry->level, entry->y) < std::tie(tile->level, tile->y)) {
                *tile = *entry;
                found = true;
            }
            ++entry;
        }
    }
    readingRuns = found;
    return found;
}

void TileExchange::cancel()
{
    cancelled = true;
    std::vector<DeliveredTile> dropped;
    {
        const std::lock_guard<std::mutex> guard(mutex);
        asked.clear();
        wanted.clear();
        dropped.swap(delivered);
        asking = false;
        news.notify_all();
        askingEnded.notify_all();
    }
}

bool TileExchange::isWanted(const TileId& tile) const
{
    return std::any_of(wanted.begin(), wanted.end(),
                       [&tile](const TileRange& range) { return range.contains(tile); });
}

} // namespace Corvane::Map
