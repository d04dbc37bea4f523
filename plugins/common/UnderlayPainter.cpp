#include <plugins/common/UnderlayPainter.h>

#include <plugins/common/DeviceRect.h>
#include <plugins/common/TileShelf.h>

#include <corvane/map/GeoImage.h>
#include <corvane/map/GeoPainter.h>

#include <algorithm>
#include <vector>

namespace Corvane::Map {

namespace {

// Finer levels that are preferred to coarser ones: at most sixteen tiles in the place of one.
constexpr unsigned int nearbyFinerLevels = 2;

// Which levels to look at, best first.
std::vector<unsigned int> levelsByMerit(unsigned int chosen, unsigned int levelCount)
{
    std::vector<unsigned int> result;
    const unsigned int near = std::min(nearbyFinerLevels, chosen);
    for (unsigned int step = 1; step <= near; ++step) {
        result.push_back(chosen - step);
    }
    for (unsigned int level = chosen + 1; level < levelCount; ++level) {
        result.push_back(level);
    }
    for (unsigned int level = chosen - near; level > 0; --level) {
        result.push_back(level - 1);
    }
    return result;
}

} // namespace

UnderlayPainter::UnderlayPainter(const TileShelf& tileShelf, const QRectF& worldRect,
                                 const QRect& deviceRectangle, const QRectF& layerBounds)
    : shelf(tileShelf),
      world(worldRect),
      device(deviceRectangle),
      bounds(layerBounds)
{
}

void UnderlayPainter::paint(GeoPainter& painter, const TileRange& chosen, unsigned int levelCount,
                            const TileBounds& tileBounds)
{
    chosenLevel = chosen.level;
    collectHoles(chosen, tileBounds);
    if (shelf.hasOutdated()) {
        paintLevel(painter, chosen.level);
    }
    for (const unsigned int level : levelsByMerit(chosen.level, levelCount)) {
        if (holes.isEmpty()) {
            return;
        }
        paintLevel(painter, level);
    }
}

QRect UnderlayPainter::onDevice(double tlx, double tly, double brx, double bry) const
{
    return deviceRect(
        {world.left(), world.top(), world.left() + world.width(), world.top() + world.height()},
        device, {tlx, tly, brx, bry});
}

void UnderlayPainter::collectHoles(const TileRange& chosen, const TileBounds& tileBounds)
{
    for (unsigned int x = chosen.left; x <= chosen.right; ++x) {
        for (unsigned int y = chosen.top; y <= chosen.bottom; ++y) {
            const TileId tile{chosen.level, x, y};
            if (!shelf.has(tile)) {
                const QRectF area = tileBounds(tile);
                holes += onDevice(area.left(), area.top(), std::min(area.right(), bounds.right()),
                                  std::max(area.bottom(), bounds.bottom()));
            }
        }
    }
}

void UnderlayPainter::paintLevel(GeoPainter& painter, unsigned int level)
{
    const QRect around = holes.boundingRect();
    const double unitsX = world.width() / (device.x() + device.width());
    const double unitsY = world.height() / (device.y() + device.height());
    const double tlx = world.left() + (around.left() - device.x()) * unitsX;
    const double tly = world.top() + (around.top() - device.y()) * unitsY;
    const double brx = tlx + around.width() * unitsX;
    const double bry = tly + around.height() * unitsY;

    QRegion covered;
    std::vector<GeoImage*> images;
    const TileRange range = shelf.rangeOf(level, tlx, tly, brx, bry);
    const auto take = [&](GeoImage* image) {
        const QRect area = onDevice(image->tlx, image->tly, image->brx, image->bry);
        if (holes.intersects(area)) {
            covered += area;
            images.push_back(image);
        }
    };
    if (level != chosenLevel) {
        shelf.visit(range, [&take](const TileId&, GeoImage* image) { take(image); });
    }
    shelf.visitOutdated(range, take);
    if (images.empty()) {
        return;
    }
    painter.save();
    painter.setClipRegion(holes & covered, Qt::IntersectClip);
    for (GeoImage* image : images) {
        image->paint(painter, device.x(), device.y(), device.x() + device.width(),
                     device.y() + device.height(), world.left(), world.top(),
                     world.left() + world.width(), world.top() + world.height());
    }
    painter.restore();
    holes -= covered;
}

} // namespace Corvane::Map
