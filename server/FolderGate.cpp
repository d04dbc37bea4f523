#include <server/FolderGate.h>

#include <QFile>
#include <QFileInfo>
#include <QList>

#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace Corvane::Server {

namespace {

struct Freer
{
    void operator()(char* text) const { std::free(text); }
};

// Without links and dots; empty where there is no such file.
QByteArray canonical(const QByteArray& fileName)
{
    const std::unique_ptr<char, Freer> path(::realpath(fileName.constData(), nullptr));
    return QByteArray(path.get());
}

} // namespace

FolderGate::FolderGate(const QString& folder)
    : theRoot(canonical(QFile::encodeName(QFileInfo(folder).absoluteFilePath())))
{
    if (!theRoot.isEmpty()) {
        folderHandle = ::open(theRoot.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    }
    if (theRoot == "/") {
        theRoot.clear(); // so that a slash follows the root in every name
    }
}

FolderGate::~FolderGate()
{
    if (folderHandle >= 0) {
        ::close(folderHandle);
    }
}

// The last part of the name is opened with the flags, each one before it as a folder. The name is
// resolved first; the parts are then opened one by one and may be no links, so that a link that is
// put there in between leads nowhere.
int FolderGate::descend(const QByteArray& fileName, int flags) const
{
    const QByteArray path = canonical(fileName);
    if (folderHandle < 0 || (path != theRoot && !path.startsWith(theRoot + '/'))) {
        return -1;
    }
    int current = ::openat(folderHandle, ".", O_PATH | O_DIRECTORY | O_CLOEXEC);
    QList<QByteArray> parts = path.mid(theRoot.size()).split('/');
    parts.removeAll(QByteArray());
    for (int i = 0; i < parts.size() && current >= 0; ++i) {
        const bool last = i + 1 == parts.size();
        const int how = last ? flags : O_PATH | O_DIRECTORY;
        const int next = ::openat(current, parts[i].constData(), how | O_NOFOLLOW | O_CLOEXEC);
        ::close(current);
        current = next;
    }
    return current;
}

int FolderGate::open(const QByteArray& fileName) const
{
    // a pipe would keep the opener waiting
    const int file = descend(fileName, O_RDONLY | O_NONBLOCK);
    struct stat found = {};
    if (file >= 0 && (::fstat(file, &found) != 0 || !S_ISREG(found.st_mode))) {
        ::close(file);
        return -1;
    }
    return file;
}

bool FolderGate::status(const QByteArray& fileName, struct stat* result) const
{
    const int file = descend(fileName, O_PATH);
    const bool found = file >= 0 && ::fstat(file, result) == 0;
    if (file >= 0) {
        ::close(file);
    }
    return found;
}

} // namespace Corvane::Server
