#pragma once

namespace Corvane::Server {

/// Makes PROJ read the files of its own data folders alone, for the rest of the process: whatever grid
/// or list a coordinate system names, none is opened elsewhere, pipes included, and nothing is
/// written. Once, before GDAL is used.
void confineProj();

} // namespace Corvane::Server
