#include <plugins/raster/GdalRasterPlugin.h>

#include <plugins/common/BudgetPage.h>
#include <plugins/common/MapTarget.h>
#include <plugins/common/TileBudget.h>
#include <plugins/raster/GdalRasterLayer.h>
#include <plugins/raster/RasterPropertiesPage.h>
#include <plugins/raster/ReadFilter.h>

#include <corvane/map/MapView.h>

#include <gdal.h>

#include <QAction>
#include <QDockWidget>
#include <QFileDialog>
#include <QMessageBox>
#include <QPointer>
#include <QToolBar>

#include <memory>

namespace Corvane::Map {

GdalRasterPlugin::GdalRasterPlugin(QObject* parent) : QObject(parent) {}

QString GdalRasterPlugin::getVersion()
{
    return QStringLiteral("1.0 (GDAL %1)").arg(QString::fromUtf8(GDALVersionInfo("RELEASE_NAME")));
}

QString GdalRasterPlugin::getDisplayName()
{
    return tr("Raster images");
}

QString GdalRasterPlugin::getDescription()
{
    return tr("Shows georeferenced images of any size, from files and from web servers.");
}

QString GdalRasterPlugin::getClassName()
{
    return QString::fromLatin1(GdalRasterLayer::staticMetaObject.className());
}

QString GdalRasterPlugin::getVendor()
{
    return QStringLiteral("Corvane");
}

QString GdalRasterPlugin::getHelpUrl()
{
    return QString();
}

QString GdalRasterPlugin::getReadFilter()
{
    if (readFilter.isEmpty()) {
        readFilter = rasterReadFilter();
    }
    return readFilter;
}

void GdalRasterPlugin::setEnabled(bool newEnabled)
{
    enabled = newEnabled;
}

bool GdalRasterPlugin::isEnabled()
{
    return enabled;
}

Map::Layer* GdalRasterPlugin::createLayer(bool)
{
    return new GdalRasterLayer();
}

QList<QDockWidget*> GdalRasterPlugin::getDockWidgets()
{
    return {};
}

QList<QWidget*> GdalRasterPlugin::getLayerPropertyWidgets()
{
    return {new RasterPropertiesPage()};
}

QList<QToolBar*> GdalRasterPlugin::getToolBars()
{
    return {};
}

QList<QAction*> GdalRasterPlugin::getAddLayerActions()
{
    if (!addAction) {
        addAction =
            new QAction(QIcon(QStringLiteral(":/resources/image.png")), tr("Add raster..."), this);
        addAction->setObjectName(QStringLiteral("actionAddRaster"));
        connect(addAction, &QAction::triggered, this, &GdalRasterPlugin::chooseFiles);
    }
    return {addAction};
}

QList<QWidget*> GdalRasterPlugin::getPrefsPages()
{
    return {new BudgetPage(QStringLiteral("Raster"), getDisplayName(), BudgetPage::Scope::AllLayers,
                           [] { return TileBudget::instance().heldBytes(); })};
}

void GdalRasterPlugin::addFiles(const QStringList& files, MapView* view)
{
    const QPointer<MapView> target(view); // a message lets it close
    for (const QString& file : files) {
        auto layer = std::make_unique<GdalRasterLayer>();
        if (!layer->setDataSource(file)) {
            QMessageBox::warning(target, tr("Add raster"),
                                 tr("Cannot open %1.\n%2").arg(file, layer->getLastError()));
        } else if (target) {
            addToView(target, layer.release());
        }
    }
}

void GdalRasterPlugin::chooseFiles()
{
    const QPointer<MapView> view(activeMapView());
    if (!view) {
        return;
    }
    const QString filter = tr("All files (*)") + QStringLiteral(";;") + getReadFilter();
    const QStringList files =
        QFileDialog::getOpenFileNames(view, tr("Add raster"), QString(), filter);
    if (view) {
        addFiles(files, view);
    }
}

} // namespace Corvane::Map
