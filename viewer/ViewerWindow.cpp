#include <viewer/ViewerWindow.h>

#include <viewer/Folders.h>
#include <viewer/MapCommands.h>
#include <viewer/MapWindow.h>
#include <viewer/OpenFailures.h>
#include <viewer/ViewerStatusBar.h>

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
#include <QMessageBox>
#include <QMimeData>
#include <QSettings>
#include <QToolBar>
#include <QUrl>

namespace Corvane::Viewer {
namespace {

const char* const geometryKey = "Viewer/geometry";
const char* const stateKey = "Viewer/state";
constexpr QSize firstSize(1280, 800);
constexpr QSize toolIconSize(24, 24);

QIcon icon(const QString& name)
{
    return QIcon(":/resources/icons/24x24/" + name);
}

QStringList sourcesOf(const QMimeData* data)
{
    QStringList sources;
    for (const QUrl& url : data->urls()) {
        sources << (url.isLocalFile() ? url.toLocalFile() : url.toString());
    }
    return sources;
}

} // namespace

ViewerWindow::ViewerWindow(QWidget* parent)
    : QMainWindow(parent),
      area(new QMdiArea(this)),
      commands(new MapCommands(this)),
      failures(new OpenFailures(this)),
      status(new ViewerStatusBar(this))
{
    setObjectName("viewerWindow");
    setWindowTitle(QCoreApplication::applicationName());
    setWindowIcon(QIcon(":/resources/corvane.png"));
    setAcceptDrops(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    area->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setCentralWidget(area);
    setStatusBar(status);
    createMenus();
    createToolBar();
    connect(area, &QMdiArea::subWindowActivated, this, &ViewerWindow::onSubWindowActivated);
    onSubWindowActivated(nullptr);
    restoreLayout();
}

ViewerWindow::~ViewerWindow()
{
    disconnect(area, nullptr, this, nullptr); // the area tells of every window that goes with it
}

void ViewerWindow::openFiles(const QStringList& sources)
{
    const bool together = sources.size() > 1 && area->subWindowList().isEmpty();
    for (const QString& source : sources) {
        addMapWindow()->open(source);
    }
    if (together) {
        area->tileSubWindows(); // before they are open, so that each map fits its place
    }
}

void ViewerWindow::addFiles(const QStringList& sources, MapWindow* window)
{
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

QMdiArea* ViewerWindow::getMdiArea() const
{
    return area;
}

MapWindow* ViewerWindow::getActiveMapWindow() const
{
    return qobject_cast<MapWindow*>(area->currentSubWindow());
}

MapWindow* ViewerWindow::addMapWindow()
{
    const bool first = area->subWindowList().isEmpty();
    const auto window = new MapWindow;
    area->addSubWindow(window);
    commands->addTo(window->getView());
    connect(window, &MapWindow::openFailed, failures, &OpenFailures::add);
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
    const auto mapWindow = qobject_cast<MapWindow*>(window ? window : area->currentSubWindow());
    commands->setMapWindow(mapWindow);
    status->setMapWindow(mapWindow);
    addLayerAction->setEnabled(mapWindow != nullptr);
    closeAction->setEnabled(mapWindow != nullptr);
}

void ViewerWindow::createMenus()
{
    createFileMenu();
    createViewMenu();
    createWindowMenu();
    createHelpMenu();
}

void ViewerWindow::createFileMenu()
{
    QMenu* menu = menuBar()->addMenu(tr("&File"));
    openAction = menu->addAction(icon("document_view.png"), tr("&Open..."));
    openAction->setObjectName("actionOpen");
    openAction->setShortcut(QKeySequence("Ctrl+O"));
    connect(openAction, &QAction::triggered, this, [this] {
        chooseFiles(QGuiApplication::keyboardModifiers().testFlag(Qt::ShiftModifier));
    });

    addLayerAction = menu->addAction(icon("document_add.png"), tr("&Add Layer..."));
    addLayerAction->setObjectName("actionAddLayer");
    addLayerAction->setShortcut(QKeySequence("Ctrl+Shift+O"));
    addLayerAction->setToolTip(tr("Add files to the current map"));
    connect(addLayerAction, &QAction::triggered, this, [this] { chooseFiles(true); });

    addPluginActions(menu);
    menu->addSeparator();
    menu->addAction(commands->getSnapshotAction());
    menu->addSeparator();
    closeAction = menu->addAction(tr("&Close"));
    closeAction->setObjectName("actionClose");
    closeAction->setShortcut(QKeySequence("Ctrl+W"));
    connect(closeAction, &QAction::triggered, area, &QMdiArea::closeActiveSubWindow);

    QAction* quit = menu->addAction(tr("&Quit"));
    quit->setObjectName("actionQuit");
    quit->setShortcut(QKeySequence("Ctrl+Q"));
    connect(quit, &QAction::triggered, this, &QWidget::close);
}

/// What the plugins offer to add to the current map; without a map, one is made for it first.
void ViewerWindow::addPluginActions(QMenu* menu)
{
    const auto actions = PluginManager::getLayerPluginAddLayerActions();
    for (QAction* action : actions) {
        QAction* entry = menu->addAction(action->icon(), action->text());
        entry->setObjectName(action->objectName());
        connect(entry, &QAction::triggered, action, [this, action] {
            if (!getActiveMapWindow()) {
                addMapWindow();
            }
            action->trigger();
        });
    }
}

void ViewerWindow::createViewMenu()
{
    viewMenu = menuBar()->addMenu(tr("&View"));
    viewMenu->addActions(commands->getModeActions());
    viewMenu->addSeparator();
    viewMenu->addActions(commands->getZoomActions());
    viewMenu->addSeparator();
    viewMenu->addAction(commands->getFullScreenAction());
}

void ViewerWindow::createWindowMenu()
{
    windowMenu = menuBar()->addMenu(tr("&Window"));
    QAction* tile = windowMenu->addAction(tr("&Tile"), area, &QMdiArea::tileSubWindows);
    tile->setObjectName("actionTile");
    QAction* cascade = windowMenu->addAction(tr("C&ascade"), area, &QMdiArea::cascadeSubWindows);
    cascade->setObjectName("actionCascade");
    QAction* next =
        windowMenu->addAction(tr("&Next Window"), area, &QMdiArea::activateNextSubWindow);
    next->setObjectName("actionNextWindow");
    next->setShortcut(QKeySequence("Ctrl+Tab"));
    windowMenu->addSeparator()->setObjectName("windowsFollow");
    connect(windowMenu, &QMenu::aboutToShow, this, &ViewerWindow::fillWindowMenu);
}

/// Below the separator: one entry for each map window.
void ViewerWindow::fillWindowMenu()
{
    const auto separator = windowMenu->findChild<QAction*>("windowsFollow");
    const auto actions = windowMenu->actions();
    for (QAction* action : actions.mid(actions.indexOf(separator) + 1)) {
        delete action;
    }
    for (QMdiSubWindow* window : area->subWindowList()) {
        QAction* action = windowMenu->addAction(window->windowTitle());
        action->setCheckable(true);
        action->setChecked(window == area->currentSubWindow());
        connect(action, &QAction::triggered, window,
                [this, window] { area->setActiveSubWindow(window); });
    }
}

void ViewerWindow::createHelpMenu()
{
    QMenu* menu = menuBar()->addMenu(tr("&Help"));
    QAction* about = menu->addAction(icon("help.png"), tr("&About"));
    about->setObjectName("actionAbout");
    connect(about, &QAction::triggered, this, &ViewerWindow::showAbout);
}

void ViewerWindow::showAbout()
{
    const auto box = new QMessageBox(
        QMessageBox::NoIcon, tr("About"),
        tr("%1 %2\n\nShows georeferenced imagery far larger than memory.")
            .arg(QCoreApplication::applicationName(), Application::applicationVersion()),
        QMessageBox::Ok, this);
    box->setIconPixmap(QPixmap(":/resources/corvanegeospatial.png"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

void ViewerWindow::createToolBar()
{
    QToolBar* bar = addToolBar(tr("Tool Bar"));
    bar->setObjectName("mapToolBar");
    bar->setIconSize(toolIconSize);
    bar->addActions({openAction, addLayerAction, commands->getSnapshotAction()});
    bar->addSeparator();
    bar->addActions(commands->getModeActions());
    bar->addSeparator();
    bar->addActions(commands->getZoomActions());
    bar->addSeparator();
    bar->addAction(commands->getFullScreenAction());
    viewMenu->addSeparator();
    viewMenu->addAction(bar->toggleViewAction());
}

void ViewerWindow::restoreLayout()
{
    const QSettings* settings = Application::instance()->getSettings();
    if (!restoreGeometry(settings->value(geometryKey).toByteArray())) {
        resize(firstSize);
    }
    restoreState(settings->value(stateKey).toByteArray());
}

void ViewerWindow::closeEvent(QCloseEvent* event)
{
    QSettings* settings = Application::instance()->getSettings();
    settings->setValue(geometryKey, saveGeometry());
    settings->setValue(stateKey, saveState());
    area->closeAllSubWindows();
    QMainWindow::closeEvent(event);
}

void ViewerWindow::chooseFiles(bool add)
{
    const auto dialog = new QFileDialog(this, add ? tr("Add Layer") : tr("Open"), lastFolder(),
                                        PluginManager::getFileChooserReadFilter());
    dialog->setObjectName("openDialog");
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFiles);
    dialog->setOption(QFileDialog::HideNameFilterDetails); // the first filter names every pattern
    connect(dialog, &QFileDialog::filesSelected, this, [this, add](const QStringList& files) {
        keepFolderOf(files.first());
        if (add) {
            addFiles(files, getActiveMapWindow());
        } else {
            openFiles(files);
        }
    });
    dialog->open();
}

void ViewerWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls()) {
        event->acceptProposedAction();
    }
}

void ViewerWindow::dropEvent(QDropEvent* event)
{
    const QStringList sources = sourcesOf(event->mimeData());
    event->acceptProposedAction();
    MapWindow* window = mapWindowAt(event->pos());
    if (!window && event->keyboardModifiers().testFlag(Qt::ShiftModifier)) {
        window = getActiveMapWindow();
    }
    if (window) {
        addFiles(sources, window);
    } else {
        openFiles(sources);
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
