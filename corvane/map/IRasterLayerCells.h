#pragma once

#include <corvane/core/Export.h>

#include <QtPlugin>

#include <memory>

namespace Corvane::Map {

class CellRequest;

/// A raster layer that can tell the values of its cells at full resolution, whatever is in view. A
/// layer offers it through qobject_cast. GUI thread only.
class CORVANE_EXPORT IRasterLayerCells
{
public:
    /// Answers the request, always and later: reading happens on the pool, before waiting tiles. The
    /// layer may be deleted meanwhile. One request at a time keeps the pool free for tiles: cancel
    /// the last one and await its answer before the next.
    virtual void readCells(std::shared_ptr<CellRequest> request) = 0;

protected:
    ~IRasterLayerCells() = default;
};

} // namespace Corvane::Map

Q_DECLARE_INTERFACE(Corvane::Map::IRasterLayerCells, "com.corvane.viewer.IRasterLayerCells/1.0")
