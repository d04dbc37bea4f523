#pragma once

#include <corvane/core/Export.h>

#include <QtPlugin>

namespace Corvane {

namespace Map {
class Layer;
}

/// A property page that a plugin gives for its layers, implemented by a QWidget. GUI thread only.
class CORVANE_EXPORT ILayerPropertiesWidget
{
public:
    /// The layer to show; not owned, and alive for as long as the dialog is.
    virtual void setLayer(Map::Layer* layer) = 0;
    /// The dialog was accepted: write the page's values to the layer.
    virtual void apply() = 0;

protected:
    ~ILayerPropertiesWidget() = default;
};

} // namespace Corvane

Q_DECLARE_INTERFACE(Corvane::ILayerPropertiesWidget,
                    "com.corvane.viewer.ILayerPropertiesWidget/1.0")
