#include <server/TileInterface.h>

#include <server/Exchange.h>
#include <server/ImageFolder.h>
#include <server/Pictures.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QUrl>

namespace Corvane::Server {

namespace {

const QLatin1String prefix("/tiles");

// A tile that names its version never changes; others are asked for again.
const char* const forEver = "max-age=31536000, immutable";
const char* const askAgain = "no-cache";

QJsonArray pair(double x, double y)
{
    return {x, y};
}

QSize tilesOf(const PublishedImage& image, int level)
{
    const QSize size = image.sizeOf(level);
    const int edge = static_cast<int>(image.facts.tileSize);
    return QSize((size.width() - 1) / edge + 1, (size.height() - 1) / edge + 1);
}

QJsonObject levelOf(const PublishedImage& image, int z)
{
    const int level = image.levels - 1 - z;
    const QSize size = image.sizeOf(level);
    const QSize count = tilesOf(image, level);
    const double scale = static_cast<double>(qint64{1} << level);
    return {
        {QStringLiteral("z"), z},
        {QStringLiteral("size"), pair(size.width(), size.height())},
        {QStringLiteral("tiles"), pair(count.width(), count.height())},
        {QStringLiteral("cellSize"), pair(image.facts.cellX * scale, image.facts.cellY * scale)}};
}

QByteArray etagOf(const PublishedImage& image)
{
    return '"' + image.stamp.toLatin1() + '"';
}

} // namespace

TileInterface::TileInterface(ImageFolder& folder, Pictures& pictureMaker)
    : images(folder),
      pictures(pictureMaker)
{
}

Reply TileInterface::answer(const Request& request) const
{
    QString path = request.path.mid(prefix.size());
    if (path.endsWith(QLatin1Char('/'))) {
        path.chop(1);
    }
    const std::shared_ptr<const PublishedImage> image = images.find(path);
    return image ? grid(*image) : tile(request, path);
}

Reply TileInterface::grid(const PublishedImage& image) const
{
    const Map::RasterFacts& facts = image.facts;
    QJsonArray levels;
    for (int z = 0; z < image.levels; ++z) {
        levels.append(levelOf(image, z));
    }
    QJsonArray formats{QStringLiteral("png")};
    if (image.isOpaque) {
        formats.append(QStringLiteral("jpg"));
    }
    const QString address = QString::fromLatin1(QUrl::toPercentEncoding(prefix + image.path, "/")) +
                            QStringLiteral("/{z}/{x}/{y}.{format}?v=") + image.stamp;
    QJsonObject answer{
        {QStringLiteral("path"), image.path},
        {QStringLiteral("version"), image.stamp},
        {QStringLiteral("tiles"), address},
        {QStringLiteral("formats"), formats},
        {QStringLiteral("size"), pair(facts.size.width(), facts.size.height())},
        {QStringLiteral("tileSize"), static_cast<int>(facts.tileSize)},
        {QStringLiteral("origin"), pair(facts.bounds.left(), facts.bounds.top())},
        {QStringLiteral("cellSize"), pair(facts.cellX, facts.cellY)},
        {QStringLiteral("geotransform"),
         QJsonArray{facts.bounds.left(), facts.cellX, 0.0, facts.bounds.top(), 0.0, facts.cellY}},
        {QStringLiteral("georeferenced"), facts.isGeoreferenced},
        {QStringLiteral("epsg"), facts.epsg},
        {QStringLiteral("coordinateSystem"), facts.coordSysName},
        {QStringLiteral("units"), image.units},
        {QStringLiteral("bands"), static_cast<int>(facts.bands.size())},
        {QStringLiteral("cellType"), image.cellType()},
        {QStringLiteral("colorSpace"), image.colorSpace()},
        {QStringLiteral("opacity"), image.hasOpacity()},
        {QStringLiteral("levels"), levels}};
    return Reply::data(QJsonDocument(answer).toJson(QJsonDocument::Compact),
                       "application/json; charset=utf-8")
        .header("Cache-Control", askAgain)
        .header("ETag", etagOf(image));
}

Reply TileInterface::tile(const Request& request, const QString& path) const
{
    static const QRegularExpression shape(
        QStringLiteral("^(.*)/([0-9]{1,2})/([0-9]{1,9})/([0-9]{1,9})\\.(png|jpg)$"),
        QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = shape.match(path);
    const std::shared_ptr<const PublishedImage> image =
        match.hasMatch() ? images.find(match.captured(1)) : nullptr;
    if (!image) {
        return Reply::failure(404, QStringLiteral("there is no image \"%1\"").arg(path));
    }
    const QString version = request.item("v");
    if (!version.isNull() && version != image->stamp) {
        return Reply::failure(409, QStringLiteral("the image has changed"))
            .header("Cache-Control", "no-store");
    }
    const int level = image->levels - 1 - match.captured(2).toInt();
    const QPoint place(match.captured(3).toInt(), match.captured(4).toInt());
    const QSize count = level >= 0 ? tilesOf(*image, level) : QSize(0, 0);
    const bool isThere = place.x() < count.width() && place.y() < count.height();
    if (!isThere) {
        return Reply::failure(404, QStringLiteral("the tile lies outside of the image"));
    }
    const bool jpeg = match.captured(5) == QLatin1String("jpg");
    if (jpeg && !image->isOpaque) {
        return Reply::failure(
            404, QStringLiteral("the image can be transparent: there are .png tiles only"));
    }
    QString error;
    bool isBusy = false;
    const QByteArray bytes = pictures.tile(
        *image, level, place, jpeg ? PictureFormat::Jpeg : PictureFormat::Png, &error, &isBusy);
    if (bytes.isEmpty()) {
        return Reply::failure(isBusy ? 503 : 500, error);
    }
    return Reply::data(bytes, jpeg ? "image/jpeg" : "image/png")
        .header("Cache-Control", version.isNull() ? askAgain : forEver)
        .header("ETag", etagOf(*image));
}

} // namespace Corvane::Server
