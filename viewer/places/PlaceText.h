#pragma once

#include <QPointF>
#include <QString>

namespace Corvane::Viewer {

/// A place as somebody wrote it.
struct WrittenPlace
{
    enum Kind
    {
        None,    ///< what was written is no place
        Degrees, ///< longitude x and latitude y on WGS 84
        Map,     ///< east and north of a map
        Cell     ///< column and row of a raster
    };

    Kind kind = None;
    QPointF position;
    QString error; ///< of None; empty while nothing was written
};

/// Reads "52.5163, 13.3777", "52°30'58.7\"N 13°22'39.7\"E", "N52 30.98 E13 22.66",
/// "33U 389918 5819702", "389000 5820000", "col 100 row 200" and their like. Of two plain numbers
/// that could be a latitude and a longitude, they are one where degreesAreKnown. GUI thread only.
WrittenPlace readPlace(const QString& text, bool degreesAreKnown);

} // namespace Corvane::Viewer
