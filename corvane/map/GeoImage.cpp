#include <corvane/map/GeoImage.h>

#include <corvane/core/Integer.h>

#include <QByteArray>
#include <QColor>
#include <QPainter>
#include <QRectF>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace Corvane {

namespace {

void fillAll(QPainter& painter, const QImage& image, const QColor* fill)
{
    if (fill) {
        painter.fillRect(image.rect(), QBrush(*fill));
    }
}

/// One axis of a resampled image: which part of it is drawn (pixels, fractional) and where.
struct Stretch
{
    double sourceFrom;
    double sourceSize;
    double targetFrom;
    double targetTo;
};

/// The device shows [device, device + deviceSize), the image, of pixels cells from worldFrom to
/// worldTo, covers [from, to) of it. Nothing is rounded to whole pixels: neighbouring tiles meet.
Stretch stretch(int device, int deviceSize, int from, int to, int pixels, double worldFrom,
                double worldTo)
{
    const double size = static_cast<double>(to) - from;
    const double clipFrom = std::max(device, from);
    const double clipSize =
        std::min(static_cast<double>(device) + deviceSize, static_cast<double>(to)) - clipFrom;

    Stretch result;
    result.sourceSize = pixels * clipSize / size;
    result.sourceFrom = (clipFrom - from) * result.sourceSize / clipSize;

    const double cell = (worldTo - worldFrom) / pixels;
    const double sourceTo = result.sourceFrom + result.sourceSize;
    const double world = worldTo - worldFrom;
    result.targetFrom = (cell * result.sourceFrom + worldFrom - worldFrom) * size / world + from;
    result.targetTo = (cell * sourceTo + worldFrom - worldFrom) * size / world + from;
    return result;
}

} // namespace

GeoImage::GeoImage(GeoImage& other)
    : QImage(other.width(), other.height(), other.format()),
      tlx(other.tlx),
      tly(other.tly),
      brx(other.brx),
      bry(other.bry),
      enhancementBuffer(other.enhancementBuffer)
{
    const qsizetype size = std::min(sizeInBytes(), other.sizeInBytes());
    if (size > 0) {
        std::memcpy(bits(), other.constScanLine(0), static_cast<std::size_t>(size));
    }
}

GeoImage::GeoImage(const QByteArray& data, double worldLeft, double worldTop, double worldRight,
                   double worldBottom, const char* format)
{
    const bool loaded = loadFromData(data, format);
    if (loaded && worldLeft == 0.0 && worldTop == 0.0 && worldRight == 0.0 && worldBottom == 0.0) {
        tly = height();
        brx = width();
    }
}

GeoImage::GeoImage(int width, int height, double worldLeft, double worldTop, double worldRight,
                   double worldBottom, QImage::Format format, QColor* fill)
    : QImage(width, height, format),
      tlx(worldLeft),
      tly(worldTop),
      brx(worldRight),
      bry(worldBottom)
{
    if (fill) {
        QPainter painter(this);
        fillAll(painter, *this, fill);
    }
    // The clearing comes last and wipes the fill: tiles are composed on clear ground.
    // GeoImageTest::aFilledImageComesOutCleared holds it.
    clearPixels();
}

// The buffer is taken as writable: QImage would take a copy of a read-only one before the clearing.
GeoImage::GeoImage(const unsigned char* data, int width, int height, double worldLeft,
                   double worldTop, double worldRight, double worldBottom, QImage::Format format)
    : QImage(const_cast<unsigned char*>(data), width, height, format),
      tlx(worldLeft),
      tly(worldTop),
      brx(worldRight),
      bry(worldBottom)
{
    clearPixels();
}

GeoImage::~GeoImage()
{
    delete enhancementBuffer;
}

GeoImage& GeoImage::operator=(const GeoImage& other)
{
    QImage::operator=(other);
    tlx = other.tlx;
    tly = other.tly;
    brx = other.brx;
    bry = other.bry;
    enhancementBuffer = other.enhancementBuffer;
    enhancementParams = other.enhancementParams;
    return *this;
}

// Four bytes for each pixel, or the whole image where its format takes fewer.
void GeoImage::clearPixels()
{
    const std::int64_t wanted = static_cast<std::int64_t>(width()) * height() * 4;
    const std::int64_t size = std::min<std::int64_t>(wanted, sizeInBytes());
    if (size > 0) {
        std::memset(bits(), 0, static_cast<std::size_t>(size));
    }
}

QRectF GeoImage::getBounds()
{
    return QRectF(tlx, tly, brx - tlx, bry - tly);
}

void GeoImage::blit(GeoImage& source, int x, int y, const QColor* fill)
{
    QPainter painter(this);
    fillAll(painter, *this, fill);
    painter.drawImage(QPoint(x, y), source);
}

void GeoImage::copy(GeoImage* source, QColor* fill)
{
    QPainter painter(this);
    fillAll(painter, *this, fill);
    source->paint(painter, 0, 0, width(), height(), tlx, tly, brx, bry);
}

void GeoImage::paint(QPainter& painter, int x, int y, int w, int h, double wtlx, double wtly,
                     double wbrx, double wbry)
{
    const int left = Util::roundAwayFromZero((tlx - wtlx) / (wbrx - wtlx) * w + x);
    const int right = Util::roundAwayFromZero((brx - wtlx) / (wbrx - wtlx) * w + x);
    const int top = Util::roundAwayFromZero((tly - wtly) / (wbry - wtly) * h + y);
    const int bottom = Util::roundAwayFromZero((bry - wtly) / (wbry - wtly) * h + y);

    // An image that ends at position 0 is left out, even where its left part shows.
    // GeoImageTest::anImageThatEndsAtZeroIsNotDrawn holds it.
    if (right == 0 || bottom == 0) {
        return;
    }
    const std::int64_t targetW = static_cast<std::int64_t>(right) - left;
    const std::int64_t targetH = static_cast<std::int64_t>(bottom) - top;
    if (targetW == width() && targetH == height()) {
        const bool fillsTheView = wtlx == tlx && wtly == tly && wbrx == brx && wbry == bry;
        painter.drawImage(fillsTheView ? QPoint(x, y) : QPoint(left, top), *this);
        return;
    }
    const Stretch across = stretch(x, w, left, right, width(), tlx, brx);
    const Stretch down = stretch(y, h, top, bottom, height(), tly, bry);
    const QRectF target(QPointF(across.targetFrom, down.targetFrom),
                        QPointF(across.targetTo, down.targetTo));
    const QRectF source(across.sourceFrom, down.sourceFrom, across.sourceSize, down.sourceSize);
    painter.drawImage(target, *this, source, Qt::AutoColor);
}

void GeoImage::setEnhancementParams(EnhancementParams& params)
{
    enhancementParams = params;
}

void GeoImage::updateEnhancementBuffer()
{
    if (!enhancementBuffer) {
        enhancementBuffer = new unsigned char(static_cast<unsigned char>(bytesPerLine() & 0xff));
    }
}

} // namespace Corvane
