#pragma once

#include <QObject>
#include <QPointer>

class QAction;
class QUndoGroup;

namespace Corvane::Viewer {

class LayerHistory;
class MapWindow;
class Workspace;

/// The commands of the Edit menu: undo and redo of what was done to the layers of the active map,
/// the map as a picture on the clipboard, and the deletion of the active layer. Where a text, a list
/// or a table has the focus, the keys for editing are theirs. GUI thread only.
class EditCommands : public QObject
{
    Q_OBJECT
public:
    /// The window owns this and the commands.
    explicit EditCommands(Workspace* workspace);

protected:
    /// Leaves the key for copying to a list or a chosen text; text fields see to theirs themselves.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void createCommands();
    void follow(MapWindow* map);
    void followTree();
    void setMapWindow(MapWindow* newMap);
    void copyMap();
    LayerHistory* history() const;

    Workspace* window; // not owned
    QUndoGroup* group;
    QPointer<MapWindow> map;
    QAction* undo = nullptr;
    QAction* redo = nullptr;
    QAction* copy = nullptr;
    QAction* deleteLayer = nullptr;
};

} // namespace Corvane::Viewer
