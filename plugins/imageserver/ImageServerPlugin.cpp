#include <plugins/imageserver/ImageServerPlugin.h>

#include <plugins/common/ServedBudgetPage.h>
#include <plugins/imageserver/ImageServerLayer.h>
#include <plugins/imageserver/ImageServerPropertiesPage.h>

#include <QAction>
#include <QDockWidget>
#include <QToolBar>

namespace Corvane::Map {

ImageServerPlugin::ImageServerPlugin(QObject* parent) : QObject(parent) {}

QString ImageServerPlugin::getVersion()
{
    return QStringLiteral("1.0");
}

QString ImageServerPlugin::getDisplayName()
{
    return tr("Image servers");
}

QString ImageServerPlugin::getDescription()
{
    return tr("Shows images of image servers in their own grids.");
}

QString ImageServerPlugin::getClassName()
{
    return QString::fromLatin1(ImageServerLayer::staticMetaObject.className());
}

QString ImageServerPlugin::getVendor()
{
    return QStringLiteral("Corvane");
}

QString ImageServerPlugin::getHelpUrl()
{
    return QString();
}

QString ImageServerPlugin::getReadFilter()
{
    return QString();
}

void ImageServerPlugin::setEnabled(bool newEnabled)
{
    enabled = newEnabled;
}

bool ImageServerPlugin::isEnabled()
{
    return enabled;
}

Map::Layer* ImageServerPlugin::createLayer(bool)
{
    return new ImageServerLayer();
}

QList<QDockWidget*> ImageServerPlugin::getDockWidgets()
{
    return {};
}

QList<QWidget*> ImageServerPlugin::getLayerPropertyWidgets()
{
    return {new ImageServerPropertiesPage()};
}

QList<QToolBar*> ImageServerPlugin::getToolBars()
{
    return {};
}

QList<QAction*> ImageServerPlugin::getAddLayerActions()
{
    return {};
}

QList<QWidget*> ImageServerPlugin::getPrefsPages()
{
    return {new ServedBudgetPage(QStringLiteral("ImageServer"), getDisplayName())};
}

} // namespace Corvane::Map
