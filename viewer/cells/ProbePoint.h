#pragma once

#include <QList>
#include <QObject>
#include <QPoint>
#include <QPointF>
#include <QPointer>
#include <QSet>
#include <QTimer>

class QAction;
class QWidget;

namespace Corvane::Map {
class MapView;
}

namespace Corvane::Viewer {

class CrosshairMark;
class MapWindow;

/// The place in the active map that the panels of cells are about: the one under the pointer, until
/// a click, or a key that moves it by one cell, fixes it. Looks at the map only while a panel wants
/// it to. GUI thread only.
class ProbePoint : public QObject
{
    Q_OBJECT
public:
    explicit ProbePoint(QObject* parent);
    ~ProbePoint() override;

    /// The map to look at; null for none. Another one has no place yet.
    void setMapWindow(MapWindow* newWindow);
    /// Whether this panel shows anything of the place; it gets the keys that move it.
    void setWanted(QWidget* panel, bool wanted);

    /// Null without a map.
    Map::MapView* getView() const;
    bool hasPlace() const { return placed; }
    /// In map units.
    QPointF getPlace() const { return place; }
    bool isFixed() const { return fixed; }
    /// Where the place is, or with the next move of the pointer under it.
    void setFixed(bool fix);
    void fixAt(const QPointF& world);
    /// Moves the place by whole cells of the topmost raster and fixes it; without a place it begins
    /// in the middle of the view.
    void moveByCells(int columns, int rows);
    /// The four keys that do so.
    QList<QAction*> getMoves() const { return moves; }

signals:
    /// The place, or what lies there, is another one now.
    void changed();
    void fixedChanged(bool fixed);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void createMoves();
    void follow();
    void stopFollowing();
    void onPointerMoved(const QPointF& world);
    void onClick(const QPoint& position);
    void onExtentChanged();
    void placeMarker();

    QPointer<MapWindow> window;
    QPointer<Map::MapView> followed; // the view whose events come here
    QSet<QWidget*> wanting;          // compared only
    QList<QAction*> moves;
    QPointer<CrosshairMark> marker; // in the followed view
    QTimer laterChange;             // a layer that goes is still there while that is announced
    QPointF place;
    QPoint pressed;
    bool mayClick = false;
    bool placed = false;
    bool central = false; // nobody has pointed anywhere: the middle of the view
    bool fixed = false;
};

} // namespace Corvane::Viewer
