#pragma once

#include <viewer/session/Session.h>

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QTimer>

#include <memory>
#include <vector>

namespace Corvane::Viewer {

class MapWindow;
class SessionFolder;
class Workspace;

/// Keeps what is open in files, so that it outlives a program that is killed, and offers what such a
/// program has left. Everything that touches a disk happens on the session thread. GUI thread only.
class SessionKeeper : public QObject
{
    Q_OBJECT
public:
    /// root is the folder of all sessions with the same settings; the window is the parent.
    SessionKeeper(Workspace* window, const QString& root);
    ~SessionKeeper() override;

    /// Follows the window from here on, and looks for what others have left.
    void start();
    /// The program ends in order: there is nothing to restore.
    void end();
    /// Writes what has changed without more delay; written tells when that is done.
    void write();
    /// How long after a change it is written.
    void setDelay(int milliseconds);

signals:
    /// The changes up to now are in the files.
    void written(bool ok);

private:
    struct Follower
    {
        int number = 0;    ///< the window's, for the files
        bool dirty = true; ///< it may be other than it was written
        SessionMap state;  ///< as it was written
    };

    bool eventFilter(QObject* watched, QEvent* event) override;
    void follow(MapWindow* map);
    void changed(MapWindow* map);
    void lookAtAll();
    SessionMap stateOf(MapWindow* map) const;
    void onWritten(bool ok, bool complete);
    void offer(const std::vector<std::shared_ptr<SessionFolder>>& left,
               const QList<Session>& sessions);
    void restore(const Session& session);
    void restoreMap(const SessionMap& state);
    void removeLater(const std::vector<std::shared_ptr<SessionFolder>>& folders) const;

    Workspace* window; // the parent
    QString root;
    std::shared_ptr<SessionFolder> folder;
    std::vector<std::shared_ptr<SessionFolder>> restored; // until this session holds their maps
    QHash<MapWindow*, Follower> followers;
    QSet<MapWindow*> restoring; // from files, and not yet loaded
    QTimer delay;
    QTimer looking;
    int count = 0; // of windows that were followed
    bool writing = false;
    bool again = false; // something changed while it was written
    bool ended = false;
};

} // namespace Corvane::Viewer
