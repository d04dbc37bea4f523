#pragma once

#include <viewer/places/MapUnits.h>

#include <QPointF>
#include <QString>

#include <memory>

struct pj_ctx;
struct PJconsts;

namespace Corvane::Map {
class Layer;
class MapView;
} // namespace Corvane::Map

namespace Corvane::Viewer {

/// An ellipsoid of revolution; none where the axis is 0.
struct Ellipsoid
{
    QString name;
    double semiMajorAxis = 0.0; ///< metres
    double flattening = 0.0;
};

/// The spatial reference that a map counts in, and its ways to longitude and latitude. Coordinates
/// of the map are east before north, whatever order the reference's own axes have; geographic ones
/// are longitude before latitude, in degrees. GUI thread only.
class MapReference
{
public:
    /// Of well-known text or a code like "EPSG:25833". Never null: what nobody can read is a reference
    /// of unknown units. Opens a data base the first time: some milliseconds.
    static std::shared_ptr<const MapReference> ofDefinition(const QString& definition);
    static std::shared_ptr<const MapReference> ofLayer(Map::Layer& layer);
    /// That of the bottom layer that is valid.
    static std::shared_ptr<const MapReference> ofView(Map::MapView& view);
    ~MapReference();
    MapReference(const MapReference&) = delete;
    MapReference& operator=(const MapReference&) = delete;

    const MapUnits& getUnits() const { return units; }
    /// "EPSG:25833", or the name where it has no code; empty for none.
    const QString& getTitle() const { return title; }
    const Ellipsoid& getEllipsoid() const { return ellipsoid; }
    /// Whether its places on Earth are known.
    bool isOnEarth() const { return ellipsoid.semiMajorAxis > 0.0; }

    /// On the reference's own datum. False, the result untouched, where the map's coordinates mean no
    /// place on Earth.
    bool toOwnDegrees(const QPointF& world, QPointF* degrees) const;
    bool fromOwnDegrees(const QPointF& degrees, QPointF* world) const;
    /// On WGS 84, the longitude from -180 to 180.
    bool toDegrees(const QPointF& world, QPointF* degrees) const;
    /// From WGS 84. False where the reference does not reach.
    bool fromDegrees(const QPointF& degrees, QPointF* world) const;

private:
    struct PjCloser
    {
        void operator()(PJconsts* object) const;
    };
    using Pj = std::unique_ptr<PJconsts, PjCloser>;

    MapReference(std::shared_ptr<pj_ctx> sharedContext, const QString& definition);
    Pj horizontalOf(Pj system) const;
    void readUnits();
    void readEllipsoid();
    Pj way(const PJconsts* from, const PJconsts* to) const;
    PJconsts* wayToOwn() const;
    PJconsts* wayToEarth() const;

    std::shared_ptr<pj_ctx> context;
    MapUnits units;
    QString title;
    Ellipsoid ellipsoid;
    double degreesPerUnit = 1.0; // of a geographic reference, and of the base of a projected one
    Pj system;                   // without a height; null for none
    Pj plain;                    // the same without a datum shift of its own
    Pj geodetic;                 // what it is derived from
    mutable Pj ownWay;           // made when first needed
    mutable Pj earthWay;
};

} // namespace Corvane::Viewer
