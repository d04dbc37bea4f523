#include <corvane/tiles/HttpTileRequest.h>

#include <corvane/core/Network.h>
#include <corvane/map/GeoImage.h>

#include <QBrush>
#include <QColor>
#include <QImage>
#include <QPainter>

#include <memory>
#include <utility>

namespace Corvane::Map {

namespace {

const QColor failedColour(255, 0, 0, 255);

std::unique_ptr<QImage> fetchTileImage(const QString& url)
{
    return std::unique_ptr<QImage>(Network::getImage(url, false));
}

// The image of a request that was cancelled while it fetched stays allocated, without its pixels;
// tests/lsan.supp knows it by the function above.
void abandon(std::unique_ptr<QImage> decoded)
{
    *decoded.release() = QImage();
}

} // namespace

HttpTileRequest::HttpTileRequest(ITiledLayer* tiledLayer, QString tileKey, unsigned int levelNumber,
                                 unsigned int column, unsigned int row, QString tileUrl,
                                 unsigned int tileWidth, unsigned int tileHeight, double worldLeft,
                                 double worldTop, double worldRight, double worldBottom)
    : ITileRequest(tiledLayer, std::move(tileKey), levelNumber, column, row, tileWidth, tileHeight,
                   worldLeft, worldTop, worldRight, worldBottom),
      url(std::move(tileUrl))
{
}

HttpTileRequest::~HttpTileRequest() = default;

// On a pool thread.
bool HttpTileRequest::processTile()
{
    std::unique_ptr<QImage> decoded = fetchTileImage(url);
    if (cancelled) {
        abandon(std::move(decoded));
        return false;
    }
    return decoded->isNull() ? makeFailedTile() : makeTile(*decoded);
}

void HttpTileRequest::cancel()
{
    ITileRequest::cancel();
}

// A failed tile is cached like any other, so nobody asks for it again while its level lives.
// HttpTileRequestTest::aTileThatCannotBeDecodedIsRedAndReady holds it. On a pool thread.
bool HttpTileRequest::makeFailedTile()
{
    if (cancelled) {
        image = nullptr;
        return false;
    }
    image = newTile(static_cast<int>(width), static_cast<int>(height));
    QPainter painter(image);
    painter.fillRect(image->rect(), QBrush(failedColour));
    painter.end();
    return true;
}

// On a pool thread.
bool HttpTileRequest::makeTile(const QImage& decoded)
{
    if (cancelled) {
        image = nullptr;
        return false;
    }
    // servers return short tiles at the right and bottom edges: a pixel keeps its world size
    if (static_cast<unsigned int>(decoded.width()) != width) {
        brx = (brx - tlx) * decoded.width() / width + tlx;
    }
    if (static_cast<unsigned int>(decoded.height()) != height) {
        bry = (bry - tly) * decoded.height() / height + tly;
    }
    image = newTile(decoded.width(), decoded.height());
    QPainter painter;
    if (painter.begin(image)) {
        painter.drawImage(0, 0, decoded);
        painter.end();
    }
    return true;
}

GeoImage* HttpTileRequest::newTile(int columns, int rows) const
{
    return new GeoImage(columns, rows, tlx, tly, brx, bry, QImage::Format_ARGB32, nullptr);
}

} // namespace Corvane::Map
