#include <viewer/session/SessionFolder.h>

#include <viewer/maps/MapDocumentWriter.h>

#include <corvane/core/Application.h>

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QDomDocument>
#include <QFile>
#include <QStandardPaths>
#include <QThreadPool>

namespace Corvane::Viewer {
namespace {

const char* const sessionFile = "session.json";
const char* const lockFile = "lock";
constexpr qint64 largestSession = 32 * 1024 * 1024; // bytes

} // namespace

SessionFolder::SessionFolder(const QString& newPath) : path(newPath) {}

bool SessionFolder::take()
{
    if (lock) {
        return true;
    }
    const auto owner = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
    if (!QDir().mkpath(path) || !QFile::setPermissions(path, owner)) {
        return false;
    }
    auto taken = std::make_unique<QLockFile>(path + '/' + lockFile);
    taken->setStaleLockTime(0); // stale only when its process is gone
    if (!taken->tryLock(0)) {
        return false;
    }
    lock = std::move(taken);
    return true;
}

bool SessionFolder::write(Session session, const std::vector<MapText>& maps)
{
    QString reason = "the folder cannot be made, or is another program's";
    bool ok = take();
    for (std::size_t i = 0; ok && i < maps.size(); ++i) {
        session.maps[int(i)].mapFile = writeMap(maps[i]);
    }
    const QByteArray text = session.toJson();
    if (ok && text != writtenSession) {
        ok = writeMapDocument(path + '/' + sessionFile, text, &reason);
    }
    if (!ok) {
        Application::logMessage(QString("cannot keep the session in %1: %2").arg(path, reason),
                                Warning, QDateTime::currentDateTime());
        return false;
    }
    if (text != writtenSession) {
        writtenSession = text;
        removeOthers(session);
    }
    return true;
}

/// Under a new name, so that the file of the last session stays with it.
QString SessionFolder::writeMap(const MapText& map)
{
    Written& last = written[map.window];
    if (!map.map) {
        return last.file;
    }
    const QByteArray text = sessionMapText(*map.map);
    if (text != last.text) {
        const QString file = QString("map-%1.cmap").arg(++count);
        QString reason;
        if (writeMapDocument(path + '/' + file, text, &reason)) {
            last = {file, text};
        }
    }
    return last.file;
}

void SessionFolder::removeOthers(const Session& session) const
{
    QStringList kept{sessionFile, lockFile};
    for (const SessionMap& map : session.maps) {
        kept << map.mapFile;
    }
    const QStringList files = QDir(path).entryList(QDir::Files);
    for (const QString& file : files) {
        if (!kept.contains(file)) {
            QFile::remove(path + '/' + file);
        }
    }
}

Session SessionFolder::read() const
{
    QFile file(path + '/' + sessionFile);
    if (!file.open(QIODevice::ReadOnly)) {
        return Session();
    }
    Session session = Session::fromJson(file.read(largestSession));
    for (SessionMap& map : session.maps) {
        if (!map.mapFile.isEmpty()) {
            map.mapFile = path + '/' + QFileInfo(map.mapFile).fileName();
        }
    }
    return session;
}

void SessionFolder::remove()
{
    if (lock) {
        QDir folder(path);
        for (const QString& file : folder.entryList(QDir::Files)) {
            if (file != lockFile) {
                folder.remove(file);
            }
        }
        lock.reset(); // which removes its file
        QDir().rmdir(path);
    }
}

std::vector<std::shared_ptr<SessionFolder>> SessionFolder::takeLeft(const QString& root)
{
    std::vector<std::shared_ptr<SessionFolder>> left;
    const QDir folder(root);
    for (const QString& name : folder.entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Time)) {
        const auto session = std::make_shared<SessionFolder>(folder.filePath(name));
        if (!session->take()) {
            continue;
        }
        if (session->read().maps.isEmpty()) {
            session->remove();
        } else {
            left.push_back(session);
        }
    }
    return left;
}

QString SessionFolder::rootFor(const QString& settingsFile)
{
    const QByteArray hash =
        QCryptographicHash::hash(settingsFile.toUtf8(), QCryptographicHash::Sha256);
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) + "/sessions/" +
           QString::fromLatin1(hash.toHex().left(16));
}

QThreadPool& sessionThread()
{
    static QThreadPool thread;
    thread.setMaxThreadCount(1);
    return thread;
}

} // namespace Corvane::Viewer
