#pragma once

#include <viewer/frame/Workspace.h>

#include <functional>

class QMdiSubWindow;
class QMenu;

namespace Corvane::Viewer {

class FileOpening;
class MapCommands;
class MapSaving;
class OpenFailures;
class Preferences;
class RecentFiles;
class ServerBrowsing;
class ViewerStatusBar;
class WindowCommands;

/// The program's window: map windows side by side, panels around them, status bar, and the menus and
/// tool bars that the program's XML files tell, whose entries get their effect here. Takes files
/// from the dialogs and by drag and drop. GUI thread only.
class ViewerWindow : public Workspace
{
    Q_OBJECT
public:
    explicit ViewerWindow(QWidget* parent = nullptr);
    ~ViewerWindow() override;

    /// Opens files, folders and addresses where the user wants such to be opened. Returns before
    /// they are open.
    void open(const QStringList& sources);
    void openFiles(const QStringList& sources) override;
    void addFiles(const QStringList& sources, MapWindow* window) override;
    MapWindow* addMapWindow() override;
    /// Asks about maps that are not saved, then closes all of them unless the user keeps one.
    void closeAllMaps();

protected:
    /// Asks about maps that are not saved, then stores where windows and bars are.
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    /// Onto a map window adds layers; else opens where the user wants it, with Shift in the other way.
    void dropEvent(QDropEvent* event) override;

    /// What a dialog did to the map may be news to the panels.
    void changeEvent(QEvent* event) override;

private:
    void createCommands();
    void createFeatures();
    void placeCommands();
    QList<QAction*> createPluginActions();
    void restoreLayout();
    void chooseFiles(bool add);
    void onSubWindowActivated(QMdiSubWindow* window);
    bool mayCloseAll(const std::function<void()>& then);
    MapWindow* mapWindowAt(const QPoint& position) const;

    MapCommands* commands;
    OpenFailures* failures;
    MapSaving* saving;
    RecentFiles* recent;
    ServerBrowsing* browsing;
    ViewerStatusBar* status;
    Preferences* preferences = nullptr;
    FileOpening* opening = nullptr;
    QAction* addLayerAction = nullptr;
    WindowCommands* windowCommands = nullptr;
    QList<QMenu*> menus; // of the menu file, without a parent: owned
};

} // namespace Corvane::Viewer
