#include <viewer/frame/Workspace.h>

#include <viewer/frame/Panels.h>
#include <viewer/maps/MapDocument.h>
#include <viewer/maps/MapWindow.h>

#include <QFileInfo>
#include <QMdiArea>

namespace Corvane::Viewer {

Workspace::Workspace(QWidget* parent) : MainWindow(parent), area(new QMdiArea(this))
{
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    area->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setCentralWidget(area);
    panels = new Panels(this, area);
}

QMdiArea* Workspace::getMdiArea() const
{
    return area;
}

MapWindow* Workspace::getActiveMapWindow() const
{
    return qobject_cast<MapWindow*>(area->currentSubWindow());
}

QList<MapWindow*> Workspace::getMapWindows() const
{
    QList<MapWindow*> windows;
    for (QMdiSubWindow* subWindow : area->subWindowList()) {
        if (const auto window = qobject_cast<MapWindow*>(subWindow)) {
            windows << window;
        }
    }
    return windows;
}

MapWindow* Workspace::mapWindowOf(const QString& document) const
{
    const QString wanted = QFileInfo(document).absoluteFilePath();
    for (MapWindow* window : getMapWindows()) {
        const MapDocument* const known = window->getDocument();
        if (known->getFileName() == wanted || known->getLoadingName() == wanted) {
            return window;
        }
    }
    return nullptr;
}

Panels* Workspace::getPanels() const
{
    return panels;
}

void Workspace::endMaps()
{
    disconnect(area, nullptr, this, nullptr); // the area tells of every window that goes with it
    panels->setMapWindow(nullptr);            // they would look at the map while it goes
    delete area;
    delete panels;
    panels = nullptr;
}

} // namespace Corvane::Viewer
