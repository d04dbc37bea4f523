#include "TestLayers.h"

#include <corvane/core/ILayerPlugin.h>
#include <corvane/core/ILayerPluginInfo.h>

#include <QObject>

/// What the plugin makes.
class TestPluginLayer : public PlainLayer<Corvane::Map::Layer>
{
    Q_OBJECT
public:
    TestPluginLayer() : PlainLayer(nullptr) { description = QStringLiteral("made by the plugin"); }
};

/// A layer plugin, for tests of what a canvas and a view do with a layer of a plugin.
class TestLayerPlugin : public QObject,
                        public Corvane::ILayerPlugin,
                        public Corvane::ILayerPluginInfo
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.corvane.viewer.ILayerPlugin/1.0")
    Q_INTERFACES(Corvane::ILayerPlugin Corvane::ILayerPluginInfo)
public:
    Corvane::Map::Layer* createLayer(bool) override { return new TestPluginLayer; }

    QString getVersion() override { return QStringLiteral("1"); }
    QString getDisplayName() override { return QStringLiteral("Test layers"); }
    QString getDescription() override { return QString(); }
    QString getClassName() override { return QStringLiteral("TestPluginLayer"); }
    QString getVendor() override { return QString(); }
    QString getHelpUrl() override { return QString(); }
    QString getReadFilter() override { return QStringLiteral("Tests (*.test)"); }
    void setEnabled(bool) override {}
    bool isEnabled() override { return true; }
};

#include "TestLayerPlugin.moc"
