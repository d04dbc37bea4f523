#include <plugins/common/TileShelf.h>

#include <corvane/map/GeoImage.h>
#include <corvane/tiles/ITiledLayer.h>
#include <corvane/tiles/LayerLevel.h>
#include <corvane/tiles/LayerLevels.h>

#include <QtAlgorithms>

#include <algorithm>

namespace Corvane::Map {

namespace {

qint64 bytesIn(const GeoImage& image)
{
    return static_cast<qint64>(image.sizeInBytes());
}

// Shares the pixels.
std::unique_ptr<GeoImage> copyOf(const GeoImage& image)
{
    auto copy = std::make_unique<GeoImage>(0, 0, 0.0, 0.0, 0.0, 0.0, QImage::Format_RGB32, nullptr);
    *copy = image;
    return copy;
}

} // namespace

TileShelf::TileShelf(ITiledLayer* tiledLayer, LayerLevels* pyramid)
    : layer(tiledLayer),
      levels(pyramid)
{
}

TileShelf::~TileShelf() = default;

void TileShelf::clear(unsigned int newTileSize)
{
    tileSize = newTileSize;
    tiles.clear();
    outdated.clear();
    totalBytes = 0;
    qDeleteAll(*levels);
    levels->clear();
}

void TileShelf::add(const TileId& tile, std::unique_ptr<GeoImage> image)
{
    LayerLevel* const level = levels->value(static_cast<int>(tile.level), nullptr);
    if (!level || !image) {
        return;
    }
    forgetOutdated(tile);
    if (GeoImage* const present = find(tile)) { // which the level holds on to
        totalBytes += bytesIn(*image) - bytesIn(*present);
        *present = *image;
        return;
    }
    if (tiles.size() <= tile.level) {
        tiles.resize(tile.level + 1);
    }
    totalBytes += bytesIn(*image);
    tiles[tile.level].emplace(tile, image.get());
    QString key = level->getTileKey(tile.x, tile.y);
    level->addTile(key, image.release());
}

GeoImage* TileShelf::find(const TileId& tile) const
{
    if (tile.level >= tiles.size()) {
        return nullptr;
    }
    const auto entry = tiles[tile.level].find(tile);
    return entry == tiles[tile.level].end() ? nullptr : entry->second;
}

int TileShelf::countMissing(const TileRange& range) const
{
    int missing = 0;
    for (unsigned int x = range.left; x <= range.right; ++x) {
        for (unsigned int y = range.top; y <= range.bottom; ++y) {
            missing += has({range.level, x, y}) ? 0 : 1;
        }
    }
    return missing;
}

TileRange TileShelf::missingPart(const TileRange& range) const
{
    TileRange part;
    part.level = range.level;
    for (unsigned int x = range.left; x <= range.right; ++x) {
        for (unsigned int y = range.top; y <= range.bottom; ++y) {
            if (has({range.level, x, y})) {
                continue;
            }
            const bool first = part.isEmpty();
            part.left = first ? x : std::min(part.left, x);
            part.right = first ? x : std::max(part.right, x);
            part.top = first ? y : std::min(part.top, y);
            part.bottom = first ? y : std::max(part.bottom, y);
        }
    }
    return part;
}

// Walks the range or the tiles in memory, whichever is less: a range of a fine level seen from far
// away counts millions.
void TileShelf::visit(const TileRange& range,
                      const std::function<void(const TileId&, GeoImage*)>& visitor) const
{
    if (range.level >= tiles.size() || range.isEmpty()) {
        return;
    }
    const Tiles& present = tiles[range.level];
    if (present.size() < range.count()) {
        for (const auto& [tile, image] : present) {
            if (range.contains(tile)) {
                visitor(tile, image);
            }
        }
        return;
    }
    for (unsigned int x = range.left; x <= range.right; ++x) {
        for (unsigned int y = range.top; y <= range.bottom; ++y) {
            const TileId tile{range.level, x, y};
            if (GeoImage* const image = find(tile)) {
                visitor(tile, image);
            }
        }
    }
}

std::vector<TileId> TileShelf::tilesOf(unsigned int level) const
{
    std::vector<TileId> result;
    if (level < tiles.size()) {
        for (const auto& entry : tiles[level]) {
            result.push_back(entry.first);
        }
    }
    return result;
}

qint64 TileShelf::giveBack(unsigned int level, const std::function<bool(const TileId&)>& keep)
{
    if (level >= tiles.size() || tiles[level].empty()) {
        return 0;
    }
    const qint64 before = totalBytes;
    Tiles old;
    old.swap(tiles[level]);
    LayerLevel*& slot = (*levels)[static_cast<int>(level)];
    const std::unique_ptr<LayerLevel> oldLevel(slot);
    slot = new LayerLevel(layer, static_cast<unsigned char>(level), tileSize);
    for (const auto& [tile, image] : old) {
        totalBytes -= bytesIn(*image);
        if (keep(tile)) {
            add(tile, copyOf(*image));
        }
    }
    return before - totalBytes;
}

void TileShelf::renew(const std::function<bool(unsigned int level)>& stays,
                      const std::function<bool(const TileId&)>& keep)
{
    std::vector<Tiles> old;
    old.swap(tiles);
    for (unsigned int number = 0; number < old.size(); ++number) {
        LayerLevel*& slot = (*levels)[static_cast<int>(number)];
        const std::unique_ptr<LayerLevel> oldLevel(slot);
        slot = new LayerLevel(layer, static_cast<unsigned char>(number), tileSize);
        for (const auto& [tile, image] : old[number]) {
            totalBytes -= bytesIn(*image);
            if (stays(number)) {
                add(tile, copyOf(*image));
            } else if (keep(tile)) {
                forgetOutdated(tile);
                totalBytes += bytesIn(*image);
                outdated.emplace(tile, copyOf(*image));
            }
        }
    }
}

void TileShelf::forgetOutdated(const TileId& tile)
{
    const auto entry = outdated.find(tile);
    if (entry != outdated.end()) {
        totalBytes -= bytesIn(*entry->second);
        outdated.erase(entry);
    }
}

void TileShelf::visitOutdated(const TileRange& range,
                              const std::function<void(GeoImage*)>& visitor) const
{
    for (const auto& [tile, image] : outdated) {
        if (range.contains(tile)) {
            visitor(image.get());
        }
    }
}

void TileShelf::dropOutdated()
{
    for (const auto& entry : outdated) {
        totalBytes -= bytesIn(*entry.second);
    }
    outdated.clear();
}

qint64 TileShelf::bytesOf(const TileId& tile) const
{
    const GeoImage* const image = find(tile);
    return image ? bytesIn(*image) : 0;
}

TileRange TileShelf::rangeOf(unsigned int level, double tlx, double tly, double brx,
                             double bry) const
{
    TileRange range;
    range.level = level;
    if (LayerLevel* const found = levels->value(static_cast<int>(level), nullptr)) {
        found->getTileXY(tlx, tly, &range.left, &range.top);
        found->getTileXY(brx, bry, &range.right, &range.bottom);
    }
    return range;
}

} // namespace Corvane::Map
