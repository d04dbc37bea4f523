#include <viewer/maps/MapWindow.h>

#include <viewer/maps/LateLayers.h>
#include <viewer/maps/LayerOpener.h>
#include <viewer/maps/MapDocument.h>
#include <viewer/maps/MapDocumentLoader.h>
#include <viewer/maps/PointerTracker.h>

#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QColor>
#include <QFileInfo>
#include <QIcon>
#include <QMenu>
#include <QScreen>

namespace Corvane::Viewer {

MapWindow::MapWindow(QWidget* parent)
    : QMdiSubWindow(parent),
      view(new Map::MapView(this)),
      tracker(new PointerTracker(view)),
      document(new MapDocument(view, this)),
      late(new LateLayers(this))
{
    setObjectName("mapWindow");
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowIcon(QIcon(":/resources/icons/24x24/document_view.png"));
    // Its own key for closing would make that of the program's Close ambiguous.
    for (QAction* action : systemMenu()->actions()) {
        action->setShortcuts(QList<QKeySequence>());
    }
    setWidget(view);
    connect(document, &MapDocument::changed, this, &MapWindow::updateTitle);
    connect(document, &MapDocument::saved, this, &MapWindow::onDocumentSaved);
    connect(view, &Map::MapView::layerAdded, this, &MapWindow::stayOpen);
    connect(view, &Map::MapView::layerAdded, this, &MapWindow::onLayerAdded);
    connect(late, &LateLayers::ended, this, [this](Map::Layer* layer, bool ok) {
        if (!ok) {
            tellFailureOf(layer);
        }
    });
    // queued: while the signal runs half a view is left, which nobody may reach through this window
    connect(view, &QObject::destroyed, this, &MapWindow::onViewDestroyed, Qt::QueuedConnection);
    updateTitle();
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

MapDocument* MapWindow::getDocument() const
{
    return document;
}

QString MapWindow::getName() const
{
    return name.isEmpty() ? tr("Untitled") : name;
}

void MapWindow::stayOpen()
{
    closesEmpty = false;
}

QWidget* MapWindow::getDialogParent() const
{
    return mapFullScreen && view ? static_cast<QWidget*>(view) : const_cast<MapWindow*>(this);
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
            [this, opener, number = ++openedCount](bool ok) { onOpened(opener, number, ok); });
    opener->start();
}

void MapWindow::openDocument(const QString& source)
{
    name = LayerOpener::nameOf(source);
    ++openCount;
    updateTitle();
    const MapDocumentLoader* loader = document->load(source);
    follow(loader, source);
    connect(loader, &MapDocumentLoader::foundOtherXml, this, [this, source] {
        --openCount;
        open(source);
    });
}

void MapWindow::restoreDocument(const QString& keptFile, const KeptMap& map)
{
    name = map.name;
    ++openCount;
    updateTitle();
    const MapDocumentLoader* loader = document->restore(keptFile, map);
    follow(loader, map.fileName.isEmpty() ? map.name : map.fileName);
    connect(loader, &MapDocumentLoader::foundOtherXml, this,
            [this, loader] { onDocumentRefused(loader->getFileName(), loader->getReason()); });
}

void MapWindow::follow(const MapDocumentLoader* loader, const QString& source)
{
    connect(loader, &MapDocumentLoader::loaded, this, &MapWindow::onDocumentLoaded);
    connect(loader, &MapDocumentLoader::refused, this,
            [this, source](const QString& reason) { onDocumentRefused(source, reason); });
    connect(loader, &MapDocumentLoader::problem, this,
            [this, source](const QString& text) { emit openFailed(source, text); });
}

void MapWindow::openCopyOf(const MapWindow& other, const QString& copyName)
{
    name = copyName;
    ++openCount;
    updateTitle();
    QColor background = other.getView()->getBackgroundColor();
    view->setBackgroundColor(background);
    follow(document->loadCopyOf(*other.getDocument()), copyName);
}

void MapWindow::onDocumentLoaded()
{
    --openCount;
    updateTitle();
    if (!document->getFileName().isEmpty()) {
        emit opened(document->getFileName());
    }
    emit layerOpened(this);
}

void MapWindow::onDocumentRefused(const QString& source, const QString& reason)
{
    --openCount;
    updateTitle();
    emit openFailed(source, reason);
    emit refused(source);
    closeIfInVain(source);
}

void MapWindow::closeIfInVain(const QString& source)
{
    if (openCount > 0 || !view || view->getNumberOfLayers() > 0) {
        return;
    }
    if (closesEmpty) {
        close();
    } else if (name == LayerOpener::nameOf(source) && document->getFileName().isEmpty()) {
        name.clear();
        updateTitle();
    }
}

void MapWindow::onDocumentSaved(bool ok, const QString& fileName)
{
    if (ok) {
        name = QFileInfo(fileName).fileName();
        updateTitle();
    }
}

bool MapWindow::isOpening() const
{
    return openCount > 0;
}

/// Below the layers of later sources that were quicker; else on top.
int MapWindow::placeFor(int number) const
{
    const QVector<Map::Layer*>& layers = view->getLayers();
    for (int i = 0; i < layers.size(); ++i) {
        if (openedLayers.key(layers[i]) > number) {
            return i;
        }
    }
    return -1;
}

void MapWindow::onOpened(LayerOpener* opener, int number, bool ok)
{
    --openCount;
    opener->deleteLater();
    updateTitle();
    if (ok && view) {
        Map::Layer* layer = opener->takeLayer().release();
        view->addLayer(layer, placeFor(number));
        openedLayers.insert(number, layer);
        emit opened(layer->getDataSource());
        emit layerOpened(this);
        return;
    }
    emit openFailed(opener->getSource(), opener->getReason());
    emit refused(opener->getSource());
    closeIfInVain(opener->getSource());
}

/// A plugin's command or a drop into the tree adds layers that nobody waits for. Those of a document
/// are told of by its loader.
void MapWindow::onLayerAdded(Map::Layer* layer)
{
    if (!document->isTakingIn() && !layer->isValid() && !late->follow(layer)) {
        tellFailureOf(layer);
    }
}

void MapWindow::tellFailureOf(Map::Layer* layer)
{
    if (!layer->getLastError().isEmpty()) {
        emit openFailed(LayerOpener::withoutCredentials(layer->getDataSource()),
                        layer->getLastError());
    }
}

void MapWindow::updateTitle()
{
    const QString marked = document->isChanged() ? tr("%1 *").arg(getName()) : getName();
    setWindowTitle(openCount > 0 ? tr("%1 (opening)").arg(getName()) : marked);
}

void MapWindow::setMapFullScreen(bool full)
{
    if (full == mapFullScreen || !view) {
        return;
    }
    mapFullScreen = full;
    if (full) {
        const QScreen* const here = window()->screen();
        setWidget(nullptr);
        view->installEventFilter(this); // taken away together with the widget
        view->setParent(nullptr, Qt::Window);
        view->setWindowTitle(windowTitle());
        view->setGeometry(here->geometry()); // else it fills the first screen
        view->showFullScreen();
    } else {
        window()->activateWindow(); // while the view's own window is there to give the focus away
        view->setWindowState(Qt::WindowNoState);
        setWidget(view);
        view->show();
        if (!QApplication::activeWindow()) { // else no key reaches anything until a click
            QApplication::setActiveWindow(window());
        }
    }
    view->setFocus();
    emit mapFullScreenChanged(full);
}

bool MapWindow::isMapFullScreen() const
{
    return mapFullScreen;
}

void MapWindow::setCloseGuard(const std::function<bool()>& guard)
{
    closeGuard = guard;
}

void MapWindow::closeEvent(QCloseEvent* event)
{
    if (closeGuard && !closeGuard()) {
        event->ignore();
        return;
    }
    QMdiSubWindow::closeEvent(event);
}

/// A view on the whole screen is closed by itself, and takes the map along.
bool MapWindow::eventFilter(QObject* watched, QEvent* event)
{
    // the kind first: a view that is being destroyed sends events, and is no view any more
    if (event->type() == QEvent::Close && watched == view && mapFullScreen && closeGuard &&
        !closeGuard())
    {
        event->ignore();
        return true;
    }
    return QMdiSubWindow::eventFilter(watched, event);
}

void MapWindow::onViewDestroyed()
{
    mapFullScreen = false;
    close();
}

} // namespace Corvane::Viewer
