#pragma once

#include <corvane/core/Export.h>
#include <corvane/core/RelaxedFlag.h>

#include <QRunnable>
#include <QString>

namespace Corvane {

class GeoImage;

namespace Map {

class ITiledLayer;

/// One tile to fetch, run once on the global thread pool, which deletes it afterwards.
class CORVANE_EXPORT ITileRequest : public QRunnable
{
public:
    /// The layer is called back and not owned. width and height are the tile's expected size in
    /// pixels, the rest is its world rectangle.
    ITileRequest(ITiledLayer* layer, QString key, unsigned int level, unsigned int x,
                 unsigned int y, unsigned int width, unsigned int height, double tlx, double tly,
                 double brx, double bry);
    ITileRequest(const ITileRequest& other) = default;
    ITileRequest& operator=(const ITileRequest& other) = default;

    /// Makes the tile and calls the layer back, unless cancelled. On a pool thread.
    void run() override;
    ~ITileRequest() override;
    /// Fetches the tile and sets image; false where nothing was made. Look at cancelled after each
    /// slow step. On a pool thread.
    virtual bool processTile() = 0;
    /// Sets the flag and does nothing else. Any thread.
    virtual void cancel();

    /// The tile's key, as LayerLevel::getTileKey makes it.
    QString& getKey();
    /// The result, not owned: the layer takes it in tileReady.
    GeoImage* getImage();
    /// The level's number, 0 for full resolution.
    unsigned int getLayerLevel();
    /// The tile's column.
    unsigned int getX();
    /// The tile's row.
    unsigned int getY();

protected:
    double tlx;                ///< world rectangle, left
    double tly;                ///< world rectangle, top
    double brx;                ///< right; processTile may correct it
    double bry;                ///< bottom; processTile may correct it
    QString key;               ///< the tile's key
    GeoImage* image = nullptr; ///< the result, not owned
    ITiledLayer* layer;        ///< whom to call back, not owned
    unsigned int level;        ///< 0 for full resolution
    unsigned int x;            ///< column
    unsigned int y;            ///< row
    unsigned int width;        ///< expected pixels across
    unsigned int height;       ///< expected pixels down
    RelaxedFlag cancelled;     ///< set by cancel, looked at between slow steps

private:
    void deliver(bool made);
    void dropPixels();
};

} // namespace Map
} // namespace Corvane
