#pragma once

#include <plugins/common/ServedTileLink.h>

#include <functional>
#include <memory>

namespace Corvane::Map {

struct ImageGrid;
struct ImageServerSource;

/// Where the requests of an image server layer ask. Any thread.
class ImageServerLoader final : public ServedTileLink
{
public:
    ImageServerLoader(QObject* layer, std::shared_ptr<ImageServerSource> source);
    ~ImageServerLoader() override;

    SourceHealth& health() const override;
    bool isKnownEmpty(const TileId& tile) const override;
    /// The address of a tile.
    QUrl urlOf(const TileId& tile) const;
    const ImageGrid& grid() const;
    /// A tile for somebody else than the view; the view's tiles know nothing of it. From the disk
    /// alone while the server is left alone. On a pool thread.
    TileAnswer pictureOf(const TileId& tile, const std::function<bool()>& isUnwanted);

protected:
    TileOrder orderFor(const TileId& tile) const override;
    void judge(const TileId& tile, TileAnswer& answer) override;
    std::unique_ptr<GeoImage> placed(const TileId& tile, QImage pixels) const override;

private:
    std::shared_ptr<ImageServerSource> source;
};

} // namespace Corvane::Map
