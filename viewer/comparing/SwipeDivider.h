#pragma once

#include <QRect>
#include <QWidget>

namespace Corvane::Viewer {

/// The line over a view that parts it in two, upright or level. It is dragged by the mouse, and moved
/// by the arrow keys: by ten pixels, with Ctrl by one, with Shift by fifty; Home and End take it to
/// the borders, Space turns it, and Escape ends it. It keeps its share of a view that is resized. GUI
/// thread only.
class SwipeDivider : public QWidget
{
    Q_OBJECT
public:
    /// In the middle of the view, which becomes the parent.
    SwipeDivider(QWidget* view, Qt::Orientation orientation);

    /// Vertical for an upright line, with something on its left.
    Qt::Orientation getOrientation() const { return orientation; }
    void setOrientation(Qt::Orientation newOrientation);
    /// Pixels of the view in front of the line: on its left, or above it.
    int getPosition() const;
    void setPosition(int pixels);
    /// The part of the view that they are.
    QRect getFront() const;

signals:
    /// It is in another place, or lies otherwise.
    void moved();
    void turned(Qt::Orientation orientation);
    /// The user has had enough.
    void closed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    bool isUpright() const { return orientation == Qt::Vertical; }
    int along(const QPoint& point) const;
    int extent() const;
    void place();

    Qt::Orientation orientation;
    double share = 0.5; // of the view that lies in front
    int grip = 0;       // pixels between the line and the pointer that drags it
};

} // namespace Corvane::Viewer
