#include <plugins/webtiles/WebTilePlugin.h>

#include <plugins/common/MapTarget.h>
#include <plugins/common/ServedBudgetPage.h>
#include <plugins/webtiles/AddWebTilesDialog.h>
#include <plugins/webtiles/WebTileLayer.h>
#include <plugins/webtiles/WebTilePropertiesPage.h>

#include <corvane/map/MapView.h>

#include <QAction>
#include <QDockWidget>
#include <QPointer>
#include <QToolBar>

namespace Corvane::Map {

WebTilePlugin::WebTilePlugin(QObject* parent) : QObject(parent) {}

QString WebTilePlugin::getVersion()
{
    return QStringLiteral("1.0");
}

QString WebTilePlugin::getDisplayName()
{
    return tr("Web tiles");
}

QString WebTilePlugin::getDescription()
{
    return tr("Shows tiles of web servers in the usual grid of Web Mercator.");
}

QString WebTilePlugin::getClassName()
{
    return QString::fromLatin1(WebTileLayer::staticMetaObject.className());
}

QString WebTilePlugin::getVendor()
{
    return QStringLiteral("Corvane");
}

QString WebTilePlugin::getHelpUrl()
{
    return QString();
}

QString WebTilePlugin::getReadFilter()
{
    return QStringLiteral("Web tile preset (*.webtiles)");
}

void WebTilePlugin::setEnabled(bool newEnabled)
{
    enabled = newEnabled;
}

bool WebTilePlugin::isEnabled()
{
    return enabled;
}

Map::Layer* WebTilePlugin::createLayer(bool)
{
    return new WebTileLayer();
}

QList<QDockWidget*> WebTilePlugin::getDockWidgets()
{
    return {};
}

QList<QWidget*> WebTilePlugin::getLayerPropertyWidgets()
{
    return {new WebTilePropertiesPage()};
}

QList<QToolBar*> WebTilePlugin::getToolBars()
{
    return {};
}

QList<QAction*> WebTilePlugin::getAddLayerActions()
{
    if (!addAction) {
        addAction =
            new QAction(QIcon(QStringLiteral(":/resources/web.png")), tr("Add web tiles..."), this);
        addAction->setObjectName(QStringLiteral("actionAddWebTiles"));
        connect(addAction, &QAction::triggered, this, &WebTilePlugin::askAndAdd);
    }
    return {addAction};
}

QList<QWidget*> WebTilePlugin::getPrefsPages()
{
    return {new ServedBudgetPage(QStringLiteral("WebTiles"), getDisplayName())};
}

void WebTilePlugin::askAndAdd()
{
    const QPointer<MapView> view(activeMapView());
    if (!view) {
        return;
    }
    const QPointer<AddWebTilesDialog> dialog(
        new AddWebTilesDialog(view)); // the view may take it along
    if (dialog->exec() == QDialog::Accepted && dialog && view) {
        if (auto layer = dialog->makeLayer()) {
            addToView(view, layer.release());
        }
    }
    delete dialog;
}

} // namespace Corvane::Map
