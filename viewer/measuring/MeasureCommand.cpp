#include <viewer/measuring/MeasureCommand.h>

#include <viewer/frame/Commands.h>
#include <viewer/frame/Workspace.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/measuring/MapMeasuring.h>

#include <corvane/map/MapView.h>

#include <QAction>

namespace Corvane::Viewer {

MeasureCommand::MeasureCommand(Workspace* owner)
    : QObject(owner),
      command(addSwitch(owner, "actionMeasure", [this](bool on) { setMeasuring(on); }))
{
    connect(owner, &Workspace::activeMapChanged, this, &MeasureCommand::setMapWindow);
    // its key works in a map that fills the screen, too
    connect(owner, &Workspace::mapWindowAdded, this,
            [this](MapWindow* added) { added->getView()->addAction(command); });
    showState();
}

void MeasureCommand::setMapWindow(MapWindow* newWindow)
{
    window = newWindow;
    showState();
}

void MeasureCommand::setMeasuring(bool on)
{
    Map::MapView* const view = window ? window->getView() : nullptr;
    MapMeasuring* const present = MapMeasuring::of(view);
    if (present && !on) {
        present->leave();
    } else if (view && on && !present) {
        const auto* const measuring =
            new MapMeasuring(view, parent()->findChild<QAction*>("actionKeyboardCursor"));
        connect(measuring, &MapMeasuring::left, this, &MeasureCommand::showState);
        view->setFocus(Qt::ShortcutFocusReason);
    }
    showState();
}

void MeasureCommand::showState()
{
    Map::MapView* const view = window ? window->getView() : nullptr;
    command->setEnabled(view);
    command->setChecked(MapMeasuring::of(view));
}

} // namespace Corvane::Viewer
