#include <corvane/map/MapCanvas.h>

#include <corvane/core/PluginManager.h>
#include <corvane/map/EachThatStays_p.h>
#include <corvane/map/Layer.h>
#include <corvane/map/LayerPointer_p.h>
#include <corvane/map/WholeUnits_p.h>

#include <QUuid>

#include <algorithm>

namespace Corvane::Map {

namespace {

constexpr char defaultDescription[] = "Map";
constexpr int notFound = -1;

/// A layer that takes part in views, updates and frames.
bool isShown(Layer* layer)
{
    return layer && layer->isVisible() && layer->isValid();
}

template <typename Call>
void callEachShown(const QVector<Layer*>& stack, Call call)
{
    callEachThatStays(stack, [&call](Layer* layer) {
        if (isShown(layer)) {
            call(layer);
        }
    });
}

} // namespace

MapCanvas::MapCanvas(QObject* parent)
    : QObject(parent),
      description(defaultDescription),
      baseColor(255, 255, 255, 255),
      mapBBoxColor(255, 0, 0, 255),
      layerBBoxColor(0, 255, 255, 255)
{
    registerLayerPointer();
}

MapCanvas::~MapCanvas()
{
    deleteAllOverlayLayers();
    deleteAllLayers();
    deleteAllBackgroundLayers();
}

void MapCanvas::beginUpdate(bool zoom)
{
    callEachShown(layers, [zoom](Layer* layer) { layer->beginUpdate(zoom); });
}

void MapCanvas::endUpdate()
{
    callEachShown(layers, [](Layer* layer) { layer->endUpdate(); });
}

void MapCanvas::setView(int width, int height, double newTlx, double newTly, double newBrx,
                        double newBry)
{
    viewWidth = width;
    viewHeight = height;
    tlx = newTlx;
    tly = newTly;
    brx = newBrx;
    bry = newBry;
    callEachShown(layers, [this](Layer* layer) {
        layer->setView(viewWidth, viewHeight, tlx, tly, brx, bry);
    });
}

void MapCanvas::setClient(IRendererClient* newClient)
{
    client = newClient;
}

IRendererClient* MapCanvas::getClient()
{
    return client;
}

int MapCanvas::addLayer(QString className, QString dataSource, QString layerDescription,
                        QString paramList, int index)
{
    Q_UNUSED(paramList)
    Layer* layer = PluginManager::createLayer(className, false);
    if (!layer) {
        return notFound;
    }
    // a source that does not open leaves an invalid layer in the stack, which all else passes over
    layer->setDataSource(dataSource);
    if (!layerDescription.isEmpty()) {
        layer->setDescription(layerDescription);
    }
    return addLayer(layer, index);
}

int MapCanvas::addLayer(Layer* layer, int index)
{
    if (!layer) {
        return notFound;
    }
    layer->setRendererClient(client);
    if (index < 0 || index > layers.size()) {
        layers.append(layer);
    } else {
        layers.insert(index, layer);
    }
    return layers.indexOf(layer);
}

bool MapCanvas::deleteLayerAt(int index)
{
    if (!getLayerAt(index)) {
        return false;
    }
    delete layers.takeAt(index);
    return true;
}

bool MapCanvas::deleteLayer(QString& uid)
{
    return deleteLayerAt(getLayerIndex(uid));
}

bool MapCanvas::deleteLayer(Layer* pLayer)
{
    return deleteLayerAt(layers.indexOf(pLayer));
}

bool MapCanvas::deleteAllLayers()
{
    while (!layers.isEmpty()) {
        delete layers.takeLast();
    }
    return true;
}

bool MapCanvas::deleteAllOverlayLayers()
{
    return deleteBySideList(overlayLayers);
}

bool MapCanvas::deleteAllBackgroundLayers()
{
    return deleteBySideList(backgroundLayers);
}

// A filled side list takes its toll on the stack and keeps its own layers: whoever fills one clears
// it. MapCanvasTest::aFilledSideListDeletesFromTheStack holds it.
bool MapCanvas::deleteBySideList(const QVector<Layer*>& side)
{
    while (!side.isEmpty()) {
        const int index = side.size() - 1;
        if (!isInStack(index)) {
            return false;
        }
        delete layers.takeAt(index);
    }
    return true;
}

void MapCanvas::moveLayer(int from, int to)
{
    if (!isInStack(from) || !isInStack(to) || !layers.at(from)) {
        return;
    }
    layers.move(from, to);
}

Layer* MapCanvas::getLayerAt(int index)
{
    return isInStack(index) ? layers.at(index) : nullptr;
}

Layer* MapCanvas::findLayer(QString uid)
{
    for (Layer* layer : qAsConst(layers)) {
        if (layer && layer->getUid().toString() == uid) {
            return layer;
        }
    }
    return nullptr;
}

int MapCanvas::getLayerIndex(QString& uid)
{
    const QUuid wanted(uid);
    for (int index = 0; index < layers.size(); ++index) {
        if (layers.at(index) && layers.at(index)->getUid() == wanted) {
            return index;
        }
    }
    return notFound;
}

int MapCanvas::getNumberOfLayers()
{
    return layers.size();
}

bool MapCanvas::isInStack(int index) const
{
    return index >= 0 && index < layers.size();
}

QRectF MapCanvas::getBounds()
{
    return QRectF(QPointF(wholeUnits(tlx), wholeUnits(tly)),
                  QPointF(wholeUnits(brx), wholeUnits(bry)));
}

QRectF MapCanvas::getMaxBounds()
{
    QRectF whole;
    for (Layer* layer : qAsConst(layers)) {
        if (!isShown(layer)) {
            continue;
        }
        const QRectF bounds = layer->getBounds();
        if (whole.isNull()) {
            whole = bounds;
        } else if (!bounds.isNull()) {
            // heights are negative in a north-up world, so the top is the larger y
            const double x = std::min(whole.x(), bounds.x());
            const double y = std::max(whole.y(), bounds.y());
            const double right = std::max(whole.x() + whole.width(), bounds.x() + bounds.width());
            const double bottom =
                std::min(whole.y() + whole.height(), bounds.y() + bounds.height());
            whole = QRectF(x, y, right - x, bottom - y);
        }
    }
    return whole;
}

bool MapCanvas::setSrs(const SpatialReference& ref)
{
    for (Layer* layer : qAsConst(layers)) {
        if (layer && !layer->setSpatialRef(ref)) {
            layer->setVisible(false);
        }
    }
    srs.setEpsg(ref.epsg);
    return true;
}

const SpatialReference& MapCanvas::getSrs()
{
    Layer* bottom = getLayerAt(0);
    return bottom ? bottom->getSpatialRef() : srs;
}

QVector<Layer*>& MapCanvas::getLayers()
{
    return layers;
}

QVector<Layer*>& MapCanvas::getOverlayLayers()
{
    return overlayLayers;
}

QVector<Layer*>& MapCanvas::getBackgroundLayers()
{
    return backgroundLayers;
}

QString MapCanvas::getComments()
{
    return comments;
}

void MapCanvas::setComments(QString value)
{
    comments = value;
}

double MapCanvas::getRotation()
{
    return rotation;
}

void MapCanvas::setRotation(double dRotation)
{
    rotation = dRotation;
}

QString MapCanvas::getDescription()
{
    return description;
}

void MapCanvas::setDescription(QString desc)
{
    description = desc;
}

void MapCanvas::setQuickDraw(bool bValue)
{
    quickDraw = bValue;
}

bool MapCanvas::getQuickDraw()
{
    return quickDraw;
}

void MapCanvas::setDrawMapBBox(bool value)
{
    drawMapBBox = value;
}

bool MapCanvas::getDrawMapBBox()
{
    return drawMapBBox;
}

void MapCanvas::setDrawLayerBBox(bool value)
{
    drawLayerBBox = value;
}

bool MapCanvas::getDrawLayerBBox()
{
    return drawLayerBBox;
}

void MapCanvas::setMapBBoxColor(QColor color)
{
    mapBBoxColor = color;
}

QColor MapCanvas::getMapBBoxColor()
{
    return mapBBoxColor;
}

void MapCanvas::setLayerBBoxColor(QColor color)
{
    layerBBoxColor = color;
}

QColor MapCanvas::getLayerBBoxColor()
{
    return layerBBoxColor;
}

} // namespace Corvane::Map
