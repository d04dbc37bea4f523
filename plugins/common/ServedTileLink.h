#pragma once

#include <plugins/common/TileAttempts.h>
#include <plugins/common/TileFetch.h>
#include <plugins/common/TileLink.h>

#include <QImage>

#include <atomic>
#include <memory>

namespace Corvane {

class GeoImage;

namespace Map {

class SourceHealth;

/// What the requests of a layer share whose tiles come from a server: what is left alone for now, and
/// what an answer means. Any thread.
class ServedTileLink : public TileLink
{
public:
    virtual ~ServedTileLink();

    TileAttempts attempts;

    virtual SourceHealth& health() const = 0;
    /// Whether there is nothing to ask for.
    virtual bool isKnownEmpty(const TileId& tile) const;
    /// A transparent tile.
    std::unique_ptr<GeoImage> emptyTile(const TileId& tile) const;
    /// The source is another one by now; true once.
    bool takeChange() { return hasChanged.exchange(false); }
    /// The tile's image; null where it is missing for now, and will be asked for again, or where
    /// nobody wants it any more. On a pool thread.
    std::unique_ptr<GeoImage> load(const TileId& tile);

protected:
    explicit ServedTileLink(QObject* layer);

    virtual TileOrder orderFor(const TileId& tile) const = 0;
    /// A last look at what came, before it counts. On a pool thread.
    virtual void judge(const TileId& tile, TileAnswer& answer);
    /// The server has something else by now than the layer shows: it will be told.
    void noteChange() { hasChanged = true; }
    /// The pixels in their place in the world.
    virtual std::unique_ptr<GeoImage> placed(const TileId& tile, QImage pixels) const = 0;

private:
    std::unique_ptr<GeoImage> putOff(const TileId& tile);

    std::atomic<bool> hasChanged{false};
};

} // namespace Map
} // namespace Corvane
