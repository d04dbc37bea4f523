#include <server/Pictures.h>

#include <server/PublishedImage.h>

#include <plugins/raster/BandPlan.h>
#include <plugins/raster/RasterSource.h>
#include <plugins/raster/TileReader.h>

#include <corvane/core/Application.h>

#include <QBuffer>
#include <QDateTime>
#include <QImage>

#include <algorithm>

namespace Corvane::Server {

namespace {

constexpr int mostOpenImages = 32;
constexpr int mostStoredBytes = 64 << 20;
constexpr std::chrono::seconds longestRender(60);
constexpr std::chrono::seconds renderGrace(5);
constexpr int pngQuality = 80; // the quickest packing but one
constexpr int jpegQuality = 90;

QByteArray encoded(const QImage& picture, PictureFormat format)
{
    const bool jpeg = format == PictureFormat::Jpeg;
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    picture.save(&buffer, jpeg ? "JPEG" : "PNG", jpeg ? jpegQuality : pngQuality);
    return bytes;
}

QByteArray nameOf(const PublishedImage& image, int level, const QRect& pixels, const QSize& size,
                  PictureFormat format)
{
    return QStringLiteral("%1 %2 %3 %4 %5 %6 %7 ")
               .arg(image.stamp)
               .arg(level)
               .arg(pixels.x())
               .arg(pixels.y())
               .arg(size.width())
               .arg(size.height())
               .arg(static_cast<int>(format))
               .toUtf8() +
           image.path.toUtf8();
}

} // namespace

Pictures::Pictures(int atOnce)
    : images(mostOpenImages),
      store(mostStoredBytes, longestRender + renderGrace),
      turns(atOnce, longestRender, renderGrace)
{
}

QByteArray Pictures::tile(const PublishedImage& image, int level, const QPoint& tile,
                          PictureFormat format, QString* error, bool* isBusy)
{
    const int edge = static_cast<int>(image.facts.tileSize);
    const QRect all(QPoint(0, 0), image.sizeOf(level));
    const QRect pixels = QRect(tile * edge, QSize(edge, edge)) & all;
    return make(image, level, pixels, pixels.size(), format, error, isBusy);
}

QByteArray Pictures::overview(const PublishedImage& image, const QSize& box, PictureFormat format,
                              QString* error, bool* isBusy)
{
    const QSize full = image.facts.size;
    const bool fits = full.width() <= box.width() && full.height() <= box.height();
    const QSize size =
        (fits ? full : full.scaled(box, Qt::KeepAspectRatio)).expandedTo(QSize(1, 1));
    int level = 0;
    const auto lastLevel = static_cast<int>(image.facts.levels.size()) - 1;
    while (level < lastLevel && image.sizeOf(level + 1).width() >= size.width() &&
           image.sizeOf(level + 1).height() >= size.height() && image.sizeOf(level) != size)
    {
        ++level;
    }
    return make(image, level, QRect(QPoint(0, 0), image.sizeOf(level)), size, format, error,
                isBusy);
}

QByteArray Pictures::make(const PublishedImage& image, int level, const QRect& pixels,
                          const QSize& size, PictureFormat format, QString* error, bool* isBusy)
{
    *isBusy = false;
    error->clear();
    const QByteArray bytes = store.get(nameOf(image, level, pixels, size, format), [&] {
        const RenderTurns::Turn turn(turns, image.path);
        QImage picture;
        if (turn.isTaken()) {
            const std::shared_ptr<Map::RasterSource> source = images.get(image, error);
            if (!source) {
                return QByteArray();
            }
            const Map::RasterFacts& facts = source->facts();
            const Map::TileReader reader(source, Map::planFor(facts, Map::usualBands(facts)),
                                         &turn.isOver());
            picture = reader.read(static_cast<unsigned int>(level), pixels, error);
        }
        if (turn.isOver()) {
            error->clear();
        } else if (picture.isNull() && error->isEmpty()) {
            *error = QStringLiteral("GDAL does not say why");
        }
        if (picture.isNull()) {
            return QByteArray();
        }
        if (picture.size() != size) {
            picture = picture.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        }
        return encoded(picture, format);
    });
    if (bytes.isEmpty() && error->isEmpty()) {
        *isBusy = true;
        *error = QStringLiteral("the picture takes too long at the moment");
    } else if (bytes.isEmpty()) {
        logFailure(image, *error);
        *error = QStringLiteral("the image cannot be read");
    }
    return bytes;
}

// Once for a version of an image, however often it is asked for.
void Pictures::logFailure(const PublishedImage& image, const QString& reason)
{
    {
        const std::lock_guard<std::mutex> guard(failureMutex);
        QString& known = failures[image.path];
        if (known == image.stamp) {
            return;
        }
        known = image.stamp;
    }
    Application::logMessage(QStringLiteral("cannot read %1: %2").arg(image.path, reason.trimmed()),
                            LogLevel::Warning, QDateTime::currentDateTime());
}

} // namespace Corvane::Server
