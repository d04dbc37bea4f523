#pragma once

#include <plugins/raster/BandPlan.h>

#include <gdal.h>

#include <QImage>
#include <QRect>
#include <QString>

#include <atomic>
#include <memory>

namespace Corvane::Map {

class RasterSource;
struct LevelFacts;
struct RasterHandle;

/// Makes pictures of a source's pixels: right from the overview that fits into the image's own
/// memory where that can be. Used by several threads at once, each with a handle of its own.
class TileReader
{
public:
    /// cancelled may be null; it must live as long as the reader.
    TileReader(std::shared_ptr<RasterSource> source, BandPlan plan,
               const std::atomic<bool>* cancelled);

    /// The tile's pixels in its level; the last tiles of a row or column are smaller.
    QRect tilePixels(unsigned int level, unsigned int x, unsigned int y) const;
    /// pixels, in those of the level, as Format_RGB32 where all is opaque, else as
    /// Format_ARGB32_Premultiplied. Null with the reason in error.
    QImage read(const RasterHandle& handle, unsigned int level, const QRect& pixels,
                QString* error) const;
    /// The same with a handle of the source's own.
    QImage read(unsigned int level, const QRect& pixels, QString* error) const;

    RasterSource& source() const { return *theSource; }

private:
    struct Window;
    struct Layout;

    Window windowFor(unsigned int level, const QRect& pixels) const;
    bool readBands(const Window& window, const RasterHandle& handle, const std::vector<int>& bands,
                   GDALDataType type, void* buffer, const Layout& layout) const;
    bool readSlice(const Window& window, const RasterHandle& handle, const std::vector<int>& bands,
                   GDALDataType type, void* buffer, const Layout& layout) const;
    bool readByteColour(const Window& window, const RasterHandle& handle, QImage& image) const;
    bool readIndexed(const Window& window, const RasterHandle& handle, QImage& image) const;
    template <typename Value>
    bool readStretched(const Window& window, const RasterHandle& handle, QImage& image) const;
    bool readAlpha(const Window& window, const RasterHandle& handle,
                   std::vector<unsigned char>& alpha) const;
    bool readMask(const Window& window, const RasterHandle& handle,
                  std::vector<unsigned char>& alpha) const;
    bool allPlainBytes() const;
    static int goOn(double done, const char* message, void* reader);

    std::shared_ptr<RasterSource> theSource;
    BandPlan plan;
    const std::atomic<bool>* cancelled; // not owned, may be null
};

} // namespace Corvane::Map
