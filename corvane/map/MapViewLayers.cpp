#include <corvane/map/MapView.h>

#include <corvane/map/Layer.h>
#include <corvane/map/MapCanvas.h>
#include <corvane/map/ViewManager.h>

namespace Corvane::Map {

namespace {

constexpr int notAdded = -1;

} // namespace

int MapView::addLayer(QString className, QString dataSource, QString description, QString paramList,
                      int index)
{
    return showAddedLayer(
        mapCanvas->addLayer(className, dataSource, description, paramList, index));
}

int MapView::addLayer(Layer* layer, int index)
{
    return showAddedLayer(mapCanvas->addLayer(layer, index));
}

int MapView::showAddedLayer(int index)
{
    if (index == notAdded) {
        return notAdded;
    }
    Layer* layer = mapCanvas->getLayerAt(index);
    if (mapCanvas->getNumberOfLayers() == 1) {
        zoomToAllLayers(false); // a first layer is shown whole
    } else {
        layer->setView(width(), height(), tlx, tly, brx, bry);
    }
    QWidget::update();
    emit layerAdded(layer);
    return index;
}

bool MapView::deleteLayerAt(int index)
{
    emit layerDeleted(getLayerAt(index));
    return mapCanvas->deleteLayerAt(index);
}

bool MapView::deleteLayer(QString& uid)
{
    Layer* layer = getLayerAt(getLayerIndex(uid));
    if (!layer) {
        return false;
    }
    emit layerDeleted(layer);
    return mapCanvas->deleteLayer(layer);
}

bool MapView::deleteLayer(Layer* pLayer)
{
    if (!pLayer) {
        return false;
    }
    QString uid = pLayer->getUid().toString();
    emit layerDeleted(pLayer);
    return mapCanvas->deleteLayer(uid);
}

bool MapView::deleteAllLayers()
{
    announceDeletionOf(mapCanvas->getLayers());
    mapCanvas->deleteAllLayers();
    QWidget::update();
    return true;
}

bool MapView::deleteAllOverlayLayers()
{
    announceDeletionOf(mapCanvas->getOverlayLayers());
    mapCanvas->deleteAllOverlayLayers();
    QWidget::update();
    return true;
}

bool MapView::deleteAllBackgroundLayers()
{
    announceDeletionOf(mapCanvas->getBackgroundLayers());
    mapCanvas->deleteAllBackgroundLayers();
    QWidget::update();
    return true;
}

void MapView::announceDeletionOf(const QVector<Layer*>& list)
{
    // by index, since a listener may change the list
    for (int index = 0; index < list.size(); ++index) {
        if (list.at(index)) {
            emit layerDeleted(list.at(index));
        }
    }
}

void MapView::moveLayer(int from, int to)
{
    mapCanvas->moveLayer(from, to);
    emit layerMoved(getLayerAt(to)); // also when nothing moved; null where to is outside the stack
    QWidget::update();
}

Layer* MapView::getLayerAt(int index)
{
    return mapCanvas->getLayerAt(index);
}

Layer* MapView::findLayer(QString uid)
{
    return mapCanvas->findLayer(uid);
}

int MapView::getLayerIndex(QString& uid)
{
    return mapCanvas->getLayerIndex(uid);
}

int MapView::getNumberOfLayers()
{
    return mapCanvas->getNumberOfLayers();
}

QVector<Layer*>& MapView::getLayers()
{
    return mapCanvas->getLayers();
}

double MapView::getRotation()
{
    return mapCanvas->getRotation();
}

QString MapView::getDescription()
{
    return mapCanvas->getDescription();
}

void MapView::setDescription(QString desc)
{
    mapCanvas->setDescription(desc);
}

bool MapView::loadMapXML(QDomDocument& theDoc, QDir& baseDir, QString* pErrorMessage)
{
    if (!mapCanvas->loadMapXML(theDoc, baseDir, pErrorMessage)) {
        return false;
    }
    // The canvas gives whole units, so a view comes back without its fractions.
    // MapDocumentTest::theExtentsComeBackInWholeUnits holds it.
    const QRectF saved = mapCanvas->getBounds();
    viewManager->init(0, 0, width(), height(), saved.left(), saved.top(), saved.right(),
                      saved.bottom());
    emit mapExtentsChanged(saved.left(), saved.top(), saved.right(), saved.bottom());
    return true;
}

QDomDocument* MapView::saveMapXML()
{
    return mapCanvas->saveMapXML();
}

} // namespace Corvane::Map
