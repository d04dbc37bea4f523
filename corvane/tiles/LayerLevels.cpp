#include <corvane/tiles/LayerLevels.h>

#include <corvane/core/Integer.h>
#include <corvane/tiles/LayerLevel.h>

#include <QRect>

#include <algorithm>

namespace Corvane::Map {

LayerLevels::LayerLevels() = default;

LayerLevels::~LayerLevels()
{
    deleteLevels();
}

void LayerLevels::paint(GeoPainter& painter, QRectF* world, QRect* device)
{
    LayerLevel* const level = getLayerLevel(device->width(), device->height(), world->left(),
                                            world->top(), world->right(), world->bottom());
    if (level) {
        level->paint(painter, world, device);
    }
}

// Unlike the form with cell sizes this one never clears: a second call grows the pyramid.
// LayerLevelsTest::aSecondCountGrowsThePyramid holds it.
void LayerLevels::init(ITiledLayer* layer, unsigned int newTileSize, QRectF newBounds,
                       unsigned int levels)
{
    tileSize = newTileSize;
    bounds = newBounds;
    for (unsigned int i = 0; i < levels; ++i) {
        appendLevel(layer);
    }
}

void LayerLevels::init(ITiledLayer* layer, unsigned int newTileSize, QRectF newBounds,
                       double worldPerPixelX, double worldPerPixelY)
{
    deleteLevels();
    tileSize = newTileSize;
    bounds = newBounds;

    const int columns = Util::truncateToInt(newBounds.width() / worldPerPixelX);
    const int rows = Util::truncateToInt(newBounds.height() / worldPerPixelY);
    auto smallerSide = static_cast<unsigned int>(std::min(columns, rows));
    // Halved after the level is made: a side of one pixel more than a tile still has one level.
    do {
        appendLevel(layer);
        smallerSide >>= 1U;
    } while (smallerSide > tileSize);
}

LayerLevel* LayerLevels::getLayerLevel(int width, int, double tlx, double, double brx, double)
{
    return value(chooseLevel(width, tlx, brx), nullptr);
}

void LayerLevels::setView(int width, int, double tlx, double tly, double brx, double bry)
{
    const int chosen = chooseLevel(width, tlx, brx);
    LayerLevel* const level = value(chosen, nullptr);
    if (!level) {
        return;
    }
    level->setView(tlx, tly, brx, bry);
    level->purgeTiles(tlx, tly, brx, bry);
    for (int i = 0; i < size(); ++i) {
        if (i != chosen && at(i)) {
            at(i)->purgeAll();
        }
    }
}

// The index, -1 without levels. The test is on the width of a tile as it stands: only x decides,
// and without a threshold (no width in pixels) nothing stops the walk. A null level is passed over.
int LayerLevels::chooseLevel(int width, double tlx, double brx) const
{
    const double worldPerDevicePixel = (brx - tlx) / width;
    const double threshold = tileSize * worldPerDevicePixel;
    int chosen = isEmpty() ? -1 : 0;
    for (int i = 1; i < size(); ++i) {
        if (!at(i)) {
            continue;
        }
        if (at(i)->getWorldPerTileX() > threshold) {
            break;
        }
        chosen = i;
    }
    return chosen;
}

void LayerLevels::appendLevel(ITiledLayer* layer)
{
    append(new LayerLevel(layer, static_cast<unsigned char>(size()), tileSize));
}

void LayerLevels::deleteLevels()
{
    qDeleteAll(*this);
    clear();
}

} // namespace Corvane::Map
