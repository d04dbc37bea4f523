#pragma once

#include <plugins/common/TileId.h>

#include <QtGlobal>

#include <functional>
#include <memory>
#include <unordered_map>
#include <vector>

namespace Corvane {

class GeoImage;

namespace Map {

class ITiledLayer;
class LayerLevels;

/// The tiles that a pyramid holds, by number: what is there is found without building key texts,
/// and can be given back. The pyramid owns the images. On the layer's thread.
class TileShelf
{
public:
    /// Both must outlive the shelf.
    TileShelf(ITiledLayer* layer, LayerLevels* levels);
    ~TileShelf();
    TileShelf(const TileShelf&) = delete;
    TileShelf& operator=(const TileShelf&) = delete;

    /// Deletes the pyramid's levels with their tiles. tileSize, in pixels, is that of the levels to
    /// come.
    void clear(unsigned int tileSize);
    /// Pixels of a tile each way.
    unsigned int edge() const { return tileSize; }
    /// Puts the image into its level, in the place of one that is there already.
    void add(const TileId& tile, std::unique_ptr<GeoImage> image);
    /// The tile in memory or null.
    GeoImage* find(const TileId& tile) const;
    bool has(const TileId& tile) const { return find(tile) != nullptr; }
    int countMissing(const TileRange& range) const;
    /// The smallest range that holds what is missing of range; empty where nothing is.
    TileRange missingPart(const TileRange& range) const;
    /// Calls visitor with each tile of the level that lies in range.
    void visit(const TileRange& range,
               const std::function<void(const TileId&, GeoImage*)>& visitor) const;
    std::vector<TileId> tilesOf(unsigned int level) const;
    /// Gives back the tiles of the level that keep refuses, whatever the level itself would hold
    /// on to: the level is replaced by a new one with those that stay. Returns the bytes freed.
    qint64 giveBack(unsigned int level, const std::function<bool(const TileId&)>& keep);
    /// Makes the pyramid anew, where tiles have new keys. Those of levels that stay are in it again. The
    /// others are not; those that keep holds on to are outdated: there to be shown in the place of new
    /// ones.
    void renew(const std::function<bool(unsigned int level)>& stays,
               const std::function<bool(const TileId&)>& keep);
    bool hasOutdated() const { return !outdated.empty(); }
    /// The same as visit, of outdated tiles for which no new one has come.
    void visitOutdated(const TileRange& range, const std::function<void(GeoImage*)>& visitor) const;
    void dropOutdated();
    /// Pixel memory of all tiles.
    qint64 bytes() const { return totalBytes; }
    qint64 bytesOf(const TileId& tile) const;

    /// The tiles of a level that a world rectangle touches, clamped as the pyramid clamps them.
    TileRange rangeOf(unsigned int level, double tlx, double tly, double brx, double bry) const;

private:
    using Tiles = std::unordered_map<TileId, GeoImage*, TileIdHash>;

    void forgetOutdated(const TileId& tile);

    ITiledLayer* layer;       // not owned
    LayerLevels* levels;      // not owned
    std::vector<Tiles> tiles; // by level; the images belong to the levels
    std::unordered_map<TileId, std::unique_ptr<GeoImage>, TileIdHash> outdated;
    unsigned int tileSize = 0;
    qint64 totalBytes = 0;
};

} // namespace Map
} // namespace Corvane
