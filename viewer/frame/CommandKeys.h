#pragma once

#include <QHash>
#include <QKeySequence>
#include <QList>
#include <QObject>

class QAction;
class QWidget;

namespace Corvane::Viewer {

/// The keys of the window's commands: the program's own, and what the user made of them, which is
/// kept in the settings. GUI thread only.
class CommandKeys : public QObject
{
    Q_OBJECT
public:
    /// window holds the commands; owns this.
    explicit CommandKeys(QWidget* window);

    /// Once the commands have the keys that the program gives them: gives them the user's.
    void takeOver();

    /// The commands that may have a key, by their texts.
    QList<QAction*> getCommands() const;
    /// The program's own.
    QList<QKeySequence> usualKeysOf(const QAction* command) const;
    /// Keeps the keys for the next run, too. An empty list takes the command's keys away.
    void setKeys(QAction* command, const QList<QKeySequence>& keys);

    /// A command's text as people read it: "Zoom to All".
    static QString nameOf(const QAction* command);

private:
    QWidget* window; // not owned
    QHash<const QAction*, QList<QKeySequence>> usual;
};

} // namespace Corvane::Viewer
