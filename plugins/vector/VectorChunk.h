#pragma once

#include <plugins/vector/WorldBox.h>

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <memory>
#include <vector>

namespace Corvane::Map {

class ShapeIndex;

enum class ShapeKind : unsigned char
{
    Points,
    Lines,
    Polygons
};

/// What is drawn of a feature: all its points, all its lines or all its rings. A feature of mixed
/// geometry makes several.
struct VectorShape
{
    WorldBox box;
    std::uint32_t firstPart = 0;
    std::uint32_t partCount = 0;
    ShapeKind kind = ShapeKind::Points;
};

/// A run of features in the order of their source, with an index over them. Never changed once it
/// is made, so any thread may read it.
class VectorChunk
{
public:
    VectorChunk();
    ~VectorChunk();
    VectorChunk(const VectorChunk&) = delete;
    VectorChunk& operator=(const VectorChunk&) = delete;

    const WorldBox& getBox() const { return box; }
    const std::vector<VectorShape>& getShapes() const { return shapes; }
    /// The shapes whose boxes meet the area, in drawing order.
    std::vector<std::uint32_t> find(const WorldBox& area) const;
    /// The coordinates of a part stand from here up to the beginning of the next; a ring does not
    /// repeat its first vertex.
    std::uint32_t beginOf(std::uint32_t part) const { return partBegins[part]; }
    std::uint32_t endOf(std::uint32_t part) const { return partBegins[part + 1]; }
    const double* getXs() const { return xs.data(); }
    const double* getYs() const { return ys.data(); }
    /// Empty without a label.
    QString labelOf(std::uint32_t shape) const;
    bool hasLabels() const { return !labelText.isEmpty(); }
    /// The memory that it holds, the index included as far as that is known.
    std::int64_t getBytes() const;
    /// That of all finished chunks of the process together.
    static std::int64_t allBytes();

private:
    friend class VectorChunkBuilder;

    /// Once, when it is finished.
    void count();

    WorldBox box;
    std::vector<VectorShape> shapes;
    std::vector<std::uint32_t> partBegins; // one more than there are parts
    std::vector<double> xs;
    std::vector<double> ys;
    QByteArray labelText;                   // UTF-8, all labels in a row
    std::vector<std::uint32_t> labelBegins; // one more than there are shapes; empty without labels
    std::unique_ptr<ShapeIndex> index;
    std::int64_t countedBytes = 0;
};

} // namespace Corvane::Map
