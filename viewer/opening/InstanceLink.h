#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

namespace Corvane::Viewer {

/// What a later start of the program wants to have opened goes to the window that is open already:
/// of the same user, display and settings. GUI thread only.
class InstanceLink : public QObject
{
    Q_OBJECT
public:
    /// Takes what later starts hand over; for the window's own program. The window is the parent.
    explicit InstanceLink(QWidget* window);

    /// Hands the sources to the program that came first. False where this is the first one, or that
    /// one does not answer in time.
    static bool handOver(const QStringList& sources);

    /// The text that travels, and what it says: an object in JSON, or as the desktop sends it, a
    /// single source.
    static QString messageOf(const QStringList& sources);
    static QStringList sourcesIn(const QString& message);

signals:
    /// Another start wants this opened; empty where it only wants the window in front.
    void received(const QStringList& sources);
};

} // namespace Corvane::Viewer
