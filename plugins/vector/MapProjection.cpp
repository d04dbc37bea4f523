#include <plugins/vector/MapProjection.h>

#include <plugins/common/GdalAccess.h>

#include <algorithm>
#include <cmath>

namespace Corvane::Map {

namespace {

constexpr int pointsPerEdge = 21;         // of a box, between its corners
constexpr double halfTheWorld = 180.0;    // degrees of longitude
constexpr std::size_t mostAtOnce = 65536; // positions in a call

struct SystemCloser
{
    void operator()(OGRSpatialReferenceH system) const { OSRDestroySpatialReference(system); }
};
using SystemPointer = std::unique_ptr<void, SystemCloser>;

WorldBox movedBox(OGRCoordinateTransformationH way, const WorldBox& box)
{
    WorldBox moved;
    double left = 0.0;
    double bottom = 0.0;
    double right = 0.0;
    double top = 0.0;
    if (!box.isEmpty() &&
        OCTTransformBounds(way, box.left, box.bottom, box.right, box.top, &left, &bottom, &right,
                           &top, pointsPerEdge) &&
        std::isfinite(left) && std::isfinite(bottom) && std::isfinite(right) && std::isfinite(top))
    {
        moved.add(left, bottom);
        moved.add(right, top);
    }
    return moved;
}

// Near the poles a cylinder goes on for ever.
WorldBox reachOf(OGRSpatialReferenceH system)
{
    double west = 0.0;
    double south = 0.0;
    double east = 0.0;
    double north = 0.0;
    if (!OSRGetAreaOfUse(system, &west, &south, &east, &north, nullptr) ||
        !(east - west > halfTheWorld))
    {
        return WorldBox();
    }
    const SystemPointer degrees(OSRNewSpatialReference(SRS_WKT_WGS84_LAT_LONG));
    OSRSetAxisMappingStrategy(degrees.get(), OAMS_TRADITIONAL_GIS_ORDER);
    OGRCoordinateTransformationH way = OCTNewCoordinateTransformation(degrees.get(), system);
    if (!way) {
        return WorldBox();
    }
    WorldBox world;
    world.add(west, south);
    world.add(east, north);
    const WorldBox reach = movedBox(way, world);
    OCTDestroyCoordinateTransformation(way);
    return reach;
}

} // namespace

std::unique_ptr<MapProjection> MapProjection::make(const QString& sourceWkt, int targetEpsg,
                                                   QString* error)
{
    const GdalErrors errors;
    const SystemPointer source(OSRNewSpatialReference(sourceWkt.toUtf8().constData()));
    const SystemPointer target(OSRNewSpatialReference(nullptr));
    OGRCoordinateTransformationH made = nullptr;
    if (source && OSRImportFromEPSG(target.get(), targetEpsg) == OGRERR_NONE) {
        OSRSetAxisMappingStrategy(source.get(), OAMS_TRADITIONAL_GIS_ORDER);
        OSRSetAxisMappingStrategy(target.get(), OAMS_TRADITIONAL_GIS_ORDER);
        made = OCTNewCoordinateTransformation(source.get(), target.get());
    }
    if (!made) {
        *error = errors.text();
        return nullptr;
    }
    std::unique_ptr<MapProjection> projection(new MapProjection(made));
    projection->reach = reachOf(target.get());
    return projection;
}

MapProjection::~MapProjection()
{
    OCTDestroyCoordinateTransformation(handle);
}

std::vector<int> MapProjection::transform(std::vector<double>* xs, std::vector<double>* ys) const
{
    const GdalErrors errors; // each failure says so, and the marks do
    std::vector<int> reached(xs->size(), 0);
    for (std::size_t begin = 0; begin < xs->size(); begin += mostAtOnce) {
        const auto count = static_cast<int>(std::min(mostAtOnce, xs->size() - begin));
        OCTTransformEx(handle, count, xs->data() + begin, ys->data() + begin, nullptr,
                       reached.data() + begin);
    }
    return reached;
}

WorldBox MapProjection::transform(const WorldBox& box) const
{
    const GdalErrors errors;
    return movedBox(handle, box);
}

} // namespace Corvane::Map
