#pragma once

#include <corvane/core/ILayerEditorPlugin.h>
#include <corvane/core/ILayerPlugin.h>
#include <corvane/core/ILayerPluginInfo.h>

#include <QObject>
#include <QPointer>
#include <QString>

#include <memory>
#include <vector>

namespace Corvane::Map {

class Layer;
class MapView;
class OgrVectorLayer;

/// The plugin that makes vector layers of files and URLs. GUI thread only.
class OgrVectorPlugin : public QObject,
                        public ILayerPluginInfo,
                        public ILayerPlugin,
                        public ILayerEditorPlugin
{
    Q_OBJECT
    Q_INTERFACES(Corvane::ILayerPluginInfo Corvane::ILayerPlugin Corvane::ILayerEditorPlugin)
public:
    explicit OgrVectorPlugin(QObject* parent = nullptr);
    ~OgrVectorPlugin() override;

    QString getVersion() override;
    QString getDisplayName() override;
    QString getDescription() override;
    QString getClassName() override;
    QString getVendor() override;
    QString getHelpUrl() override;
    QString getReadFilter() override;
    void setEnabled(bool enabled) override;
    bool isEnabled() override;

    Map::Layer* createLayer(bool useGui) override;

    QList<QDockWidget*> getDockWidgets() override;
    QList<QWidget*> getLayerPropertyWidgets() override;
    QList<QToolBar*> getToolBars() override;
    /// The one action "actionAddVector", owned by the plugin.
    QList<QAction*> getAddLayerActions() override;
    QList<QWidget*> getPrefsPages() override;

    /// Adds a layer for each file to the view, once it is open; of a file with several layers the
    /// user says which. A file that does not open is named in a message.
    void addFiles(const QStringList& files, MapView* view);

private:
    struct Pending;

    void chooseFiles();
    void takeOpened(Pending* pending, bool ok);
    void place(std::unique_ptr<OgrVectorLayer> layer, MapView* view);
    static void tellFailure(OgrVectorLayer& layer, MapView* view);

    bool enabled = true;
    QAction* addAction = nullptr; // owned as a child
    QString readFilter;           // built at the first question
    std::vector<std::unique_ptr<Pending>> stillOpening;
};

} // namespace Corvane::Map
