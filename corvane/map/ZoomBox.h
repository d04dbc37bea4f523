#pragma once

#include <corvane/core/Export.h>

#include <QBrush>
#include <QPen>

class QPainter;
class QWidget;

namespace Corvane::Map {

/// The rubber band of a box zoom, in device pixels. GUI thread only.
class CORVANE_EXPORT ZoomBox
{
public:
    ZoomBox();
    ZoomBox(const ZoomBox& other) = default;
    ZoomBox& operator=(const ZoomBox& other) = default;
    virtual ~ZoomBox();
    /// Draws the box unless a coordinate is -1; widget is not used.
    virtual void paint(QPainter& painter, QWidget* widget);

    /// Two opposite corners; a -1 hides the box.
    void setRect(int x0, int y0, int x1, int y1);

private:
    [[maybe_unused]] void* owner = nullptr;
    int x0 = -1;
    int y0 = -1;
    int x1 = -1;
    int y1 = -1;
    QBrush brush;
    QPen pen;
};

} // namespace Corvane::Map
