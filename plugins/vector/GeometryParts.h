#pragma once

#include <ogr_api.h>

#include <cstddef>
#include <vector>

namespace Corvane::Map {

/// The parts of geometries as plain coordinates. Vertices that are no numbers, or lie beyond what
/// any reference reaches, are left out, and then what has too few left.
class GeometryParts
{
public:
    struct List
    {
        std::vector<double> xs;
        std::vector<double> ys;
        std::vector<std::size_t> ends; // of each part, in the coordinates
    };

    void clear();
    /// Adds a geometry of whatever type; curves as lines. Takes nothing over.
    void add(OGRGeometryH geometry);

    const List& getPoints() const { return points; }
    const List& getLines() const { return lines; }
    /// Closed, the last vertex not repeating the first.
    const List& getRings() const { return rings; }

private:
    void addFlat(OGRGeometryH geometry);
    void addPolygon(OGRGeometryH polygon);
    static bool addPart(OGRGeometryH geometry, std::size_t least, bool closed, List* list);

    List points; // one part for each point
    List lines;
    List rings;
};

/// Whether the value is one that a vertex can have.
bool isUsableCoordinate(double value);

} // namespace Corvane::Map
