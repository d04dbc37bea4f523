#include <plugins/imageserver/ImageGrid.h>

#include <plugins/common/HttpFetch.h>
#include <plugins/common/PoolActivity.h>
#include <plugins/imageserver/ImageServerAddress.h>

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>

namespace Corvane::Map {

namespace {

constexpr int leastTileSize = 16; // pixels
constexpr int mostTileSize = 2048;
constexpr int mostLevels = 31;
constexpr int largestSide = 1 << 30;
constexpr int mostCoarsestTiles = 8; // of a side
constexpr double farthest = 1e15;    // from the origin of the world
constexpr int longestText = 500;     // letters
constexpr int mostGridBytes = 1 << 20;
constexpr int okStatus = 200;
constexpr int unauthorized = 401;
constexpr int notFound = 404;

QSize sizeFrom(const QJsonValue& value)
{
    const QJsonArray pair = value.toArray();
    return QSize(pair.at(0).toInt(), pair.at(1).toInt());
}

// Each level has half the size of the one before, rounded up; the server counts from the coarsest.
bool isPyramid(const ImageGrid& grid, const QJsonArray& levels)
{
    for (int i = 0; i < grid.levels; ++i) {
        const QJsonObject level = levels.at(grid.levels - 1 - i).toObject();
        if (level.value(QLatin1String("z")).toInt(-1) != grid.levels - 1 - i ||
            sizeFrom(level.value(QLatin1String("size"))) !=
                grid.sizeOf(static_cast<unsigned int>(i)))
        {
            return false;
        }
    }
    return true;
}

// Whether numbers of the world tell every pixel of a side from the next one.
bool tellsPixels(double origin, double cell, int pixels)
{
    const double end = origin + cell * pixels;
    return std::abs(origin) < farthest && std::abs(end) < farthest && origin + cell != origin &&
           end - cell != end;
}

// A view of the whole image asks for all tiles of the coarsest level.
bool endsCoarse(const ImageGrid& grid)
{
    const QSize coarsest = grid.sizeOf(static_cast<unsigned int>(grid.levels - 1));
    return std::max(coarsest.width(), coarsest.height()) <= mostCoarsestTiles * grid.tileSize;
}

bool isUsable(const ImageGrid& grid)
{
    return grid.cellX > 0.0 && grid.cellY < 0.0 && grid.size.width() > 0 &&
           grid.size.height() > 0 && grid.size.width() <= largestSide &&
           grid.size.height() <= largestSide && grid.tileSize >= leastTileSize &&
           grid.tileSize <= mostTileSize && grid.levels >= 1 && grid.levels <= mostLevels &&
           tellsPixels(grid.originX, grid.cellX, grid.size.width()) &&
           tellsPixels(grid.originY, grid.cellY, grid.size.height()) && endsCoarse(grid);
}

// A path on the same server, so that credentials go nowhere else.
bool isOwnPath(const QString& tiles)
{
    return tiles.startsWith(QLatin1Char('/')) && !tiles.startsWith(QLatin1String("//")) &&
           tiles.contains(QLatin1String("{z}")) && tiles.contains(QLatin1String("{x}")) &&
           tiles.contains(QLatin1String("{y}"));
}

QString refusal(int status, const QByteArray& authorization)
{
    if (status == unauthorized) {
        return authorization.isEmpty()
                   ? QCoreApplication::translate("ImageGrid",
                                                 "the server asks for a user and a password")
                   : QCoreApplication::translate(
                         "ImageGrid", "the server does not accept the user and password");
    }
    return status == notFound
               ? QCoreApplication::translate("ImageGrid", "the server has no such image")
               : QCoreApplication::translate("ImageGrid", "the server answers with status %1")
                     .arg(status);
}

} // namespace

std::shared_ptr<ImageGrid> ImageGrid::parse(const QByteArray& json, QString* error)
{
    const QJsonObject object =
        json.size() <= mostGridBytes ? QJsonDocument::fromJson(json).object() : QJsonObject();
    const auto text = [&object](const char* name) {
        return object.value(QLatin1String(name)).toString().left(longestText);
    };
    const QJsonArray levels = object.value(QLatin1String("levels")).toArray();
    const QJsonArray origin = object.value(QLatin1String("origin")).toArray();
    const QJsonArray cells = object.value(QLatin1String("cellSize")).toArray();
    auto grid = std::make_shared<ImageGrid>();
    grid->version = object.value(QLatin1String("version")).toString();
    grid->tiles = object.value(QLatin1String("tiles")).toString();
    grid->size = sizeFrom(object.value(QLatin1String("size")));
    grid->tileSize = object.value(QLatin1String("tileSize")).toInt();
    grid->levels = levels.size();
    grid->originX = origin.at(0).toDouble();
    grid->originY = origin.at(1).toDouble();
    grid->cellX = cells.at(0).toDouble();
    grid->cellY = cells.at(1).toDouble();
    grid->epsg = object.value(QLatin1String("epsg")).toInt();
    grid->coordSysName = text("coordinateSystem");
    grid->cellType = text("cellType");
    grid->colorSpace = text("colorSpace");
    grid->bands = std::max(object.value(QLatin1String("bands")).toInt(), 1);
    grid->opacity = object.value(QLatin1String("opacity")).toBool();
    if (!isUsable(*grid) || !isOwnPath(grid->tiles) || !isPyramid(*grid, levels)) {
        *error = QCoreApplication::translate("ImageGrid",
                                             "the server does not describe the image's grid");
        return nullptr;
    }
    return grid;
}

QSize ImageGrid::sizeOf(unsigned int level) const
{
    const auto reduced = [level](int pixels) {
        return static_cast<int>((qint64{pixels} + (qint64{1} << level) - 1) >> level);
    };
    return QSize(reduced(size.width()), reduced(size.height()));
}

QSize ImageGrid::sizeOfTile(unsigned int level, unsigned int x, unsigned int y) const
{
    const QSize all = sizeOf(level);
    const qint64 left = qint64{x} * tileSize;
    const qint64 top = qint64{y} * tileSize;
    return QSize(static_cast<int>(std::clamp<qint64>(all.width() - left, 0, tileSize)),
                 static_cast<int>(std::clamp<qint64>(all.height() - top, 0, tileSize)));
}

QRectF ImageGrid::bounds() const
{
    return QRectF(originX, originY, cellX * size.width(), cellY * size.height());
}

QByteArray ImageGrid::tileTarget(unsigned int level, unsigned int x, unsigned int y) const
{
    QByteArray target = tiles.toUtf8();
    target.replace("{z}", QByteArray::number(levels - 1 - static_cast<int>(level)));
    target.replace("{x}", QByteArray::number(x));
    target.replace("{y}", QByteArray::number(y));
    target.replace("{format}", "png");
    return target;
}

// On a pool thread.
std::shared_ptr<GridAnswer> askForGrid(const ImageServerAddress& address,
                                       const QByteArray& authorization, int deadline,
                                       const std::atomic<bool>& abandoned, QString* error)
{
    FetchOrder order;
    order.url = address.gridUrl().toEncoded();
    order.userAgent = userAgentWith(QString());
    order.deadline = deadline;
    if (!authorization.isEmpty()) {
        order.headers.push_back("Authorization: " + authorization);
    }
    const FetchResult result =
        fetch(order, [&abandoned] { return abandoned || PoolActivity::isEnding(); });
    auto answer = std::make_shared<GridAnswer>();
    answer->status = result.status;
    if (!result.failure.isEmpty()) {
        *error = result.failure;
    } else if (result.status != okStatus) {
        *error = refusal(result.status, authorization);
    } else {
        answer->grid = ImageGrid::parse(result.body, error);
    }
    return answer;
}

} // namespace Corvane::Map
