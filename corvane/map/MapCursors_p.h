#pragma once

class QCursor;

namespace Corvane::Map {

/// The pointer shapes of a map, drawn from the resource tree, with a built-in shape where a
/// picture is missing. Live as long as the process.
struct MapCursors
{
    QCursor* roam;
    QCursor* roaming;
    QCursor* zoom;
    QCursor* zoomBox;
    QCursor* point;
};

/// The one set, made at the first call. GUI thread only, with an application object.
const MapCursors& mapCursors();

} // namespace Corvane::Map
