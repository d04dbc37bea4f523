#include <tests/core/plugins/TestPlugin.h>

#include <QObject>

/// Makes the class that the protocol words stand for; reads no files.
class ProtocolPlugin : public QObject, public TestInfo, public TestLayerMaker
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.corvane.viewer.ILayerPlugin/1.0")
    Q_INTERFACES(Corvane::ILayerPluginInfo Corvane::ILayerPlugin)
public:
    ProtocolPlugin()
        : TestInfo("Corvane::Map::ZWTJPEG2kLayer", "4", "", true),
          TestLayerMaker("Corvane::Map::ZWTJPEG2kLayer")
    {
    }
};

#include "ProtocolPlugin.moc"
