#pragma once

#include <QWidget>

namespace Corvane::Map {
class MapView;
}

namespace Corvane::Viewer {

/// Lies over a map view, as large as it, and is drawn anew when the map moves: what is drawn at
/// places of the world stays there. A child of the view: goes with it, and to the whole screen.
/// GUI thread only.
class MapOverlay : public QWidget
{
    Q_OBJECT
public:
    explicit MapOverlay(Map::MapView* coveredView);

    Map::MapView* getView() const { return view; }
    /// Between the map's coordinates and pixels, those between whole ones included.
    QPointF toDevice(const QPointF& world) const;
    QPointF toWorld(const QPointF& device) const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    Map::MapView* view;
};

} // namespace Corvane::Viewer
