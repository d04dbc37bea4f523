#pragma once

#include <plugins/common/ServedTileLink.h>

#include <memory>

namespace Corvane::Map {

struct WebTileSource;

/// Where the requests of a web tile layer ask. Any thread.
class WebTileLoader final : public ServedTileLink
{
public:
    WebTileLoader(QObject* layer, std::shared_ptr<WebTileSource> source);
    ~WebTileLoader() override;

    /// The zoom of a level of the pyramid.
    int zoomOf(unsigned int level) const;

    SourceHealth& health() const override;
    bool isKnownEmpty(const TileId& tile) const override;

protected:
    TileOrder orderFor(const TileId& tile) const override;
    std::unique_ptr<GeoImage> placed(const TileId& tile, QImage pixels) const override;

private:
    std::shared_ptr<WebTileSource> source;
};

} // namespace Corvane::Map
