#pragma once

#include <plugins/vector/ShapePainter.h>
#include <plugins/vector/VectorStyle.h>
#include <plugins/vector/ViewFrame.h>

#include <QImage>

#include <atomic>
#include <memory>

class QPainter;

namespace Corvane::Map {

/// What a picture is to show.
struct PictureOrder
{
    ViewFrame frame; // its device rectangle is that of the picture, from (0, 0)
    ViewFrame view;  // that it is drawn for
    VectorStyle style;
    ChunkList chunks;
    int data = 0; // the number of the state of the chunks
};

/// A drawn part of the world. Never changed once it is made.
class VectorPicture
{
public:
    /// Draws it; null where it was abandoned. Any thread.
    static std::shared_ptr<const VectorPicture> make(const PictureOrder& order,
                                                     const std::atomic<bool>& abandoned);

    const ViewFrame& getFrame() const { return frame; }
    const VectorStyle& getStyle() const { return style; }
    int getData() const { return data; }
    /// Where it falls on the device.
    QRectF placeOn(const ViewFrame& view) const;
    /// Whether it has the view's scale and holds all of it.
    bool covers(const ViewFrame& view) const;
    /// Whether it was drawn for this very view.
    bool isFor(const ViewFrame& other) const { return madeFor == other; }
    /// Whether moreover its pixels are the view's.
    bool fits(const ViewFrame& view) const;
    /// Draws what of it lies on the device, moved or scaled as the view wants.
    void paint(QPainter& painter, const ViewFrame& view) const;

private:
    ViewFrame frame;
    ViewFrame madeFor;
    VectorStyle style;
    int data = 0;
    QImage image; // null without memory for it
};

} // namespace Corvane::Map
