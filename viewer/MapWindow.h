#pragma once

#include <QMdiSubWindow>
#include <QPointer>

#include <memory>

namespace Corvane::Map {
class Layer;
class MapView;
} // namespace Corvane::Map

namespace Corvane::Viewer {

class LayerOpener;
class PointerTracker;

/// One map of the workspace: a sub window around a map view, which can fill the screen instead.
/// Deletes itself when it is closed, and with it what is still being opened. GUI thread only.
class MapWindow : public QMdiSubWindow
{
    Q_OBJECT
public:
    explicit MapWindow(QWidget* parent = nullptr);
    ~MapWindow() override;

    /// The view, also while it fills the screen; null once its full-screen window was closed.
    Map::MapView* getView() const;
    /// Tells where the pointer is; lives as long as the view.
    PointerTracker* getTracker() const;

    /// Opens a source as the top layer. The first one gives the window its title.
    void open(const QString& source);
    /// Whether a source is still being opened.
    bool isOpening() const;

    /// Puts the view on the whole screen, or back in here.
    void setMapFullScreen(bool full);
    bool isMapFullScreen() const;

signals:
    void layerOpened(MapWindow* window);
    /// Nothing came of a source; a window without any layer closes by itself after this.
    void openFailed(const QString& source, const QString& reason);

private:
    void onOpened(LayerOpener* opener, bool ok);
    void updateTitle();
    void onViewDestroyed();

    QPointer<Map::MapView> view;
    QPointer<PointerTracker> tracker;
    QString name;
    int openCount = 0; // sources that are being opened
    bool mapFullScreen = false;
};

} // namespace Corvane::Viewer
