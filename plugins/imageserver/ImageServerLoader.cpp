#include <plugins/imageserver/ImageServerLoader.h>

#include <plugins/common/TileCache.h>
#include <plugins/imageserver/ImageServerSource.h>

#include <corvane/map/GeoImage.h>

#include <QCoreApplication>

#include <algorithm>
#include <utility>

namespace Corvane::Map {

namespace {

constexpr int otherVersion = 409; // status

} // namespace

ImageServerLoader::ImageServerLoader(QObject* tiledLayer,
                                     std::shared_ptr<ImageServerSource> imageSource)
    : ServedTileLink(tiledLayer),
      source(std::move(imageSource))
{
}

ImageServerLoader::~ImageServerLoader() = default;

SourceHealth& ImageServerLoader::health() const
{
    return source->health;
}

bool ImageServerLoader::isKnownEmpty(const TileId& tile) const
{
    return static_cast<int>(tile.level) >= source->grid->levels ||
           source->grid->sizeOfTile(tile.level, tile.x, tile.y).isEmpty();
}

QUrl ImageServerLoader::urlOf(const TileId& tile) const
{
    return source->server.resolved(
        QUrl::fromEncoded(source->grid->tileTarget(tile.level, tile.x, tile.y)));
}

const ImageGrid& ImageServerLoader::grid() const
{
    return *source->grid;
}

TileAnswer ImageServerLoader::pictureOf(const TileId& tile, const std::function<bool()>& isUnwanted)
{
    const bool paused = health().isPaused();
    TileAnswer answer = paused ? findTile(urlOf(tile)) : fetchTile(orderFor(tile), isUnwanted);
    judge(tile, answer);
    if (paused && answer.failure.isEmpty()) {
        answer.failure = health().stateText();
    }
    return answer;
}

TileOrder ImageServerLoader::orderFor(const TileId& tile) const
{
    return {urlOf(tile), source->userAgent, source->authorization, source->deadline};
}

// The grid named every tile, so one that is not there is a failure, and so is one of another size.
void ImageServerLoader::judge(const TileId& tile, TileAnswer& answer)
{
    const QSize expected = source->grid->sizeOfTile(tile.level, tile.x, tile.y);
    if (answer.kind == TileAnswer::Kind::Failed && answer.picture.size() != expected) {
        answer.picture = QImage(); // it stands in for nothing
    }
    if (answer.kind == TileAnswer::Kind::Empty) {
        answer.kind = TileAnswer::Kind::Failed;
        answer.failure =
            QCoreApplication::translate("ImageServerLoader", "the server has the image no more");
    } else if (answer.kind == TileAnswer::Kind::Picture && answer.picture.size() != expected) {
        TileCache::instance().remove(urlOf(tile)); // else it would come from there for ever
        answer.kind = TileAnswer::Kind::Failed;
        answer.failure = QCoreApplication::translate(
                             "ImageServerLoader", "the tile has %1 x %2 pixels instead of %3 x %4")
                             .arg(answer.picture.width())
                             .arg(answer.picture.height())
                             .arg(expected.width())
                             .arg(expected.height());
        answer.picture = QImage();
    } else if (answer.status == otherVersion) {
        answer.failure =
            QCoreApplication::translate("ImageServerLoader", "the image has changed on the server");
        noteChange();
    }
}

// The last tiles of a row or column end where the image ends.
std::unique_ptr<GeoImage> ImageServerLoader::placed(const TileId& tile, QImage pixels) const
{
    const ImageGrid& grid = *source->grid;
    const QRectF bounds = grid.bounds();
    const double scale = static_cast<double>(qint64{1} << tile.level);
    const double width = grid.cellX * grid.tileSize * scale;
    const double height = grid.cellY * grid.tileSize * scale;
    const double left = bounds.left() + tile.x * width;
    const double top = bounds.top() + tile.y * height;
    auto image = std::make_unique<GeoImage>(0, 0, left, top, std::min(left + width, bounds.right()),
                                            std::max(top + height, bounds.bottom()),
                                            QImage::Format_RGB32, nullptr);
    static_cast<QImage&>(*image) = std::move(pixels);
    return image;
}

} // namespace Corvane::Map
