#pragma once

#include <corvane/core/Export.h>

#include <QtPlugin>

namespace Corvane {

namespace Map {
class Layer;
}

/// Makes the layers of a plugin. GUI thread only.
class CORVANE_EXPORT ILayerPlugin
{
public:
    /// A new layer, owned by the caller. useGui allows dialogs. Null where none could be made.
    virtual Map::Layer* createLayer(bool useGui) = 0;

protected:
    ~ILayerPlugin() = default;
};

} // namespace Corvane

Q_DECLARE_INTERFACE(Corvane::ILayerPlugin, "com.corvane.viewer.ILayerPlugin/1.0")
