#pragma once

#include <plugins/vector/GeometryParts.h>
#include <plugins/vector/VectorChunk.h>

#include <memory>

namespace Corvane::Map {

class MapProjection;

/// Collects features into a chunk. One thread at a time.
class VectorChunkBuilder
{
public:
    explicit VectorChunkBuilder(bool withLabels);
    ~VectorChunkBuilder();

    /// False where there is nothing of it that could be drawn. label: UTF-8, of which a short line is
    /// kept.
    bool add(OGRGeometryH geometry, const char* label);
    std::size_t countVertices() const;
    /// The chunk, brought over to another reference first where projection is not null; what that
    /// fails for is left out and added to *leftOut. The builder is empty again.
    std::shared_ptr<const VectorChunk> finish(const MapProjection* projection, qint64* leftOut);

private:
    void start();
    void addShape(const GeometryParts::List& list, ShapeKind kind);
    std::vector<bool> failedFeatures(const std::vector<int>& reached) const;
    void keepOthersThan(const std::vector<bool>& failed);
    void measure();

    const bool withLabels;
    GeometryParts parts;
    std::shared_ptr<VectorChunk> chunk;
    std::vector<std::uint32_t> featureOf; // of each shape, counted in this chunk
    std::uint32_t features = 0;
};

} // namespace Corvane::Map
