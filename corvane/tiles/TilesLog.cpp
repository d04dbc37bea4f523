#include <corvane/tiles/TilesLog_p.h>

namespace Corvane::Map {

Q_LOGGING_CATEGORY(tilesLog, "corvane.tiles")

} // namespace Corvane::Map
