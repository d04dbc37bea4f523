#pragma once

#include <viewer/maps/MapOverlay.h>

#include <QPointF>
#include <QVariantAnimation>

namespace Corvane::Viewer {

/// Points at a place of a map for a moment, then deletes itself. The mouse passes through it. GUI
/// thread only.
class PlaceMark : public MapOverlay
{
    Q_OBJECT
public:
    /// Takes the place of a mark that is still there.
    static PlaceMark* showAt(Map::MapView* view, const QPointF& world);
    ~PlaceMark() override;

    const QPointF& getPlace() const { return place; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    PlaceMark(Map::MapView* markedView, const QPointF& world);

    QPointF place;
    QVariantAnimation fading; // from 1 to 0
};

} // namespace Corvane::Viewer
