#pragma once

#include <QObject>
#include <QPointer>
#include <QRect>
#include <QTimer>

namespace Corvane::Map {
class Layer;
class MapView;
} // namespace Corvane::Map

namespace Corvane::Viewer {

class MapWindow;

/// The layer of the active map that is compared with what lies beneath: the selected one, else the
/// topmost that is shown. While comparing, a part of it or all of it is taken off the screen; its
/// settings, and with them the document, stay untouched. GUI thread only.
class ComparedLayer : public QObject
{
    Q_OBJECT
public:
    explicit ComparedLayer(QObject* parent);
    /// Puts everything back.
    ~ComparedLayer() override;

    /// The active map; comparing ends with another one.
    void setMapWindow(MapWindow* newWindow);
    /// False where the map has no layer to compare.
    bool start();
    void stop();
    bool isActive() const { return active; }
    /// Null while it is not active.
    Map::Layer* getLayer() const;
    Map::MapView* getView() const;

    /// Where of the view the layer is shown; an empty rectangle for nowhere.
    void setClip(const QRect& device);
    void showWhole();

public slots:
    /// Another layer may be the one to compare by now.
    void look();

signals:
    /// It is another layer now; it has the clip of the one before.
    void changed();
    /// There is nothing to compare any more.
    void ended();

private:
    Map::Layer* choose() const;
    void apply();

    QPointer<MapWindow> window;
    QPointer<Map::MapView> view; // while it is active
    QPointer<Map::Layer> layer;
    QTimer later; // a layer that goes is still there while that is announced
    QRect clip;
    bool isWhole = true;
    bool active = false;
};

} // namespace Corvane::Viewer
