#pragma once

#include <corvane/map/GeoImage.h>
#include <corvane/tiles/ITileRequest.h>
#include <corvane/tiles/ITiledLayer.h>
#include <corvane/tiles/LayerLevel.h>
#include <corvane/tiles/TileRequestRegistry.h>
#include <tests/tiles/Gate.h>
#include <tests/tiles/SharedLog.h>

#include <QColor>
#include <QRectF>
#include <QString>
#include <QThreadPool>

#include <atomic>

/// Returns once no request is queued or running, and this thread sees what all of them did.
inline void waitForRequests()
{
    QThreadPool::globalInstance()->waitForDone();
    Corvane::Map::TileRequestRegistry::instance().synchronize();
}

/// The one colour of a tile.
inline QColor tileColour(unsigned int level, unsigned int x, unsigned int y)
{
    return QColor(40 + static_cast<int>(level) * 50, 30 + static_cast<int>(x % 8U) * 25,
                  20 + static_cast<int>(y % 8U) * 25);
}

/// A tile of one colour over its world rectangle.
inline Corvane::GeoImage* newTile(int size, const QColor& colour, double tlx, double tly,
                                  double brx, double bry)
{
    auto* const tile =
        new Corvane::GeoImage(size, size, tlx, tly, brx, bry, QImage::Format_ARGB32, nullptr);
    tile->fill(colour);
    return tile;
}

/// A tile that tells when it is deleted.
class CountedTile : public Corvane::GeoImage
{
public:
    explicit CountedTile(int* counter, double left = 0.0, double top = 0.0, double right = 0.0,
                         double bottom = 0.0)
        : GeoImage(1, 1, left, top, right, bottom, QImage::Format_ARGB32, nullptr),
          deletions(counter)
    {
    }
    ~CountedTile() override { ++*deletions; }

private:
    int* deletions;
};

/// A tiled layer whose tiles are of one colour each and made at once, without a file or a server.
/// What is called on the driving thread and on the pool is written down.
class PlainTiledLayer : public Corvane::Map::ITiledLayer
{
public:
    PlainTiledLayer(int columns, int rows, double cellSizeX, double cellSizeY,
                    const QPointF& origin = QPointF(0.0, 0.0))
        : width(columns),
          height(rows),
          worldPerPixelX(cellSizeX),
          worldPerPixelY(cellSizeY),
          bounds(origin, QSizeF(columns * cellSizeX, rows * cellSizeY))
    {
    }
    virtual ~PlainTiledLayer() { waitForRequests(); }

    Corvane::Map::LayerLevels& pyramid() { return levels; }

    QString getTileUrl(unsigned int level, unsigned int tx, unsigned int ty, unsigned int tileWidth,
                       unsigned int tileHeight, double tlx, double tly, double brx,
                       double bry) override
    {
        const QString url = QStringLiteral("tile/%1/%2/%3").arg(level).arg(tx).arg(ty);
        calls.add(QStringLiteral("url %1 %2x%3 %4,%5 %6,%7")
                      .arg(url)
                      .arg(tileWidth)
                      .arg(tileHeight)
                      .arg(tlx)
                      .arg(tly)
                      .arg(brx)
                      .arg(bry));
        return url;
    }
    int getWidth() override { return width; }
    int getHeight() override { return height; }
    double getWorldPerPixelX() override { return worldPerPixelX; }
    double getWorldPerPixelY() override { return worldPerPixelY; }
    QRectF getBounds() override { return bounds; }
    void tileReady(Corvane::Map::ITileRequest* request) override;
    void tileFailed(Corvane::Map::ITileRequest* request) override
    {
        results.add(QStringLiteral("failed ") + request->getKey());
    }
    Corvane::Map::ITileRequest* createTileRequest(const QString& key, const QString& url,
                                                  unsigned int level, unsigned int tx,
                                                  unsigned int ty, double tlx, double tly,
                                                  double brx, double bry) override;
    QString getTileLayerId() override { return id; }

    int width;
    int height;
    double worldPerPixelX;
    double worldPerPixelY;
    QRectF bounds;
    QString id = QStringLiteral("plain");
    int tileSize = 256;
    Gate* gate = nullptr; // where each tile waits while it is made
    SharedLog calls;      // of the driving thread
    SharedLog made;       // keys, as the pool makes them
    SharedLog results;    // callbacks
    std::atomic<int> requestsDeleted{0};
};

class PlainTileRequest : public Corvane::Map::ITileRequest
{
public:
    PlainTileRequest(PlainTiledLayer* source, const QString& tileKey, unsigned int levelNumber,
                     unsigned int column, unsigned int row, double left, double top, double right,
                     double bottom)
        : ITileRequest(source, tileKey, levelNumber, column, row,
                       static_cast<unsigned int>(source->tileSize),
                       static_cast<unsigned int>(source->tileSize), left, top, right, bottom),
          plainLayer(source)
    {
    }
    ~PlainTileRequest() override
    {
        delete undelivered;
        ++plainLayer->requestsDeleted;
    }

    bool processTile() override
    {
        plainLayer->made.add(key);
        if (plainLayer->gate) {
            plainLayer->gate->pass();
        }
        if (cancelled) {
            return false;
        }
        image = newTile(plainLayer->tileSize, tileColour(level, x, y), tlx, tly, brx, bry);
        undelivered = image;
        return true;
    }

    void markDelivered() { undelivered = nullptr; }

private:
    PlainTiledLayer* plainLayer;
    // owned: the tile of a request that was cancelled between the making and the delivery
    Corvane::GeoImage* undelivered = nullptr;
};

inline Corvane::Map::ITileRequest*
PlainTiledLayer::createTileRequest(const QString& key, const QString& url, unsigned int level,
                                   unsigned int tx, unsigned int ty, double tlx, double tly,
                                   double brx, double bry)
{
    calls.add(QStringLiteral("create %1 %2 %3:%4,%5 %6,%7 %8,%9")
                  .arg(key, url)
                  .arg(level)
                  .arg(tx)
                  .arg(ty)
                  .arg(tlx)
                  .arg(tly)
                  .arg(brx)
                  .arg(bry));
    return new PlainTileRequest(this, key, level, tx, ty, tlx, tly, brx, bry);
}

inline void PlainTiledLayer::tileReady(Corvane::Map::ITileRequest* request)
{
    results.add(QStringLiteral("ready ") + request->getKey());
    static_cast<PlainTileRequest*>(request)->markDelivered();
    levels.value(static_cast<int>(request->getLayerLevel()))
        ->addTile(request->getKey(), request->getImage());
}
