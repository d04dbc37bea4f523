#pragma once

#include <cstddef>
#include <cstdint>

namespace Corvane::Map {

/// A tile by numbers: what pool threads compare instead of key texts.
struct TileId
{
    unsigned int level = 0;
    unsigned int x = 0;
    unsigned int y = 0;

    bool operator==(const TileId& other) const
    {
        return level == other.level && x == other.x && y == other.y;
    }
};

struct TileIdHash
{
    std::size_t operator()(const TileId& tile) const
    {
        const std::uint64_t row = (std::uint64_t{tile.level} << 56U) ^ tile.y;
        return (row * 0x9E3779B97F4A7C15U) ^ (std::uint64_t{tile.x} * 0xC2B2AE3D27D4EB4FU);
    }
};

/// Columns left to right and rows top to bottom of one level, inclusive. Empty by default.
struct TileRange
{
    unsigned int level = 0;
    unsigned int left = 1;
    unsigned int top = 1;
    unsigned int right = 0;
    unsigned int bottom = 0;

    bool isEmpty() const { return left > right || top > bottom; }
    bool contains(const TileId& tile) const
    {
        return tile.level == level && tile.x >= left && tile.x <= right && tile.y >= top &&
               tile.y <= bottom;
    }
    std::uint64_t count() const
    {
        return isEmpty() ? 0 : std::uint64_t{right - left + 1} * (std::uint64_t{bottom - top} + 1);
    }
};

} // namespace Corvane::Map
