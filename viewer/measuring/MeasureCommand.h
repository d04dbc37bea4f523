#pragma once

#include <QObject>
#include <QPointer>

class QAction;

namespace Corvane::Viewer {

class MapWindow;
class Workspace;

/// The switch that begins and ends measuring in the active map; each map has its own. GUI thread
/// only.
class MeasureCommand : public QObject
{
    Q_OBJECT
public:
    /// The window becomes the parent.
    explicit MeasureCommand(Workspace* owner);

private:
    void setMapWindow(MapWindow* newWindow);
    void setMeasuring(bool on);
    void showState();

    QPointer<MapWindow> window;
    QAction* command;
};

} // namespace Corvane::Viewer
