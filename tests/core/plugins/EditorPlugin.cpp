#include <tests/core/plugins/TestPlugin.h>

#include <QObject>

/// Enabled, with an editor.
class EditorPlugin : public QObject, public TestInfo, public TestLayerMaker, public TestEditor
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.corvane.viewer.ILayerPlugin/1.0")
    Q_INTERFACES(Corvane::ILayerPluginInfo Corvane::ILayerPlugin Corvane::ILayerEditorPlugin)
public:
    EditorPlugin()
        : TestInfo("Test::Map::EditorLayer", "1.2", "Editor rasters (*.tiff *.FUL)", true),
          TestLayerMaker("Test::Map::EditorLayer"),
          TestEditor("editor")
    {
    }
};

#include "EditorPlugin.moc"
