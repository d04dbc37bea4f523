#pragma once

#include <QPointer>
#include <QStatusBar>

class QLabel;
class QPointF;
class QProgressBar;

namespace Corvane::Viewer {

class LoadProgress;
class MapWindow;

/// Shows the coordinates under the pointer, the scale and the loading progress of the active map
/// window. Its parts keep their widths. GUI thread only.
class ViewerStatusBar : public QStatusBar
{
    Q_OBJECT
public:
    explicit ViewerStatusBar(QWidget* parent = nullptr);

    /// The window to tell of; null for none.
    void setMapWindow(MapWindow* newWindow);

private:
    QLabel* addLabel(const QString& name, const QString& widestText);
    void addProgressBar();
    void showCoordinates(const QPointF& worldPoint);
    void showScale();
    void showProgress(int percent);

    QPointer<MapWindow> window;
    QLabel* coordinates;
    QLabel* scale;
    QProgressBar* bar = nullptr;
    LoadProgress* progress;
};

} // namespace Corvane::Viewer
