#pragma once

#include <QObject>
#include <QSet>
#include <QString>

class QThread;

namespace Corvane::Viewer {

class FileWatcher;

/// Tells when files change. They are looked at on a thread of its own: a disk that does not answer
/// holds up nobody. GUI thread only.
class FileWatch : public QObject
{
    Q_OBJECT
public:
    explicit FileWatch(QObject* parent = nullptr);
    ~FileWatch() override;

    /// From now on these, and no others. What is no absolute path is passed over.
    void watch(const QSet<QString>& files);

signals:
    /// The file is other than it was, and has been left alone for a moment.
    void changed(const QString& file);

private:
    QThread* thread;      // owned, unless it never ends
    FileWatcher* watcher; // on the thread, with which it goes
};

} // namespace Corvane::Viewer
