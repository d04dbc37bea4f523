#pragma once

class QCursor;
class QDir;

namespace Corvane::Map {

/// The pointer shapes of a map, drawn from pictures, with a built-in shape where one is missing.
struct MapCursors
{
    QCursor* roam;
    QCursor* roaming;
    QCursor* zoom;
    QCursor* zoomBox;
    QCursor* point;
};

/// A new set from the pictures in folder; its cursors are the caller's.
MapCursors makeMapCursors(const QDir& folder);

/// The one set of the resource tree, which lives as long as the process. GUI thread only, with an
/// application object.
const MapCursors& mapCursors();

} // namespace Corvane::Map
