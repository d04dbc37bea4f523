#pragma once

#include <QObject>
#include <QPoint>

class QPointF;

namespace Corvane::Map {
class MapView;
}

namespace Corvane::Viewer {

/// Tells where in the world the pointer is over a map view, in every pointer mode. GUI thread only.
class PointerTracker : public QObject
{
    Q_OBJECT
public:
    /// Switches mouse tracking on for the view, which becomes the parent.
    explicit PointerTracker(Map::MapView* view);

signals:
    /// The pointer has moved over the map, or the map under the pointer.
    void moved(const QPointF& worldPoint);
    void left();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void announce();

    Map::MapView* view; // not owned
    QPoint position;
    bool inside = false;
};

} // namespace Corvane::Viewer
