#include <viewer/window/WindowCommands.h>

#include <viewer/frame/Commands.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/window/ViewerWindow.h>

#include <corvane/core/Application.h>

#include <QAction>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QRegularExpression>
#include <QSet>
#include <QSettings>
#include <QTabBar>

namespace Corvane::Viewer {
namespace {

const char* const tabsKey = "Viewer/Windows/Tabs";
constexpr int lastNumberWithKey = 9;

/// The name with the first number behind it that no window has.
QString nameOfCopy(const MapWindow& original, const QList<MapWindow*>& windows)
{
    QSet<QString> taken;
    for (const MapWindow* window : windows) {
        taken << window->getName();
    }
    static const QRegularExpression copyNumber(":[0-9]+$");
    const QString stem = original.getName().remove(copyNumber) + ':';
    int number = 2;
    while (taken.contains(stem + QString::number(number))) {
        ++number;
    }
    return stem + QString::number(number);
}

} // namespace

WindowCommands::WindowCommands(ViewerWindow* viewerWindow)
    : QObject(viewerWindow),
      window(viewerWindow),
      area(viewerWindow->getMdiArea()),
      menu(new QMenu(tr("&Window"), viewerWindow))
{
    createCommands();
    createMenu();
    connect(window, &ViewerWindow::activeMapChanged, this, &WindowCommands::updateCommands);
    connect(window, &ViewerWindow::mapWindowAdded, this, [this](MapWindow* map) {
        updateCommands();
        connect(map, &QWidget::windowTitleChanged, this, &WindowCommands::nameTabs);
        connect(map, &QObject::destroyed, this, &WindowCommands::updateCommands,
                Qt::QueuedConnection);
    });
    tabs->setChecked(Application::instance()->getSettings()->value(tabsKey).toBool());
    showTabs(tabs->isChecked());
    updateCommands();
}

QMenu* WindowCommands::getMenu() const
{
    return menu;
}

void WindowCommands::createCommands()
{
    addCommand(window, "actionNewMap", [this] { window->addMapWindow()->stayOpen(); });
    forOneMap << addCommand(window, "actionCloneMap", [this] { cloneMap(); });
    tabs = addSwitch(window, "actionTabs", [this](bool on) { showTabs(on); });
    forOneMap << addCommand(window, "actionTile", [this] { arrange(&QMdiArea::tileSubWindows); });
    forOneMap << addCommand(window, "actionCascade",
                            [this] { arrange(&QMdiArea::cascadeSubWindows); });
    forSeveralMaps << addCommand(window, "actionNextWindow",
                                 [this] { area->activateNextSubWindow(); });
    forSeveralMaps << addCommand(window, "actionPreviousWindow",
                                 [this] { area->activatePreviousSubWindow(); });
    forOneMap << addCommand(window, "actionClose", [this] { area->closeActiveSubWindow(); });
    forOneMap << addCommand(window, "actionCloseAll", [this] { window->closeAllMaps(); });
}

void WindowCommands::createMenu()
{
    menu->setObjectName("windowMenu");
    for (const char* name : {"actionCloneMap", "", "actionTabs", "actionTile", "actionCascade", "",
                             "actionNextWindow", "actionPreviousWindow", "", "actionCloseAll"})
    {
        if (*name == '\0') {
            menu->addSeparator();
        } else {
            menu->addAction(window->findChild<QAction*>(name, Qt::FindDirectChildrenOnly));
        }
    }
    menu->addSeparator()->setObjectName("windowsFollow");
    connect(menu, &QMenu::aboutToShow, this, &WindowCommands::fillMenu);
}

/// Below the separator: one numbered entry for each map window.
void WindowCommands::fillMenu()
{
    const auto separator = menu->findChild<QAction*>("windowsFollow");
    const auto actions = menu->actions();
    for (QAction* action : actions.mid(actions.indexOf(separator) + 1)) {
        delete action;
    }
    int number = 0;
    for (MapWindow* map : window->getMapWindows()) {
        ++number;
        const QString mark = number <= lastNumberWithKey ? "&" : QString();
        const QString title = map->windowTitle().replace('&', "&&");
        QAction* const entry = menu->addAction(QString("%1%2 %3").arg(mark).arg(number).arg(title));
        entry->setCheckable(true);
        entry->setChecked(map == window->getActiveMapWindow());
        connect(entry, &QAction::triggered, map, [this, map] { area->setActiveSubWindow(map); });
    }
}

void WindowCommands::cloneMap()
{
    MapWindow* const original = window->getActiveMapWindow();
    if (original && original->getView()) {
        const QString name = nameOfCopy(*original, window->getMapWindows());
        const QSize size = original->size();
        MapWindow* const copy = window->addMapWindow();
        if (!copy->isMaximized()) {
            copy->resize(size);
        }
        copy->openCopyOf(*original, name);
    }
}

void WindowCommands::showTabs(bool on)
{
    area->setViewMode(on ? QMdiArea::TabbedView : QMdiArea::SubWindowView);
    area->setTabsClosable(true);
    area->setTabsMovable(true);
    area->setDocumentMode(true);
    if (auto* const bar = area->findChild<QTabBar*>(QString(), Qt::FindDirectChildrenOnly)) {
        bar->setObjectName("mapTabs");
        bar->setAccessibleName(tr("Maps"));
        bar->setExpanding(false);
        bar->setElideMode(Qt::ElideMiddle);
    }
    nameTabs();
    Application::instance()->getSettings()->setValue(tabsKey, on);
}

/// The area takes the titles as they are, and a tab takes an ampersand for the mark of a key.
void WindowCommands::nameTabs()
{
    auto* const bar = area->findChild<QTabBar*>(QString(), Qt::FindDirectChildrenOnly);
    const QList<QMdiSubWindow*> windows = area->subWindowList(); // in the order of their tabs
    for (int i = 0; bar && i < windows.size(); ++i) {
        bar->setTabText(i, windows.at(i)->windowTitle().replace('&', "&&"));
    }
}

/// Tabs show one map at a time: an arrangement ends them.
void WindowCommands::arrange(void (QMdiArea::*how)())
{
    if (tabs->isChecked()) {
        tabs->setChecked(false);
        showTabs(false);
    }
    (area->*how)();
}

void WindowCommands::updateCommands()
{
    const int count = window->getMapWindows().size();
    for (QAction* command : qAsConst(forOneMap)) {
        command->setEnabled(count > 0);
    }
    for (QAction* command : qAsConst(forSeveralMaps)) {
        command->setEnabled(count > 1);
    }
}

} // namespace Corvane::Viewer
