#include <corvane/core/ILayerEditorPlugin.h>
#include <corvane/core/ILayerPlugin.h>
#include <corvane/core/ILayerPluginInfo.h>
#include <corvane/core/ILayerPropertiesWidget.h>
#include <tests/core/plugins/TestPlugin.h>
#include <tests/map/TestLayers.h>

#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>

/// A page that shows and changes the description of a layer.
class DescriptionPage : public QWidget, public Corvane::ILayerPropertiesWidget
{
    Q_OBJECT
    Q_INTERFACES(Corvane::ILayerPropertiesWidget)
public:
    DescriptionPage() : edit(new QLineEdit(this))
    {
        setObjectName("descriptionPage");
        setWindowTitle("Plugin page");
        edit->setObjectName("pageLineEdit");
        (new QFormLayout(this))->addRow("Name:", edit);
    }
    ~DescriptionPage() override { note("page deleted"); }

    void setLayer(Corvane::Map::Layer* newLayer) override
    {
        layer = newLayer;
        edit->setText(layer->getDescription());
        note("page.setLayer " + layer->getDescription());
    }
    void apply() override
    {
        note("page.apply after comments '" + layer->getComments() + "'");
        layer->setDescription(edit->text());
    }

private:
    Corvane::Map::Layer* layer = nullptr; // not owned
    QLineEdit* edit;
};

/// Makes TestVectorLayer and gives it two pages, the second without the interface of pages.
class TestVectorPlugin : public QObject,
                         public Corvane::ILayerPluginInfo,
                         public Corvane::ILayerPlugin,
                         public Corvane::ILayerEditorPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.corvane.viewer.ILayerPlugin/1.0")
    Q_INTERFACES(Corvane::ILayerPluginInfo Corvane::ILayerPlugin Corvane::ILayerEditorPlugin)
public:
    ~TestVectorPlugin() override { note("plugin deleted"); }

    QString getVersion() override { return QStringLiteral("1"); }
    QString getDisplayName() override { return QStringLiteral("Test vectors"); }
    QString getDescription() override { return {}; }
    QString getClassName() override { return QStringLiteral("TestVectorLayer"); }
    QString getVendor() override { return {}; }
    QString getHelpUrl() override { return {}; }
    QString getReadFilter() override { return QStringLiteral("Test vectors (*.testvector)"); }
    void setEnabled(bool) override {}
    bool isEnabled() override { return true; }

    Corvane::Map::Layer* createLayer(bool useGui) override
    {
        note(useGui ? "createLayer with dialogs" : "createLayer without dialogs");
        auto* const layer = new TestVectorLayer;
        QObject::connect(layer, &QObject::destroyed, [] { note("layer deleted"); });
        return layer;
    }

    QList<QDockWidget*> getDockWidgets() override { return {}; }
    QList<QWidget*> getLayerPropertyWidgets() override
    {
        auto* const plain = new QLabel("Nothing to see");
        plain->setObjectName("plainPage");
        plain->setWindowTitle("Plain page");
        return {new DescriptionPage, nullptr, plain};
    }
    QList<QToolBar*> getToolBars() override { return {}; }
    QList<QAction*> getAddLayerActions() override
    {
        if (!addAction) {
            addAction = new QAction("Add test vectors...", this);
            connect(addAction, &QAction::triggered, [] { note("add action"); });
        }
        return {addAction};
    }
    QList<QWidget*> getPrefsPages() override { return {}; }

private:
    QAction* addAction = nullptr; // owned as a child
};

#include "TestVectorPlugin.moc"
