#include <viewer/cells/ProbePoint.h>

#include <viewer/maps/CrosshairMark.h>
#include <viewer/maps/MapWindow.h>
#include <viewer/maps/PointerTracker.h>

#include <corvane/map/MapView.h>
#include <corvane/map/RasterLayer.h>
#include <corvane/map/ViewManager.h>

#include <QAction>
#include <QCursor>
#include <QMetaProperty>
#include <QMouseEvent>

namespace Corvane::Viewer {
namespace {

constexpr int clickReach = 4; // pixels around the marker, in which a click takes it away

QPoint deviceOf(Map::MapView& view, const QPointF& world)
{
    QPoint device;
    view.getViewManager()->convertWorldToDevice(world.x(), world.y(), &device.rx(), &device.ry());
    return device;
}

QPointF worldOf(Map::MapView& view, const QPoint& device)
{
    QPointF world;
    view.getViewManager()->convertDeviceToWorld(device.x(), device.y(), &world.rx(), &world.ry());
    return world;
}

/// Of the topmost raster in view, else that of a pixel.
QPointF cellSizeOf(Map::MapView& view)
{
    for (int i = view.getNumberOfLayers() - 1; i >= 0; --i) {
        const auto raster = qobject_cast<Map::RasterLayer*>(view.getLayerAt(i));
        if (raster && raster->isValid() && raster->isVisible()) {
            return QPointF(raster->getCellSizeX(), raster->getCellSizeY());
        }
    }
    const QRectF bounds = view.getBounds();
    return QPointF(bounds.width() / view.width(), bounds.height() / view.height());
}

} // namespace

ProbePoint::ProbePoint(QObject* parent) : QObject(parent)
{
    laterChange.setSingleShot(true);
    laterChange.setInterval(0);
    connect(&laterChange, &QTimer::timeout, this, &ProbePoint::changed);
    createMoves();
}

ProbePoint::~ProbePoint() = default;

void ProbePoint::createMoves()
{
    const struct
    {
        const char* name;
        QString text;
        int key;
        int columns;
        int rows;
    } all[] = {
        {"probeLeft", tr("One Cell Left"), Qt::Key_Left, -1, 0},
        {"probeRight", tr("One Cell Right"), Qt::Key_Right, 1, 0},
        {"probeUp", tr("One Cell Up"), Qt::Key_Up, 0, -1},
        {"probeDown", tr("One Cell Down"), Qt::Key_Down, 0, 1},
    };
    for (const auto& one : all) {
        auto* const action = new QAction(one.text, this);
        action->setObjectName(one.name);
        action->setShortcut(QKeySequence(Qt::ALT + one.key));
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        const int columns = one.columns;
        const int rows = one.rows;
        connect(action, &QAction::triggered, this,
                [this, columns, rows] { moveByCells(columns, rows); });
        moves << action;
    }
}

void ProbePoint::setMapWindow(MapWindow* newWindow)
{
    if (newWindow == window && getView() == followed) {
        return;
    }
    stopFollowing();
    window = newWindow;
    placed = false;
    setFixed(false);
    follow();
    emit changed();
}

void ProbePoint::setWanted(QWidget* panel, bool wanted)
{
    if (wanted == wanting.contains(panel)) {
        return;
    }
    if (wanted) {
        wanting.insert(panel);
        panel->addActions(moves);
        follow();
    } else {
        wanting.remove(panel);
        if (wanting.isEmpty()) {
            stopFollowing();
        }
    }
}

Map::MapView* ProbePoint::getView() const
{
    return window ? window->getView() : nullptr;
}

void ProbePoint::follow()
{
    Map::MapView* const view = getView();
    if (followed || !view || wanting.isEmpty()) {
        return;
    }
    followed = view;
    view->installEventFilter(this);
    view->addActions(moves);
    connect(window->getTracker(), &PointerTracker::moved, this, &ProbePoint::onPointerMoved);
    connect(view, &Map::MapView::mapExtentsChanged, this, &ProbePoint::onExtentChanged);
    const auto later = QOverload<>::of(&QTimer::start);
    connect(view, &Map::MapView::layerAdded, &laterChange, later);
    connect(view, &Map::MapView::layerDeleted, &laterChange, later);
    connect(view, &Map::MapView::layerMoved, &laterChange, later);
    connect(view, &Map::MapView::layerPropertyChanged, &laterChange, later);
    if (!placed) {
        const QPoint pointer = view->mapFromGlobal(QCursor::pos());
        const bool inside = view->underMouse() && view->rect().contains(pointer);
        place = worldOf(*view, inside ? pointer : view->rect().center());
        placed = true;
        central = !inside;
    }
    placeMarker();
    laterChange.start();
}

void ProbePoint::stopFollowing()
{
    if (followed) {
        followed->removeEventFilter(this);
        for (QAction* action : qAsConst(moves)) {
            followed->removeAction(action);
        }
        disconnect(followed, nullptr, this, nullptr);
        disconnect(followed, nullptr, &laterChange, nullptr);
        if (window && window->getTracker()) {
            disconnect(window->getTracker(), nullptr, this, nullptr);
        }
    }
    followed = nullptr;
    delete marker;
    mayClick = false;
}

void ProbePoint::onPointerMoved(const QPointF& world)
{
    if (!fixed) {
        place = world;
        placed = true;
        central = false;
        emit changed();
    }
}

void ProbePoint::setFixed(bool fix)
{
    if (fix == fixed || (fix && !placed)) {
        return;
    }
    fixed = fix;
    central = false;
    placeMarker();
    emit fixedChanged(fixed);
}

void ProbePoint::fixAt(const QPointF& world)
{
    place = world;
    placed = true;
    central = false;
    if (fixed) {
        placeMarker();
    }
    setFixed(true);
    emit changed();
}

void ProbePoint::moveByCells(int columns, int rows)
{
    Map::MapView* const view = getView();
    if (!view) {
        return;
    }
    const QPointF from = placed ? place : worldOf(*view, view->rect().center());
    const QPointF cell = cellSizeOf(*view);
    fixAt(from + QPointF(columns * cell.x(), rows * cell.y()));
}

/// A press and a release in the same place; whatever moved the map was something else.
bool ProbePoint::eventFilter(QObject* watched, QEvent* event)
{
    // the kind first: a view that is being destroyed sends events, and is no view any more
    if (event->type() == QEvent::MouseButtonPress) {
        const auto mouse = static_cast<QMouseEvent*>(event);
        mayClick = mouse->button() == Qt::LeftButton && mouse->modifiers() == Qt::NoModifier;
        pressed = mouse->pos();
    } else if (event->type() == QEvent::MouseMove) {
        mayClick = mayClick && static_cast<QMouseEvent*>(event)->pos() == pressed;
    } else if (event->type() == QEvent::MouseButtonRelease && mayClick) {
        mayClick = false;
        onClick(static_cast<QMouseEvent*>(event)->pos());
    }
    return QObject::eventFilter(watched, event);
}

void ProbePoint::onClick(const QPoint& position)
{
    Map::MapView* const view = followed;
    if (!view) {
        return;
    }
    if (fixed && (deviceOf(*view, place) - position).manhattanLength() <= clickReach) {
        setFixed(false);
    } else {
        fixAt(worldOf(*view, position));
    }
}

void ProbePoint::onExtentChanged()
{
    if (central && followed) {
        place = worldOf(*followed, followed->rect().center());
        laterChange.start();
    }
    placeMarker();
}

void ProbePoint::placeMarker()
{
    if (!fixed || !followed) {
        delete marker;
        return;
    }
    if (!marker) {
        marker = new CrosshairMark(followed);
        marker->setObjectName("probeMarker");
    }
    marker->setCenter(deviceOf(*followed, place));
    marker->show();
}

} // namespace Corvane::Viewer
