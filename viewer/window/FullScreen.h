#pragma once

#include <QObject>

class QAction;

namespace Corvane::Viewer {

class MapWindow;
class Workspace;

/// The whole program on the screen, without a frame, and back to what it was. While a map fills the
/// screen the commands' keys work there as well, and what opens over the program's window, or makes
/// another map the active one, gives that map back: it would stand in front. GUI thread only.
class FullScreen : public QObject
{
    Q_OBJECT
public:
    /// The window owns this and the command.
    explicit FullScreen(Workspace* workspace);

protected:
    /// Escape leaves, where nobody else has a use for it; the command follows the window's state.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void toggle();
    void follow(MapWindow* map);
    void giveBackMapsBehind(const MapWindow* active);
    void giveBackMapsBehindDialog();
    MapWindow* mapOnScreen() const;

    Workspace* window; // not owned
    QAction* command;
};

} // namespace Corvane::Viewer
