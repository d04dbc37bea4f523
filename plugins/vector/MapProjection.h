#pragma once

#include <plugins/vector/WorldBox.h>

#include <QString>

#include <cstddef>
#include <memory>
#include <vector>

namespace Corvane::Map {

/// From the reference of a source to that of the map, x before y on both sides. One thread only.
class MapProjection
{
public:
    /// Null with the reason in error where there is no way between the two. Opens a data base: some
    /// milliseconds, more the first time.
    static std::unique_ptr<MapProjection> make(const QString& sourceWkt, int targetEpsg,
                                               QString* error);
    ~MapProjection();
    MapProjection(const MapProjection&) = delete;
    MapProjection& operator=(const MapProjection&) = delete;

    /// Brings the positions over in place. What cannot be brought over is marked with 0. Longitudes
    /// beyond 180 degrees lie beyond the end of a map of the world, not at its other end.
    std::vector<int> transform(std::vector<double>* xs, std::vector<double>* ys) const;
    /// The box around what the box becomes; empty where that is nowhere or endless.
    WorldBox transform(const WorldBox& box) const;
    /// Where the map's reference ends, in its own units; empty for one of a part of the world, which
    /// goes on beyond it.
    const WorldBox& getReach() const { return reach; }

private:
    explicit MapProjection(void* transformation) : handle(transformation) {}

    void* handle; // an OGRCoordinateTransformationH; owned
    WorldBox reach;
    double turn = 0.0; // once round the world, in the map's units; 0 where it does not go on
};

} // namespace Corvane::Map
