#include <tests/core/plugins/TestPlugin.h>

#include <QObject>

/// Not enabled, without an editor.
class DisabledPlainPlugin : public QObject, public TestInfo, public TestLayerMaker
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.corvane.viewer.ILayerPlugin/1.0")
    Q_INTERFACES(Corvane::ILayerPluginInfo Corvane::ILayerPlugin)
public:
    DisabledPlainPlugin()
        : TestInfo("Test::Map::DisabledPlainLayer", "6", "Disabled (*.dip)", false),
          TestLayerMaker("Test::Map::DisabledPlainLayer")
    {
    }
};

#include "DisabledPlainPlugin.moc"
