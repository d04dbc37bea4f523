#include <tests/core/plugins/TestPlugin.h>

#include <QObject>

/// Cannot make a layer.
class InfoOnlyPlugin : public QObject, public TestInfo, public TestEditor
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.corvane.viewer.ILayerPlugin/1.0")
    Q_INTERFACES(Corvane::ILayerPluginInfo Corvane::ILayerEditorPlugin)
public:
    InfoOnlyPlugin()
        : TestInfo("Test::Map::InfoOnlyLayer", "7", "Info (*.inf)", true),
          TestEditor("info")
    {
    }
};

#include "InfoOnlyPlugin.moc"
