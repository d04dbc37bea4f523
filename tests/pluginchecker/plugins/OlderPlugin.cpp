#include <corvane/core/ILayerPluginInfo.h>

#include <QObject>

/// Describes itself and makes no layers by any interface of this version.
class OlderPlugin : public QObject, public Corvane::ILayerPluginInfo
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.corvane.viewer.ILayerPlugin/0.9")
    Q_INTERFACES(Corvane::ILayerPluginInfo)
public:
    QString getVersion() override { return QStringLiteral("0.9"); }
    QString getDisplayName() override { return QString(); }
    QString getDescription() override { return QString(); }
    QString getClassName() override { return QStringLiteral("OlderLayer"); }
    QString getVendor() override { return QString(); }
    QString getHelpUrl() override { return QString(); }
    QString getReadFilter() override { return QString(); }
    void setEnabled(bool) override {}
    bool isEnabled() override { return true; }
};

#include "OlderPlugin.moc"
