#pragma once

#include <corvane/core/Export.h>

#include <QVector>

namespace Corvane::Map {

class TileMatrixLevel;

/// The matrices of a tile matrix set. It owns none of them.
class CORVANE_EXPORT TileMatrixLevels : public QVector<TileMatrixLevel*>
{
};

} // namespace Corvane::Map
