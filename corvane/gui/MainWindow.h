#pragma once

#include <corvane/core/Export.h>

#include <QList>
#include <QMainWindow>

class QAction;
class QDomDocument;
class QDomElement;
class QMenu;
class QMenuBar;

namespace Corvane::Gui {

/// The base of a program's main window: makes actions, menus and tool bars of three XML files and
/// keeps the window's geometry and its bars between runs. The derived window calls the operations in
/// the order in which they stand here and gives the entries their effect: what the files name as a
/// function is never called. GUI thread only.
class CORVANE_EXPORT MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    /// The object name becomes the application's name.
    explicit MainWindow(QWidget* parent = nullptr, Qt::WindowFlags flags = Qt::WindowFlags());
    ~MainWindow() override;

    /// Makes the actions of an actions file. They are no catalogue: an entry of the other files
    /// repeats all that it needs. False after a message if the file is missing or no XML, false
    /// without one if it cannot be opened; a file with another document element gives true.
    bool loadActions(QString& fileName);
    /// Appends the menus of a menu file to the bar; fails like loadActions. A menu "Window" on the
    /// top level is left to the program. The menus have no parent: whoever wants them gone before
    /// the process ends deletes them.
    bool buildMenuBar(QString& fileName, QMenuBar* menuBar);
    /// Adds the tool bars of a tool bar file, under their names. Fails like loadActions, but answers
    /// true for a missing file, after the message.
    bool buildToolBars(QString& fileName);
    /// Stores geometry, bars and docks, button style and icon size.
    void saveGuiPrefs();
    /// Takes them up again; the tool bars and docks must be there.
    void restoreGuiPrefs();
    /// Does nothing.
    void openScriptEditor(QString& scriptName);

private:
    bool tellIfMissing(const QString& fileName, const QString& title);
    bool read(const QString& fileName, const QString& complaint, QDomDocument* document);
    void fillMenu(QMenu* menu, const QDomElement& element);
    QAction* makeAction(const QDomElement& element);
    void bindCallback(QAction* action, const QDomElement& element);

    QList<QAction*> loadedActions; // those of loadActions in file order; owned by the window
};

} // namespace Corvane::Gui
