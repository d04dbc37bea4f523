#pragma once

#include <plugins/imageserver/ImageServerPlugin.h>

namespace Corvane::Map {

/// What the plugin file offers to its loader.
class PluginRoot final : public ImageServerPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.corvane.viewer.ILayerPlugin/1.0")
};

} // namespace Corvane::Map
