#pragma once

#include <QFrame>
#include <QPointer>

class QBoxLayout;
class QLabel;
class QMenu;
class QPushButton;

namespace Corvane::Viewer {

class MapWindow;

/// A bar over the top of a map that offers something without stopping the user. It is no part of the
/// map's picture, and is not seen while the map fills the screen. Goes with its window, or when it has
/// been answered. Where a row is too narrow for the text and its buttons, they stand one above the
/// other. GUI thread only.
class MapNotice : public QFrame
{
    Q_OBJECT
public:
    /// Shown at once, over the window's map.
    MapNotice(MapWindow* window, const QString& text);

    /// The buttons stand in the order of these calls; name is the object name.
    QPushButton* addButton(const QString& name, const QString& text);
    /// One that opens a menu, which it owns.
    QMenu* addMenu(const QString& name, const QString& text);
    /// The button that puts it away, with Escape as well.
    void addCloseButton(const QString& text);

signals:
    /// The user has put it away.
    void dismissed();

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void place();
    void arrange(int width);
    int buttonsWidth() const;
    void dismiss();

    QPointer<MapWindow> window;
    QLabel* label;
    QBoxLayout* layout;  // of the text and the buttons
    QBoxLayout* buttons; // of the buttons among themselves
};

} // namespace Corvane::Viewer
