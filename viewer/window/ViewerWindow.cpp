#include <viewer/window/ViewerWindow.h>

#include <viewer/access/KeyboardCursor.h>
#include <viewer/access/MapAnnouncer.h>
#include <viewer/cells/CellTools.h>
#include <viewer/comparing/CompareTools.h>
#include <viewer/editing/EditCommands.h>
#include <viewer/frame/CommandPlaces.h>
#include <viewer/frame/Commands.h>
#include <viewer/frame/Folders.h>
#include <viewer/frame/OpenHint.h>
#include <viewer/frame/Panels.h>
#include <viewer/frame/TaskBar.h>
#include <viewer/frame/Tasks.h>
#include <viewer/log/LogBook.h>
#include <viewer/log/LogPanel.h>
#include <viewer/maps/LayerOpener.h>
#include <viewer/maps/MapDocumentReader.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/measuring/MeasureCommand.h>
#include <viewer/opening/FileOpening.h>
#include <viewer/opening/MapSaving.h>
#include <viewer/opening/OpenFailures.h>
#include <viewer/opening/RecentFiles.h>
#include <viewer/opening/Reloading.h>
#include <viewer/opening/ServerBrowsing.h>
#include <viewer/output/PrintCommands.h>
#include <viewer/places/GoToCommand.h>
#include <viewer/preferences/Preferences.h>
#include <viewer/sources/OverviewCommands.h>
#include <viewer/sources/SourceCommands.h>
#include <viewer/sources/Sources.h>
#include <viewer/window/FullScreen.h>
#include <viewer/window/HelpCommands.h>
#include <viewer/window/MapCommands.h>
#include <viewer/window/ViewerStatusBar.h>
#include <viewer/window/WindowCommands.h>

#include <corvane/core/Application.h>
#include <corvane/core/PluginManager.h>

#include <QAction>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QGuiApplication>
#include <QIcon>
#include <QMdiArea>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QRegularExpression>
#include <QScreen>
#include <QSettings>
#include <QToolBar>
#include <QUrl>

