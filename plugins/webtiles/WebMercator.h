#pragma once

/// The usual web grid: EPSG 3857, a square world, its tile at zoom 0.
namespace Corvane::Map::WebMercator {

constexpr int epsg = 3857;
constexpr double edge = 20037508.342789244; // metres from the middle to each side

/// Up to where the pyramid's pixels are counted in 32 bits.
constexpr int finestZoom(int tileSize)
{
    return tileSize > 256 ? 21 : 22;
}

} // namespace Corvane::Map::WebMercator
