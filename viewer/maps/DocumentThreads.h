#pragma once

class QThreadPool;

namespace Corvane::Viewer {

/// The threads that read and write map documents. Not those of the tiles: a server that says
/// nothing may hold all of these, and a map must be saved all the same.
QThreadPool& documentThreads();

} // namespace Corvane::Viewer
