#include <plugins/raster/OverviewPlace.h>

#include <plugins/raster/OverviewBuilder.h>
#include <plugins/raster/OverviewStore.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>
#include <QSysInfo>

#include <cerrno>
#include <csignal>

#include <unistd.h>

namespace Corvane::Map {

namespace {

const QLatin1String workPrefix(".overviews-");

// "…-HOST-PROCESS-XXXXXX": whose process is gone left it behind.
QString workPattern()
{
    return workPrefix + QSysInfo::machineHostName() + QLatin1Char('-') +
           QString::number(::getpid()) + QStringLiteral("-XXXXXX");
}

void removeLeftovers(const QDir& folder)
{
    const QString own = workPrefix + QSysInfo::machineHostName() + QLatin1Char('-');
    const QStringList names = folder.entryList({own + QLatin1Char('*')},
                                               QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot);
    for (const QString& name : names) {
        const auto process = name.mid(own.size()).section(QLatin1Char('-'), 0, 0).toInt();
        if (process > 0 && ::kill(process, 0) != 0 && errno == ESRCH) {
            QDir(folder.filePath(name)).removeRecursively();
        }
    }
}

// Compressed they take less, and nobody knows how much.
qint64 neededBytes(const OverviewOrder& order)
{
    return order.fullBytes / 3;
}

bool hasRoom(const QString& folder, const OverviewOrder& order)
{
    const QStorageInfo storage(folder);
    return !storage.isValid() || storage.bytesAvailable() > neededBytes(order);
}

/// A folder of our own in one that can be written to, on the same disk.
std::unique_ptr<QTemporaryDir> workIn(const QString& folder, const OverviewOrder& order)
{
    if (!hasRoom(folder, order)) {
        return nullptr;
    }
    removeLeftovers(QDir(folder));
    auto work = std::make_unique<QTemporaryDir>(folder + QLatin1Char('/') + workPattern());
    return work->isValid() ? std::move(work) : nullptr;
}

// On the disk, before it gets its name.
bool flush(const QString& name)
{
    QFile file(name);
    return file.open(QIODevice::ReadWrite) && ::fsync(file.handle()) == 0;
}

QString cannotWrite(const QString& name)
{
    return QCoreApplication::translate("OverviewBuilder", "%1 cannot be written").arg(name);
}

QString nothingCanBeWritten()
{
    return QCoreApplication::translate("OverviewBuilder", "nothing can be written to %1")
        .arg(OverviewStore::folder());
}

} // namespace

std::unique_ptr<OverviewPlace> OverviewPlace::find(const OverviewOrder& order, QString* error)
{
    auto place = std::make_unique<OverviewPlace>();
    if (order.mayLieBeside && order.owner.isFileItself()) {
        place->target = order.owner.file + QStringLiteral(".ovr");
        place->work = workIn(QFileInfo(order.owner.file).absolutePath(), order);
        if (place->work) {
            return place;
        }
    }
    place->target = OverviewStore::nameFor(order.owner);
    if (place->target.isEmpty()) {
        *error = QCoreApplication::translate("OverviewBuilder", "the file does not exist");
        return nullptr;
    }
    const QString folder = OverviewStore::folder();
    QDir().mkpath(folder);
    OverviewStore::tidy(order.mostCacheBytes, QString());
    place->work = workIn(folder, order);
    if (place->work) {
        return place;
    }
    constexpr qint64 megabyte = 1 << 20;
    *error = hasRoom(folder, order)
                 ? nothingCanBeWritten()
                 : QCoreApplication::translate(
                       "OverviewBuilder", "there is no room for overviews: %1 MB are needed in %2")
                       .arg(neededBytes(order) / megabyte + 1)
                       .arg(folder);
    return nullptr;
}

bool OverviewPlace::isInStore() const
{
    return target.startsWith(OverviewStore::folder());
}

bool OverviewPlace::put(const QString& made, const OverviewOrder& order, QString* error) const
{
    if (isInStore() && !OverviewStore::note(target, order.owner)) {
        *error = nothingCanBeWritten();
        return false;
    }
    // somebody else may have made some meanwhile, which are as good
    if (!flush(made) || (!QFile::rename(made, target) && !QFileInfo::exists(target))) {
        *error = cannotWrite(target);
        return false;
    }
    if (isInStore()) {
        OverviewStore::tidy(order.mostCacheBytes, target);
    }
    return true;
}

} // namespace Corvane::Map
