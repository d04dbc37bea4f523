#pragma once

#include <memory>

namespace Corvane::Map {

class CellRequest;
class RasterSource;

/// Reads the cells that the request asks for from the source itself, neither from an overview nor
/// from what warping makes of it, and answers. On a pool thread; may take long.
void answerCells(RasterSource& source, const std::shared_ptr<CellRequest>& request);

} // namespace Corvane::Map
