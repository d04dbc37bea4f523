#include <tests/core/plugins/TestPlugin.h>

#include <QObject>

/// Enabled, without an editor; the filter ends in a separator.
class PlainPlugin : public QObject, public TestInfo, public TestLayerMaker
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.corvane.viewer.ILayerPlugin/1.0")
    Q_INTERFACES(Corvane::ILayerPluginInfo Corvane::ILayerPlugin)
public:
    PlainPlugin()
        : TestInfo("Test::Map::PlainLayer", "3.1", "Plain grids (*.grd);;Anything (*.*);;", true),
          TestLayerMaker("Test::Map::PlainLayer")
    {
    }
};

#include "PlainPlugin.moc"
