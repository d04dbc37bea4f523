#pragma once

#include <corvane/core/Export.h>
#include <corvane/tiles/ITileRequest.h>

#include <QString>

class QImage;

namespace Corvane::Map {

/// The stock tile request: fetches one tile of a plain URL with the blocking getter, on a pool
/// thread. What cannot be fetched or decoded becomes an opaque red tile, so tileFailed is never
/// called for it. It holds its pool thread for as long as the server takes.
class CORVANE_EXPORT HttpTileRequest : public ITileRequest
{
public:
    /// width and height are the tile's expected size in pixels; an answer of another size keeps the
    /// world size of its pixels and the rectangle's top-left corner.
    HttpTileRequest(ITiledLayer* layer, QString key, unsigned int level, unsigned int x,
                    unsigned int y, QString url, unsigned int width, unsigned int height,
                    double tlx, double tly, double brx, double bry);
    HttpTileRequest(const HttpTileRequest& other) = default;
    HttpTileRequest& operator=(const HttpTileRequest& other) = default;
    ~HttpTileRequest() override;

    /// False only where the request was cancelled.
    bool processTile() override;
    /// Sets the flag; a fetch under way goes on to its end.
    void cancel() override;

private:
    bool makeFailedTile();
    bool makeTile(const QImage& decoded);
    GeoImage* newTile(int columns, int rows) const;

    QString url;
};

} // namespace Corvane::Map
