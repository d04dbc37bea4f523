#pragma once

#include <QLoggingCategory>

namespace Corvane::Map {

/// The debug lines of the tile engine, on by default. With thousands of tiles in memory each
/// change of view writes as many lines: the rule "corvane.tiles=false" turns them off, and then
/// no text is built and no tile is walked for them.
Q_DECLARE_LOGGING_CATEGORY(tilesLog)

} // namespace Corvane::Map
