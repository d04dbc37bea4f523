#pragma once

#include <corvane/core/Export.h>
#include <corvane/tiles/TileHash.h>

#include <QReadWriteLock>
#include <QString>

class QRect;
class QRectF;

namespace Corvane {

class GeoImage;
class GeoPainter;

namespace Map {

class ITiledLayer;

/// One level of a pyramid: turns world coordinates into tile numbers, requests the tiles that are
/// missing, keeps those that came and paints them. setView and paint belong to the thread that
/// drives the layer, addTile may come from any thread.
class CORVANE_EXPORT LayerLevel : public QReadWriteLock
{
public:
    /// The layer is not owned and must outlive the level. tileSize is in pixels.
    LayerLevel(ITiledLayer* layer, unsigned char level, unsigned int tileSize);
    /// Deletes the tiles.
    virtual ~LayerLevel();

    /// The level's number, 0 for full resolution.
    double getLevel();
    /// World units across one tile, with the sign of the layer's cell size.
    double getWorldPerTileX();
    /// The same on y: negative for a north-up image.
    double getWorldPerTileY();
    /// "l=0;tx=1;ty=2;lyr=ID"
    QString getTileKey(unsigned int tx, unsigned int ty);
    /// The tile that holds a world point, clamped to the level.
    void getTileXY(double x, double y, unsigned int* tx, unsigned int* ty);
    /// The world rectangle of a tile; not clamped to the image.
    void getTileCoords(unsigned int tx, unsigned int ty, double* tlx, double* tly, double* brx,
                       double* bry);
    /// The tile in memory or null; stays owned here.
    GeoImage* getTile(int tx, int ty);
    /// Takes the image over in every case; a second image of the same key is deleted. Any thread.
    void addTile(QString& key, GeoImage* image);
    /// Requests the tiles of the view that are not in memory.
    void setView(double tlx, double tly, double brx, double bry);
    /// Names the tiles out of view in the log and tells the registry the range; keeps every tile.
    void purgeTiles(double tlx, double tly, double brx, double bry);
    /// Names the tiles in the log; keeps every tile.
    void purgeAll();
    /// Draws the tiles of the world rectangle that are in memory.
    void paint(GeoPainter& painter, QRectF* world, QRect* device);

private:
    /// Inclusive and clamped; empty where left is greater than right or top greater than bottom.
    struct TileRange
    {
        unsigned int left;
        unsigned int top;
        unsigned int right;
        unsigned int bottom;
    };

    TileRange getTileRange(double tlx, double tly, double brx, double bry);
    GeoImage* findTile(const QString& key);
    void viewTile(unsigned int tx, unsigned int ty);
    void paintTile(GeoPainter& painter, unsigned int tx, unsigned int ty, const QRectF& world,
                   const QRect& device);
    void paintOutline(GeoPainter& painter, unsigned int tx, unsigned int ty);

    bool tileOutlines = false;
    TileHash<GeoImage> tiles; // owns the images
    unsigned char level;
    int levelWidth;
    int levelHeight;
    int tilesAcross;
    int tilesDown;
    unsigned int tileSize;
    ITiledLayer* layer; // not owned
    double worldPerTileX;
    double worldPerTileY;
};

} // namespace Map
} // namespace Corvane
