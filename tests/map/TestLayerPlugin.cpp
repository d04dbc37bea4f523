#include "TestLayers.h"

#include <corvane/core/ILayerPlugin.h>
#include <corvane/core/ILayerPluginInfo.h>

#include <QCoreApplication>
#include <QObject>
#include <QVariant>

/// What the plugin makes. Refuses a source with "refused" in its name.
class TestPluginLayer : public PlainLayer<Corvane::Map::Layer>
{
    Q_OBJECT
public:
    TestPluginLayer() : PlainLayer(nullptr) { description = QStringLiteral("made by the plugin"); }

    bool setDataSource(QString source) override
    {
        PlainLayer::setDataSource(source);
        return !source.contains(QLatin1String("refused"));
    }
    void setDescription(QString t) override
    {
        log << QStringLiteral("setDescription(%1)").arg(t);
        PlainLayer::setDescription(t);
    }
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
    /// The layer is known to the test as the application's property "madeLayer".
    Corvane::Map::Layer* createLayer(bool) override
    {
        auto* layer = new TestPluginLayer;
        qApp->setProperty("madeLayer", QVariant::fromValue<QObject*>(layer));
        return layer;
    }

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
