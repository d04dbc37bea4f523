#pragma once

#include <QObject>
#include <QPointer>

class QAction;

namespace Corvane::Viewer {

class GoToDialog;
class MapWindow;
class Workspace;

/// The command that asks for a coordinate and shows the place in the active map. GUI thread only.
class GoToCommand : public QObject
{
    Q_OBJECT
public:
    /// The window becomes the parent.
    explicit GoToCommand(Workspace* owner);

private:
    void setMapWindow(MapWindow* newWindow);
    void ask();

    QPointer<MapWindow> window;
    QPointer<GoToDialog> dialog;
    QAction* command;
};

} // namespace Corvane::Viewer
