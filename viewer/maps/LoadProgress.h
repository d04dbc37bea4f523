#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>

namespace Corvane::Map {
class MapView;
}

namespace Corvane::Viewer {

/// Follows how much of a map view is loaded. Asks the layers only from a change of the view or a
/// repaint until everything is there. GUI thread only.
class LoadProgress : public QObject
{
    Q_OBJECT
public:
    explicit LoadProgress(QObject* parent);

    /// The view to follow; null for none.
    void setView(Map::MapView* newView);

    /// The mean over the layers that are visible and valid, 0 to 100; 100 without such a layer.
    static int percentOf(Map::MapView& view);

signals:
    void changed(int percent);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void follow();
    void ask();

    QPointer<Map::MapView> view;
    QTimer timer;
};

} // namespace Corvane::Viewer