namespace Corvane::Viewer {
namespace {

const char* const geometryKey = "Gui/MainWindow/geometry";
constexpr QSize firstSize(1280, 800);
constexpr QSize frameRoom(10, 40); // pixels, for what the window manager draws around it

QStringList layerFilters()
{
    return PluginManager::getFileChooserReadFilter().split(";;");
}

/// The same with maps, in the first filter as well, which names every pattern.
QStringList layerAndMapFilters()
{
    QStringList filters = layerFilters();
    filters.first().replace(QRegularExpression("\\)$"), " *.cmap)");
    return filters << ViewerWindow::tr("Corvane map (*.cmap)");
}

} // namespace

ViewerWindow::ViewerWindow(QWidget* parent)
    : Workspace(parent),
      commands(new MapCommands(this)),
      failures(new OpenFailures(this)),
      saving(new MapSaving(this)),
      recent(new RecentFiles(this)),
      browsing(new ServerBrowsing(this)),
      status(new ViewerStatusBar(this))
{
    setWindowTitle(QCoreApplication::applicationName());
    setWindowIcon(QIcon(":/resources/corvane.png"));
    setAcceptDrops(true);
    setStatusBar(status);
    createCommands();
    createFeatures();
    placeCommands();
    preferences->takeKeys();
    new OpenHint(getMdiArea(), findChild<QAction*>("actionOpen"));
    connect(getMdiArea(), &QMdiArea::subWindowActivated, this, &ViewerWindow::onSubWindowActivated);
    connect(recent, &RecentFiles::chosen, this, [this](const QString& source) { open({source}); });
    connect(saving, &MapSaving::saved, recent, &RecentFiles::add);
    connect(browsing, &ServerBrowsing::chosen, this,
            [this](const QString& source) { addFiles({source}, getActiveMapWindow()); });
    onSubWindowActivated(nullptr);
    restoreLayout();
}

ViewerWindow::~ViewerWindow()
{
    endMaps();
    qDeleteAll(menus);
}

void ViewerWindow::open(const QStringList& sources)
{
    opening->open(sources, FileOpening::usualPlace());
}

void ViewerWindow::openFiles(const QStringList& sources)
{
    const bool together = sources.size() > 1 && getMdiArea()->subWindowList().isEmpty();
    for (const QString& source : sources) {
        if (!mayBeMapDocument(source)) {
            addMapWindow()->open(source);
        } else if (MapWindow* window = mapWindowOf(source)) {
            getMdiArea()->setActiveSubWindow(window);
        } else {
            addMapWindow()->openDocument(source);
        }
    }
    if (together && getMdiArea()->viewMode() == QMdiArea::SubWindowView) {
        getMdiArea()->tileSubWindows(); // before they are open, so that each map fits its place
    }
}

void ViewerWindow::addFiles(const QStringList& files, MapWindow* window)
{
    QStringList sources;
    QStringList documents;
    for (const QString& file : files) {
        (mayBeMapDocument(file) ? documents : sources) << file;
    }
    openFiles(documents);
    if (sources.isEmpty()) {
        return;
    }
    if (!window) {
        window = addMapWindow();
    }
    for (const QString& source : sources) {
        window->open(source);
    }
}

MapWindow* ViewerWindow::addMapWindow()
{
    const bool first = getMdiArea()->subWindowList().isEmpty();
    const auto window = new MapWindow;
    getMdiArea()->addSubWindow(window);
    connect(window, &MapWindow::openFailed, failures, &OpenFailures::add);
    connect(window, &MapWindow::opened, recent, &RecentFiles::add);
    connect(window, &MapWindow::refused, recent, &RecentFiles::offerToRemove);
    window->setCloseGuard(
        [this, window] { return saving->mayClose(window, [window] { window->close(); }); });
    emit mapWindowAdded(window);
    if (first) {
        window->showMaximized();
    } else {
        window->show();
    }
    return window;
}

void ViewerWindow::onSubWindowActivated(QMdiSubWindow* window)
{
    // Null also comes while another program is in front: the current window stays the one to tell of.
    const auto mapWindow =
        qobject_cast<MapWindow*>(window ? window : getMdiArea()->currentSubWindow());
    commands->setMapWindow(mapWindow);
    saving->setMapWindow(mapWindow);
    status->setMapWindow(mapWindow);
    getPanels()->setMapWindow(mapWindow);
    addLayerAction->setEnabled(mapWindow != nullptr);
    emit activeMapChanged(mapWindow);
}

void ViewerWindow::createCommands()
{
    addCommand(this, "actionOpen", [this] {
        const bool other = QGuiApplication::keyboardModifiers().testFlag(Qt::ShiftModifier);
        chooseFiles((FileOpening::usualPlace() == FileOpening::ActiveMap) != other);
    });
    addLayerAction = addCommand(this, "actionAddLayer", [this] { chooseFiles(true); });
    if (LayerOpener::opensImagesOfServers()) {
        QAction* add = addCommand(this, "actionAddFromServer", [this] { browsing->browse(); });
        add->setIcon(QIcon(":/resources/server_add.png"));
    }
    addCommand(this, "actionQuit", [this] { close(); });
}

/// Each makes its own commands and follows the active map; the window owns them.
void ViewerWindow::createFeatures()
{
    opening = new FileOpening(this);
    new Reloading(this);
    windowCommands = new WindowCommands(this);
    new FullScreen(this);
    new EditCommands(this);
    new HelpCommands(this);
    getPanels()->addPanel("logDock", tr("Log"), new LogPanel(LogBook::instance()),
                          Qt::BottomDockWidgetArea);
    const auto printing = new PrintCommands(this);
    connect(this, &ViewerWindow::activeMapChanged, printing, &PrintCommands::setMapWindow);
    preferences = new Preferences(this);
    const auto keyboardCursor = new KeyboardCursor(this);
    connect(this, &ViewerWindow::activeMapChanged, keyboardCursor, &KeyboardCursor::setMapWindow);
    const auto announcer = new MapAnnouncer(keyboardCursor, this);
    connect(this, &ViewerWindow::activeMapChanged, announcer, &MapAnnouncer::setMapWindow);
    new GoToCommand(this);
    new MeasureCommand(this);
    new CellTools(this);
    new SourceCommands(this);
    auto* const tasks = new Tasks(this);
    status->addPermanentWidget(new TaskBar(tasks, status));
    new OverviewCommands(this, tasks);
    new CompareTools(this);
}

void ViewerWindow::placeCommands()
{
    CommandPlaces places(this);
    places.offer("recentFiles", {recent->getMenu()->menuAction()});
    places.offer("pluginLayers", createPluginActions());
    places.offer("panels", getPanels()->getToggleActions());
    if (!LayerOpener::opensImagesOfServers()) {
        places.offer("actionAddFromServer", {}); // there is no such command: its place stays empty
    }
    places.readActions(configFile("actions.xml"));
    places.buildToolBars(configFile("toolbars.xml"));
    QList<QAction*> bars;
    for (const QToolBar* bar : findChildren<QToolBar*>(QString(), Qt::FindDirectChildrenOnly)) {
        bars << bar->toggleViewAction();
    }
    places.offer("toolBars", bars);
    places.buildMenus(configFile("menus.xml"), &menus);
    if (menus.contains(nullptr)) {
        QMenu* const next = menus.value(menus.indexOf(nullptr) + 1);
        menuBar()->insertMenu(next ? next->menuAction() : nullptr, windowCommands->getMenu());
        menus.removeAll(nullptr);
    }
}

/// What the plugins offer to add to the current map; without a map, one is made for it first.
QList<QAction*> ViewerWindow::createPluginActions()
{
    QList<QAction*> entries;
    for (QAction* action : PluginManager::getLayerPluginAddLayerActions()) {
        auto* const entry = new QAction(action->icon(), action->text(), this);
        entry->setObjectName(action->objectName());
        connect(entry, &QAction::triggered, action, [this, action] {
            if (!getActiveMapWindow()) {
                addMapWindow();
            }
            action->trigger();
        });
        entries << entry;
    }
    return entries;
}

void ViewerWindow::restoreLayout()
{
    restoreGuiPrefs();
    if (!Application::instance()->getSettings()->contains(geometryKey)) {
        // the first start on a small screen, or one with large pixels, shows the status bar, too
        const QSize room = QGuiApplication::primaryScreen()->availableSize() - frameRoom;
        resize(firstSize.boundedTo(room));
    }
}

/// Asks of one changed map after the other; each answer but one that keeps the window closes again.
bool ViewerWindow::mayCloseAll(const std::function<void()>& then)
{
    for (QMdiSubWindow* subWindow : getMdiArea()->subWindowList()) {
        const auto window = qobject_cast<MapWindow*>(subWindow);
        if (window && !saving->mayClose(window, then)) {
            getMdiArea()->setActiveSubWindow(window);
            return false;
        }
    }
    return true;
}

void ViewerWindow::closeAllMaps()
{
    if (mayCloseAll([this] { closeAllMaps(); })) {
        getMdiArea()->closeAllSubWindows();
        saving->keepChanges(); // of a map that stays all the same
    }
}

void ViewerWindow::closeEvent(QCloseEvent* event)
{
    if (!mayCloseAll([this] { close(); })) {
        event->ignore();
        return;
    }
    saveGuiPrefs();
    getMdiArea()->closeAllSubWindows();
    saving->keepChanges();
    Workspace::closeEvent(event);
}

void ViewerWindow::changeEvent(QEvent* event)
{
    Workspace::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow() && getPanels()) {
        getPanels()->refresh();
    }
}

