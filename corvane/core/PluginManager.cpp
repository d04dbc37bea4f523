#include <corvane/core/PluginManager.h>

#include <corvane/core/Application.h>
#include <corvane/core/Config.h>
#include <corvane/core/ILayerEditorPlugin.h>
#include <corvane/core/ILayerPlugin.h>
#include <corvane/core/ILayerPluginInfo.h>

#include <QDateTime>
#include <QDir>
#include <QPluginLoader>
#include <QPointer>
#include <QStringList>
#include <QtDebug>

namespace Corvane {

namespace {

#if defined(Q_OS_WIN)
const char* const pluginNameFilter = "*.dll";
#elif defined(Q_OS_MACOS)
const char* const pluginNameFilter = "*.dylib";
#else
const char* const pluginNameFilter = "*.so";
#endif

const char* const filterSeparator = ";;";
const char* const allFilesFilter = "All Files (*.*)";
const char* const mapContextFilter = "Map View Context (*.xml)";

// None of the three is owned: they are faces of the plugin's root object.
struct PluginRecord
{
    ILayerPluginInfo* info;
    ILayerPlugin* plugin;
    ILayerEditorPlugin* editor; // may be null
};

struct State
{
    QList<PluginRecord*> plugins; // in load order; owned, never emptied
    bool loaded = false;
    QString readFilter; // empty until built, then kept
};

State& state()
{
    // Never destroyed: widgets that outlive main may still ask.
    static State& instance = *new State;
    return instance;
}

void logInformation(const QString& message)
{
    Application::logMessage(message, Information, QDateTime::currentDateTime());
}

QStringList pluginFilesIn(const QDir& directory)
{
    return directory.entryList({QString::fromLatin1(pluginNameFilter)}, QDir::Files,
                               QDir::Unsorted);
}

QString pathOf(const QDir& directory, const QString& name)
{
    return directory.absolutePath() + QLatin1Char('/') + name;
}

void registerPlugin(const QString& name, QObject* root)
{
    auto* info = qobject_cast<ILayerPluginInfo*>(root);
    auto* plugin = qobject_cast<ILayerPlugin*>(root);
    auto* editor = qobject_cast<ILayerEditorPlugin*>(root);
    if (!info || !plugin) {
        return;
    }
    if (info->isEnabled()) {
        state().plugins.append(new PluginRecord{info, plugin, editor});
        logInformation(QStringLiteral("PluginManager:: loaded plugin '") + name +
                       QStringLiteral("' version: ") + info->getVersion());
    }
    if (!editor) {
        logInformation(QStringLiteral("PluginManager:: plugin '") + name +
                       QStringLiteral("' does not implement the ILayerEditorPlugin interface."));
    }
}

void loadPlugins()
{
    if (state().loaded) {
        return;
    }
    const QDir directory = Config::GetDirectory(ConfigDirPlugins);
    logInformation(QStringLiteral("Plugin directory: ") + directory.absolutePath());
    QPluginLoader loader;
    const QStringList names = pluginFilesIn(directory);
    for (const QString& name : names) {
        loader.setFileName(pathOf(directory, name));
        if (QObject* root = loader.instance()) {
            registerPlugin(name, root);
        } else {
            logInformation(QStringLiteral("PluginManager:: skipped plugin '") + name +
                           QStringLiteral("': ") + loader.errorString());
        }
    }
    state().loaded = true;
}

const QList<PluginRecord*>& loadedPlugins()
{
    loadPlugins();
    return state().plugins;
}

// What the enabled plugins with an editor interface answer to one question, in load order.
template <typename Item>
QList<Item> collect(QList<Item> (ILayerEditorPlugin::*question)())
{
    QList<Item> items;
    for (const PluginRecord* record : loadedPlugins()) {
        if (record->editor && record->info->isEnabled()) {
            items.append((record->editor->*question)());
        }
    }
    return items;
}

QString patternsOf(const QString& filter)
{
    const int open = filter.indexOf(QLatin1Char('('));
    const int close = filter.indexOf(QLatin1Char(')'));
    return filter.mid(open + 1, close - open - 1);
}

QString buildReadFilter(const QList<PluginRecord*>& plugins)
{
    const QString separator = QString::fromLatin1(filterSeparator);
    QString working = QLatin1String(allFilesFilter) + separator;
    for (const PluginRecord* record : plugins) {
        if (record->info->isEnabled()) {
            working += record->info->getReadFilter();
            if (!working.endsWith(separator)) {
                working += separator;
            }
        }
    }
    QStringList parts = working.split(separator);
    parts.sort();

    QString filters;
    QString everything = QStringLiteral("All supported files (");
    for (const QString& part : qAsConst(parts)) {
        if (part.isEmpty()) {
            continue;
        }
        filters += part + separator;
        const QString patterns = patternsOf(part);
        if (patterns != QLatin1String("*.*")) {
            everything += patterns + QLatin1Char(' ');
        }
    }
    return everything.trimmed() + QStringLiteral(" *.xml") + QStringLiteral(");;") + filters;
}

} // namespace

PluginManager::PluginManager(QObject* parent) : QObject(parent) {}

Map::Layer* PluginManager::createLayer(QString classname, bool bUseGui)
{
    const QList<PluginRecord*>& plugins = loadedPlugins();
    QString wanted = classname.toLower();
    // The built-in name keeps its capitals and is compared with lower-cased ones, so these three
    // words make no layer. PluginManagerTest::protocolWordsMakeNoLayer holds it.
    if (wanted == QLatin1String("zwt") || wanted == QLatin1String("zwtp") ||
        wanted == QLatin1String("zwtps"))
    {
        wanted = QStringLiteral("Corvane::Map::ZWTJPEG2kLayer");
    }
    for (const PluginRecord* record : plugins) {
        if (record->info->getClassName().toLower() == wanted && record->plugin) {
            return record->plugin->createLayer(bUseGui);
        }
    }
    return nullptr;
}

QString PluginManager::getFileChooserReadFilter()
{
    const QList<PluginRecord*>& plugins = loadedPlugins();
    QString& readFilter = state().readFilter;
    if (readFilter.isEmpty()) {
        readFilter = buildReadFilter(plugins);
    }
    const QString separator = QString::fromLatin1(filterSeparator);
    if (readFilter.endsWith(separator)) {
        readFilter.chop(separator.size());
    }
    return readFilter + separator + QLatin1String(mapContextFilter);
}

QString PluginManager::findLayerClassname(QString fileExt)
{
    const QString letters = fileExt.toLower();
    for (const PluginRecord* record : loadedPlugins()) {
        // A plain search: "tif" is found in "*.tiff" and in the description as well.
        if (record->info->getReadFilter().contains(letters) && record->info->isEnabled()) {
            return record->info->getClassName();
        }
    }
    return {};
}

void PluginManager::setPluginEnabled(QString pluginname, bool enabled)
{
    for (const PluginRecord* record : loadedPlugins()) {
        if (record->editor && record->info->getClassName() == pluginname) {
            record->info->setEnabled(enabled);
        }
    }
}

QList<QDockWidget*> PluginManager::getDockWidgets()
{
    return collect(&ILayerEditorPlugin::getDockWidgets);
}

QList<QWidget*> PluginManager::getLayerPropertyWidgets(QString classname)
{
    QList<QWidget*> widgets;
    for (const PluginRecord* record : loadedPlugins()) {
        if (record->editor && record->info->isEnabled() &&
            record->info->getClassName() == classname) {
            widgets.append(record->editor->getLayerPropertyWidgets());
        }
    }
    return widgets;
}

QList<QAction*> PluginManager::getLayerPluginAddLayerActions()
{
    return collect(&ILayerEditorPlugin::getAddLayerActions);
}

QList<QToolBar*> PluginManager::getLayerPluginToolBars()
{
    return collect(&ILayerEditorPlugin::getToolBars);
}

QList<QWidget*> PluginManager::getLayerPluginPrefsPages()
{
    return collect(&ILayerEditorPlugin::getPrefsPages);
}

QList<ILayerPluginInfo*> PluginManager::getLayerPluginInfoList()
{
    QList<ILayerPluginInfo*> infos;
    for (const PluginRecord* record : loadedPlugins()) {
        infos.append(record->info);
    }
    return infos;
}

QList<SRS::ISpatialReferenceSystemPluginInfo*> PluginManager::getSrsPluginInfoList()
{
    loadPlugins();
    qDebug().noquote().nospace() << "PluginManager::getSrsPluginInfoLis() NOT YET";
    return {};
}

QList<SRS::ISpatialReferenceSystemPlugin*> PluginManager::getSrsPluginList()
{
    loadPlugins();
    qDebug().noquote().nospace() << "PluginManager::getSrsPluginList() NOT YET";
    return {};
}

void PluginManager::fini()
{
    const QDir directory = Config::GetDirectory(ConfigDirPlugins);
    QPluginLoader loader;
    const QStringList names = pluginFilesIn(directory);
    for (const QString& name : names) {
        loader.setFileName(pathOf(directory, name));
        // unload deletes the root object itself when no other loader holds the file
        const QPointer<QObject> root = loader.instance();
        loader.unload();
        delete root;
    }
}

} // namespace Corvane
