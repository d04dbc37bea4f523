#include <plugins/vector/VectorChunk.h>

#include <plugins/vector/ShapeIndex.h>

#include <atomic>
#include <numeric>

namespace Corvane::Map {

namespace {

std::atomic<std::int64_t> bytesOfAll{0};

} // namespace

VectorChunk::VectorChunk() = default;

VectorChunk::~VectorChunk()
{
    bytesOfAll -= countedBytes;
}

void VectorChunk::count()
{
    countedBytes = getBytes();
    bytesOfAll += countedBytes;
}

std::int64_t VectorChunk::allBytes()
{
    return bytesOfAll;
}

std::vector<std::uint32_t> VectorChunk::find(const WorldBox& area) const
{
    if (!area.meets(box)) {
        return {};
    }
    if (area.holds(box)) {
        std::vector<std::uint32_t> all(shapes.size());
        std::iota(all.begin(), all.end(), 0U);
        return all;
    }
    return index->find(area);
}

QString VectorChunk::labelOf(std::uint32_t shape) const
{
    if (labelBegins.empty()) {
        return QString();
    }
    const std::uint32_t begin = labelBegins[shape];
    return QString::fromUtf8(labelText.constData() + begin,
                             static_cast<int>(labelBegins[shape + 1] - begin));
}

std::int64_t VectorChunk::getBytes() const
{
    const std::size_t bytes =
        shapes.capacity() * sizeof(VectorShape) + partBegins.capacity() * sizeof(std::uint32_t) +
        (xs.capacity() + ys.capacity()) * sizeof(double) +
        labelBegins.capacity() * sizeof(std::uint32_t) +
        static_cast<std::size_t>(labelText.capacity()) + ShapeIndex::bytesFor(shapes.size());
    return static_cast<std::int64_t>(bytes);
}

} // namespace Corvane::Map
