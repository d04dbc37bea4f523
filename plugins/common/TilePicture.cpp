#include <plugins/common/TilePicture.h>

#include <plugins/common/JpegPicture.h>

#include <QBuffer>
#include <QCoreApplication>
#include <QImageReader>

#include <algorithm>
#include <array>

namespace Corvane::Map {

namespace {

constexpr int longestEdge = 2048; // pixels: a small file may unpack to a huge picture
constexpr int endSearch = 1024;   // bytes before the end, where some servers leave a remark

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
bool endsWell(const QByteArray& body, const char* end)
{
    return body.right(endSearch).contains(end);
}

bool isTooLarge(const QSize& size, QString* error)
{
    if (std::max(size.width(), size.height()) <= longestEdge) {
        return false;
    }
    *error = QCoreApplication::translate("TilePicture", "the picture is too large, %1 x %2 pixels")
                 .arg(size.width())
                 .arg(size.height());
    return true;
}

QImage decodeJpeg(const QByteArray& body, JpegPicture& jpeg, QString* error)
{
    if (isTooLarge(jpeg.getSize(), error)) {
        return QImage();
    }
    const QImage image = endsWell(body, "\xff\xd9") ? jpeg.decode() : QImage();
    if (image.isNull()) {
        *error = QCoreApplication::translate("TilePicture", "the picture is damaged");
    }
    return image;
}

QImage decodeOther(const QByteArray& body, QString* error)
{
    QByteArray bytes = body;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    const QByteArray format = reader.format();
    if (!isTileFormat(format)) {
        *error = QCoreApplication::translate("TilePicture", "what the server sent is no picture");
        return QImage();
    }
    const QSize size = reader.size(); // before the pixels
    if (isTooLarge(size, error)) {
        return QImage();
    }
    const bool isWhole = (format != "png" || endsWell(body, "IEND")) &&
                         (!format.startsWith("jp") || endsWell(body, "\xff\xd9"));
    const QImage image = !size.isEmpty() && isWhole ? reader.read() : QImage();
    if (image.isNull()) {
        *error = QCoreApplication::translate("TilePicture", "the picture is damaged");
        return QImage();
    }
    return image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                         : QImage::Format_RGB32);
}

} // namespace

QImage decodeTile(const QByteArray& body, const QByteArray& contentType, QString* error)
{
    if (!mayBePicture(contentType)) {
        *error =
            QCoreApplication::translate("TilePicture", "the server sent %1 instead of a picture")
                .arg(QString::fromUtf8(contentType));
        return QImage();
    }
    if (JpegPicture::isJpeg(body)) {
        JpegPicture jpeg(body);
        if (jpeg.canDecode()) {
            return decodeJpeg(body, jpeg, error);
        }
    }
    return decodeOther(body, error);
}

QSizeF shareOfTile(const QSize& picture, int tileSize)
{
    const int longer = std::max(picture.width(), picture.height());
    const bool isShort = picture.width() != picture.height() && longer <= tileSize;
    return QSizeF(picture) / (isShort ? tileSize : longer);
}

} // namespace Corvane::Map
