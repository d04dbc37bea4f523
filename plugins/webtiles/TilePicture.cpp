#include <plugins/webtiles/TilePicture.h>

#include <QBuffer>
#include <QCoreApplication>
#include <QImageReader>

#include <algorithm>
#include <array>

namespace Corvane::Map {

namespace {

constexpr int endSearch = 1024; // bytes before the end, where some servers leave a remark

QString tr(const char* text)
{
    return QCoreApplication::translate("TilePicture", text);
}

bool mayBePicture(const QByteArray& contentType)
{
    const QByteArray type = contentType.split(';').first().trimmed().toLower();
    return type.isEmpty() || type.startsWith("image/") || type.endsWith("/octet-stream");
}

bool isTileFormat(const QByteArray& format)
{
    static constexpr std::array<const char*, 5> formats = {"png", "jpeg", "jpg", "webp", "gif"};
    return std::any_of(formats.begin(), formats.end(),
                       [&format](const char* known) { return format == known; });
}

// Decoders make a picture of half a file; its end tells.
bool isWhole(const QByteArray& body, const QByteArray& format)
{
    const QByteArray end = body.right(endSearch);
    if (format == "png") {
        return end.contains("IEND");
    }
    return !format.startsWith("jp") || end.contains("\xff\xd9");
}

} // namespace

QImage decodeTile(const QByteArray& body, const QByteArray& contentType, int tileSize,
                  QString* error)
{
    if (!mayBePicture(contentType)) {
        *error = tr("the server sent %1 instead of a picture").arg(QString::fromUtf8(contentType));
        return QImage();
    }
    QByteArray bytes = body;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    const QByteArray format = reader.format();
    if (!isTileFormat(format)) {
        *error = tr("what the server sent is no picture");
        return QImage();
    }
    const QSize size =
        reader.size(); // before the pixels: a small file may unpack to a huge picture
    if (size != QSize(tileSize, tileSize) && size != QSize(2 * tileSize, 2 * tileSize)) {
        *error = tr("the picture has %1 x %2 pixels instead of %3 x %3")
                     .arg(size.width())
                     .arg(size.height())
                     .arg(tileSize);
        return QImage();
    }
    const QImage image = isWhole(body, format) ? reader.read() : QImage();
    if (image.isNull()) {
        *error = tr("the picture is damaged");
        return QImage();
    }
    return image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                         : QImage::Format_RGB32);
}

} // namespace Corvane::Map
