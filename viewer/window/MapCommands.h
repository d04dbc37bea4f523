#pragma once

#include <corvane/map/IClient.h>
#include <corvane/map/MapView.h>

#include <QList>
#include <QObject>
#include <QPointer>

class QAction;
class QActionGroup;
class QWidget;

namespace Corvane::Viewer {

class MapWindow;

/// The actions that work on the active map window: pointer modes, zoom commands, full screen and
/// the picture of the view. Disabled while there is none. GUI thread only.
class MapCommands : public QObject
{
    Q_OBJECT
public:
    /// owner becomes the parent of the actions: a map view looks for some of them there by name.
    explicit MapCommands(QWidget* owner);

    /// The window to work on; null for none.
    void setMapWindow(MapWindow* newWindow);

    QList<QAction*> getModeActions() const;
    QList<QAction*> getZoomActions() const;
    QAction* getFullScreenAction() const;
    QAction* getSnapshotAction() const;

private:
    QAction* addAction(const QString& name);
    void addMode(Map::IClient::PointerMode mode, const QString& name);
    void addZoom(Map::MapView::MapControl control, const QString& name);
    void createModes();
    void createZooms();
    void createOthers();
    void showMode();
    void zoomOneToOne();
    void setFullScreen(bool full);
    void savePicture();
    Map::MapView* getView() const;

    QPointer<MapWindow> window;
    QActionGroup* modes;
    QList<QAction*> zooms;
    QAction* fullScreen = nullptr;
    QAction* snapshot = nullptr;
};

} // namespace Corvane::Viewer
