#pragma once

#include <QPluginLoader>
#include <QString>

#include <memory>

namespace Corvane {

class ILayerEditorPlugin;
class ILayerPlugin;
class ILayerPluginInfo;

namespace Map {
class Layer;
}

namespace PluginChecker {

/// A plugin file and the interfaces of its root object. GUI thread only.
class PluginFile
{
public:
    explicit PluginFile(const QString& path);

    /// False with the reason in error: the file holds no layer plugin.
    bool load(QString* error);
    /// Deletes the root object, as a program does that ends.
    void unload();

    QObject* root() const { return rootObject; }
    ILayerPluginInfo* info() const { return information; }
    ILayerEditorPlugin* editor() const { return editing; } ///< may be null
    /// Null where the plugin makes none.
    std::unique_ptr<Map::Layer> createLayer() const;

private:
    QPluginLoader loader;
    QObject* rootObject = nullptr;
    ILayerPluginInfo* information = nullptr;
    ILayerPlugin* making = nullptr;
    ILayerEditorPlugin* editing = nullptr;
};

} // namespace PluginChecker
} // namespace Corvane
