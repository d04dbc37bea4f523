#pragma once

#include <corvane/core/ILayerEditorPlugin.h>
#include <corvane/core/ILayerPlugin.h>
#include <corvane/core/ILayerPluginInfo.h>

#include <QObject>
#include <QString>

namespace Corvane::Map {

class Layer;
class MapView;

/// The plugin that makes raster layers of files and URLs. GUI thread only.
class GdalRasterPlugin : public QObject,
                         public ILayerPluginInfo,
                         public ILayerPlugin,
                         public ILayerEditorPlugin
{
    Q_OBJECT
    Q_INTERFACES(Corvane::ILayerPluginInfo Corvane::ILayerPlugin Corvane::ILayerEditorPlugin)
public:
    explicit GdalRasterPlugin(QObject* parent = nullptr);

    QString getVersion() override;
    QString getDisplayName() override;
    QString getDescription() override;
    QString getClassName() override;
    QString getVendor() override;
    QString getHelpUrl() override;
    QString getReadFilter() override;
    void setEnabled(bool enabled) override;
    bool isEnabled() override;

    Map::Layer* createLayer(bool useGui) override;

    QList<QDockWidget*> getDockWidgets() override;
    QList<QWidget*> getLayerPropertyWidgets() override;
    QList<QToolBar*> getToolBars() override;
    /// The one action "actionAddRaster", owned by the plugin.
    QList<QAction*> getAddLayerActions() override;
    QList<QWidget*> getPrefsPages() override;

    /// Adds a layer for each file to the view; a file that does not open is named in a message.
    void addFiles(const QStringList& files, MapView* view);

private:
    void chooseFiles();

    bool enabled = true;
    QAction* addAction = nullptr; // owned as a child
    QString readFilter;           // built at the first question
};

} // namespace Corvane::Map
