#pragma once

#include <viewer/session/Session.h>

#include <QHash>
#include <QLockFile>
#include <QString>

#include <memory>
#include <vector>

class QDomDocument;
class QThreadPool;

namespace Corvane::Viewer {

/// The folder in which one program keeps what it has open, held by a lock while the program, or
/// one that restores it, lives. All of it on the session thread: disks may be slow.
class SessionFolder
{
public:
    /// What is to be written of one map; a map that is null stays as it was written last.
    struct MapText
    {
        int window = 0; ///< a number for the map's window, its own for the life of the program
        std::shared_ptr<QDomDocument> map;
    };

    /// path is the folder of this session alone. It is made when there is something to write.
    explicit SessionFolder(const QString& path);

    QString getPath() const { return path; }
    bool isTaken() const { return lock != nullptr; }
    /// Whether the folder is this program's; makes it where it is not there.
    bool take();
    /// Writes the session, in one step: what is there before stays until it is complete. Maps stand in
    /// the order of the session's. False where that could not be done, with a line in the log.
    bool write(Session session, const std::vector<MapText>& maps);
    /// What the folder holds; no maps where it is none that can be restored.
    Session read() const;
    /// Deletes the folder, and gives it up.
    void remove();

    /// Folders below root that no living program holds, taken by this one. Empty ones are deleted.
    static std::vector<std::shared_ptr<SessionFolder>> takeLeft(const QString& root);
    /// Where the sessions of all programs with these settings lie.
    static QString rootFor(const QString& settingsFile);

private:
    QString writeMap(const MapText& map);
    void removeOthers(const Session& session) const;

    const QString path;
    std::unique_ptr<QLockFile> lock; // null until the folder is taken
    struct Written
    {
        QString file;
        QByteArray text;
    };
    QHash<int, Written> written; // by window
    QByteArray writtenSession;
    int count = 0; // of map files
};

/// The thread that reads and writes sessions, one thing after the other.
QThreadPool& sessionThread();

} // namespace Corvane::Viewer
