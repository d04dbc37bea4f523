#include <viewer/window/FullScreen.h>

#include <viewer/frame/Commands.h>
#include <viewer/frame/Workspace.h>
#include <viewer/maps/MapWindow.h>

#include <corvane/map/MapView.h>

#include <QAction>
#include <QEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QRegularExpression>
#include <QWindow>

namespace Corvane::Viewer {

FullScreen::FullScreen(Workspace* workspace)
    : QObject(workspace),
      window(workspace),
      command(addSwitch(workspace, "actionFullScreen", [this](bool) { toggle(); }))
{
    connect(window, &Workspace::mapWindowAdded, this, &FullScreen::follow);
    connect(window, &Workspace::activeMapChanged, this, &FullScreen::giveBackMapsBehind);
    // later: the map's own window goes, which may be losing the focus at this moment
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, this,
            &FullScreen::giveBackMapsBehindDialog, Qt::QueuedConnection);
    window->installEventFilter(this);
}

/// The maximized state, if there was one, stays beneath and comes back. Not every window system
/// remembers the size.
void FullScreen::toggle()
{
    if (MapWindow* const map = mapOnScreen()) {
        map->setMapFullScreen(false);
    } else {
        const QRect normal = window->isFullScreen() ? window->normalGeometry() : QRect();
        window->setWindowState(window->windowState() ^ Qt::WindowFullScreen);
        if (normal.isValid() && !window->isMaximized()) {
            window->setGeometry(normal);
        }
    }
    command->setChecked(window->isFullScreen());
}

/// The window's keys do not reach a view that is a window of its own.
void FullScreen::follow(MapWindow* map)
{
    map->getView()->installEventFilter(this); // tools come later, and are asked first
    const auto commands =
        window->findChildren<QAction*>(QRegularExpression("^action"), Qt::FindDirectChildrenOnly);
    for (QAction* action : commands) {
        if (action->shortcutContext() == Qt::WindowShortcut) {
            map->getView()->addAction(action);
        }
    }
}

void FullScreen::giveBackMapsBehind(const MapWindow* active)
{
    MapWindow* const map = mapOnScreen();
    if (map && active && map != active) {
        map->setMapFullScreen(false);
    }
}

MapWindow* FullScreen::mapOnScreen() const
{
    for (MapWindow* map : window->getMapWindows()) {
        if (map->isMapFullScreen()) {
            return map;
        }
    }
    return nullptr;
}

/// A dialog may be any feature's. One over the map's own window stands in front anyway.
void FullScreen::giveBackMapsBehindDialog()
{
    const QWindow* const focused = QGuiApplication::focusWindow();
    const bool overWindow = focused && focused->type() == Qt::Dialog &&
                            focused->transientParent() == window->windowHandle();
    MapWindow* const map = overWindow ? mapOnScreen() : nullptr;
    if (map) {
        map->setMapFullScreen(false);
    }
}

bool FullScreen::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::WindowStateChange && watched == window) {
        command->setChecked(window->isFullScreen());
    } else if (event->type() == QEvent::KeyPress && window->isFullScreen() && !mapOnScreen() &&
               static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape)
    {
        toggle();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace Corvane::Viewer
