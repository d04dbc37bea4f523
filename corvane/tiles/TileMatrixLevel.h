#pragma once

#include <corvane/core/Export.h>

class QPointF;
class QString;

namespace Corvane::Map {

/// One tile matrix of a tile matrix set, in the terms of the OGC standard: a grid of tiles at one
/// scale whose column 0 and row 0 lie at the top-left corner. For a layer plugin to fill; the
/// library calls none of it. The order of the operations is part of the contract. A plugin's class
/// is destroyed through its own type.
class CORVANE_EXPORT TileMatrixLevel
{
public:
    TileMatrixLevel() = default;
    TileMatrixLevel(const TileMatrixLevel& other) = default;
    TileMatrixLevel(TileMatrixLevel&& other) = default;
    TileMatrixLevel& operator=(const TileMatrixLevel& other) = default;
    TileMatrixLevel& operator=(TileMatrixLevel&& other) = default;

    /// The level's name in its set.
    virtual QString getIdentifier() = 0;
    /// For pixels of 0.28 mm.
    virtual double getScaleDenominator() = 0;
    /// World position of the corner of tile 0, 0.
    virtual QPointF getTopLeftCorner() = 0;
    /// Tile size in pixels.
    virtual unsigned int getTileWidth() = 0;
    /// Tile size in pixels, on y.
    virtual unsigned int getTileHeight() = 0;
    /// Columns and rows of the matrix.
    virtual unsigned int getMatrixWidth() = 0;
    /// Rows of the matrix.
    virtual unsigned int getMatrixHeight() = 0;
    /// The limits: columns and rows for which there are tiles, inclusive.
    virtual unsigned int getMinTileCol() = 0;
    /// The last column for which there are tiles.
    virtual unsigned int getMaxTileCol() = 0;
    /// The first row for which there are tiles.
    virtual unsigned int getMinTileRow() = 0;
    /// The last row for which there are tiles.
    virtual unsigned int getMaxTileRow() = 0;
    /// World units across one pixel; positive.
    virtual double getPixelSpan() = 0;
    /// World units across one tile; positive.
    virtual double getTileSpanX() = 0;
    /// World units across one tile on y; positive.
    virtual double getTileSpanY() = 0;
    /// The column and the row that hold a world coordinate, within the limits.
    virtual unsigned int getTileCol(double x) = 0;
    /// The row that holds a world coordinate, within the limits.
    virtual unsigned int getTileRow(double y) = 0;

protected:
    ~TileMatrixLevel() = default;
};

} // namespace Corvane::Map
