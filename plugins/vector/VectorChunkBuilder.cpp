#include <plugins/vector/VectorChunkBuilder.h>

#include <plugins/vector/MapProjection.h>
#include <plugins/vector/ShapeIndex.h>

#include <algorithm>
#include <utility>

namespace Corvane::Map {

namespace {

constexpr int longestLabel = 100; // letters; a longer one would hardly find a place
constexpr uint mostBytes = 1024;  // of a text that are looked at
constexpr ushort ellipsis = 0x2026;

// One line of a text that may have megabytes.
QByteArray labelOf(const char* text)
{
    QString line =
        QString::fromUtf8(text, static_cast<int>(qstrnlen(text, mostBytes))).simplified();
    if (line.size() > longestLabel) {
        line.truncate(longestLabel - 1);
        line.chop(line.at(line.size() - 1).isHighSurrogate() ? 1 : 0);
        line.append(QChar(ellipsis));
    }
    return line.toUtf8();
}

} // namespace

VectorChunkBuilder::VectorChunkBuilder(bool labels) : withLabels(labels)
{
    start();
}

VectorChunkBuilder::~VectorChunkBuilder() = default;

void VectorChunkBuilder::start()
{
    chunk = std::make_shared<VectorChunk>();
    chunk->partBegins.push_back(0);
    if (withLabels) {
        chunk->labelBegins.push_back(0);
    }
    featureOf.clear();
    features = 0;
}

std::size_t VectorChunkBuilder::countVertices() const
{
    return chunk->xs.size();
}

bool VectorChunkBuilder::add(OGRGeometryH geometry, const char* label)
{
    parts.clear();
    parts.add(geometry);
    const std::size_t before = chunk->shapes.size();
    addShape(parts.getRings(), ShapeKind::Polygons);
    addShape(parts.getLines(), ShapeKind::Lines);
    addShape(parts.getPoints(), ShapeKind::Points);
    const std::size_t after = chunk->shapes.size();
    if (after == before) {
        return false;
    }
    featureOf.resize(after, features);
    ++features;
    if (withLabels) { // the first shape of a feature carries its label
        chunk->labelText.append(labelOf(label));
        chunk->labelBegins.resize(after + 1, static_cast<std::uint32_t>(chunk->labelText.size()));
    }
    return true;
}

void VectorChunkBuilder::addShape(const GeometryParts::List& list, ShapeKind kind)
{
    if (list.ends.empty()) {
        return;
    }
    VectorShape shape;
    shape.firstPart = static_cast<std::uint32_t>(chunk->partBegins.size() - 1);
    shape.partCount = static_cast<std::uint32_t>(list.ends.size());
    shape.kind = kind;
    chunk->shapes.push_back(shape);
    const std::size_t offset = chunk->xs.size();
    chunk->xs.insert(chunk->xs.end(), list.xs.begin(), list.xs.end());
    chunk->ys.insert(chunk->ys.end(), list.ys.begin(), list.ys.end());
    for (const std::size_t end : list.ends) {
        chunk->partBegins.push_back(static_cast<std::uint32_t>(offset + end));
    }
}

std::vector<bool> VectorChunkBuilder::failedFeatures(const std::vector<int>& reached) const
{
    std::vector<bool> failed(features, false);
    for (std::size_t i = 0; i < chunk->shapes.size(); ++i) {
        const VectorShape& shape = chunk->shapes[i];
        for (std::uint32_t v = chunk->beginOf(shape.firstPart);
             v < chunk->beginOf(shape.firstPart + shape.partCount); ++v)
        {
            if (!reached[v] || !isUsableCoordinate(chunk->xs[v]) ||
                !isUsableCoordinate(chunk->ys[v])) {
                failed[featureOf[i]] = true;
            }
        }
    }
    return failed;
}

void VectorChunkBuilder::keepOthersThan(const std::vector<bool>& failed)
{
    const std::shared_ptr<VectorChunk> all = std::move(chunk);
    const std::vector<std::uint32_t> owners = std::move(featureOf);
    start();
    for (std::uint32_t i = 0; i < all->shapes.size(); ++i) {
        VectorShape shape = all->shapes[i];
        if (failed[owners[i]]) {
            continue;
        }
        const std::uint32_t first = shape.firstPart;
        shape.firstPart = static_cast<std::uint32_t>(chunk->partBegins.size() - 1);
        for (std::uint32_t part = first; part < first + shape.partCount; ++part) {
            const std::uint32_t begin = all->beginOf(part);
            const std::uint32_t end = all->endOf(part);
            chunk->xs.insert(chunk->xs.end(), all->xs.begin() + begin, all->xs.begin() + end);
            chunk->ys.insert(chunk->ys.end(), all->ys.begin() + begin, all->ys.begin() + end);
            chunk->partBegins.push_back(static_cast<std::uint32_t>(chunk->xs.size()));
        }
        chunk->shapes.push_back(shape);
        if (withLabels) {
            chunk->labelText.append(all->labelOf(i).toUtf8());
            chunk->labelBegins.push_back(static_cast<std::uint32_t>(chunk->labelText.size()));
        }
    }
}

void VectorChunkBuilder::measure()
{
    for (VectorShape& shape : chunk->shapes) {
        for (std::uint32_t v = chunk->beginOf(shape.firstPart);
             v < chunk->beginOf(shape.firstPart + shape.partCount); ++v)
        {
            shape.box.add(chunk->xs[v], chunk->ys[v]);
        }
        chunk->box.add(shape.box);
    }
}

std::shared_ptr<const VectorChunk> VectorChunkBuilder::finish(const MapProjection* projection,
                                                              qint64* leftOut)
{
    if (projection) {
        const std::vector<bool> failed =
            failedFeatures(projection->transform(&chunk->xs, &chunk->ys));
        const auto count = std::count(failed.begin(), failed.end(), true);
        if (count > 0) {
            keepOthersThan(failed);
            *leftOut += count;
        }
    }
    measure();
    chunk->shapes.shrink_to_fit();
    chunk->partBegins.shrink_to_fit();
    chunk->xs.shrink_to_fit();
    chunk->ys.shrink_to_fit();
    chunk->index = std::make_unique<ShapeIndex>(chunk->shapes);
    chunk->count();
    std::shared_ptr<const VectorChunk> finished = std::move(chunk);
    start();
    return finished;
}

} // namespace Corvane::Map
