#pragma once

#include <plugins/common/TileBudget.h>
#include <plugins/common/TileId.h>
#include <plugins/common/TileShelf.h>

#include <QRectF>
#include <QTimer>

#include <functional>
#include <memory>

class QRect;

namespace Corvane {

class GeoPainter;

namespace Map {

class ITiledLayer;
class LayerLevels;
class TileExchange;

/// How a tiled layer looks at its pyramid: asks for the tiles of a view, keeps those that come,
/// paints them with something beneath where one is missing, and gives back what is out of view
/// when memory runs short. A member of the layer, on the layer's thread.
class TiledView final : private ITileHolder
{
public:
    /// Both must outlive the view.
    TiledView(ITiledLayer* layer, LayerLevels* levels);
    ~TiledView();
    TiledView(const TiledView&) = delete;
    TiledView& operator=(const TiledView&) = delete;

    /// Begins anew with an empty pyramid over the layer's present bounds and cell sizes. With
    /// coarsestIsCheap its last level is fetched beneath every view.
    void start(std::shared_ptr<TileExchange> exchange, unsigned int tileSize, bool coarsestIsCheap);
    /// Goes on with the tiles of another exchange in the same pyramid. What is there of levels that do
    /// not stay is shown where it is in view until new tiles come; nothing is asked for yet.
    void carryOn(std::shared_ptr<TileExchange> exchange, bool coarsestIsCheap,
                 const std::function<bool(unsigned int level)>& stays);
    /// Drops all tiles and the pyramid.
    void stop();

    /// false: setView returns with every tile of the view in memory, or after the limit below.
    bool progressive = true;
    /// Between begin and end of an interactive change missing tiles come one level coarser.
    bool adaptiveRoam = true;
    /// Smooth when pixels are made smaller; enlarged pixels always stay crisp. On the screen a view
    /// that is progressive is smoothed once it rests.
    bool smooth = true;
    /// Asks for a repaint: the view rests and is to be smoothed. Empty: it waits for the next one.
    std::function<void()> repaint;
    /// How long a view that is not progressive may wait for the next tile, in milliseconds; 0 for as
    /// long as it takes. A source that let the limit pass is not waited for again before a tile came
    /// or a progressive view was set: a page in strips waits once for it.
    int waitLimit = 0;

    enum class Waiting
    {
        GoOn,
        AskAgain,
        GiveUp
    };
    /// Asked now and then while a view that is not progressive waits; empty for a source whose
    /// tiles all come.
    std::function<Waiting()> whileWaiting;

    void setView(int width, int height, double tlx, double tly, double brx, double bry);
    /// Whether a view was set since start.
    bool hasView() const { return viewSet; }
    /// Whether the last view has stood for a moment.
    bool isAtRest() const { return !moveTimer.isActive(); }
    /// Nothing is wanted until the next view.
    void forgetView();
    bool showsView(int width, int height, const QRectF& world) const;
    QRectF getWorld() const { return QRectF(tlx, tly, brx - tlx, bry - tly); }
    /// Whether the tile belongs to what the view shows.
    bool wants(const TileId& tile) const;
    /// Asks once more for what is missing of the view.
    void askAgain();
    /// Puts the tiles that have come into the pyramid.
    void takeDelivered();
    void beginUpdate();
    void endUpdate();
    /// Of a page that is printed in strips, the strip that was set last: see shownPart.
    void paint(GeoPainter& painter, QRectF* world, QRect* device);
    /// The part of the device that is to be painted: all of it, unless the view is not progressive
    /// and a strip of it. Each strip comes with a painting of the whole page, which would put
    /// transparent pixels over each other.
    QRect shownPart(const QRectF& world, const QRect& device) const;
    /// 0 to 100; of the level that the view asks for.
    int percentComplete();
    /// The smallest range of the view's own level that holds all tiles which have not come.
    TileRange missingTiles() const;
    /// The same of those that cannot be read.
    TileRange unreadableTiles() const;

    const TileShelf& tiles() const { return shelf; }

private:
    qint64 heldBytes() const override { return shelf.bytes(); }
    qint64 giveBackOtherLevels(qint64 wanted) override;
    qint64 giveBackOutOfView(qint64 wanted) override;

    void updateRanges();
    void request(bool roaming);
    void requestCoarser();
    void requestUnderlay();
    void waitForView();
    bool isStripOf(const QRectF& world, const QRect& device) const;
    void paintImages(GeoPainter& painter, const TileRange& range, const QRectF& world,
                     const QRect& device) const;
    void askForChosen();
    int levelByWidth(int deviceWidth, const QRectF& world) const;
    int levelFor(int deviceWidth, int deviceHeight, const QRectF& world) const;
    void setRenderHints(GeoPainter& painter, const QRectF& world, const QRect& device, int level,
                        bool loading);
    void smoothAtRest();

    ITiledLayer* layer;  // not owned
    LayerLevels* levels; // not owned
    TileShelf shelf;
    std::shared_ptr<TileExchange> exchange;
    bool coarsestIsCheap = false;

    bool viewSet = false;
    int width = 0;
    int height = 0;
    double tlx = 0.0;
    double tly = 0.0;
    double brx = 0.0;
    double bry = 0.0;
    TileRange chosen;   // the view in its own level
    TileRange coarser;  // what is asked for while the view moves
    TileRange underlay; // the view in the coarsest level

    bool updating = false; // a bracket was opened; brackets need not be balanced
    bool owesFullLevel = false;
    bool gaveUpWaiting = false;
    QTimer roamTimer; // asks for the full level when the view rests inside an open bracket
    QTimer moveTimer; // runs while the view moves
    bool owesSmoothing = false; // the picture on the screen is complete and rough
};

} // namespace Map
} // namespace Corvane
