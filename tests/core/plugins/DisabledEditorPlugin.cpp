#include <tests/core/plugins/TestPlugin.h>

#include <QObject>

/// Not enabled, with an editor.
class DisabledEditorPlugin : public QObject,
                             public TestInfo,
                             public TestLayerMaker,
                             public TestEditor
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.corvane.viewer.ILayerPlugin/1.0")
    Q_INTERFACES(Corvane::ILayerPluginInfo Corvane::ILayerPlugin Corvane::ILayerEditorPlugin)
public:
    DisabledEditorPlugin()
        : TestInfo("Test::Map::DisabledLayer", "5", "Disabled (*.dis)", false),
          TestLayerMaker("Test::Map::DisabledLayer"),
          TestEditor("disabled")
    {
    }
};

#include "DisabledEditorPlugin.moc"
