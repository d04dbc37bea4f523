#pragma once

#include <plugins/common/TileId.h>

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <limits>
#include <memory>
#include <mutex>
#include <unordered_set>
#include <vector>

namespace Corvane {

class GeoImage;

namespace Map {

/// A tile on its way from the pool to the layer.
struct DeliveredTile
{
    TileId tile;
    std::unique_ptr<GeoImage> image;
};

/// Between a tiled layer and its requests: which tiles the view wants, which of them somebody has
/// promised to bring, and those that came. A tile that was asked for is owed until it is delivered
/// or no longer wanted. Held by shared pointer, since requests outlive their layer. Any thread.
class TileExchange
{
public:
    TileExchange();
    ~TileExchange();
    TileExchange(const TileExchange&) = delete;
    TileExchange& operator=(const TileExchange&) = delete;

    /// What the view wants from now on. On the layer's thread, before the tiles are asked for. Until
    /// endAsking whoever reads runs waits: the rows are not complete.
    void setWanted(std::vector<TileRange> ranges);
    void endAsking();
    /// A request for the tile was made. On the layer's thread.
    void ask(const TileId& tile);
    /// Whether the tile is still to be brought; one that is no longer wanted is forgotten.
    bool isOwed(const TileId& tile);
    /// Nobody brings the tile for now.
    void giveUp(const TileId& tile);
    /// The rest of the row of tile that is owed, tile among it, from left to right.
    std::vector<TileId> owedInRow(const TileId& tile);

    /// To be called when a request that brought nothing has left the registry: true where the tile
    /// was asked for meanwhile, and then somebody has to set the view again.
    bool wasAskedMeanwhile(const TileId& tile);

    void deliver(const TileId& tile, std::unique_ptr<GeoImage> image);
    /// What came since the last call. On the layer's thread.
    std::vector<DeliveredTile> takeDelivered();

    /// Waits until so many tiles have come, a request asks for the view, or the time is over. True
    /// where the view is to be set again. On the layer's thread, which nobody wakes before: each
    /// time would take a moment from those who make the tiles.
    bool waitForNews(std::size_t enough, int milliseconds);

    /// Makes the caller the only one who reads runs of tiles of this layer; false where there is
    /// one, who will bring the caller's tile as well.
    bool startReadingRuns();
    /// For the reader: the topmost owed tile of the levels whose bits are set. False where nothing is
    /// owed: then the caller is the reader no more.
    bool nextRun(std::uint32_t levels, TileId* tile);

    /// The layer is gone or has another source: nothing is owed, what comes is dropped.
    void cancel();
    bool isCancelled() const { return cancelled.load(std::memory_order_relaxed); }
    /// What cancel sets; lives as long as the exchange.
    const std::atomic<bool>& cancelledFlag() const { return cancelled; }

private:
    static constexpr std::size_t nobodyWaits = std::numeric_limits<std::size_t>::max();

    bool isWanted(const TileId& tile) const;
    void waitForAsking(std::unique_lock<std::mutex>& guard);

    std::atomic<bool> cancelled{false};
    mutable std::mutex mutex; // guards what follows
    std::condition_variable news;
    std::condition_variable askingEnded;
    std::vector<TileRange> wanted;
    std::unordered_set<TileId, TileIdHash> asked;
    std::vector<DeliveredTile> delivered;
    std::size_t awaited = nobodyWaits; // tiles
    bool asking = false;
    bool readingRuns = false;
    bool viewAsked = false;
};

} // namespace Map
} // namespace Corvane
