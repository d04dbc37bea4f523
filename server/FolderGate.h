#pragma once

#include <QByteArray>
#include <QString>

#include <sys/stat.h>

namespace Corvane::Server {

/// The only way to the published folder's files: opens what lies in it, and nothing else, whatever
/// a name says. Symbolic links count by where they lead. Any thread.
class FolderGate
{
public:
    /// Opens the folder itself; it stays the same one when its name is given to another.
    explicit FolderGate(const QString& folder);
    ~FolderGate();
    FolderGate(const FolderGate&) = delete;
    FolderGate& operator=(const FolderGate&) = delete;

    bool isOpen() const { return folderHandle >= 0; }
    /// Absolute, without links; no slash at its end.
    const QByteArray& root() const { return theRoot; }

    /// A descriptor of a regular file, for reading, which the caller closes; -1 where it is none or
    /// lies outside.
    int open(const QByteArray& fileName) const;
    /// Of a file or folder; false where there is none or it lies outside.
    bool status(const QByteArray& fileName, struct stat* result) const;

private:
    int descend(const QByteArray& fileName, int flags) const;

    QByteArray theRoot;
    int folderHandle = -1;
};

} // namespace Corvane::Server
