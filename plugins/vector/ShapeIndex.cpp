#include <plugins/vector/ShapeIndex.h>

#include <plugins/vector/VectorChunk.h>

#include <boost/geometry/geometries/box.hpp>
#include <boost/geometry/geometries/point.hpp>
#include <boost/geometry/index/rtree.hpp>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <utility>

namespace Corvane::Map {

namespace {

namespace geometry = boost::geometry;

using Corner = geometry::model::point<float, 2, geometry::cs::cartesian>;
using Box = geometry::model::box<Corner>;
using Entry = std::pair<Box, std::uint32_t>;

constexpr std::size_t entriesPerNode = 16;

// Rounded outward, so that nothing is missed.
float below(double value)
{
    const auto limit = static_cast<double>(std::numeric_limits<float>::max());
    const auto near = static_cast<float>(std::clamp(value, -limit, limit));
    return static_cast<double>(near) > value
               ? std::nextafter(near, -std::numeric_limits<float>::infinity())
               : near;
}

float above(double value)
{
    return -below(-value);
}

Box boxOf(const WorldBox& box)
{
    return Box(Corner(below(box.left), below(box.bottom)),
               Corner(above(box.right), above(box.top)));
}

} // namespace

struct ShapeIndex::Tree
{
    using Rtree = geometry::index::rtree<Entry, geometry::index::linear<entriesPerNode>>;

    explicit Tree(const std::vector<Entry>& all) : entries(all) {} // a range at once is packed

    Rtree entries;
};

ShapeIndex::ShapeIndex(const std::vector<VectorShape>& shapes)
{
    std::vector<Entry> all;
    all.reserve(shapes.size());
    for (std::size_t i = 0; i < shapes.size(); ++i) {
        all.emplace_back(boxOf(shapes[i].box), static_cast<std::uint32_t>(i));
    }
    tree = std::make_unique<Tree>(all);
}

ShapeIndex::~ShapeIndex() = default;

std::vector<std::uint32_t> ShapeIndex::find(const WorldBox& area) const
{
    std::vector<std::uint32_t> found;
    const auto end = tree->entries.qend();
    for (auto it = tree->entries.qbegin(geometry::index::intersects(boxOf(area))); it != end; ++it)
    {
        found.push_back(it->second);
    }
    std::sort(found.begin(), found.end());
    return found;
}

std::size_t ShapeIndex::bytesFor(std::size_t shapes)
{
    const std::size_t inner = shapes / (entriesPerNode - 1) * (sizeof(Box) + sizeof(void*));
    return shapes * sizeof(Entry) + inner;
}

} // namespace Corvane::Map
