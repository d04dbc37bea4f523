#pragma once

#include <QStringList>

class QThreadPool;

namespace Corvane::Viewer {

/// Finds the images in folders that are to be opened.
class FolderContents
{
public:
    /// Takes the suffixes that images have from the plugins. GUI thread only.
    FolderContents();

    /// Whether the source is no folder that is to be looked into, as far as its name tells: an
    /// address, or a name with a suffix that a plugin knows, which a folder can have as well. Looks at
    /// no disk.
    bool isSource(const QString& source) const;
    /// The images of a folder in the order of their names, numbers in them by their value; a folder
    /// without, and anything else, is a source itself. Any thread; slow where the disk is.
    QStringList sourcesIn(const QString& path) const;

private:
    QStringList suffixes; // of images, lower case
    QStringList known;    // of everything that is opened
};

/// The threads that look into folders. A disk that does not answer may hold them for ever.
QThreadPool& folderThreads();

} // namespace Corvane::Viewer
