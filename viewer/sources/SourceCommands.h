#pragma once

#include <QObject>
#include <QPointer>

class QAction;
class QDockWidget;
class QToolButton;

namespace Corvane::Viewer {

class MapWindow;
class SourceWatch;
class Workspace;

/// What the window tells of remote sources: a panel with all of them, a line in the status bar while
/// one of the active map is in trouble, and a command that asks again. GUI thread only.
class SourceCommands : public QObject
{
    Q_OBJECT
public:
    explicit SourceCommands(Workspace* window);

    SourceWatch* getWatch() const { return watch; }

private:
    void createLine();
    void tell();
    void showPanel();

    Workspace* window; // not owned
    SourceWatch* watch;
    QDockWidget* dock = nullptr; // of the panel
    QAction* tryAll = nullptr;
    QPointer<QToolButton> line; // in the status bar
};

} // namespace Corvane::Viewer
