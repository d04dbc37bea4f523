#pragma once

#include <viewer/places/CoordinateForm.h>

#include <QPointF>
#include <QPointer>
#include <QStatusBar>

class QAction;
class QActionGroup;
class QLabel;
class QProgressBar;
class QToolButton;

namespace Corvane::Map {
class Layer;
}

namespace Corvane::Viewer {

class LateLayers;
class LoadProgress;
class MapWindow;
class ScaleBox;

/// Shows the coordinates under the pointer in the form that the user has chosen, the scale and the
/// loading progress of the active map window. Its parts keep their widths. GUI thread only.
class ViewerStatusBar : public QStatusBar
{
    Q_OBJECT
public:
    explicit ViewerStatusBar(QWidget* parent = nullptr);

    /// The window to tell of; null for none.
    void setMapWindow(MapWindow* newWindow);
    ScaleBox* getScaleBox() const { return scale; }

private:
    QLabel* addLabel(const QString& name, const QString& widestText);
    void addFormButton();
    void addProgressBar();
    void connectMap();
    void followLayer(Map::Layer* layer);
    void showReference();
    void chooseForm(CoordinateForm form);
    void showForms();
    CoordinateForm shownForm() const;
    void showCoordinates(const QPointF& worldPoint);
    void clearCoordinates();
    void showScale();
    void showProgress(int percent);

    QPointer<MapWindow> window;
    CoordinateForm form;
    QToolButton* formButton;
    QActionGroup* forms;
    QLabel* coordinates;
    ScaleBox* scale;
    QLabel* zoom;
    QProgressBar* bar = nullptr;
    LoadProgress* progress;
    LateLayers* late;
    QPointF pointer;
    bool pointerIsInside = false;
};

} // namespace Corvane::Viewer
