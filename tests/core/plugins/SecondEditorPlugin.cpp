#include <tests/core/plugins/TestPlugin.h>

#include <QObject>

/// Enabled, with an editor and two filters.
class SecondEditorPlugin : public QObject, public TestInfo, public TestLayerMaker, public TestEditor
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.corvane.viewer.ILayerPlugin/1.0")
    Q_INTERFACES(Corvane::ILayerPluginInfo Corvane::ILayerPlugin Corvane::ILayerEditorPlugin)
public:
    SecondEditorPlugin()
        : TestInfo("Test::Map::SecondLayer", "2.0 beta",
                   "second tables (*.csv);;Alpha drawings (*.dxf *.dwg)", true),
          TestLayerMaker("Test::Map::SecondLayer"),
          TestEditor("second")
    {
    }
};

#include "SecondEditorPlugin.moc"
