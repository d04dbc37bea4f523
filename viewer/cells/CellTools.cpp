#include <viewer/cells/CellTools.h>

#include <viewer/cells/CellGridPanel.h>
#include <viewer/cells/IdentifyPanel.h>
#include <viewer/cells/ProbePoint.h>
#include <viewer/frame/Commands.h>
#include <viewer/frame/Panels.h>
#include <viewer/frame/Workspace.h>
#include <viewer/maps/MapWindow.h>

#include <corvane/gui/MapTreeView.h>
#include <corvane/map/Layer.h>

#include <QAction>
#include <QDockWidget>

namespace Corvane::Viewer {

CellTools::CellTools(Workspace* workspace)
    : QObject(workspace),
      window(workspace),
      probe(new ProbePoint(workspace))
{
    Panels* const panels = window->getPanels();
    auto* const identify = new IdentifyPanel(probe, nullptr);
    auto* const grid = new CellGridPanel(probe, nullptr);
    addToggle("actionIdentify",
              panels->addPanel("identifyDock", tr("Identify"), identify, Qt::RightDockWidgetArea));
    addToggle("actionCellGrid",
              panels->addPanel("cellGridDock", tr("Cell Grid"), grid, Qt::RightDockWidgetArea));
    connect(window, &Workspace::activeMapChanged, probe, &ProbePoint::setMapWindow);
    // later: the map hears of the selection after this
    connect(panels->getTree(), &Map::MapTreeView::layerActivated, grid, &CellGridPanel::look,
            Qt::QueuedConnection);
}

/// The command shows and hides the panel, and tells whether it is there.
void CellTools::addToggle(const QString& name, QDockWidget* dock)
{
    QAction* const command = addSwitch(window, name, [dock](bool on) {
        dock->setVisible(on);
        if (on) {
            dock->raise();
        }
    });
    connect(dock->toggleViewAction(), &QAction::toggled, command, &QAction::setChecked);
}

} // namespace Corvane::Viewer
