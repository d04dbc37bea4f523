#pragma once

#include <QEvent>
#include <QObject>
#include <QPoint>
#include <QPointer>

class QAction;
class QKeyEvent;
class QWidget;

namespace Corvane::Viewer {

class CrosshairMark;
class MapWindow;

/// A pointer for the keyboard, so that every tool of the map can be used without a mouse: the arrow
/// keys move a crosshair over the active map, by ten pixels, with Ctrl by one, with Shift by fifty;
/// at the edge the map moves on. Return clicks there, with Ctrl it double-clicks; Space holds the
/// button down, for a drag, until Space lets it go. Escape ends it. The map gets the events of a
/// mouse. GUI thread only.
class KeyboardCursor : public QObject
{
    Q_OBJECT
public:
    /// Makes the switch "actionKeyboardCursor"; window owns both.
    explicit KeyboardCursor(QWidget* window);
    ~KeyboardCursor() override;

    /// The map to work on; null for none. The cursor goes with another one.
    void setMapWindow(MapWindow* newWindow);
    bool isOn() const;
    /// In pixels of the view.
    QPoint getPosition() const { return position; }

signals:
    /// The cursor is in this place of the active map now.
    void moved(const QPoint& position);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void setOn(bool on);
    bool takeKey(const QKeyEvent& event);
    bool moveBy(const QPoint& step);
    void moveTo(const QPoint& place);
    void click(bool twice);
    void hold(bool down);
    void send(QEvent::Type type, Qt::MouseButton button);

    QAction* toggle;
    QPointer<MapWindow> window;
    QPointer<QWidget> view;       // the filtered one, while it is on
    QPointer<CrosshairMark> mark; // in the view
    QPoint position;
    bool isHeld = false;
};

} // namespace Corvane::Viewer
