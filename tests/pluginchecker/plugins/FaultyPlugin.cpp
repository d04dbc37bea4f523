#include <tests/pluginchecker/plugins/FaultyLayer.h>

#include <corvane/core/ILayerPlugin.h>
#include <corvane/core/ILayerPluginInfo.h>

class FaultyPlugin : public QObject, public Corvane::ILayerPluginInfo, public Corvane::ILayerPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.corvane.viewer.ILayerPlugin/1.0")
    Q_INTERFACES(Corvane::ILayerPluginInfo Corvane::ILayerPlugin)
public:
    QString getVersion() override { return QStringLiteral("1.0"); }
    QString getDisplayName() override { return QStringLiteral("Plain"); }
    QString getDescription() override { return QStringLiteral("Shows a plain colour."); }
    QString getClassName() override
    {
        return fault == Fault::WrongClassName ? QStringLiteral("PlainLayer")
                                              : QStringLiteral("FaultyLayer");
    }
    QString getVendor() override { return QStringLiteral("Corvane tests"); }
    QString getHelpUrl() override { return QString(); }
    QString getReadFilter() override
    {
        return fault == Fault::OddFilter ? QStringLiteral("*.plain")
                                         : QStringLiteral("Plain pictures (*.plain)");
    }
    void setEnabled(bool on) override { enabled = on; }
    bool isEnabled() override { return enabled; }
    Corvane::Map::Layer* createLayer(bool) override { return new FaultyLayer; }

private:
    bool enabled = true;
};

namespace {

struct LastWords
{
    ~LastWords()
    {
        if (fault == Fault::CrashAtExit) {
            std::abort();
        }
    }
} lastWords;

} // namespace

#include "FaultyPlugin.moc"
