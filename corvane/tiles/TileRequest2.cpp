#include <corvane/tiles/TileRequest2.h>

#include <utility>

namespace Corvane::Map {

TileRequest2::TileRequest2() = default;

TileRequest2::~TileRequest2() = default;

bool TileRequest2::getCancel()
{
    return cancel;
}

void TileRequest2::setCancel(bool newCancel)
{
    cancel = newCancel;
}

bool TileRequest2::isProcessing()
{
    return processing;
}

QString TileRequest2::getKey()
{
    return key;
}

void TileRequest2::setKey(QString newKey)
{
    key = std::move(newKey);
}

TileMatrixSet* TileRequest2::getTileMatrix()
{
    return tileMatrix;
}

void TileRequest2::setTileMatrix(TileMatrixSet* newTileMatrix)
{
    tileMatrix = newTileMatrix;
}

void TileRequest2::setTileParams(unsigned int newX, unsigned int newY, double newTlx, double newTly,
                                 double newBrx, double newBry)
{
    x = newX;
    y = newY;
    tlx = newTlx;
    tly = newTly;
    brx = newBrx;
    bry = newBry;
}

void TileRequest2::getTileParams(unsigned int* outX, unsigned int* outY, double* outTlx,
                                 double* outTly, double* outBrx, double* outBry)
{
    *outX = x;
    *outY = y;
    *outTlx = tlx;
    *outTly = tly;
    *outBrx = brx;
    *outBry = bry;
}

} // namespace Corvane::Map
