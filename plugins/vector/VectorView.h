#pragma once

#include <plugins/common/PoolJob.h>
#include <plugins/vector/VectorPicture.h>

#include <functional>
#include <memory>

namespace Corvane {
class GeoPainter;
}

namespace Corvane::Map {

/// How a layer of shapes looks at its chunks: a picture somewhat larger than the view is drawn on
/// the pool and shown, moved and scaled, until the next is there. On the layer's thread.
class VectorView
{
public:
    /// tell posts to a slot of the layer, by its name, that takePicture has something to do. It is
    /// called on pool threads, while the object lives.
    explicit VectorView(std::function<void()> tell);
    ~VectorView();
    VectorView(const VectorView&) = delete;
    VectorView& operator=(const VectorView&) = delete;

    /// false: setView returns when the picture is drawn.
    bool progressive = true;

    /// Forgets the chunks and the view.
    void clear();
    /// The chunks from now on. moreToCome: there will be others soon. fresh: what is drawn of the
    /// old ones is not to be shown any longer.
    void setChunks(ChunkList chunks, bool moreToCome, bool fresh);
    const ChunkList& getChunks() const { return chunks; }
    /// True where it differs from the present one.
    bool setStyle(const VectorStyle& style);
    void setView(int width, int height, const QRectF& world);
    bool hasView() const { return viewSet; }
    bool showsView(int width, int height, const QRectF& world) const;
    void beginUpdate();
    void endUpdate();
    /// Takes a picture that has been drawn and starts the next where one is owed. Whether there is
    /// a new one to be shown.
    bool takePicture();
    /// Whether the picture in hand is the one that the view wants.
    bool isComplete() const;
    /// Draws what is in memory: a picture on a screen, the shapes themselves on paper.
    void paint(GeoPainter& painter, const QRectF& world, const QRect& device);

private:
    bool drawsShapes(GeoPainter& painter) const;
    void paintShapes(GeoPainter& painter, const ViewFrame& target);
    void paintPictures(GeoPainter& painter, const ViewFrame& target) const;
    bool isTooLarge() const;
    bool isCurrent(const VectorPicture& candidate) const;
    bool isGoodForNow() const;
    bool isWorthFinishing() const;
    bool isOrdered() const;
    bool hasReserve() const;
    void request();
    void widen();
    void start(int margin);
    void drawNow();
    PictureOrder orderFor(int margin) const;
    int marginOfView() const;
    void show(std::shared_ptr<const VectorPicture> made);
    void abandonJob();

    const std::function<void()> tell;
    ChunkList chunks;
    int data = 0;
    bool moreToCome = false;
    VectorStyle style;
    bool viewSet = false;
    ViewFrame view;
    bool updating = false;
    std::shared_ptr<const VectorPicture> picture; // the latest
    std::shared_ptr<const VectorPicture> wide;    // one that shows more of the world, beneath it
    std::shared_ptr<PoolJob<const VectorPicture>> job;
    PictureOrder ordered; // of the job, without its chunks
};

} // namespace Corvane::Map
