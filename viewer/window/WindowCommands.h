#pragma once

#include <QList>
#include <QObject>

class QAction;
class QMdiArea;
class QMenu;

namespace Corvane::Viewer {

class MapWindow;
class ViewerWindow;

/// The map windows of the work space: new ones, copies, how they are arranged, and the menu that
/// lists them. Whether they stand as tabs is kept for the next start. GUI thread only.
class WindowCommands : public QObject
{
    Q_OBJECT
public:
    /// The window owns this, the commands and the menu.
    explicit WindowCommands(ViewerWindow* viewerWindow);

    QMenu* getMenu() const;

private:
    void createCommands();
    void createMenu();
    void fillMenu();
    void cloneMap();
    void showTabs(bool tabs);
    void nameTabs();
    void arrange(void (QMdiArea::*how)());
    void updateCommands();

    ViewerWindow* window; // not owned
    QMdiArea* area;       // not owned
    QMenu* menu;
    QAction* tabs = nullptr;
    QList<QAction*> forOneMap;      // need a map
    QList<QAction*> forSeveralMaps; // need two
};

} // namespace Corvane::Viewer
