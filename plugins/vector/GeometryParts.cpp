#include <plugins/vector/GeometryParts.h>

#include <cmath>

namespace Corvane::Map {

namespace {

constexpr double farthest = 1e15; // in whatever unit; doubles are coarser than a tenth beyond it
constexpr std::size_t leastOfPoint = 1;
constexpr std::size_t leastOfLine = 2;
constexpr std::size_t leastOfRing = 3;

void clearList(GeometryParts::List* list)
{
    list->xs.clear();
    list->ys.clear();
    list->ends.clear();
}

} // namespace

bool isUsableCoordinate(double value)
{
    return std::abs(value) <= farthest; // false for a NaN
}

void GeometryParts::clear()
{
    clearList(&points);
    clearList(&lines);
    clearList(&rings);
}

void GeometryParts::add(OGRGeometryH geometry)
{
    if (!geometry) {
        return;
    }
    if (!OGR_G_HasCurveGeometry(geometry, TRUE)) {
        addFlat(geometry);
        return;
    }
    if (OGRGeometryH linear = OGR_G_GetLinearGeometry(geometry, 0.0, nullptr)) {
        addFlat(linear);
        OGR_G_DestroyGeometry(linear);
    }
}

void GeometryParts::addFlat(OGRGeometryH geometry)
{
    switch (wkbFlatten(OGR_G_GetGeometryType(geometry))) {
    case wkbPoint:
        addPart(geometry, leastOfPoint, false, &points);
        break;
    case wkbLineString:
        addPart(geometry, leastOfLine, false, &lines);
        break;
    case wkbPolygon:
    case wkbTriangle:
        addPolygon(geometry);
        break;
    default: // collections of whatever kind
        for (int i = 0; i < OGR_G_GetGeometryCount(geometry); ++i) {
            addFlat(OGR_G_GetGeometryRef(geometry, i));
        }
        break;
    }
}

// A hole without its outer ring would be a polygon of its own.
void GeometryParts::addPolygon(OGRGeometryH polygon)
{
    for (int i = 0; i < OGR_G_GetGeometryCount(polygon); ++i) {
        if (!addPart(OGR_G_GetGeometryRef(polygon, i), leastOfRing, true, &rings) && i == 0) {
            return;
        }
    }
}

bool GeometryParts::addPart(OGRGeometryH geometry, std::size_t least, bool closed, List* list)
{
    if (OGR_G_IsEmpty(geometry)) { // of an empty point the coordinates would be (0, 0)
        return false;
    }
    const std::size_t begin = list->xs.size();
    const auto count = static_cast<std::size_t>(OGR_G_GetPointCount(geometry));
    list->xs.resize(begin + count);
    list->ys.resize(begin + count);
    OGR_G_GetPoints(geometry, list->xs.data() + begin, sizeof(double), list->ys.data() + begin,
                    sizeof(double), nullptr, 0);
    std::size_t end = begin;
    for (std::size_t i = begin; i < begin + count; ++i) {
        if (isUsableCoordinate(list->xs[i]) && isUsableCoordinate(list->ys[i])) {
            list->xs[end] = list->xs[i];
            list->ys[end] = list->ys[i];
            ++end;
        }
    }
    if (closed && end > begin + 1 && list->xs[begin] == list->xs[end - 1] &&
        list->ys[begin] == list->ys[end - 1])
    {
        --end;
    }
    const bool enough = end - begin >= least;
    list->xs.resize(enough ? end : begin);
    list->ys.resize(enough ? end : begin);
    if (enough) {
        list->ends.push_back(end);
    }
    return enough;
}

} // namespace Corvane::Map
