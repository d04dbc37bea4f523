#pragma once

#include <corvane/gui/MainWindow.h>

#include <QList>
#include <QStringList>

class QMdiArea;

namespace Corvane::Viewer {

class MapWindow;
class Panels;

/// The program's window as its features see it: the map windows, which of them is active, and the
/// panels around them. GUI thread only.
class Workspace : public Gui::MainWindow
{
    Q_OBJECT
public:
    explicit Workspace(QWidget* parent = nullptr);

    /// Opens each source, map documents among them, in a map window of its own, side by side if they
    /// are the first. Returns before they are open. A document that is open comes to the front.
    virtual void openFiles(const QStringList& sources) = 0;
    /// Opens the sources as layers of a map window; null makes one. Documents get their own.
    virtual void addFiles(const QStringList& sources, MapWindow* window) = 0;
    /// A new, empty map window, the active one.
    virtual MapWindow* addMapWindow() = 0;

    QMdiArea* getMdiArea() const;
    /// The active map window, or null.
    MapWindow* getActiveMapWindow() const;
    /// All map windows, in the order they were made.
    QList<MapWindow*> getMapWindows() const;
    /// The window that this document is open in, or will be, or null.
    MapWindow* mapWindowOf(const QString& document) const;
    /// Null once the maps have ended.
    Panels* getPanels() const;

signals:
    /// A window is in the work space; nothing is in its map yet.
    void mapWindowAdded(MapWindow* window);
    /// Another map window is the active one, or none is (null). May come again for the same one.
    void activeMapChanged(MapWindow* window);

protected:
    /// The maps go, with the layers of the plugins, and the panels then: the plugins end there. The
    /// window's class calls it first of all when it goes.
    void endMaps();

private:
    QMdiArea* area;           // owned, until the maps end
    Panels* panels = nullptr; // the same
};

} // namespace Corvane::Viewer
