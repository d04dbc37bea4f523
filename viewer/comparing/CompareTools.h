#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>

class QAction;

namespace Corvane::Viewer {

class ComparedLayer;
class FlickerBar;
class SwipeDivider;
class Workspace;

/// Compares a layer of the active map with what lies beneath: swiping shows it on one side of a
/// divider alone, flickering shows it now and then. One of the two at a time; the end of it leaves the
/// map as it was. GUI thread only.
class CompareTools : public QObject
{
    Q_OBJECT
public:
    /// Makes the commands; the window becomes the parent.
    explicit CompareTools(Workspace* window);
    ~CompareTools() override;

private:
    void setSwiping(bool on);
    void setFlickering(bool on);
    void flick();
    void showLayer(bool shown);
    void followLayer();
    void stop();
    void showState();

    ComparedLayer* target;
    QPointer<SwipeDivider> divider; // in the view, while swiping
    QPointer<FlickerBar> bar;       // in the view, while flickering
    QTimer flickering;
    bool isShown = true; // while flickering
    QAction* swipe;
    QAction* flicker;
    QAction* flip;
};

} // namespace Corvane::Viewer
