#include <viewer/MapWindow.h>

#include <viewer/LayerOpener.h>
#include <viewer/PointerTracker.h>

#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>

#include <QAction>
#include <QIcon>
#include <QMenu>

namespace Corvane::Viewer {

MapWindow::MapWindow(QWidget* parent)
    : QMdiSubWindow(parent),
      view(new Map::MapView(this)),
      tracker(new PointerTracker(view))
{
    setObjectName("mapWindow");
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowIcon(QIcon(":/resources/icons/24x24/document_view.png"));
    // Its own key for closing would make that of the program's Close ambiguous.
    for (QAction* action : systemMenu()->actions()) {
        action->setShortcuts(QList<QKeySequence>());
    }
    setWidget(view);
    // queued: while the signal runs half a view is left, which nobody may reach through this window
    connect(view, &QObject::destroyed, this, &MapWindow::onViewDestroyed, Qt::QueuedConnection);
}

MapWindow::~MapWindow()
{
    if (view) {
        disconnect(view, nullptr, this, nullptr);
    }
    if (mapFullScreen) {
        delete view; // it has no parent there
    }
}

Map::MapView* MapWindow::getView() const
{
    return view;
}

PointerTracker* MapWindow::getTracker() const
{
    return tracker;
}

void MapWindow::open(const QString& source)
{
    if (name.isEmpty()) {
        name = LayerOpener::nameOf(source);
    }
    ++openCount;
    updateTitle();
    const auto opener = new LayerOpener(source, this);
    connect(opener, &LayerOpener::finished, this,
            [this, opener](bool ok) { onOpened(opener, ok); });
    opener->start();
}

bool MapWindow::isOpening() const
{
    return openCount > 0;
}

void MapWindow::onOpened(LayerOpener* opener, bool ok)
{
    --openCount;
    opener->deleteLater();
    updateTitle();
    if (ok && view) {
        view->addLayer(opener->takeLayer().release());
        emit layerOpened(this);
        return;
    }
    emit openFailed(opener->getSource(), opener->getReason());
    if (view && openCount == 0 && view->getNumberOfLayers() == 0) {
        close();
    }
}

void MapWindow::updateTitle()
{
    setWindowTitle(openCount > 0 ? tr("%1 (opening)").arg(name) : name);
}

void MapWindow::setMapFullScreen(bool full)
{
    if (full == mapFullScreen || !view) {
        return;
    }
    mapFullScreen = full;
    if (full) {
        setWidget(nullptr);
        view->setParent(nullptr, Qt::Window);
        view->setWindowTitle(windowTitle());
        view->showFullScreen();
    } else {
        view->setWindowState(Qt::WindowNoState);
        setWidget(view);
        view->show();
    }
    view->setFocus();
}

bool MapWindow::isMapFullScreen() const
{
    return mapFullScreen;
}

void MapWindow::onViewDestroyed()
{
    mapFullScreen = false;
    close();
}

} // namespace Corvane::Viewer
