#pragma once

#include <QMainWindow>
#include <QStringList>

class QMdiArea;
class QMdiSubWindow;
class QMenu;
class QMimeData;

namespace Corvane::Viewer {

class MapCommands;
class MapWindow;
class OpenFailures;
class ViewerStatusBar;

/// The program's window: map windows side by side, menus, tool bar and status bar. Takes files from
/// the dialogs and by drag and drop. GUI thread only.
class ViewerWindow : public QMainWindow
{
    Q_OBJECT
public:
    explicit ViewerWindow(QWidget* parent = nullptr);
    ~ViewerWindow() override;

    /// Opens each source in a map window of its own, side by side if they are the first. Returns
    /// before they are open.
    void openFiles(const QStringList& sources);
    /// Opens the sources as layers of a map window; null makes one.
    void addFiles(const QStringList& sources, MapWindow* window);

    QMdiArea* getMdiArea() const;
    /// The active map window, or null.
    MapWindow* getActiveMapWindow() const;

protected:
    /// Stores where windows and bars are.
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    /// Onto a map window, or with Shift, adds layers; else opens windows.
    void dropEvent(QDropEvent* event) override;

private:
    void createMenus();
    void createFileMenu();
    void addPluginActions(QMenu* menu);
    void createViewMenu();
    void createWindowMenu();
    void createHelpMenu();
    void createToolBar();
    void restoreLayout();
    void chooseFiles(bool add);
    void fillWindowMenu();
    void showAbout();
    void onSubWindowActivated(QMdiSubWindow* window);
    MapWindow* addMapWindow();
    MapWindow* mapWindowAt(const QPoint& position) const;

    QMdiArea* area;
    MapCommands* commands;
    OpenFailures* failures;
    ViewerStatusBar* status;
    QAction* openAction = nullptr;
    QAction* addLayerAction = nullptr;
    QAction* closeAction = nullptr;
    QMenu* windowMenu = nullptr;
    QMenu* viewMenu = nullptr;
};

} // namespace Corvane::Viewer