void ViewerWindow::chooseFiles(bool add)
{
    const auto dialog = new QFileDialog(this, add ? tr("Add Layer") : tr("Open"), lastFolder());
    dialog->setObjectName("openDialog");
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setNameFilters(add ? layerFilters() : layerAndMapFilters());
    dialog->setFileMode(QFileDialog::ExistingFiles);
    dialog->setOption(QFileDialog::HideNameFilterDetails); // the first filter names every pattern
    connect(dialog, &QFileDialog::filesSelected, this, [this, add](const QStringList& files) {
        keepFolderOf(files.first());
        opening->open(files, add ? FileOpening::ActiveMap : FileOpening::NewWindows);
    });
    dialog->open();
}

void ViewerWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (!sourcesOf(event->mimeData()).isEmpty()) {
        event->acceptProposedAction();
    }
}

void ViewerWindow::dropEvent(QDropEvent* event)
{
    const QStringList sources = sourcesOf(event->mimeData());
    event->acceptProposedAction();
    const bool other = event->keyboardModifiers().testFlag(Qt::ShiftModifier);
    const auto usual = FileOpening::usualPlace();
    if (MapWindow* window = mapWindowAt(event->pos())) {
        opening->addTo(window, sources);
    } else {
        opening->open(sources, other ? FileOpening::otherPlace(usual) : usual);
    }
}

MapWindow* ViewerWindow::mapWindowAt(const QPoint& position) const
{
    for (QWidget* widget = childAt(position); widget; widget = widget->parentWidget()) {
        if (const auto window = qobject_cast<MapWindow*>(widget)) {
            return window;
        }
    }
    return nullptr;
}

} // namespace Corvane::Viewer
