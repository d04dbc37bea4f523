#pragma once

#include <QString>
#include <QtGlobal>

namespace Corvane::Map {

/// The image that overviews are of.
struct OverviewOwner
{
    QString file;          ///< that holds it; empty for an image that overviews cannot be of
    QString part;          ///< what GDAL calls the image within the file; empty for all of it
    bool isWarped = false; ///< they are of the north-up view of it

    bool isNull() const { return file.isEmpty(); }
    /// Whether whoever opens the file would take overviews beside it for those of its own pixels.
    bool isFileItself() const { return part.isEmpty() && !isWarped; }
};

/// Overviews of images that could not get them beside their files, in the user's cache folder. They
/// belong to a path with a size and a time of change: those of a file that has changed are not found
/// any more. Any thread.
class OverviewStore
{
public:
    /// The folder, which need not exist yet.
    static QString folder();
    /// The file that would hold the overviews of an image as it is now; empty where there is no such
    /// file.
    static QString nameFor(const OverviewOwner& owner);
    /// The same where it is there, else empty. It counts as used now.
    static QString find(const OverviewOwner& owner);
    /// Notes which image the overviews of this name belong to, before they are put there.
    static bool note(const QString& overviews, const OverviewOwner& owner);
    /// Removes overviews of files that have changed since, and then those that were used the longest
    /// ago until the rest takes no more than so many bytes. Those of this name stay in any case.
    static void tidy(qint64 mostBytes, const QString& keep);
};

} // namespace Corvane::Map
