#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace Corvane::Map {

struct VectorShape;
struct WorldBox;

/// A packed R-tree over the boxes of shapes. Never changed once it is made, so any thread may ask.
class ShapeIndex
{
public:
    explicit ShapeIndex(const std::vector<VectorShape>& shapes);
    ~ShapeIndex();
    ShapeIndex(const ShapeIndex&) = delete;
    ShapeIndex& operator=(const ShapeIndex&) = delete;

    /// The numbers of the shapes whose boxes meet the area, ascending. As boxes are kept in single
    /// precision, some that lie beside it by a rounding come as well.
    std::vector<std::uint32_t> find(const WorldBox& area) const;
    /// About how much memory it holds for so many shapes.
    static std::size_t bytesFor(std::size_t shapes);

private:
    struct Tree;
    std::unique_ptr<Tree> tree;
};

} // namespace Corvane::Map
