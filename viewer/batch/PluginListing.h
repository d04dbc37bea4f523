#pragma once

#include <QStringList>

namespace Corvane::Viewer {

/// A line for each layer plugin in the order in which they are asked: class name, version, file
/// filter and plugin file, with a tab between them. GUI thread only.
QStringList listPlugins();

} // namespace Corvane::Viewer
