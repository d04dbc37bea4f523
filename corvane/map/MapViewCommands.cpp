#include <corvane/map/MapView.h>

#include <corvane/core/Application.h>
#include <corvane/map/MapCanvas.h>
#include <corvane/map/MapView_p.h>
#include <corvane/map/RasterLayer.h>

#include <QAction>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMainWindow>
#include <QMenu>

namespace Corvane::Map {

// Panning goes by half a view. A north-up height is negative, so up adds to y.
QRectF MapView::targetOf(MapControl action) const
{
    const QRectF& r = bounds;
    switch (action) {
    case MapPanUp:
        return r.translated(0.0, r.height() * -0.5);
    case MapPanDown:
        return r.translated(0.0, r.height() * 0.5);
    case MapPanLeft:
        return r.translated(r.width() * -0.5, 0.0);
    case MapPanRight:
        return r.translated(r.width() * 0.5, 0.0);
    case MapZoomIn:
        return zoomedIn(r);
    case MapZoomOut:
        return zoomedOut(r);
    case MapZoomToAll:
        return mapCanvas->getMaxBounds();
    }
    return QRectF();
}

void MapView::onMapAction(MapControl action)
{
    const QRectF before = bounds;
    if (useAnimation) {
        beginClientUpdate(false);
        extentAnimation.stop(); // one that runs would jump to where the new curve has it
        // stays set, for the wheel and the double click as well
        extentAnimation.setEasingCurve(QEasingCurve::OutQuad);
        animateBounds(before, targetOf(action));
        return;
    }

    beginClientUpdate(true);
    if (action == MapZoomToAll) {
        zoomToAllLayers(true);
    } else if (action >= MapPanUp && action <= MapZoomOut) {
        setBounds(targetOf(action));
    }
    endClientUpdate();
    // The last word is the rectangle from before the action: whoever listens takes the signals in
    // order. MapViewCommandsTest::aCommandWithoutAnimationEndsOnTheOldExtents holds it.
    emit mapExtentsChanged(before.left(), before.top(), before.right(), before.bottom());
}

void MapView::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Home:
        zoomToAllLayers(true);
        break;
    case Qt::Key_End:
        zoomOneToOne(0);
        return;
    case Qt::Key_Plus:
        onMapAction(MapZoomIn);
        break;
    case Qt::Key_Minus:
        onMapAction(MapZoomOut);
        break;
    case Qt::Key_Up:
        onMapAction(MapPanUp);
        break;
    case Qt::Key_Down:
        onMapAction(MapPanDown);
        break;
    case Qt::Key_Left:
        onMapAction(MapPanLeft);
        break;
    case Qt::Key_Right:
        onMapAction(MapPanRight);
        break;
    case Qt::Key_F9:
        triggerMainWindowAction(QStringLiteral("actionSnapshot"), event);
        return;
    case Qt::Key_F12:
    case Qt::Key_Escape:
        if (isFullScreen()) {
            triggerMainWindowAction(QStringLiteral("actionFullScreenMap"), event);
        }
        return;
    default:
        event->ignore();
        return;
    }
    event->accept();
}

/// Accepts the event where the main window has the action and ignores it where it has not.
void MapView::triggerMainWindowAction(const QString& actionName, QKeyEvent* event)
{
    Application* application = Application::instance();
    QMainWindow* mainWindow = application ? application->getMainWindow() : nullptr;
    QAction* action = mainWindow ? mainWindow->findChild<QAction*>(actionName) : nullptr;
    event->setAccepted(action != nullptr);
    if (action) {
        action->activate(QAction::Trigger);
    }
}

bool MapView::zoomToAllLayers(bool bAnimate)
{
    const QRectF whole = mapCanvas->getMaxBounds();
    if (useAnimation && bAnimate) {
        extentAnimation.stop();
        // an empty map has nowhere to go: the steps towards a null rectangle would shrink the view
        if (!whole.isNull()) {
            animateBounds(mapCanvas->getBounds(), whole);
            return true;
        }
    }
    setBounds(whole);
    emit mapExtentsChanged(whole.left(), whole.top(), whole.right(), whole.bottom());
    return true;
}

bool MapView::zoomToLayer(int index)
{
    Layer* layer = getLayerAt(index);
    if (!layer) {
        return false;
    }
    if (useAnimation) {
        beginClientUpdate(true);
        animateBounds(bounds, layer->getBounds());
    } else {
        showLayerBounds(layer->getBounds());
    }
    return true;
}

// Unlike the overload with an index, this starts from whole map units and opens no update bracket.
// MapViewCommandsTest::theTwoWaysToZoomToALayerDifferInStartAndBracket holds it.
bool MapView::zoomToLayer(Layer* pLayer)
{
    if (!pLayer) {
        return false;
    }
    if (useAnimation) {
        animateBounds(mapCanvas->getBounds(), pLayer->getBounds());
    } else {
        showLayerBounds(pLayer->getBounds());
    }
    return true;
}

void MapView::showLayerBounds(const QRectF& layerBounds)
{
    if (!layerBounds.isNull()) {
        setBounds(layerBounds);
    }
    emit mapExtentsChanged(layerBounds.left(), layerBounds.top(), layerBounds.right(),
                           layerBounds.bottom());
}

bool MapView::zoomOneToOne(int index)
{
    if (index < 0) {
        return false;
    }
    auto* raster = qobject_cast<RasterLayer*>(getLayerAt(index));
    if (!raster) {
        return true;
    }
    // the sign of the cell size is taken as it comes
    const double halfWidth = width() * 0.5 * raster->getCellSizeX();
    const double halfHeight = height() * 0.5 * raster->getCellSizeY();
    const QPointF centre = bounds.center();
    const double left = centre.x() - halfWidth;
    const double right = halfWidth + centre.x();
    const double top = centre.y() - halfHeight;
    const double bottom = centre.y() + halfHeight;
    const QRectF target(left, top, right - left, bottom - top);
    if (useAnimation) {
        beginClientUpdate(true);
        animateBounds(bounds, target);
    } else {
        setBounds(target);
        emit mapExtentsChanged(left, top, right, bottom);
    }
    return true;
}

void MapView::contextMenuEvent(QContextMenuEvent* event)
{
    // a right drag zooms and ends elsewhere than it began
    if (contextMenu && event->pos() == QPoint(pointerX, pointerY)) {
        contextMenu->exec(event->globalPos());
    }
}

void MapView::buildContextMenu()
{
    contextMenu = new QMenu(tr("Map View"), this);
    contextMenu->addMenu(tr("Zoom"));
    contextMenu->addMenu(tr("View"));
    contextMenu->addSeparator();
    contextMenu->addAction(tr("Properties"));
}

} // namespace Corvane::Map
