#include <plugins/common/PrintedPicture.h>

#include <corvane/map/GeoPainter.h>

#include <QImage>
#include <QRect>
#include <QRectF>

#include <algorithm>

namespace Corvane::Map {

namespace {

constexpr int largestPicture = 1 << 26; // pixels, of four bytes each
// Printers take these formats as they are. Any other would be converted by the threads of the pool,
// which may all be waiting for a server that is dead.
constexpr QImage::Format transparentFormat = QImage::Format_ARGB32;
constexpr QImage::Format opaqueFormat = QImage::Format_RGB32;

bool hasTransparentPixels(const QImage& picture)
{
    for (int y = 0; y < picture.height(); ++y) {
        const auto* const row = reinterpret_cast<const QRgb*>(picture.constScanLine(y));
        if (std::any_of(row, row + picture.width(), [](QRgb pixel) { return qAlpha(pixel) < 255; }))
        {
            return true;
        }
    }
    return false;
}

QRgb* rowOf(QImage& picture, int y)
{
    return reinterpret_cast<QRgb*>(picture.scanLine(y));
}

// Whoever resamples the page mixes pixels with their neighbours' colours, also with those that cannot
// be seen: these take after a neighbour, or the map would have a black rim.
void spreadColours(QImage& picture)
{
    const int last = picture.width() - 1;
    const auto take = [](QRgb& pixel, QRgb neighbour) {
        if (qAlpha(pixel) == 0 && qAlpha(neighbour) > 0) {
            pixel = neighbour & RGB_MASK;
        }
    };
    for (int y = 0; y < picture.height(); ++y) {
        QRgb* const row = rowOf(picture, y);
        const QRgb* const above = rowOf(picture, std::max(y - 1, 0));
        const QRgb* const below = rowOf(picture, std::min(y + 1, picture.height() - 1));
        for (int x = 0; x <= last; ++x) {
            take(row[x], row[std::max(x - 1, 0)]);
            take(row[x], row[std::min(x + 1, last)]);
            take(row[x], above[x]);
            take(row[x], below[x]);
        }
    }
}

} // namespace

bool isPrinting(const GeoPainter& painter)
{
    const QPaintDevice* const device = painter.device();
    return device && device->devType() == QInternal::Printer;
}

void paintPrintedPicture(GeoPainter& painter, QRectF world, QRect device, const QRect& part,
                         const std::function<void(GeoPainter& page)>& paintPage)
{
    const int rows = std::max(1, largestPicture / std::max(1, part.width()));
    for (int top = part.top(); top <= part.bottom(); top += rows) {
        const QRect band(part.left(), top, part.width(), std::min(rows, part.bottom() - top + 1));
        QImage picture(band.size(), transparentFormat);
        picture.fill(Qt::transparent);
        GeoPainter page(&picture, world, device);
        page.translate(-band.topLeft());
        paintPage(page);
        page.end();
        painter.save();
        painter.setClipRect(band, Qt::IntersectClip);
        const bool transparent = hasTransparentPixels(picture);
        if (transparent) {
            spreadColours(picture);
        } else {
            picture.reinterpretAsFormat(opaqueFormat);
        }
        // A lossy picture would bleed the colour of transparent pixels into those at their edge.
        painter.setRenderHint(QPainter::LosslessImageRendering, transparent);
        painter.drawImage(band.topLeft(), picture);
        painter.restore();
    }
}

} // namespace Corvane::Map
