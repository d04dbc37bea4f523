#pragma once

#include <QObject>

class QDockWidget;

namespace Corvane::Viewer {

class ProbePoint;
class Workspace;

/// Looks at the cells of rasters: the panels Identify and Cell Grid, which share the place that they
/// are about, and their commands. GUI thread only.
class CellTools : public QObject
{
    Q_OBJECT
public:
    /// The window becomes the parent, and owns the panels.
    explicit CellTools(Workspace* window);

    ProbePoint* getProbe() const { return probe; }

private:
    void addToggle(const QString& command, QDockWidget* dock);

    Workspace* window; // not owned
    ProbePoint* probe;
};

} // namespace Corvane::Viewer
