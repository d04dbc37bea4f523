#pragma once

#include <corvane/core/Export.h>

#include <QList>
#include <QObject>
#include <QString>

class QAction;
class QDockWidget;
class QToolBar;
class QWidget;

namespace Corvane {

class ILayerPluginInfo;

namespace Map {
class Layer;
}

namespace SRS {
class ISpatialReferenceSystemPlugin;
class ISpatialReferenceSystemPluginInfo;
} // namespace SRS

/// The one door to the layer plugins in the folder "tvviewerplugins" beside the program. They are
/// loaded once, at the first question; a plugin that is not enabled at that moment stays out.
/// The object carries nothing: it lets the operations be called by name, and their order is part
/// of the contract. GUI thread only; needs the application object.
class CORVANE_EXPORT PluginManager : public QObject
{
    Q_OBJECT
public:
    /// Loads nothing. The parent owns it; it may be null.
    explicit PluginManager(QObject* parent = nullptr);

public slots:
    /// A new layer of the class, in any case of letters, owned by the caller; null where no plugin
    /// makes it. bUseGui allows dialogs.
    static Map::Layer* createLayer(QString classname, bool bUseGui = false);
    /// The filters of a file dialog, joined by ";;". Built once.
    static QString getFileChooserReadFilter();
    /// The class of the first enabled plugin whose filter holds the letters of the extension; a
    /// null string without one.
    static QString findLayerClassname(QString fileExt);
    /// Switches the plugins that make the class pluginname and have an editor interface.
    static void setPluginEnabled(QString pluginname, bool enabled);
    /// What the enabled plugins bring; the caller places and owns it.
    static QList<QDockWidget*> getDockWidgets();
    /// The pages of the plugins that make exactly this class.
    static QList<QWidget*> getLayerPropertyWidgets(QString classname);
    /// The actions that add layers; the plugins keep them.
    static QList<QAction*> getLayerPluginAddLayerActions();
    /// The tool bars; the caller places and owns them.
    static QList<QToolBar*> getLayerPluginToolBars();
    /// The preference pages; the caller places and owns them.
    static QList<QWidget*> getLayerPluginPrefsPages();
    /// The plugins in load order; not owned.
    static QList<ILayerPluginInfo*> getLayerPluginInfoList();
    /// Always empty.
    static QList<SRS::ISpatialReferenceSystemPluginInfo*> getSrsPluginInfoList();
    /// Always empty.
    static QList<SRS::ISpatialReferenceSystemPlugin*> getSrsPluginList();
    /// Deletes the plugins' root objects; their layers must be gone. Nothing else of this class
    /// may be called afterwards.
    static void fini();
};

} // namespace Corvane
