#pragma once

#include <QImage>
#include <QRect>
#include <QString>

#include <vector>

using GDALDatasetH = void*;

namespace Corvane::Bench {

/// What GDAL alone can do: reads RGB tiles of a file with a handle per thread, nothing around it.
/// The limit that the library's figures stand beside.
class BareReader
{
public:
    BareReader(const QString& file, int threads);
    ~BareReader();

    bool isOpen() const;
    QSize size() const;
    /// The tile's edge: that of the file's blocks.
    int tileSize() const;
    /// The coarsest overview, or 0 for full resolution, whose pixels are no larger than
    /// pixelsPerPixel source pixels.
    int levelFor(double pixelsPerPixel) const;
    /// The tiles of a level that a rectangle of full-resolution pixels touches.
    std::vector<QRect> tilesOf(int level, const QRectF& pixels) const;
    /// Reads the tiles of a level, as pixel rectangles of that level, with all threads at once.
    std::vector<QImage> read(int level, const std::vector<QRect>& tiles);

private:
    QSize levelSize(int level) const;
    static QImage readTile(GDALDatasetH handle, int level, const QRect& tile);

    std::vector<GDALDatasetH> handles;
};

} // namespace Corvane::Bench
