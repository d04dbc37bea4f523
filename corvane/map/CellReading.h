#pragma once

#include <QString>
#include <QVector>

namespace Corvane::Map {

/// One cell of one band.
struct CellValue
{
    /// Whether text holds a value.
    enum class Kind
    {
        Outside, ///< the raster has no such cell
        NoData,  ///< the value stands for no data, or a mask covers the cell
        Value
    };
    Kind kind = Kind::Outside; ///< of this cell
    /// Digits that read back as exactly this value, "1.5-2i" for a complex one; empty outside, and
    /// where nothing is known of a cell without data.
    QString text;
};

/// A band in a window of cells.
struct CellBand
{
    QString name;              ///< may be empty
    QString type;              ///< "UInt8"; may be empty
    QVector<CellValue> values; ///< row by row, from the top left
};

/// What was found where somebody asked for cells.
struct CellReading
{
    /// How the reading ended.
    enum class State
    {
        Read,
        Outside, ///< the position lies beside the raster
        Failed,
        Dropped ///< nobody wanted it any more
    };
    State state = State::Failed; ///< of the whole reading
    QString failure;             ///< why it failed
    /// What the values are where they are not those of the source, such as a server's picture; else empty.
    QString note;
    int column = -1; ///< of the cell in the middle, in the raster's own grid, from 0 at the left
    int row = -1;    ///< the same, from 0 at the top
    QVector<CellBand> bands; ///< in the order of the raster's
};

} // namespace Corvane::Map
