#include <plugins/raster/OverviewStore.h>

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

#include <algorithm>
#include <vector>

namespace Corvane::Map {

namespace {

const QLatin1String overviewSuffix(".ovr");
const QLatin1String noteSuffix(".txt");

// A line each.
QByteArray identityOf(const QFileInfo& file)
{
    return file.canonicalFilePath().toUtf8() + '\n' + QByteArray::number(file.size()) + '\n' +
           QByteArray::number(file.lastModified().toMSecsSinceEpoch()) + '\n';
}

// What the overviews of an image are found by.
QByteArray identityOf(const OverviewOwner& owner)
{
    QByteArray identity = identityOf(QFileInfo(owner.file));
    if (!owner.part.isEmpty()) {
        identity += "part " + owner.part.toUtf8() + '\n';
    }
    if (owner.isWarped) {
        identity += "north-up\n";
    }
    return identity;
}

QString noteOf(const QString& overviews)
{
    return overviews.chopped(overviewSuffix.size()) + noteSuffix;
}

void removeEntry(const QString& overviews)
{
    QFile::remove(overviews);
    QFile::remove(noteOf(overviews));
}

struct Entry
{
    QString overviews;
    qint64 bytes = 0;
    QDateTime lastUse;
};

// A file that is not there may be on a disk that is not connected: it has not changed.
bool hasChanged(const QByteArray& note)
{
    const QFileInfo file(QString::fromUtf8(note.left(note.indexOf('\n'))));
    return file.exists() && !note.startsWith(identityOf(file));
}

} // namespace

QString OverviewStore::folder()
{
    const QString cache = QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation);
    return cache + QStringLiteral("/corvane/overviews");
}

QString OverviewStore::nameFor(const OverviewOwner& owner)
{
    if (!QFileInfo(owner.file).isFile()) {
        return QString();
    }
    const QByteArray key =
        QCryptographicHash::hash(identityOf(owner), QCryptographicHash::Sha1).toHex();
    return folder() + QLatin1Char('/') + QString::fromLatin1(key) + overviewSuffix;
}

QString OverviewStore::find(const OverviewOwner& owner)
{
    const QString name = nameFor(owner);
    if (name.isEmpty() || !QFileInfo::exists(name)) {
        return QString();
    }
    QFile used(noteOf(name));
    if (used.open(QIODevice::ReadWrite | QIODevice::ExistingOnly)) {
        used.setFileTime(QDateTime::currentDateTime(), QFileDevice::FileModificationTime);
    }
    return name;
}

bool OverviewStore::note(const QString& overviews, const OverviewOwner& owner)
{
    QSaveFile note(noteOf(overviews));
    return note.open(QIODevice::WriteOnly) && note.write(identityOf(owner)) > 0 && note.commit();
}

void OverviewStore::tidy(qint64 mostBytes, const QString& keep)
{
    std::vector<Entry> entries;
    qint64 bytes = 0;
    const QFileInfoList files =
        QDir(folder()).entryInfoList({QLatin1Char('*') + overviewSuffix}, QDir::Files);
    for (const QFileInfo& file : files) {
        const QString name = file.absoluteFilePath();
        QFile note(noteOf(name));
        const QByteArray identity = note.open(QIODevice::ReadOnly) ? note.readAll() : QByteArray();
        if (name != keep && (identity.isEmpty() || hasChanged(identity))) {
            removeEntry(name);
            continue;
        }
        bytes += file.size();
        entries.push_back({name, file.size(), QFileInfo(note).lastModified()});
    }
    std::sort(entries.begin(), entries.end(),
              [](const Entry& a, const Entry& b) { return a.lastUse < b.lastUse; });
    for (const Entry& entry : entries) {
        if (bytes > mostBytes && entry.overviews != keep) {
            removeEntry(entry.overviews);
            bytes -= entry.bytes;
        }
    }
}

} // namespace Corvane::Map
