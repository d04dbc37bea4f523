#pragma once

#include <gdal.h>

#include <QRectF>
#include <QRgb>
#include <QSize>
#include <QString>
#include <QVector>

#include <cstdint>
#include <vector>

namespace Corvane::Map {

struct RasterHandle;

struct BandFacts
{
    GDALDataType type = GDT_Unknown;
    bool isSignedByte = false;
    GDALColorInterp meaning = GCI_Undefined;
    bool hasNoData = false;
    double noData = 0.0;     ///< as the source gives it
    double noDataLow = 0.0;  ///< the values from here
    double noDataHigh = 0.0; ///< to here stand for it
    QString description;

    bool isPlainByte() const { return type == GDT_Byte && !isSignedByte; }
    /// False for NaN, whatever stands for no data.
    bool isNoData(double value) const
    {
        return hasNoData && value >= noDataLow && value <= noDataHigh;
    }
    /// "Red", "Gray", else the description; may be empty.
    QString name() const;
};

/// Where the pixels of a pyramid level are read.
struct LevelFacts
{
    QSize size;                ///< of the level, in its own pixels
    int overview = -1;         ///< index of the overview, -1 for the full image
    int halvings = 0;          ///< so often what is read is reduced to half while reading
    QSize sourceSize;          ///< of what is read
    bool readsAllBands = true; ///< the bands come in one read, else one by one
    bool inStrips = false;     ///< blocks run over several tiles: neighbours are read together

    /// Whether both are read from the same pixels.
    bool readsLike(const LevelFacts& other) const
    {
        return overview == other.overview && halvings == other.halvings &&
               sourceSize == other.sourceSize;
    }
};

/// What is known of a source once it is open; does not change. Sizes and bounds are those of the
/// north-up image that is shown: a source that lies otherwise is warped to it.
struct RasterFacts
{
    QSize size;
    QRectF bounds; ///< height is negative
    double cellX = 1.0;
    double cellY = -1.0;
    double rotation = 0.0; ///< of the source, degrees counter-clockwise
    bool isWarped = false;
    bool isGeoreferenced = false;
    std::vector<BandFacts> bands; ///< without those that warping added
    int alphaBand = 0;            ///< from 1; 0 without one
    bool hasMask = false;         ///< a mask for the whole image
    QVector<QRgb> palette;        ///< of band 1; empty without one
    QSize blockSize;              ///< of the source
    unsigned int tileSize = 0;    ///< in pixels, both ways
    QVector<QSize> overviews;
    std::vector<LevelFacts> levels; ///< more than a pyramid has
    QString layout;                 ///< "tiles" or "strips"
    QString compression;            ///< empty without one
    QString driver;                 ///< short name
    QString format;                 ///< long name
    QString wkt;
    QString coordSysName;
    int epsg = 0;

    /// Bytes of one pixel over all bands.
    int pixelBytes() const;
    /// Whether a level is read by reducing the full image.
    bool lacksOverviews() const;
    /// Whether the coarsest level of the pyramid can be read beneath every view: without an overview
    /// near its size it takes reading most of the image.
    bool isCoarsestCheap() const;
    /// Whether both have the same pixels in the same place and the same tiles, whatever their
    /// overviews.
    bool showsLike(const RasterFacts& other) const;
    /// Bits of the levels that are read in strips.
    std::uint32_t stripLevels() const;
};

/// What dataset is, and how its pyramid is read. original is the source itself, shown the north-up
/// view of it or the same. The names and colours come from original.
RasterFacts readFacts(GDALDatasetH original, GDALDatasetH shown);
/// The same with the overviews of the handle, wherever they lie.
RasterFacts readFacts(const RasterHandle& handle);

/// Whether the source lies otherwise than north-up and has to be warped to be shown.
bool needsWarping(GDALDatasetH dataset);
/// Whether the source lies along the axes, only mirrored: then warping moves whole pixels.
bool isOnlyMirrored(GDALDatasetH dataset);

} // namespace Corvane::Map
