#pragma once

#include <corvane/core/ILayerEditorPlugin.h>
#include <corvane/core/ILayerPlugin.h>
#include <corvane/core/ILayerPluginInfo.h>

#include <QObject>

namespace Corvane::Map {

/// The plugin that makes layers of web tiles. GUI thread only.
class WebTilePlugin : public QObject,
                      public ILayerPluginInfo,
                      public ILayerPlugin,
                      public ILayerEditorPlugin
{
    Q_OBJECT
    Q_INTERFACES(Corvane::ILayerPluginInfo Corvane::ILayerPlugin Corvane::ILayerEditorPlugin)
public:
    explicit WebTilePlugin(QObject* parent = nullptr);

    QString getVersion() override;
    QString getDisplayName() override;
    QString getDescription() override;
    QString getClassName() override;
    QString getVendor() override;
    QString getHelpUrl() override;
    /// Presets only: what else ends in .xml belongs to others.
    QString getReadFilter() override;
    void setEnabled(bool enabled) override;
    bool isEnabled() override;

    Map::Layer* createLayer(bool useGui) override;

    QList<QDockWidget*> getDockWidgets() override;
    QList<QWidget*> getLayerPropertyWidgets() override;
    QList<QToolBar*> getToolBars() override;
    /// The one action "actionAddWebTiles", owned by the plugin.
    QList<QAction*> getAddLayerActions() override;
    QList<QWidget*> getPrefsPages() override;

private:
    static void askAndAdd();

    bool enabled = true;
    QAction* addAction = nullptr; // owned as a child
};

} // namespace Corvane::Map
