#include <plugins/vector/MapProjection.h>

#include <plugins/common/GdalAccess.h>

#include <algorithm>
#include <array>
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
        const bool isAcrossDateLine = left > right; // as bounds in degrees may be
        moved.add(isAcrossDateLine ? -halfTheWorld : left, bottom);
        moved.add(isAcrossDateLine ? halfTheWorld : right, top);
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

// How far it is once round the world, where the map is a cylinder that is cut at 180 degrees and the
// source is in degrees; else 0.
double turnOf(OGRSpatialReferenceH source, OGRCoordinateTransformationH way)
{
    constexpr double tolerance = 1e-4; // of a turn
    std::array<double, 5> xs = {-halfTheWorld, -90.0, 90.0, 90.0, halfTheWorld};
    std::array<double, 5> ys = {0.0, 0.0, 0.0, 45.0, 0.0};
    const std::array<double, 5> parts = {-0.5, -0.25, 0.25, 0.25, 0.5};
    if (!OSRIsGeographic(source) ||
        !OCTTransform(way, static_cast<int>(xs.size()), xs.data(), ys.data(), nullptr))
    {
        return 0.0;
    }
    const double turn = xs.back() - xs.front();
    for (std::size_t i = 0; i < xs.size(); ++i) {
        if (!(std::abs(xs[i] - parts[i] * turn) < tolerance * turn)) {
            return 0.0;
        }
    }
    return turn;
}

bool isBeyondDateLine(double longitude)
{
    return std::abs(longitude) > halfTheWorld;
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
    projection->turn = turnOf(source.get(), made);
    return projection;
}

MapProjection::~MapProjection()
{
    OCTDestroyCoordinateTransformation(handle);
}

std::vector<int> MapProjection::transform(std::vector<double>* xs, std::vector<double>* ys) const
{
    const GdalErrors errors; // each failure says so, and the marks do
    const bool goesOn = turn > 0.0 && std::any_of(xs->begin(), xs->end(), isBeyondDateLine);
    const std::vector<double> longitudes = goesOn ? *xs : std::vector<double>();
    std::vector<int> reached(xs->size(), 0);
    for (std::size_t begin = 0; begin < xs->size(); begin += mostAtOnce) {
        const auto count = static_cast<int>(std::min(mostAtOnce, xs->size() - begin));
        OCTTransformEx(handle, count, xs->data() + begin, ys->data() + begin, nullptr,
                       reached.data() + begin);
    }
    // what lies beyond 180 degrees came out at the other end of the map: shapes would be torn apart
    for (std::size_t i = 0; i < longitudes.size(); ++i) {
        if (isBeyondDateLine(longitudes[i])) {
            (*xs)[i] += turn * std::round(longitudes[i] / (2.0 * halfTheWorld) - (*xs)[i] / turn);
        }
    }
    return reached;
}

WorldBox MapProjection::transform(const WorldBox& box) const
{
    const GdalErrors errors;
    return movedBox(handle, box);
}

} // namespace Corvane::Map
