#pragma once

#include <QString>

#include <functional>

class QAction;
class QWidget;

namespace Corvane::Viewer {

/// A new command of the window: a name, for the program's XML files to give it a look and places by,
/// and an effect. The window owns it. GUI thread only.
QAction* addCommand(QWidget* window, const QString& name, const std::function<void()>& effect);

/// The same for a command that is on or off: its effect is told which, when the user changes it.
QAction* addSwitch(QWidget* window, const QString& name, const std::function<void(bool)>& effect);

} // namespace Corvane::Viewer
