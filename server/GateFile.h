#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <cstddef>
#include <memory>

namespace Corvane::Server {

class FolderGate;

/// A file that came through a gate, open for reading. One thread at a time.
class GateFile
{
public:
    /// Null where the gate does not open it.
    static std::unique_ptr<GateFile> open(const FolderGate& gate, const QByteArray& fileName);
    ~GateFile();
    GateFile(const GateFile&) = delete;
    GateFile& operator=(const GateFile&) = delete;

    /// How many bytes it were; fewer at the end of the file, or where it cannot be read.
    std::size_t read(void* buffer, std::size_t bytes);
    /// from is one of SEEK_SET, SEEK_CUR and SEEK_END. False where the size is not known.
    bool seek(quint64 offset, int from);
    quint64 position() const { return place; }
    /// Whether the last read came to the end.
    bool isAtEnd() const { return atEnd; }

private:
    explicit GateFile(int descriptor) : handle(descriptor) {}

    const int handle;
    quint64 place = 0; // bytes from the start
    bool atEnd = false;
};

} // namespace Corvane::Server
