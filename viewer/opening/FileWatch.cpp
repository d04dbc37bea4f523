#include <viewer/opening/FileWatch.h>

#include <viewer/opening/FileWatcher_p.h>

#include <QDir>
#include <QFileInfo>
#include <QThread>

#include <utility>

namespace Corvane::Viewer {
namespace {

// Files are written piece by piece, or go and come again.
constexpr int quietMilliseconds = 500;
constexpr int longestFarewell = 1000; // milliseconds

} // namespace

FileWatcher::FileWatcher() : system(this), quiet(this)
{
    quiet.setSingleShot(true);
    quiet.setInterval(quietMilliseconds);
    connect(&quiet, &QTimer::timeout, this, &FileWatcher::look);
    connect(&system, &QFileSystemWatcher::fileChanged, this, [this](const QString& file) {
        touched.insert(file);
        quiet.start();
    });
}

void FileWatcher::watch(const QSet<QString>& files)
{
    const QSet<QString> gone = watched - files;
    for (const QString& file : gone) {
        system.removePath(file);
    }
    touched -= gone;
    const QSet<QString> come = files - watched;
    for (const QString& file : come) {
        if (QFileInfo(file).isFile()) {
            system.addPath(file);
        }
    }
    watched = files;
}

/// A file that another one has replaced has to be watched anew; one that is not there is waited for.
void FileWatcher::look()
{
    const QSet<QString> looked = std::exchange(touched, {});
    for (const QString& file : looked) {
        if (!QFileInfo(file).isFile()) {
            touched.insert(file);
            quiet.start();
            continue;
        }
        if (!system.files().contains(file)) {
            system.addPath(file);
        }
        emit changed(file);
    }
}

FileWatch::FileWatch(QObject* parent)
    : QObject(parent),
      thread(new QThread),
      watcher(new FileWatcher)
{
    thread->setObjectName("files");
    watcher->moveToThread(thread);
    connect(watcher, &FileWatcher::changed, this, &FileWatch::changed);
    connect(thread, &QThread::finished, watcher, &QObject::deleteLater);
    thread->start();
}

// A thread that hangs in a disk is left to itself: its end would be waited for in vain.
FileWatch::~FileWatch()
{
    disconnect(watcher, nullptr, this, nullptr);
    thread->quit();
    if (thread->wait(longestFarewell)) {
        delete thread;
    }
}

void FileWatch::watch(const QSet<QString>& files)
{
    QSet<QString> paths;
    for (const QString& file : files) {
        if (QDir::isAbsolutePath(file) && !file.startsWith("/vsi")) {
            paths.insert(file);
        }
    }
    QMetaObject::invokeMethod(
        watcher, [target = watcher, paths] { target->watch(paths); }, Qt::QueuedConnection);
}

} // namespace Corvane::Viewer
