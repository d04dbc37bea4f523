#pragma once

#include <memory>

namespace Corvane::Server {

class FolderGate;

/// Makes GDAL reach files through the gate alone, for the rest of the process: whatever a raster
/// names as its source, overview or mask, be it absolute, a link or a URL, it gets what lies in the
/// folder and nothing else, and nothing is written. Formats that read by other ways, or that ask
/// servers, are switched off. Once, before the first raster is opened.
void confineGdal(std::shared_ptr<const FolderGate> gate);

} // namespace Corvane::Server
