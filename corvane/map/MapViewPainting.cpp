#include <corvane/map/MapView.h>

#include <corvane/map/DeviceSpan_p.h>
#include <corvane/map/GeoPainter.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapCanvas.h>
#include <corvane/map/MapView_p.h>
#include <corvane/map/ViewManager.h>

#include <QBrush>
#include <QPen>

namespace Corvane::Map {

namespace {

constexpr int noCorner = -1;
constexpr int selectionFrameWidth = 1; // pixels

} // namespace

MapViewArt& mapViewArt()
{
    static MapViewArt art;
    return art;
}

void MapView::paintEvent(QPaintEvent* event)
{
    Q_UNUSED(event)
    QRect device = rect();
    GeoPainter painter(this, bounds, device);
    painter.save();
    painter.fillRect(0, 0, width(), height(), backgroundColor);

    const QImage& logo = mapViewArt().logo;
    if (mapCanvas->getNumberOfLayers() == 0 && !logo.isNull()) {
        painter.drawImage(device.width() / 2 - logo.width() / 2,
                          device.height() / 2 - logo.height() / 2, logo);
    } else {
        mapCanvas->paint(painter, &bounds, &device);
    }
    if (showLayerSelection && selectedLayer) {
        drawSelection(painter);
    }
    drawPointerAids(painter);
    painter.restore();
}

void MapView::drawSelection(QPainter& painter)
{
    const QRectF selection = selectedLayer->getBounds();
    int x0 = 0;
    int y0 = 0;
    int x1 = 0;
    int y1 = 0;
    viewManager->convertWorldToDevice(selection.left(), selection.top(), &x0, &y0);
    viewManager->convertWorldToDevice(selection.right(), selection.bottom(), &x1, &y1);

    const QColor colour(255, 0, 0, 255);
    painter.setPen(QPen(QBrush(colour), selectionFrameWidth));
    painter.setBrush(QBrush(colour, Qt::DiagCrossPattern));
    painter.drawRect(QRectF(x0, y0, deviceSpan(x0, x1), deviceSpan(y0, y1)));
}

void MapView::drawPointerAids(QPainter& painter)
{
    const PointerMode mode = viewManager->getPointerMode();
    if (mode == ZoomBox) {
        if (boxX != noCorner && boxY != noCorner) {
            Map::ZoomBox& zoomBox = mapViewArt().zoomBox;
            zoomBox.setRect(pointerX, pointerY, boxX, boxY);
            zoomBox.paint(painter, nullptr);
        }
    } else if (drawCrosshair && mode == Zoom) {
        const QImage& crosshair = mapViewArt().crosshair;
        painter.drawImage(QRect(pointerX - crosshair.width() / 2, pointerY - crosshair.height() / 2,
                                crosshair.width(), crosshair.height()),
                          crosshair);
    }
}

} // namespace Corvane::Map
