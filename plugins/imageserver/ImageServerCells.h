#pragma once

#include <memory>

namespace Corvane::Map {

class CellRequest;
class ImageServerLoader;

/// Takes the cells that the request asks for from the pictures that the server makes of the image at
/// full resolution, and answers. On a pool thread; may take as long as the server does.
void answerCells(ImageServerLoader& loader, const std::shared_ptr<CellRequest>& request);

} // namespace Corvane::Map
