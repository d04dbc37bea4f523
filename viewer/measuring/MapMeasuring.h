#pragma once

#include <viewer/measuring/Measurement.h>

#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QVector>

class QAction;
class QEvent;
class QKeyEvent;
class QMouseEvent;

namespace Corvane::Map {
class MapView;
}

namespace Corvane::Viewer {

class CrosshairMark;
class MeasureOverlay;
class MeasurePanel;

/// Measuring in one map, while it lasts: clicks put points, a double click or Enter ends the line or
/// area and the next click begins another, Backspace takes the last point away, Escape leaves. The
/// arrow keys move a crosshair, by ten pixels, with Ctrl by one, with Shift by fifty, and Space puts
/// a point there. Drags, wheel and the other keys are the map's. GUI thread only.
class MapMeasuring : public QObject
{
    Q_OBJECT
public:
    /// The view becomes the parent. While cursorSwitch is on, another crosshair has the keys.
    MapMeasuring(Map::MapView* measuredView, QAction* cursorSwitch);

    /// That of this view; null for none.
    static MapMeasuring* of(Map::MapView* view);

    /// Takes everything away; deletes itself.
    void leave();
    const QVector<QPointF>& getPoints() const { return points; }
    /// What the panel shows, with the point under the pointer.
    const Measurement& getMeasurement() const { return measurement; }
    bool hasEnded() const { return ended; }

signals:
    void left();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool onMouse(const QMouseEvent& event);
    bool onPress(const QMouseEvent& event);
    bool onMove(const QMouseEvent& event);
    bool onRelease(const QMouseEvent& event);
    bool isOwn(const QKeyEvent& event) const;
    bool onKey(const QKeyEvent& event);
    bool moveCursor(const QKeyEvent& event);
    void putCursor(const QPoint& place);
    void addPoint(const QPoint& place);
    void removePoint();
    void end();
    void copy();
    void refresh();
    QPointF worldOf(const QPoint& place) const;

    Map::MapView* view;
    QPointer<QAction> otherCursor;
    QPointer<MeasureOverlay> overlay;
    QPointer<MeasurePanel> panel;
    QPointer<CrosshairMark> cursor; // null until a key moves it
    QPoint cursorPlace;
    QVector<QPointF> points; // in the map's coordinates
    QPointF pointer;         // likewise
    bool pointerIsKnown = false;
    bool ended = false;
    Measurement measurement;
    QPoint pressed; // of a click that is not one yet
    bool isPressed = false;
    bool isDragging = false;
    bool isReplaying = false;
};

} // namespace Corvane::Viewer
