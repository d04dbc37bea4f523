#pragma once

#include <QByteArray>
#include <QRectF>
#include <QSize>
#include <QString>

#include <atomic>
#include <memory>

namespace Corvane::Map {

struct ImageServerAddress;

/// What a server says of an image: its grid and how its tiles are asked for. Does not change.
struct ImageGrid
{
    /// From the JSON text; null with the reason in error where it does not make a pyramid.
    static std::shared_ptr<ImageGrid> parse(const QByteArray& json, QString* error);

    QSize sizeOf(unsigned int level) const;
    /// The pixels of a tile; the last ones of a row or column are smaller.
    QSize sizeOfTile(unsigned int level, unsigned int x, unsigned int y) const;
    QRectF bounds() const; ///< height is negative
    /// The encoded path and query of a tile on the server; level 0 is the full resolution.
    QByteArray tileTarget(unsigned int level, unsigned int x, unsigned int y) const;

    QString version; ///< another one when the image has changed
    QString tiles;   ///< path of a tile, with {z}, {x}, {y} and {format}
    QSize size;
    int tileSize = 0;
    int levels = 0; ///< level 0 has the full resolution, and the last one is the coarsest
    double originX = 0.0;
    double originY = 0.0;
    double cellX = 1.0;
    double cellY = -1.0;
    int epsg = 0;
    QString coordSysName;
    QString cellType;
    QString colorSpace;
    int bands = 0;
    bool opacity = false;
};

/// What came of asking for a grid.
struct GridAnswer
{
    std::shared_ptr<ImageGrid> grid; ///< null where it failed
    int status = 0;                  ///< of the server's answer; 0 without one
};

/// Asks the server; the reason of a failure in error. Stops early once abandoned is true. deadline in
/// milliseconds. On a pool thread.
std::shared_ptr<GridAnswer> askForGrid(const ImageServerAddress& address,
                                       const QByteArray& authorization, int deadline,
                                       const std::atomic<bool>& abandoned, QString* error);

} // namespace Corvane::Map
