#pragma once

#include <plugins/common/RefreshPacer.h>
#include <plugins/common/TiledView.h>

#include <corvane/map/RasterLayer.h>
#include <corvane/tiles/ITiledLayer.h>

#include <functional>
#include <memory>

namespace Corvane::Map {

class TileLink;

/// What the layers of tiles have in common: how they look at their pyramid and paint it, whatever
/// the tiles are made of. May be deleted at any time.
class TiledRasterLayer : public RasterLayer, public ITiledLayer
{
    Q_OBJECT
    Q_INTERFACES(Corvane::Map::ITiledLayer)
    Q_PROPERTY(bool Progressive READ isProgressive WRITE setProgressive)
    Q_PROPERTY(bool AdaptiveRoam READ isAdaptiveRoam WRITE setAdaptiveRoam)
    Q_PROPERTY(bool PixmapSmoothing READ isPixmapSmoothing WRITE setPixmapSmoothing)
    Q_PROPERTY(double WaitLimit READ getWaitLimit WRITE setWaitLimit STORED false)
public:
    /// Waits for nothing but calls into this object; requests under way end by themselves.
    ~TiledRasterLayer() override;

    bool isVisible() override;
    void setVisible(bool v) override;
    /// A layer that is hidden takes the view when it is shown: nothing is read for it before.
    void setView(int width, int height, double tlx, double tly, double brx, double bry) override;
    void beginUpdate(bool zoom) override;
    void endUpdate() override;
    QRectF getBounds() override = 0;
    void paint(GeoPainter& painter, QRectF* world, QRect* device) override;
    /// The data source comes last and once: opening takes time. Always true: a layer that does not
    /// open stays in its map, not valid, so that saving the map does not lose it. Why it does not is
    /// a line of pErrorMessage, which may be null.
    bool readXML(QDomNode& theNode, QDir& baseDir, QString* pErrorMessage) override;

    double getTransparency() override;
    /// Brought into the range 0 to 1.
    void setTransparency(double transparency) override;

    int getWidth() override;
    int getHeight() override;
    double getWorldPerPixelX() override;
    double getWorldPerPixelY() override;
    void tileReady(ITileRequest* request) override;
    QString getTileLayerId() override;

    /// What the present view lacks: the world rectangle around the tiles that have not come; null for
    /// none.
    Q_INVOKABLE QRectF getMissingArea();
    /// The same of the tiles that cannot be read, and are shown as such.
    Q_INVOKABLE QRectF getUnreadableArea();

    bool isProgressive() const;
    /// false: setView, and setDataSource, return only when everything has come.
    void setProgressive(bool progressive);
    bool isAdaptiveRoam() const;
    /// true: while the view moves, what is missing comes one level coarser.
    void setAdaptiveRoam(bool adaptive);
    bool isPixmapSmoothing() const;
    void setPixmapSmoothing(bool smoothing);
    double getWaitLimit() const;
    /// How long setView of a layer that is not progressive may wait for the next tile, in seconds; 0 for
    /// as long as it takes, a negative number for what the source deserves. A print goes on without
    /// what has not come by then.
    void setWaitLimit(double seconds);

    /// The tiles in memory.
    const TileShelf& tiles() const { return view.tiles(); }

signals:
    /// A source that was opening in the background is open, or has failed.
    void sourceOpened(bool ok);

public slots:
    /// Asks once more for the tiles that the view lacks.
    void setViewAgain();
    /// Takes the tiles that have come and asks for a repaint when it is time.
    void showArrived();

protected:
    explicit TiledRasterLayer(IRendererClient* client);

    /// Begins with an empty pyramid over the present bounds, cell sizes and tile size; what is
    /// under way for the old one is dropped. idPrefix begins the tiles' layer id.
    void startTiles(std::shared_ptr<TileLink> link, const char* idPrefix, unsigned int tileSize,
                    bool coarsestIsCheap);
    /// Goes on with the same pyramid and other requests. Tiles of the levels that stay are kept; the
    /// others are asked for anew, and those in view are shown until the new ones have come.
    void carryOnTiles(std::shared_ptr<TileLink> link, const char* idPrefix, bool coarsestIsCheap,
                      const std::function<bool(unsigned int level)>& stays);
    /// Drops the pyramid and what is under way. The destructor of a class that starts tiles calls it.
    void stopTiles();
    /// What holds until somebody sets a limit, in milliseconds.
    void setSourceWaitLimit(int milliseconds);
    void refreshAll();

    TiledView view;

private:
    QRectF areaOf(const TileRange& tiles);

    double transparency = 0.0;
    bool visible = true;
    bool viewMayBeStale = false;  // it was hidden, and is told nothing of the views meanwhile
    int sourceWaitLimit = 0;      // milliseconds
    bool hasOwnWaitLimit = false; // it was set, and goes before the source's
    std::shared_ptr<TileLink> link;
    QString tileLayerId;
    unsigned int tileEdge = 0; // pixels
    RefreshPacer pacer;
};

} // namespace Corvane::Map
