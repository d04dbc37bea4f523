#pragma once

#include <QHash>
#include <QList>
#include <QString>

class QAction;
class QDomElement;
class QMenu;
class QWidget;

namespace Corvane::Gui {
class MainWindow;
}

namespace Corvane::Viewer {

/// Puts the commands of the window where the XML files of its menus and tool bars name them as
/// "function", and gives them the look that the files tell: an entry is a place, the command stands
/// in it. So one command is the same in all places. GUI thread only.
class CommandPlaces
{
public:
    /// The window's own actions are offered under their object names.
    explicit CommandPlaces(Gui::MainWindow* window);

    /// What stands in the place of this function, in order; may be empty.
    void offer(const QString& function, const QList<QAction*>& actions);

    /// The look of the commands. False, as of the others, after a message of the window.
    bool readActions(QString fileName);
    /// Appends the menus to the window's menu bar; they have no parent and are the caller's, and sub-menus theirs. The
    /// list has null where the file leaves a place for the menu of windows.
    bool buildMenus(QString fileName, QList<QMenu*>* menus);
    bool buildToolBars(QString fileName);

private:
    void fillPlaces(const QDomElement& element, QWidget* widget);
    void fillPlace(const QDomElement& element, QWidget* widget, QAction* entry);
    static void takeLook(const QDomElement& element, const QAction& entry, QAction* command);

    Gui::MainWindow* window; // not owned
    QHash<QString, QList<QAction*>> commands;
};

} // namespace Corvane::Viewer
