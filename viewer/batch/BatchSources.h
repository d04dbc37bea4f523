#pragma once

#include <QStringList>

#include <chrono>

namespace Corvane::Viewer {

/// The sources of a command line, each folder replaced by the images in it, in the order of their
/// names. All stay as they are where a disk does not answer in time. For the modes without a window;
/// GUI thread only.
QStringList batchSources(const QStringList& files, std::chrono::milliseconds timeout);

} // namespace Corvane::Viewer
