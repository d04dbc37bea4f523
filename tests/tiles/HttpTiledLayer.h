#pragma once

#include <corvane/tiles/HttpTileRequest.h>
#include <tests/support/Fetching.h>
#include <tests/support/HttpTestServer.h>
#include <tests/tiles/PlainTiledLayer.h>

#include <QString>
#include <QStringList>

/// A tiled layer whose tiles come from a server, by the stock request.
class HttpTiledLayer : public PlainTiledLayer
{
public:
    HttpTiledLayer(const HttpTestServer& server, int columns, int rows, int edge)
        : PlainTiledLayer(columns, rows, 1.0, -1.0, QPointF(0.0, rows)),
          base(server.url(QStringLiteral("/tile")))
    {
        tileSize = edge;
    }
    // the requests call back what is gone after this
    ~HttpTiledLayer() override { waitForRequests(); }

    QString getTileUrl(unsigned int level, unsigned int tx, unsigned int ty, unsigned int,
                       unsigned int, double, double, double, double) override
    {
        return QStringLiteral("%1/%2/%3/%4").arg(base).arg(level).arg(tx).arg(ty);
    }
    Corvane::Map::ITileRequest* createTileRequest(const QString& key, const QString& url,
                                                  unsigned int level, unsigned int tx,
                                                  unsigned int ty, double tlx, double tly,
                                                  double brx, double bry) override
    {
        const auto edge = static_cast<unsigned int>(tileSize);
        return new Corvane::Map::HttpTileRequest(this, key, level, tx, ty, url, edge, edge, tlx,
                                                 tly, brx, bry);
    }
    void tileReady(Corvane::Map::ITileRequest* request) override
    {
        results.add(QStringLiteral("ready ") + request->getKey());
        levels.value(static_cast<int>(request->getLayerLevel()))
            ->addTile(request->getKey(), request->getImage());
    }

    QString base;
};

/// Answers "/tile/<level>/<column>/<row>" with a PNG of the tile's colour, as many pixels wide and
/// high as the image reaches into the tile.
inline HttpTestServer::Handler colouredTiles(int columns, int rows, int edge)
{
    return [=](const HttpRequest& request) {
        const QStringList parts = QString::fromStdString(request.target).split('/');
        const unsigned int level = parts.at(2).toUInt();
        const unsigned int x = parts.at(3).toUInt();
        const unsigned int y = parts.at(4).toUInt();
        const int width = qMin(edge, (columns >> level) - static_cast<int>(x) * edge);
        const int height = qMin(edge, (rows >> level) - static_cast<int>(y) * edge);
        QImage tile(width, height, QImage::Format_ARGB32);
        tile.fill(tileColour(level, x, y));
        return HttpReply::data(encodedImage(tile), "image/png");
    };
}
