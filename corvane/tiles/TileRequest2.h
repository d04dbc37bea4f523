#pragma once

#include <corvane/core/Export.h>

#include <QString>

namespace Corvane::Map {

class TileMatrixSet;

/// The plain data of a tile request of a tile matrix set. One thread at a time.
class CORVANE_EXPORT TileRequest2
{
public:
    TileRequest2();
    TileRequest2(const TileRequest2& other) = default;
    TileRequest2& operator=(const TileRequest2& other) = default;
    virtual ~TileRequest2();

    /// The flag as it was set.
    bool getCancel();
    /// Keeps the flag; nothing in the library looks at it.
    void setCancel(bool newCancel);
    /// False: nothing in the library sets it.
    bool isProcessing();
    /// The tile's key; empty until one is set.
    QString getKey();
    /// A plain store.
    void setKey(QString newKey);
    /// Not owned; null until one is set.
    TileMatrixSet* getTileMatrix();
    /// The set is not owned.
    void setTileMatrix(TileMatrixSet* newTileMatrix);
    /// Column, row and world rectangle of the tile.
    void setTileParams(unsigned int newX, unsigned int newY, double newTlx, double newTly,
                       double newBrx, double newBry);
    /// The same in the same order; the rectangle only after setTileParams. No pointer may be null.
    void getTileParams(unsigned int* outX, unsigned int* outY, double* outTlx, double* outTly,
                       double* outBrx, double* outBry);

private:
    // the constructor leaves these four unset: a request has no rectangle before setTileParams
    double tlx;
    double tly;
    double brx;
    double bry;
    unsigned int x = 0;
    unsigned int y = 0;
    bool cancel = false;
    bool processing = false;
    TileMatrixSet* tileMatrix = nullptr; // not owned
    QString key;
};

} // namespace Corvane::Map
