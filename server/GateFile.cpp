#include <server/GateFile.h>

#include <server/FolderGate.h>

#include <sys/stat.h>

#include <cstdio>
#include <unistd.h>

namespace Corvane::Server {

std::unique_ptr<GateFile> GateFile::open(const FolderGate& gate, const QByteArray& fileName)
{
    const int descriptor = gate.open(fileName);
    return std::unique_ptr<GateFile>(descriptor < 0 ? nullptr : new GateFile(descriptor));
}

GateFile::~GateFile()
{
    ::close(handle);
}

std::size_t GateFile::read(void* buffer, std::size_t bytes)
{
    std::size_t done = 0;
    while (done < bytes) {
        const ssize_t got = ::pread(handle, static_cast<char*>(buffer) + done, bytes - done,
                                    static_cast<off_t>(place + done));
        if (got <= 0) {
            atEnd = true;
            break;
        }
        done += static_cast<std::size_t>(got);
    }
    place += done;
    return done;
}

bool GateFile::seek(quint64 offset, int from)
{
    quint64 base = 0;
    if (from == SEEK_CUR) {
        base = place;
    } else if (from == SEEK_END) {
        struct stat found = {};
        if (::fstat(handle, &found) != 0) {
            return false;
        }
        base = static_cast<quint64>(found.st_size);
    }
    place = base + offset; // of a negative offset, too
    atEnd = false;
    return true;
}

} // namespace Corvane::Server
