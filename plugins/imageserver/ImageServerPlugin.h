#pragma once

#include <corvane/core/ILayerEditorPlugin.h>
#include <corvane/core/ILayerPlugin.h>
#include <corvane/core/ILayerPluginInfo.h>

#include <QObject>

namespace Corvane::Map {

/// The plugin that makes layers of image servers. It has no action of its own: who wants an image of a
/// server finds it with the server browser. GUI thread only.
class ImageServerPlugin : public QObject,
                          public ILayerPluginInfo,
                          public ILayerPlugin,
                          public ILayerEditorPlugin
{
    Q_OBJECT
    Q_INTERFACES(Corvane::ILayerPluginInfo Corvane::ILayerPlugin Corvane::ILayerEditorPlugin)
public:
    explicit ImageServerPlugin(QObject* parent = nullptr);

    QString getVersion() override;
    QString getDisplayName() override;
    QString getDescription() override;
    QString getClassName() override;
    QString getVendor() override;
    QString getHelpUrl() override;
    /// Empty: images of servers are no files, and a filter would claim every suffix among its
    /// letters.
    QString getReadFilter() override;
    void setEnabled(bool enabled) override;
    bool isEnabled() override;

    Map::Layer* createLayer(bool useGui) override;

    QList<QDockWidget*> getDockWidgets() override;
    QList<QWidget*> getLayerPropertyWidgets() override;
    QList<QToolBar*> getToolBars() override;
    QList<QAction*> getAddLayerActions() override;
    QList<QWidget*> getPrefsPages() override;

private:
    bool enabled = true;
};

} // namespace Corvane::Map
