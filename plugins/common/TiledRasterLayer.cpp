#include <plugins/common/TiledRasterLayer.h>

#include <plugins/common/LinkedTileRequest.h>
#include <plugins/common/TileLink.h>

#include <corvane/map/GeoImage.h>
#include <corvane/map/GeoPainter.h>

#include <QDomElement>
#include <QRect>

#include <algorithm>
#include <utility>

namespace Corvane::Map {

namespace {

QString newTileLayerId(const char* prefix)
{
    static int count = 0;
    return QStringLiteral("%1%2").arg(QLatin1String(prefix)).arg(++count);
}

} // namespace

TiledRasterLayer::TiledRasterLayer(IRendererClient* client)
    : RasterLayer(client),
      view(this, &levels),
      pacer([this] { refreshAll(); })
{
}

TiledRasterLayer::~TiledRasterLayer() = default;

// Tiles under way keep their old keys, so the new ones get keys of their own.
void TiledRasterLayer::startTiles(std::shared_ptr<TileLink> newLink, const char* idPrefix,
                                  unsigned int tileSize, bool coarsestIsCheap)
{
    if (link) {
        link->close();
    }
    link = std::move(newLink);
    tileLayerId = newTileLayerId(idPrefix);
    view.start(std::shared_ptr<TileExchange>(link, &link->exchange), tileSize, coarsestIsCheap);
}

void TiledRasterLayer::stopTiles()
{
    if (link) {
        link->close();
        link.reset();
    }
    view.stop();
}

void TiledRasterLayer::refreshAll()
{
    const QRectF bounds = getBounds();
    refresh(bounds.left(), bounds.top(), bounds.right(), bounds.bottom());
}

bool TiledRasterLayer::isVisible()
{
    return visible;
}

void TiledRasterLayer::setVisible(bool v)
{
    viewMayBeStale = viewMayBeStale || (v && !visible);
    visible = v;
    refreshAll();
}

void TiledRasterLayer::setView(int width, int height, double tlx, double tly, double brx,
                               double bry)
{
    viewMayBeStale = false;
    view.setView(width, height, tlx, tly, brx, bry);
}

void TiledRasterLayer::setViewAgain()
{
    if (link) {
        link->viewCallHeard();
    }
    view.askAgain();
}

void TiledRasterLayer::showArrived()
{
    if (link) {
        link->repaintCallHeard();
        pacer.tilesArrived(view.percentComplete() == 100);
    }
}

void TiledRasterLayer::beginUpdate(bool)
{
    view.beginUpdate();
}

void TiledRasterLayer::endUpdate()
{
    view.endUpdate();
}

// A layer that was not valid, or hidden, has not been told of the view: it takes the painter's.
void TiledRasterLayer::paint(GeoPainter& painter, QRectF* world, QRect* device)
{
    if (!link) {
        return;
    }
    const bool outdated =
        viewMayBeStale && !view.showsView(device->width(), device->height(), *world);
    if (!view.hasView() || outdated) {
        setView(device->width(), device->height(), world->left(), world->top(),
                world->left() + world->width(), world->top() + world->height());
    }
    viewMayBeStale = false;
    const double opacity = painter.opacity();
    painter.setOpacity(opacity * (1.0 - transparency));
    view.paint(painter, world, device);
    painter.setOpacity(opacity);
}

bool TiledRasterLayer::readXML(QDomNode& theNode, QDir& baseDir, QString* pErrorMessage)
{
    QDomNode node = theNode.cloneNode();
    QDomElement child = node.firstChildElement(QStringLiteral("param"));
    while (!child.isNull()) {
        const QDomElement next = child.nextSiblingElement(QStringLiteral("param"));
        if (child.attribute(QStringLiteral("name")) == QLatin1String("DataSource")) {
            node.removeChild(child);
        }
        child = next;
    }
    return RasterLayer::readXML(node, baseDir, pErrorMessage);
}

double TiledRasterLayer::getTransparency()
{
    return transparency;
}

void TiledRasterLayer::setTransparency(double newTransparency)
{
    // written so that a NaN becomes 0
    transparency = newTransparency > 0.0 ? std::min(newTransparency, 1.0) : 0.0;
    refreshAll();
}

int TiledRasterLayer::getWidth()
{
    return getSize().width();
}

int TiledRasterLayer::getHeight()
{
    return getSize().height();
}

double TiledRasterLayer::getWorldPerPixelX()
{
    return getCellSizeX();
}

double TiledRasterLayer::getWorldPerPixelY()
{
    return getCellSizeY();
}

// On a pool thread, inside the lifeline.
void TiledRasterLayer::tileReady(ITileRequest* request)
{
    auto* const own = static_cast<LinkedTileRequest*>(request);
    own->deliver(own->takeImage());
}

QString TiledRasterLayer::getTileLayerId()
{
    return tileLayerId;
}

bool TiledRasterLayer::isProgressive() const
{
    return view.progressive;
}

void TiledRasterLayer::setProgressive(bool progressive)
{
    view.progressive = progressive;
}

bool TiledRasterLayer::isAdaptiveRoam() const
{
    return view.adaptiveRoam;
}

void TiledRasterLayer::setAdaptiveRoam(bool adaptive)
{
    view.adaptiveRoam = adaptive;
}

bool TiledRasterLayer::isPixmapSmoothing() const
{
    return view.smooth;
}

void TiledRasterLayer::setPixmapSmoothing(bool smoothing)
{
    view.smooth = smoothing;
    refreshAll();
}

} // namespace Corvane::Map
