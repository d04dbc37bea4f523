#pragma once

#include <QFileSystemWatcher>
#include <QHash>
#include <QObject>
#include <QSet>
#include <QTimer>

namespace Corvane::Viewer {

/// The part of FileWatch that is on its thread.
class FileWatcher : public QObject
{
    Q_OBJECT
public:
    FileWatcher();

    void watch(const QSet<QString>& files);

signals:
    void changed(const QString& file);

private:
    void look();

    QFileSystemWatcher system;
    QTimer quiet; // runs since the last change
    QSet<QString> watched;
    QSet<QString> touched; // since then, or not there at present
};

} // namespace Corvane::Viewer
