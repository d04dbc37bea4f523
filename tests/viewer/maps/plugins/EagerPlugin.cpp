#include "OpeningLayer.h"

#include <corvane/core/ILayerPlugin.h>
#include <corvane/core/ILayerPluginInfo.h>

/// A layer that is open after setDataSource or never: it has no signal to wait for.
class EagerLayer : public OpeningLayer<TestRasterLayer>
{
    Q_OBJECT
public:
    EagerLayer() : OpeningLayer("eager") {}
};

class EagerPlugin : public QObject, public Corvane::ILayerPluginInfo, public Corvane::ILayerPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.corvane.viewer.ILayerPlugin/1.0")
    Q_INTERFACES(Corvane::ILayerPluginInfo Corvane::ILayerPlugin)
public:
    QString getVersion() override { return "1.5"; }
    QString getDisplayName() override { return "Eager"; }
    QString getDescription() override { return "Opens at once"; }
    QString getClassName() override { return "EagerLayer"; }
    QString getVendor() override { return "Test"; }
    QString getHelpUrl() override { return QString(); }
    QString getReadFilter() override { return "Eager images (*.egr)"; }
    void setEnabled(bool) override {}
    bool isEnabled() override { return true; }
    Corvane::Map::Layer* createLayer(bool) override { return new EagerLayer; }
};

#include "EagerPlugin.moc"
