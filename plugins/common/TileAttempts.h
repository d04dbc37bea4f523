#pragma once

#include <plugins/common/TileId.h>

#include <QtGlobal>

#include <cstddef>
#include <functional>
#include <mutex>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace Corvane::Map {

/// Which tiles of a layer are to be left alone for now: those that failed wait longer each time
/// before they are asked for again, those of which only an old picture is shown among them, and those that the server does not have are known to be empty.
/// Any thread.
class TileAttempts
{
public:
    void markEmpty(const TileId& tile);
    bool isEmpty(const TileId& tile) const;
    void succeeded(const TileId& tile);
    /// It waits a second, then two, four and so on up to a minute, or until notBefore.
    void failed(const TileId& tile, qint64 notBefore);
    /// What lay on disk past its time is shown instead, until it comes: it waits like one that failed.
    void markStale(const TileId& tile, qint64 notBefore);
    /// Whether anything is shown that is past its time.
    bool showsStale() const;
    /// Those of them that are due and wanted, so many at the most; they are as good as asked for.
    std::vector<TileId> takeDueStale(std::size_t most,
                                     const std::function<bool(const TileId&)>& isWanted);
    /// Something was not asked for because the whole source is left alone.
    void heldBack();
    bool mayAsk(const TileId& tile) const;
    /// Whether something waits to be asked for again.
    bool isWaiting() const;
    /// Nothing waits any longer.
    void makeDue();
    /// True once for what may be asked for again by now.
    bool takeDue();

private:
    struct Attempt
    {
        int failures = 0;
        qint64 due = 0; // milliseconds since 1970
        bool isWaiting = false;
        bool isStale = false; // something is shown instead
    };

    mutable std::mutex mutex; // guards what follows
    std::unordered_map<TileId, Attempt, TileIdHash> attempts;
    std::unordered_set<TileId, TileIdHash> empty;
    bool isHeldBack = false;
};

} // namespace Corvane::Map
