#include <corvane/map/MapCanvas.h>

#include <corvane/map/EachThatStays_p.h>
#include <corvane/map/GeoPainter.h>
#include <corvane/map/Layer.h>

#include <QPaintDevice>
#include <QPointF>
#include <QRect>

namespace Corvane::Map {

namespace {

/// The scale denominator of a world in metres on a device of 96 dots per inch is world units per
/// pixel times dots per metre; 9600 / 2.54 are those.
constexpr double dotsPerInchTimesCentimetresPerMetre = 9600.0;
constexpr double centimetresPerInch = 2.54;
constexpr double scaleRounding = 0.5;

double scaleOf(const QRectF& world, const QRect& device)
{
    return (world.bottomRight().x() - world.topLeft().x()) * dotsPerInchTimesCentimetresPerMetre /
               (device.width() * centimetresPerInch) +
           scaleRounding;
}

void paintSideList(const QVector<Layer*>& side, GeoPainter& painter, QRectF* world, QRect* device)
{
    callEachThatStays(side, [&](Layer* layer) {
        if (layer && layer->isVisible() && layer->isValid()) {
            layer->paint(painter, world, device);
        }
    });
}

/// Both limits are exclusive.
bool isShownAtScale(Layer* layer, double scale)
{
    return layer && layer->isVisible() && layer->isValid() && layer->getMaxScale() > scale &&
           scale > layer->getMinScale();
}

void drawBox(const QRectF& bounds, GeoPainter& painter)
{
    QPointF topLeft = bounds.topLeft();
    QPointF bottomRight = bounds.bottomRight();
    painter.drawWorldRect(topLeft, bottomRight);
}

} // namespace

void MapCanvas::paint(GeoPainter& painter, QRectF* world, QRect* device)
{
    painter.save();
    paintSideList(backgroundLayers, painter, world, device);

    const double scale = scaleOf(*world, *device);
    callEachThatStays(layers, [&](Layer* layer) {
        if (isShownAtScale(layer, scale)) {
            paintLayer(layer, painter, world, device);
        }
    });
    if (drawLayerBBox) {
        drawLayerBoxes(painter, scale);
    }
    if (drawMapBBox) {
        painter.setPen(mapBBoxColor);
        drawBox(getMaxBounds(), painter);
    }

    paintSideList(overlayLayers, painter, world, device);
    painter.restore();
}

void MapCanvas::paintLayer(Layer* layer, GeoPainter& painter, QRectF* world, QRect* device)
{
    const bool onScreen = painter.device()->devType() == QInternal::Widget;
    if (!onScreen || layer != clippedLayer) {
        layer->paint(painter, world, device);
    } else if (!screenClip.isEmpty()) {
        painter.save();
        painter.setClipRect(screenClip, Qt::IntersectClip);
        layer->paint(painter, world, device);
        painter.restore();
    }
}

void MapCanvas::setScreenClip(Layer* layer, const QRect& device)
{
    clippedLayer = layer;
    screenClip = layer ? device : QRect();
}

Layer* MapCanvas::getClippedLayer() const
{
    return clippedLayer;
}

QRect MapCanvas::getScreenClip() const
{
    return screenClip;
}

// The brush stays as the layers left it, so a box may come out filled.
void MapCanvas::drawLayerBoxes(GeoPainter& painter, double scale)
{
    for (Layer* layer : qAsConst(layers)) {
        if (isShownAtScale(layer, scale)) {
            painter.setPen(layerBBoxColor);
            drawBox(layer->getBounds(), painter);
        }
    }
}

} // namespace Corvane::Map
