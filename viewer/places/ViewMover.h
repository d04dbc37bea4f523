#pragma once

#include <QObject>
#include <QPropertyAnimation>

class QRectF;

namespace Corvane::Map {
class MapView;
}

namespace Corvane::Viewer {

/// Moves a map view to an extent as the view's own commands do: animated where the settings say so.
/// What the user does with mouse, wheel or keys ends a move that is under way. GUI thread only.
class ViewMover : public QObject
{
    Q_OBJECT
public:
    /// The extent has the view's orientation: in a north-up map its height is negative.
    static void move(Map::MapView& view, const QRectF& target);
    /// Shows so many units in a pixel, about the centre.
    static void setUnitsPerPixel(Map::MapView& view, double unitsPerPixel);
    ~ViewMover() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    explicit ViewMover(Map::MapView* movedView); // which becomes the parent
    void start(const QRectF& target);

    Map::MapView* view;
    QPropertyAnimation animation;
};

} // namespace Corvane::Viewer
