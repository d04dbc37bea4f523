#pragma once

#include <corvane/core/Export.h>
#include <corvane/map/EnhancementParams.h>

#include <QImage>

class QByteArray;
class QColor;
class QPainter;
class QRectF;

namespace Corvane {

/// An image that knows which world rectangle it covers: a tile. Built on any thread, used by one
/// thread at a time.
class CORVANE_EXPORT GeoImage : public QImage
{
public:
    /// The other's pixels, copied, its bounds and its enhancement buffer, shared as a pointer:
    /// do not copy an image on which updateEnhancementBuffer has been called. The enhancement
    /// parameters stay at their defaults.
    GeoImage(GeoImage& other);
    /// Decodes data; format is the decoder's name or null. Four zeros give the bounds
    /// (0, height, width, 0); any other numbers leave them to the caller to assign.
    /// A null image where data cannot be decoded.
    GeoImage(const QByteArray& data, double tlx, double tly, double brx, double bry,
             const char* format);
    /// A cleared image, whatever the fill.
    GeoImage(int width, int height, double tlx, double tly, double brx, double bry,
             QImage::Format format, QColor* fill);
    /// Wraps the caller's buffer, which is cleared and must outlive the image.
    GeoImage(const unsigned char* data, int width, int height, double tlx, double tly, double brx,
             double bry, QImage::Format format);
    virtual ~GeoImage();

    /// Shares the other's pixels and takes over bounds, buffer pointer and parameters.
    GeoImage& operator=(const GeoImage& other);

    /// The bounds; the height is negative for a north-up image.
    QRectF getBounds();
    /// Draws source whole at pixel (x, y); fill, if not null, is painted first.
    void blit(GeoImage& source, int x, int y, const QColor* fill);
    /// Draws source where its bounds fall in this image's; fill, if not null, is painted first.
    void copy(GeoImage* source, QColor* fill);
    /// Draws this image where the device rectangle (x, y, w, h) shows the world rectangle given.
    /// Resampling follows the painter's render hints.
    void paint(QPainter& painter, int x, int y, int w, int h, double wtlx, double wtly, double wbrx,
               double wbry);
    /// Stores a copy; painting takes no notice.
    void setEnhancementParams(EnhancementParams& params);
    /// Makes the buffer where there is none yet.
    void updateEnhancementBuffer();

    /// World coordinates of the image's corners.
    double tlx = 0.0;
    double tly = 0.0; ///< world y of the top edge
    double brx = 0.0; ///< world x of the right edge
    double bry = 0.0; ///< world y of the bottom edge

protected:
    unsigned char* enhancementBuffer = nullptr; ///< owned, one byte
    EnhancementParams enhancementParams;        ///< for layers that draw from a subclass

private:
    void clearPixels();
};

} // namespace Corvane
