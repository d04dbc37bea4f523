#include <corvane/tiles/LayerLevel.h>

#include <corvane/core/Integer.h>
#include <corvane/map/GeoImage.h>
#include <corvane/map/GeoPainter.h>
#include <corvane/tiles/ITiledLayer.h>
#include <corvane/tiles/Rendezvous_p.h>
#include <corvane/tiles/TileRequestRegistry.h>
#include <corvane/tiles/TilesLog_p.h>

#include <QRect>
#include <QRectF>

#include <cmath>
#include <iterator>
#include <limits>

namespace Corvane::Map {

namespace {

// 32-bit arithmetic that wraps: the difference, and 1 << level with the count taken modulo 32.
int wrappedDifference(int a, int b)
{
    return static_cast<int>(static_cast<unsigned int>(a) - static_cast<unsigned int>(b));
}

unsigned int scaleOf(unsigned char level)
{
    return 1U << (level % 32U);
}

// a / b rounded up, for what is positive. Everything else truncates, and 0 divides to the largest.
int divideRoundingUp(int a, unsigned int divisor)
{
    const int b = static_cast<int>(divisor);
    if (b == 0) {
        return std::numeric_limits<int>::max();
    }
    if (a < 0 || b < 1) {
        return static_cast<int>(static_cast<qint64>(a) / b);
    }
    return a / b + (a % b != 0 ? 1 : 0);
}

unsigned int clampedIndex(double position, int count)
{
    int index = Util::truncateToInt(std::floor(position));
    if (index >= count) {
        index = wrappedDifference(count, 1);
    }
    return index > 0 ? static_cast<unsigned int>(index) : 0U;
}

void appendNumber(QString& text, unsigned int number)
{
    constexpr int mostDigits = std::numeric_limits<unsigned int>::digits10 + 1;
    QChar digits[mostDigits];
    QChar* first = std::end(digits);
    do {
        *--first = QLatin1Char(static_cast<char>('0' + number % 10U));
        number /= 10U;
    } while (number != 0U);
    text.append(first, static_cast<int>(std::end(digits) - first));
}

// North-up: top lies above bottom on both sides.
bool overlaps(const GeoImage& tile, double tlx, double tly, double brx, double bry)
{
    return !(tile.tlx > brx || tlx > tile.brx || bry > tile.tly || tile.bry > tly);
}

} // namespace

LayerLevel::LayerLevel(ITiledLayer* tiledLayer, unsigned char levelNumber,
                       unsigned int tileSizePixels)
    : level(levelNumber),
      tileSize(tileSizePixels),
      layer(tiledLayer)
{
    const unsigned int scale = scaleOf(level);
    const unsigned int tileSpan = tileSize * scale; // in full-resolution pixels; wraps
    const int width = layer->getWidth();
    const int height = layer->getHeight();
    levelWidth = divideRoundingUp(width, scale);
    levelHeight = divideRoundingUp(height, scale);
    tilesAcross = divideRoundingUp(width, tileSpan);
    tilesDown = divideRoundingUp(height, tileSpan);
    worldPerTileX = layer->getWorldPerPixelX() * tileSize * scale;
    worldPerTileY = layer->getWorldPerPixelY() * tileSize * scale;
}

LayerLevel::~LayerLevel()
{
    rendezvousForWriting(*this);
    for (const auto& tile : tiles.takeAll()) {
        delete tile.second;
    }
}

double LayerLevel::getLevel()
{
    return level;
}

double LayerLevel::getWorldPerTileX()
{
    return worldPerTileX;
}

double LayerLevel::getWorldPerTileY()
{
    return worldPerTileY;
}

// Built by hand: this runs for every tile of every view and every repaint.
QString LayerLevel::getTileKey(unsigned int tx, unsigned int ty)
{
    constexpr int longestNumbers = 48;
    const QString layerId = layer->getTileLayerId();
    QString key;
    key.reserve(longestNumbers + layerId.size());
    key += QLatin1String("l=");
    appendNumber(key, level);
    key += QLatin1String(";tx=");
    appendNumber(key, tx);
    key += QLatin1String(";ty=");
    appendNumber(key, ty);
    key += QLatin1String(";lyr=");
    key += layerId;
    return key;
}

void LayerLevel::getTileXY(double x, double y, unsigned int* tx, unsigned int* ty)
{
    const QPointF origin = layer->getBounds().topLeft();
    *tx = clampedIndex((x - origin.x()) / worldPerTileX, tilesAcross);
    *ty = clampedIndex((y - origin.y()) / worldPerTileY, tilesDown);
}

void LayerLevel::getTileCoords(unsigned int tx, unsigned int ty, double* tlx, double* tly,
                               double* brx, double* bry)
{
    const QPointF origin = layer->getBounds().topLeft();
    *tlx = origin.x() + tx * worldPerTileX;
    *tly = origin.y() + ty * worldPerTileY;
    *brx = *tlx + worldPerTileX;
    *bry = *tly + worldPerTileY;
}

GeoImage* LayerLevel::getTile(int tx, int ty)
{
    return findTile(getTileKey(static_cast<unsigned int>(tx), static_cast<unsigned int>(ty)));
}

GeoImage* LayerLevel::findTile(const QString& key)
{
    rendezvousForWriting(*this);
    return tiles.find(key);
}

// On a pool thread.
void LayerLevel::addTile(QString& key, GeoImage* image)
{
    rendezvousForWriting(*this);
    if (!tiles.contains(key)) {
        qCDebug(tilesLog).noquote().nospace() << "Adding image with key : " << key;
        if (tiles.insertIfAbsent(key, image)) {
            return;
        }
    }
    qCDebug(tilesLog).noquote().nospace()
        << "LayerLevel::addTile() duplicate key (deleting image, not added) : " << key;
    delete image;
}

LayerLevel::TileRange LayerLevel::getTileRange(double tlx, double tly, double brx, double bry)
{
    TileRange range;
    getTileXY(tlx, tly, &range.left, &range.top);
    getTileXY(brx, bry, &range.right, &range.bottom);
    return range;
}

void LayerLevel::setView(double tlx, double tly, double brx, double bry)
{
    rendezvousForReading(*this);
    const TileRange range = getTileRange(tlx, tly, brx, bry);
    for (unsigned int tx = range.left; tx <= range.right; ++tx) {
        for (unsigned int ty = range.top; ty <= range.bottom; ++ty) {
            viewTile(tx, ty);
        }
    }
}

// The layer is asked for the URL of a tile in memory too: it may count the tiles in view by it.
// LayerLevelTest::asksForTheUrlOfATileInMemoryToo holds it. A tile that arrives between the look
// and the queueing is fetched once more, and addTile drops the second.
void LayerLevel::viewTile(unsigned int tx, unsigned int ty)
{
    double tlx = 0.0;
    double tly = 0.0;
    double brx = 0.0;
    double bry = 0.0;
    getTileCoords(tx, ty, &tlx, &tly, &brx, &bry);
    const QString key = getTileKey(tx, ty);
    const QString url = layer->getTileUrl(level, tx, ty, tileSize, tileSize, tlx, tly, brx, bry);
    if (findTile(key)) {
        return;
    }
    TileRequestRegistry::instance().queue(
        layer->createTileRequest(key, url, level, tx, ty, tlx, tly, brx, bry));
}

// Frees nothing, whatever the line says: a tile leaves only with its level.
// LayerLevelsTest::keepsTheTilesOfAllLevelsAfterZoomingFar holds it.
void LayerLevel::purgeTiles(double tlx, double tly, double brx, double bry)
{
    rendezvousForWriting(*this);
    if (tilesLog().isDebugEnabled()) {
        for (const auto& [key, image] : tiles.snapshot()) {
            if (image && !overlaps(*image, tlx, tly, brx, bry)) {
                qCDebug(tilesLog).noquote().nospace() << "purgeTiles deleting image: " << key;
            }
        }
    }
    const TileRange range = getTileRange(tlx, tly, brx, bry);
    TileRequestRegistry::instance().cancelOutside(level, range.left, range.top, range.right,
                                                  range.bottom);
}

// Frees nothing either.
void LayerLevel::purgeAll()
{
    rendezvousForWriting(*this);
    if (!tilesLog().isDebugEnabled()) {
        return;
    }
    for (const auto& tile : tiles.snapshot()) {
        qCDebug(tilesLog).noquote().nospace() << "purgeAll deleting image: " << tile.first;
    }
}

void LayerLevel::paint(GeoPainter& painter, QRectF* world, QRect* device)
{
    rendezvousForReading(*this);
    const TileRange range =
        getTileRange(world->left(), world->top(), world->right(), world->bottom());
    for (unsigned int tx = range.left; tx <= range.right; ++tx) {
        for (unsigned int ty = range.top; ty <= range.bottom; ++ty) {
            paintTile(painter, tx, ty, *world, *device);
        }
    }
}

// The far corner goes in where GeoImage::paint takes a width and a height. The two are equal for
// a device rectangle at the origin, which is what a map view hands down.
// LayerLevelTest::paintsWithTheFarCornerAsSize holds it.
void LayerLevel::paintTile(GeoPainter& painter, unsigned int tx, unsigned int ty,
                           const QRectF& world, const QRect& device)
{
    GeoImage* const tile = getTile(static_cast<int>(tx), static_cast<int>(ty));
    if (tile) {
        tile->paint(painter, device.x(), device.y(), device.x() + device.width(),
                    device.y() + device.height(), world.x(), world.y(), world.x() + world.width(),
                    world.y() + world.height());
    }
    if (tileOutlines) {
        paintOutline(painter, tx, ty);
    }
}

void LayerLevel::paintOutline(GeoPainter& painter, unsigned int tx, unsigned int ty)
{
    double tlx = 0.0;
    double tly = 0.0;
    double brx = 0.0;
    double bry = 0.0;
    getTileCoords(tx, ty, &tlx, &tly, &brx, &bry);
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    painter.mapWorldToDevice(tlx, tly, &left, &top);
    painter.mapWorldToDevice(brx, bry, &right, &bottom);
    const QRect outline(left, top, wrappedDifference(right, left), wrappedDifference(bottom, top));
    painter.drawRect(outline);
    painter.drawText(outline, Qt::AlignCenter,
                     QStringLiteral("%1,%2,%3").arg(level).arg(tx).arg(ty));
}

} // namespace Corvane::Map
