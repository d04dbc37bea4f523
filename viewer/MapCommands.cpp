#include <viewer/MapCommands.h>

#include <viewer/MapPicture.h>
#include <viewer/MapWindow.h>
#include <viewer/PictureSaver.h>

#include <corvane/map/RasterLayer.h>
#include <corvane/map/ViewManager.h>

#include <QAction>
#include <QActionGroup>
#include <QIcon>
#include <QKeySequence>

namespace Corvane::Viewer {

MapCommands::MapCommands(QWidget* owner) : QObject(owner), modes(new QActionGroup(this))
{
    createModes();
    createZooms();
    createOthers();
    setMapWindow(nullptr);
}

QAction* MapCommands::addAction(const QString& name, const QString& text, const QString& icon)
{
    const auto action = new QAction(QIcon(":/resources/icons/24x24/" + icon), text, parent());
    action->setObjectName(name);
    return action;
}

void MapCommands::addMode(Map::IClient::PointerMode mode, const QString& name, const QString& text,
                          const QString& icon)
{
    QAction* action = modes->addAction(addAction(name, text, icon));
    action->setCheckable(true);
    action->setData(int(mode));
    connect(action, &QAction::triggered, this, [this, mode] {
        if (Map::MapView* view = getView()) {
            view->setPointerMode(mode);
        }
    });
}

void MapCommands::createModes()
{
    addMode(Map::IClient::Roam, "actionRoam", tr("&Roam"), "hand_point.png");
    addMode(Map::IClient::Zoom, "actionZoom", tr("&Zoom"), "zoom.png");
    addMode(Map::IClient::ZoomBox, "actionZoomBox", tr("Zoom &Box"), "zoom_box.png");
    addMode(Map::IClient::Point, "actionPoint", tr("&Point"), "select.png");
}

void MapCommands::addZoom(Map::MapView::MapControl control, const QString& name,
                          const QString& text, const QString& icon)
{
    QAction* action = addAction(name, text, icon);
    zooms << action;
    connect(action, &QAction::triggered, this, [this, control] {
        if (Map::MapView* view = getView()) {
            view->onMapAction(control);
        }
    });
}

void MapCommands::createZooms()
{
    addZoom(Map::MapView::MapZoomIn, "actionZoomIn", tr("Zoom &In"), "navigate_plus.png");
    zooms.last()->setShortcuts({QKeySequence("Ctrl++"), QKeySequence("Ctrl+=")});
    addZoom(Map::MapView::MapZoomOut, "actionZoomOut", tr("Zoom &Out"), "navigate_minus.png");
    zooms.last()->setShortcut(QKeySequence("Ctrl+-"));
    addZoom(Map::MapView::MapZoomToAll, "actionZoomToAll", tr("Zoom to &All"), "fit_to_size.png");
    zooms.last()->setShortcut(QKeySequence("Ctrl+0"));

    zooms << addAction("actionZoomOneToOne", tr("Zoom &1:1"), "zoom_1_to_1.png");
    zooms.last()->setShortcut(QKeySequence("Ctrl+1"));
    connect(zooms.last(), &QAction::triggered, this, &MapCommands::zoomOneToOne);
}

void MapCommands::createOthers()
{
    fullScreen = addAction("actionFullScreenMap", tr("&Full Screen Map"), "monitor.png");
    fullScreen->setCheckable(true);
    fullScreen->setShortcut(QKeySequence(Qt::Key_F11));
    connect(fullScreen, &QAction::triggered, this, &MapCommands::setFullScreen);

    snapshot = addAction("actionSnapshot", tr("&Save Picture..."), "camera2.png");
    snapshot->setShortcut(QKeySequence(Qt::Key_F9));
    connect(snapshot, &QAction::triggered, this, &MapCommands::savePicture);
}

void MapCommands::setMapWindow(MapWindow* newWindow)
{
    window = newWindow;
    const bool enabled = getView() != nullptr;
    modes->setEnabled(enabled);
    for (QAction* action : zooms + QList<QAction*>{fullScreen, snapshot}) {
        action->setEnabled(enabled);
    }
    showMode();
}

void MapCommands::addTo(Map::MapView* view)
{
    view->addActions(zooms);
    view->addActions({fullScreen, snapshot});
}

QList<QAction*> MapCommands::getModeActions() const
{
    return modes->actions();
}

QList<QAction*> MapCommands::getZoomActions() const
{
    return zooms;
}

QAction* MapCommands::getFullScreenAction() const
{
    return fullScreen;
}

QAction* MapCommands::getSnapshotAction() const
{
    return snapshot;
}

void MapCommands::showMode()
{
    Map::MapView* view = getView();
    const int mode = view ? view->getViewManager()->getPointerMode() : Map::IClient::Roam;
    for (QAction* action : modes->actions()) {
        action->setChecked(action->data().toInt() == mode);
    }
    fullScreen->setChecked(window && window->isMapFullScreen());
}

/// One pixel a cell of the lowest raster layer.
void MapCommands::zoomOneToOne()
{
    Map::MapView* view = getView();
    if (!view) {
        return;
    }
    for (int i = 0; i < view->getNumberOfLayers(); ++i) {
        if (qobject_cast<Map::RasterLayer*>(view->getLayerAt(i))) {
            view->zoomOneToOne(i);
            return;
        }
    }
}

void MapCommands::setFullScreen(bool full)
{
    if (window) {
        window->setMapFullScreen(full);
    }
}

/// The picture is that of the moment of the command, whatever moves while the dialog is open.
void MapCommands::savePicture()
{
    Map::MapView* view = getView();
    if (!view) {
        return;
    }
    PictureSaver::askAndSave(paintMapPicture(*view, view->devicePixelRatioF()),
                             window->windowTitle(), view->window());
}

Map::MapView* MapCommands::getView() const
{
    return window ? window->getView() : nullptr;
}

} // namespace Corvane::Viewer
