#include <viewer/window/MapCommands.h>

#include <viewer/maps/MapWindow.h>
#include <viewer/output/MapPicture.h>
#include <viewer/output/PictureSaver.h>

#include <corvane/map/RasterLayer.h>
#include <corvane/map/ViewManager.h>

#include <QAction>
#include <QActionGroup>
#include <QKeySequence>

namespace Corvane::Viewer {

MapCommands::MapCommands(QWidget* owner) : QObject(owner), modes(new QActionGroup(this))
{
    createModes();
    createZooms();
    createOthers();
    setMapWindow(nullptr);
}

/// The program's XML files give it a text, a picture and a key.
QAction* MapCommands::addAction(const QString& name)
{
    const auto action = new QAction(parent());
    action->setObjectName(name);
    return action;
}

void MapCommands::addMode(Map::IClient::PointerMode mode, const QString& name)
{
    QAction* action = modes->addAction(addAction(name));
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
    addMode(Map::IClient::Roam, "actionRoam");
    addMode(Map::IClient::Zoom, "actionZoom");
    addMode(Map::IClient::ZoomBox, "actionZoomBox");
    addMode(Map::IClient::Point, "actionPoint");
}

void MapCommands::addZoom(Map::MapView::MapControl control, const QString& name)
{
    QAction* action = addAction(name);
    zooms << action;
    connect(action, &QAction::triggered, this, [this, control] {
        if (Map::MapView* view = getView()) {
            view->onMapAction(control);
        }
    });
}

void MapCommands::createZooms()
{
    addZoom(Map::MapView::MapZoomIn, "actionZoomIn");
    // two keys each, which a file cannot tell; plus is on Shift of some keyboards
    zooms.last()->setShortcuts({QKeySequence("Ctrl++"), QKeySequence("Ctrl+=")});
    addZoom(Map::MapView::MapZoomOut, "actionZoomOut");
    addZoom(Map::MapView::MapZoomToAll, "actionZoomToAll");
    zooms.last()->setShortcuts({QKeySequence("Ctrl+Shift+F"), QKeySequence("Ctrl+0")});

    zooms << addAction("actionZoomOneToOne");
    connect(zooms.last(), &QAction::triggered, this, &MapCommands::zoomOneToOne);
}

void MapCommands::createOthers()
{
    fullScreen = addAction("actionFullScreenMap");
    fullScreen->setCheckable(true);
    connect(fullScreen, &QAction::triggered, this, &MapCommands::setFullScreen);

    snapshot = addAction("actionSnapshot");
    connect(snapshot, &QAction::triggered, this, &MapCommands::savePicture);
}

void MapCommands::setMapWindow(MapWindow* newWindow)
{
    if (window) {
        disconnect(window, nullptr, fullScreen, nullptr);
    }
    window = newWindow;
    if (window) {
        connect(window, &MapWindow::mapFullScreenChanged, fullScreen, &QAction::setChecked);
    }
    const bool enabled = getView() != nullptr;
    modes->setEnabled(enabled);
    for (QAction* action : zooms + QList<QAction*>{fullScreen, snapshot}) {
        action->setEnabled(enabled);
    }
    showMode();
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
    PictureSaver::askAndSave(paintMapPicture(*view, view->devicePixelRatioF()), window->getName(),
                             view->window());
}

Map::MapView* MapCommands::getView() const
{
    return window ? window->getView() : nullptr;
}

} // namespace Corvane::Viewer
