#pragma once

#include <corvane/core/ILayerPlugin.h>
#include <corvane/core/ILayerPluginInfo.h>

#include <QObject>

/// What the plugin file offers: a description of itself, and layers.
class GraticulePlugin : public QObject,
                        public Corvane::ILayerPluginInfo,
                        public Corvane::ILayerPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.corvane.viewer.ILayerPlugin/1.0")
    Q_INTERFACES(Corvane::ILayerPluginInfo Corvane::ILayerPlugin)
public:
    QString getVersion() override { return QStringLiteral("1.0"); }
    QString getDisplayName() override { return tr("Graticule"); }
    QString getDescription() override { return tr("Draws meridians and parallels."); }
    QString getClassName() override;
    QString getVendor() override { return QStringLiteral("Corvane examples"); }
    QString getHelpUrl() override { return QString(); }
    QString getReadFilter() override { return QString(); } // it reads no files
    void setEnabled(bool on) override { enabled = on; }
    bool isEnabled() override { return enabled; }
    Corvane::Map::Layer* createLayer(bool useGui) override;

private:
    bool enabled = true;
};
