#pragma once

#include <plugins/common/GdalAccess.h>
#include <plugins/vector/VectorFacts.h>

#include <memory>

namespace Corvane::Map {

/// An open vector source of which one layer is chosen. One thread at a time.
class VectorSource
{
public:
    /// layerName chooses; empty takes the first layer with geometry. Null with the reason in error.
    /// Any thread; may take long.
    static std::shared_ptr<VectorSource> open(const QString& dataSource, const QString& layerName,
                                              QString* error);

    const VectorFacts& facts() const { return known; }
    /// The chosen layer, as long as the source lives.
    OGRLayerH layer() const { return chosen; }

private:
    VectorSource() = default;

    bool choose(const QString& layerName, QString* error);
    void learn();

    DatasetPointer dataset;
    OGRLayerH chosen = nullptr;
    VectorFacts known;
};

} // namespace Corvane::Map
