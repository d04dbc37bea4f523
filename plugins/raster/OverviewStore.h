#pragma once

#include <QString>
#include <QtGlobal>

namespace Corvane::Map {

/// Overviews of files that could not get them beside themselves, in the user's cache folder. They
/// belong to a path with a size and a time of change: those of a file that has changed are not found
/// any more. Any thread.
class OverviewStore
{
public:
    /// The folder, which need not exist yet.
    static QString folder();
    /// The file that would hold the overviews of a file as it is now; empty where there is no such file.
    static QString nameFor(const QString& file);
    /// The same where it is there, else empty. It counts as used now.
    static QString find(const QString& file);
    /// Notes which file the overviews of this name belong to, before they are put there.
    static bool note(const QString& overviews, const QString& file);
    /// Removes overviews of files that have changed since, and then those that were used the longest
    /// ago until the rest takes no more than so many bytes. Those of this name stay in any case.
    static void tidy(qint64 mostBytes, const QString& keep);
};

} // namespace Corvane::Map
