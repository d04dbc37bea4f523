#include "OpeningLayer.h"

#include <corvane/core/ILayerPlugin.h>
#include <corvane/core/ILayerPluginInfo.h>

/// A layer that may open later and then says so.
class LateLayer : public OpeningLayer<TestRasterLayer>
{
    Q_OBJECT
public:
    LateLayer() : OpeningLayer("late") {}

signals:
    void sourceOpened(bool ok);
};

class LatePlugin : public QObject, public Corvane::ILayerPluginInfo, public Corvane::ILayerPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.corvane.viewer.ILayerPlugin/1.0")
    Q_INTERFACES(Corvane::ILayerPluginInfo Corvane::ILayerPlugin)
public:
    QString getVersion() override { return "2.5"; }
    QString getDisplayName() override { return "Late"; }
    QString getDescription() override { return "Opens later"; }
    QString getClassName() override { return "LateLayer"; }
    QString getVendor() override { return "Test"; }
    QString getHelpUrl() override { return QString(); }
    QString getReadFilter() override { return "Late images (*.lte *.ltx)"; }
    void setEnabled(bool) override {}
    bool isEnabled() override { return true; }
    Corvane::Map::Layer* createLayer(bool) override { return new LateLayer; }
};

#include "LatePlugin.moc"
