#include <viewer/batch/PluginListing.h>

#include <corvane/core/Config.h>
#include <corvane/core/ILayerPluginInfo.h>
#include <corvane/core/PluginManager.h>

#include <QDir>
#include <QPluginLoader>

namespace Corvane::Viewer {
namespace {

/// The file that holds a plugin: a loader of the same file hands out the same instance.
QString fileOf(const ILayerPluginInfo* plugin)
{
    const QDir folder = Config::GetDirectory(ConfigDirPlugins);
    const auto files = folder.entryInfoList(QDir::Files);
    for (const QFileInfo& file : files) {
        QPluginLoader loader(file.absoluteFilePath());
        if (qobject_cast<ILayerPluginInfo*>(loader.instance()) == plugin) {
            return file.absoluteFilePath();
        }
    }
    return {};
}

} // namespace

QStringList listPlugins()
{
    QStringList lines;
    const auto plugins = PluginManager::getLayerPluginInfoList();
    for (ILayerPluginInfo* plugin : plugins) {
        lines << QStringList{plugin->getClassName(), plugin->getVersion(), plugin->getReadFilter(),
                             fileOf(plugin)}
                     .join('\t');
    }
    return lines;
}

} // namespace Corvane::Viewer
