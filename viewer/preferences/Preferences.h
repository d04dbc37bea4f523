#pragma once

#include <QObject>

class QWidget;

namespace Corvane::Viewer {

class CommandKeys;

/// The command that shows the preferences of the program and its plugins. GUI thread only.
class Preferences : public QObject
{
    Q_OBJECT
public:
    /// The window owns this, and the command.
    explicit Preferences(QWidget* window);

    /// Once all commands have their keys.
    void takeKeys();

private:
    void show();

    QWidget* window; // not owned
    CommandKeys* keys;
};

} // namespace Corvane::Viewer
