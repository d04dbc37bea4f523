#include <tests/core/plugins/TestPlugin.h>

#include <QObject>

/// Does not describe itself.
class LayerOnlyPlugin : public QObject, public TestLayerMaker, public TestEditor
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.corvane.viewer.ILayerPlugin/1.0")
    Q_INTERFACES(Corvane::ILayerPlugin Corvane::ILayerEditorPlugin)
public:
    LayerOnlyPlugin()
        : TestLayerMaker("Test::Map::LayerOnlyLayer"),
          TestEditor("layer"),
          life("Test::Map::LayerOnlyLayer")
    {
    }

private:
    LifeNote life;
};

#include "LayerOnlyPlugin.moc"
