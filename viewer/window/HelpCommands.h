#pragma once

#include <QObject>
#include <QString>

namespace Corvane::Viewer {

class Workspace;

/// The help menu: the user guide, the keys of all commands, and what program this is. GUI thread
/// only.
class HelpCommands : public QObject
{
    Q_OBJECT
public:
    /// The window owns this and the commands.
    explicit HelpCommands(Workspace* workspace);

    /// The installed user guide; empty where there is none.
    static QString guideFile();

private:
    void showGuide();
    void showKeys();
    void showAbout();
    static QString guideFolder();

    Workspace* window; // not owned
};

} // namespace Corvane::Viewer
