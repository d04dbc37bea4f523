#include <viewer/places/MapReference.h>

#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>

#include <proj.h>

#include <QHash>
#include <QLineF>

#include <algorithm>
#include <cmath>

namespace Corvane::Viewer {
namespace {

constexpr double degreesPerRadian = 180.0 / M_PI;
constexpr double fullTurn = 360.0;
constexpr int mostKept = 64;
// What comes back from degrees this far from where it started was not on the map of the world.
constexpr double wayBackTolerance = 0.001; // of the map's units, for each million of them
const char* const worldGeodeticSystem = "EPSG:4326";

std::shared_ptr<PJ_CONTEXT> sharedContext()
{
    static const std::shared_ptr<PJ_CONTEXT> context = [] {
        std::shared_ptr<PJ_CONTEXT> made(proj_context_create(), proj_context_destroy);
        proj_context_set_enable_network(made.get(), 0); // the window waits for no server
        proj_log_level(made.get(), PJ_LOG_NONE);        // a failure is a result here
        return made;
    }();
    return context;
}

bool isGeographic(PJ_TYPE type)
{
    return type == PJ_TYPE_GEOGRAPHIC_2D_CRS || type == PJ_TYPE_GEOGRAPHIC_3D_CRS;
}

bool isPlace(const QPointF& degrees)
{
    return std::isfinite(degrees.x()) && std::abs(degrees.y()) <= 90.0;
}

bool trans(PJ* way, PJ_DIRECTION direction, const QPointF& from, QPointF* to)
{
    proj_errno_reset(way);
    const PJ_COORD result = proj_trans(way, direction, proj_coord(from.x(), from.y(), 0.0, 0.0));
    if (!std::isfinite(result.xy.x) || !std::isfinite(result.xy.y)) {
        return false;
    }
    *to = QPointF(result.xy.x, result.xy.y);
    return true;
}

QString titleOf(const PJ* system)
{
    const char* const authority = proj_get_id_auth_name(system, 0);
    const char* const code = proj_get_id_code(system, 0);
    return authority && code ? QStringLiteral("%1:%2").arg(authority, code)
                             : QString::fromUtf8(proj_get_name(system));
}

} // namespace

void MapReference::PjCloser::operator()(PJconsts* object) const
{
    proj_destroy(object);
}

std::shared_ptr<const MapReference> MapReference::ofDefinition(const QString& definition)
{
    static QHash<QString, std::shared_ptr<const MapReference>> known;
    if (const auto found = known.value(definition)) {
        return found;
    }
    if (known.size() >= mostKept) {
        known.clear();
    }
    const std::shared_ptr<const MapReference> made(new MapReference(sharedContext(), definition));
    known.insert(definition, made);
    return made;
}

std::shared_ptr<const MapReference> MapReference::ofLayer(Map::Layer& layer)
{
    const QString wkt = layer.property("Wkt").toString();
    if (!wkt.isEmpty()) {
        return ofDefinition(wkt);
    }
    const int epsg = layer.getSpatialRef().epsg;
    return ofDefinition(epsg == 0 ? QString() : QStringLiteral("EPSG:%1").arg(epsg));
}

std::shared_ptr<const MapReference> MapReference::ofView(Map::MapView& view)
{
    const auto& layers = view.getLayers();
    const auto found = std::find_if(layers.begin(), layers.end(),
                                    [](Map::Layer* layer) { return layer->isValid(); });
    return found == layers.end() ? ofDefinition(QString()) : ofLayer(**found);
}

MapReference::MapReference(std::shared_ptr<pj_ctx> newContext, const QString& definition)
    : context(std::move(newContext))
{
    if (definition.isEmpty()) {
        return;
    }
    system = horizontalOf(Pj(proj_create(context.get(), definition.toUtf8().constData())));
    if (!system) {
        return;
    }
    // a datum shift that the definition carries with it wraps the reference
    plain.reset(proj_get_type(system.get()) == PJ_TYPE_BOUND_CRS
                    ? proj_get_source_crs(context.get(), system.get())
                    : proj_clone(context.get(), system.get()));
    title = titleOf(plain.get());
    readUnits();
    if (units.kind != MapUnits::Unknown) {
        geodetic.reset(proj_crs_get_geodetic_crs(context.get(), plain.get()));
        readEllipsoid();
    }
}

MapReference::~MapReference() = default;

/// Without the height of a compound reference.
MapReference::Pj MapReference::horizontalOf(Pj whole) const
{
    if (whole && proj_get_type(whole.get()) == PJ_TYPE_COMPOUND_CRS) {
        return Pj(proj_crs_get_sub_crs(context.get(), whole.get(), 0));
    }
    return whole && proj_is_crs(whole.get()) ? std::move(whole) : Pj();
}

void MapReference::readUnits()
{
    const PJ_TYPE type = proj_get_type(plain.get());
    const Pj axes(proj_crs_get_coordinate_system(context.get(), plain.get()));
    double factor = 0.0; // to radians or metres
    if (!axes || !proj_cs_get_axis_info(context.get(), axes.get(), 0, nullptr, nullptr, nullptr,
                                        &factor, nullptr, nullptr, nullptr))
    {
        return;
    }
    if (isGeographic(type)) {
        units = {MapUnits::Degrees, 1.0};
        degreesPerUnit = factor * degreesPerRadian;
    } else if (type == PJ_TYPE_PROJECTED_CRS && factor > 0.0) {
        units = {MapUnits::Length, factor};
    }
}

void MapReference::readEllipsoid()
{
    const Pj shape(geodetic ? proj_get_ellipsoid(context.get(), geodetic.get()) : nullptr);
    double inverseFlattening = 0.0;
    if (!shape ||
        !proj_ellipsoid_get_parameters(context.get(), shape.get(), &ellipsoid.semiMajorAxis,
                                       nullptr, nullptr, &inverseFlattening))
    {
        ellipsoid = Ellipsoid();
        return;
    }
    ellipsoid.name = QString::fromUtf8(proj_get_name(shape.get()));
    ellipsoid.flattening = inverseFlattening > 0.0 ? 1.0 / inverseFlattening : 0.0;
}

MapReference::Pj MapReference::way(const PJconsts* from, const PJconsts* to) const
{
    const Pj made(proj_create_crs_to_crs_from_pj(context.get(), from, to, nullptr, nullptr));
    return Pj(made ? proj_normalize_for_visualization(context.get(), made.get()) : nullptr);
}

PJconsts* MapReference::wayToOwn() const
{
    if (!ownWay) {
        ownWay = way(plain.get(), geodetic.get());
    }
    return ownWay.get();
}

PJconsts* MapReference::wayToEarth() const
{
    if (!earthWay) {
        const Pj earth(proj_create(context.get(), worldGeodeticSystem));
        earthWay = way(system.get(), earth.get());
    }
    return earthWay.get();
}

bool MapReference::toOwnDegrees(const QPointF& world, QPointF* degrees) const
{
    if (!isOnEarth()) {
        return false;
    }
    if (units.kind == MapUnits::Degrees) {
        const QPointF own = world * degreesPerUnit;
        if (!isPlace(own)) {
            return false;
        }
        *degrees = own;
        return true;
    }
    QPointF own;
    QPointF back;
    if (!wayToOwn() || !trans(wayToOwn(), PJ_FWD, world, &own) ||
        !trans(wayToOwn(), PJ_INV, own, &back))
    {
        return false;
    }
    const double reach = 1.0 + (std::abs(world.x()) + std::abs(world.y())) * 1e-6;
    if (QLineF(back, world).length() > wayBackTolerance * reach || !isPlace(own)) {
        return false;
    }
    *degrees = own;
    return true;
}

bool MapReference::fromOwnDegrees(const QPointF& degrees, QPointF* world) const
{
    if (!isOnEarth() || !isPlace(degrees)) {
        return false;
    }
    if (units.kind == MapUnits::Degrees) {
        *world = degrees / degreesPerUnit;
        return true;
    }
    return wayToOwn() && trans(wayToOwn(), PJ_INV, degrees, world);
}

bool MapReference::toDegrees(const QPointF& world, QPointF* degrees) const
{
    QPointF own;
    if (!toOwnDegrees(world, &own)) {
        return false;
    }
    QPointF place;
    if (!wayToEarth() || !trans(wayToEarth(), PJ_FWD, world, &place) || !isPlace(place)) {
        return false;
    }
    *degrees = QPointF(std::remainder(place.x(), fullTurn), place.y());
    return true;
}

bool MapReference::fromDegrees(const QPointF& degrees, QPointF* world) const
{
    if (!isOnEarth() || !isPlace(degrees)) {
        return false;
    }
    QPointF place;
    QPointF own;
    if (!wayToEarth() || !trans(wayToEarth(), PJ_INV, degrees, &place) ||
        !toOwnDegrees(place, &own)) {
        return false;
    }
    *world = place;
    return true;
}

} // namespace Corvane::Viewer
