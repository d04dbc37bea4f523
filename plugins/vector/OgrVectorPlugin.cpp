#include <plugins/vector/OgrVectorPlugin.h>

#include <plugins/common/BudgetPage.h>
#include <plugins/common/MapTarget.h>
#include <plugins/vector/LayerChoiceDialog.h>
#include <plugins/vector/OgrVectorLayer.h>
#include <plugins/vector/VectorChunk.h>
#include <plugins/vector/VectorPropertiesPage.h>
#include <plugins/vector/VectorReadFilter.h>

#include <corvane/map/MapView.h>

#include <gdal.h>

#include <QAction>
#include <QDockWidget>
#include <QFileDialog>
#include <QMessageBox>
#include <QToolBar>

#include <algorithm>
#include <utility>

namespace Corvane::Map {

/// A layer that is not open yet, and where it is to go.
struct OgrVectorPlugin::Pending
{
    std::unique_ptr<OgrVectorLayer> layer;
    QPointer<MapView> view;
};

OgrVectorPlugin::OgrVectorPlugin(QObject* parent) : QObject(parent) {}

OgrVectorPlugin::~OgrVectorPlugin() = default;

QString OgrVectorPlugin::getVersion()
{
    return QStringLiteral("1.0 (GDAL %1)").arg(QString::fromUtf8(GDALVersionInfo("RELEASE_NAME")));
}

QString OgrVectorPlugin::getDisplayName()
{
    return tr("Vector data");
}

QString OgrVectorPlugin::getDescription()
{
    return tr("Shows points, lines and polygons of files and web servers.");
}

QString OgrVectorPlugin::getClassName()
{
    return QString::fromLatin1(OgrVectorLayer::staticMetaObject.className());
}

QString OgrVectorPlugin::getVendor()
{
    return QStringLiteral("Corvane");
}

QString OgrVectorPlugin::getHelpUrl()
{
    return QString();
}

QString OgrVectorPlugin::getReadFilter()
{
    if (readFilter.isEmpty()) {
        readFilter = vectorReadFilter();
    }
    return readFilter;
}

void OgrVectorPlugin::setEnabled(bool newEnabled)
{
    enabled = newEnabled;
}

bool OgrVectorPlugin::isEnabled()
{
    return enabled;
}

Map::Layer* OgrVectorPlugin::createLayer(bool)
{
    return new OgrVectorLayer();
}

QList<QDockWidget*> OgrVectorPlugin::getDockWidgets()
{
    return {};
}

QList<QWidget*> OgrVectorPlugin::getLayerPropertyWidgets()
{
    return {new VectorPropertiesPage()};
}

QList<QToolBar*> OgrVectorPlugin::getToolBars()
{
    return {};
}

QList<QAction*> OgrVectorPlugin::getAddLayerActions()
{
    if (!addAction) {
        addAction = new QAction(QIcon(QStringLiteral(":/resources/image.png")),
                                tr("Add vector layer..."), this);
        addAction->setObjectName(QStringLiteral("actionAddVector"));
        connect(addAction, &QAction::triggered, this, &OgrVectorPlugin::chooseFiles);
    }
    return {addAction};
}

QList<QWidget*> OgrVectorPlugin::getPrefsPages()
{
    return {new BudgetPage(QStringLiteral("Vector"), getDisplayName(), BudgetPage::Scope::EachLayer,
                           &VectorChunk::allBytes)};
}

void OgrVectorPlugin::chooseFiles()
{
    const QPointer<MapView> view(activeMapView());
    if (!view) {
        return;
    }
    const QString filter = tr("All files (*)") + QStringLiteral(";;") + getReadFilter();
    const QStringList files =
        QFileDialog::getOpenFileNames(view, tr("Add vector layer"), QString(), filter);
    if (view) {
        addFiles(files, view);
    }
}

void OgrVectorPlugin::addFiles(const QStringList& files, MapView* view)
{
    const QPointer<MapView> target(view); // a message lets it close
    for (const QString& file : files) {
        auto layer = std::make_unique<OgrVectorLayer>();
        if (!layer->setDataSource(file)) {
            tellFailure(*layer, target);
        } else if (layer->isValid()) {
            place(std::move(layer), target);
        } else {
            stillOpening.push_back(std::make_unique<Pending>(Pending{std::move(layer), target}));
            Pending* const pending = stillOpening.back().get();
            connect(
                pending->layer.get(), &OgrVectorLayer::sourceOpened, this,
                [this, pending](bool ok) { takeOpened(pending, ok); }, Qt::QueuedConnection);
        }
    }
}

void OgrVectorPlugin::takeOpened(Pending* pending, bool ok)
{
    const auto found =
        std::find_if(stillOpening.begin(), stillOpening.end(),
                     [pending](const auto& entry) { return entry.get() == pending; });
    if (found == stillOpening.end()) {
        return;
    }
    const std::unique_ptr<Pending> taken = std::move(*found);
    stillOpening.erase(found);
    if (!taken->view) {
        return;
    }
    if (ok) {
        place(std::move(taken->layer), taken->view);
    } else {
        tellFailure(*taken->layer, taken->view);
    }
}

void OgrVectorPlugin::place(std::unique_ptr<OgrVectorLayer> layer, MapView* view)
{
    const QPointer<MapView> target(view);
    QStringList chosen = {layer->getLayerName()};
    if (layer->getLayerNames().size() > 1) {
        const QPointer<LayerChoiceDialog> dialog(
            new LayerChoiceDialog(layer->getDescription(), layer->getLayerNames(), view));
        const bool accepted = dialog->exec() == QDialog::Accepted && dialog;
        chosen = accepted ? dialog->getChosen() : QStringList();
        delete dialog;
    }
    const QString file = layer->getDataSource();
    for (const QString& name : qAsConst(chosen)) {
        if (!target) {
            return;
        }
        auto added = std::exchange(layer, nullptr);
        if (!added) {
            added = std::make_unique<OgrVectorLayer>();
            added->setLayerName(name);
            added->setDataSource(file);
        } else {
            added->setLayerName(name);
        }
        if (chosen.size() > 1 || added->getLayerNames().size() > 1) {
            added->setDescription(name);
        }
        addToView(target, added.release());
    }
}

void OgrVectorPlugin::tellFailure(OgrVectorLayer& layer, MapView* view)
{
    QMessageBox::warning(
        view, tr("Add vector layer"),
        tr("Cannot open %1.\n%2").arg(layer.getDataSource(), layer.getLastError()));
}

} // namespace Corvane::Map
