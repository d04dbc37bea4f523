#include <viewer/places/GoToCommand.h>

#include <viewer/frame/Commands.h>
#include <viewer/frame/Workspace.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/places/GoToDialog.h>

#include <corvane/map/MapView.h>

#include <QAction>

namespace Corvane::Viewer {

GoToCommand::GoToCommand(Workspace* owner)
    : QObject(owner),
      command(addCommand(owner, "actionGoTo", [this] { ask(); }))
{
    connect(owner, &Workspace::activeMapChanged, this, &GoToCommand::setMapWindow);
    // its key works in a map that fills the screen, too
    connect(owner, &Workspace::mapWindowAdded, this,
            [this](MapWindow* added) { added->getView()->addAction(command); });
    setMapWindow(nullptr);
}

void GoToCommand::setMapWindow(MapWindow* newWindow)
{
    if (dialog && newWindow != window) {
        dialog->close(); // it is about the other map
    }
    window = newWindow;
    command->setEnabled(window && window->getView());
}

void GoToCommand::ask()
{
    if (!window || !window->getView()) {
        return;
    }
    if (!dialog) {
        dialog = new GoToDialog(window->getView(), window->getDialogParent());
        dialog->show();
    }
    dialog->raise();
    dialog->activateWindow();
}

} // namespace Corvane::Viewer
