#pragma once

#include <tests/support/HttpTestServer.h>

#include <plugins/common/TiledRasterLayer.h>

#include <QBuffer>
#include <QByteArray>
#include <QColor>
#include <QImage>
#include <QSize>
#include <QString>

#include <cstdio>
#include <functional>
#include <utility>

namespace Corvane::Tests {

/// The numbers of a tile, as a URL "/zoom/column/row.png" has them.
struct TileNumbers
{
    int zoom = -1;
    unsigned int x = 0;
    unsigned int y = 0;

    static TileNumbers of(const HttpRequest& request)
    {
        TileNumbers tile;
        if (std::sscanf(request.target.c_str(), "/%d/%u/%u.png", &tile.zoom, &tile.x, &tile.y) != 3)
        {
            tile.zoom = -1;
        }
        return tile;
    }
    /// What its picture is filled with: it tells which tile was painted.
    QRgb colour() const
    {
        return qRgb(20 + zoom * 10, int(x * 37 % 200) + 30, int(y * 53 % 200) + 30);
    }
};

inline QByteArray pngOf(QRgb colour, const QSize& size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(colour);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

inline QByteArray pngOf(QRgb colour, int edge = 256)
{
    return pngOf(colour, QSize(edge, edge));
}

inline HttpReply tileReply(const TileNumbers& tile, int edge = 256)
{
    return HttpReply::data(pngOf(tile.colour(), edge), "image/png");
}

/// A server of tiles.
class TileServer : public HttpTestServer
{
public:
    using TileHandler = std::function<HttpReply(const TileNumbers& tile)>;

    TileServer()
    {
        onTile([](const TileNumbers& tile) { return tileReply(tile); });
    }
    /// On a server thread.
    void onTile(TileHandler handler)
    {
        onOther([handler = std::move(handler)](const HttpRequest& request) {
            const TileNumbers tile = TileNumbers::of(request);
            return tile.zoom < 0 ? HttpReply::withStatus(400, "no tile") : handler(tile);
        });
    }
    QString tiles() const { return url("/{z}/{x}/{y}.png"); }
};

} // namespace Corvane::Tests
