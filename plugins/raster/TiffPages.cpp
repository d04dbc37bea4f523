#include <plugins/raster/TiffPages.h>

#include <QByteArray>
#include <QCoreApplication>
#include <QFile>

#include <algorithm>
#include <cstring>
#include <limits>
#include <type_traits>

#include <unistd.h>

namespace Corvane::Map {

namespace {

static_assert(Q_BYTE_ORDER == Q_LITTLE_ENDIAN, "GDAL writes the byte order of the machine");

constexpr quint16 classicMark = 42;
constexpr quint16 bigMark = 43;
constexpr qint64 alignment = 16; // bytes
constexpr qint64 pieceBytes = 1 << 20;
constexpr int mostPages = 64; // a file with more leads in a circle
constexpr quint64 mostEntries = 4096;

constexpr quint16 stripOffsets = 273;
constexpr quint16 tileOffsets = 324;
constexpr quint16 longType = 4;
constexpr quint16 long8Type = 16;

/// Bytes of a value of a field type; 0 for one that there is not.
quint64 bytesOf(quint16 type)
{
    constexpr quint64 sizes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4, 0, 0, 8, 8, 8};
    return type < std::extent_v<decltype(sizes)> ? sizes[type] : 0;
}

/// A file that is read and written at places; one failure is enough.
class Places
{
public:
    explicit Places(const QString& name) : file(name) {}

    bool open(QIODevice::OpenMode mode)
    {
        ok = file.open(mode);
        return ok;
    }
    template <typename Value>
    Value read(quint64 place)
    {
        Value value{};
        ok = ok && file.seek(static_cast<qint64>(place)) &&
             file.read(reinterpret_cast<char*>(&value), sizeof(Value)) == sizeof(Value);
        return ok ? value : Value{};
    }
    template <typename Value>
    void write(quint64 place, Value value)
    {
        ok = ok && file.seek(static_cast<qint64>(place)) &&
             file.write(reinterpret_cast<const char*>(&value), sizeof(Value)) == sizeof(Value);
    }
    void copyFrom(Places& other, quint64 place)
    {
        ok = ok && other.file.seek(0) && file.seek(static_cast<qint64>(place));
        while (ok && !other.file.atEnd()) {
            const QByteArray piece = other.file.read(pieceBytes);
            ok = !piece.isEmpty() && file.write(piece) == piece.size();
        }
    }
    void reachDisk() { ok = ok && file.flush() && ::fsync(file.handle()) == 0; }
    quint64 end() const { return static_cast<quint64>(file.size()); }

    bool ok = false;

private:
    QFile file;
};

/// How the two kinds of files count. Offset is the type of a place.
struct Classic
{
    using Count = quint16;
    using Offset = quint32;
    static constexpr quint64 firstPage = 4;
    static constexpr quint64 entryBytes = 12;
};
struct Big
{
    using Count = quint64;
    using Offset = quint64;
    static constexpr quint64 firstPage = 8;
    static constexpr quint64 entryBytes = 20;
};

template <typename Kind>
class Pages
{
public:
    using Offset = typename Kind::Offset;

    explicit Pages(Places* places) : file(places) {}

    /// The place of the number that leads to the first page behind the last; 0 on failure.
    quint64 lastLink()
    {
        quint64 link = Kind::firstPage;
        for (int page = 0; page < mostPages; ++page) {
            const quint64 next = file->template read<Offset>(link);
            if (!file->ok || next == 0) {
                return file->ok ? link : 0;
            }
            link = linkOf(next);
        }
        file->ok = false;
        return 0;
    }

    /// Moves all that the pages lead to, from the page at first on, by so many bytes. They stand there
    /// already, first among them.
    void move(quint64 first, quint64 by)
    {
        quint64 page = first;
        for (int count = 0; page != 0 && file->ok; ++count) {
            const quint64 entries = file->template read<typename Kind::Count>(page);
            file->ok = file->ok && entries <= mostEntries && count < mostPages;
            for (quint64 i = 0; i < entries && file->ok; ++i) {
                moveEntry(page + sizeof(typename Kind::Count) + i * Kind::entryBytes, by);
            }
            page = file->ok ? movePlace(linkOf(page), by) : 0;
        }
    }

private:
    quint64 linkOf(quint64 page)
    {
        const quint64 entries = file->template read<typename Kind::Count>(page);
        file->ok = file->ok && entries <= mostEntries;
        return page + sizeof(typename Kind::Count) + entries * Kind::entryBytes;
    }

    // Where nothing is, there stays nothing: the end of the pages, a block without pixels.
    template <typename Value>
    quint64 moveValue(quint64 place, quint64 by)
    {
        const quint64 before = file->template read<Value>(place);
        if (!file->ok || before == 0) {
            return 0;
        }
        file->ok = before + by <= std::numeric_limits<Value>::max();
        file->write(place, static_cast<Value>(before + by));
        return before + by;
    }
    quint64 movePlace(quint64 place, quint64 by) { return moveValue<Offset>(place, by); }

    void moveEntry(quint64 entry, quint64 by)
    {
        const auto tag = file->template read<quint16>(entry);
        const auto type = file->template read<quint16>(entry + 2);
        const quint64 count = file->template read<Offset>(entry + 4);
        const quint64 bytes = count * bytesOf(type);
        quint64 values = entry + 4 + sizeof(Offset);
        file->ok = file->ok && bytesOf(type) > 0;
        if (bytes > sizeof(Offset)) {
            values = movePlace(values, by);
        }
        if (tag == stripOffsets || tag == tileOffsets) {
            moveBlocks(values, type, count, by);
        }
    }

    void moveBlocks(quint64 values, quint16 type, quint64 count, quint64 by)
    {
        file->ok = file->ok && (type == longType || type == long8Type);
        for (quint64 i = 0; i < count && file->ok; ++i) {
            if (type == longType) {
                moveValue<quint32>(values + i * sizeof(quint32), by);
            } else {
                moveValue<quint64>(values + i * sizeof(quint64), by);
            }
        }
    }

    Places* file; // not owned
};

template <typename Kind>
void append(Places& to, Places& from)
{
    Pages<Kind> pages(&to);
    const quint64 link = pages.lastLink();
    const quint64 by = (to.end() + alignment - 1) / alignment * alignment;
    const quint64 first = from.read<typename Kind::Offset>(Kind::firstPage) + by;
    to.ok = to.ok && from.ok;
    to.copyFrom(from, by);
    pages.move(first, by);
    to.ok = to.ok && first <= std::numeric_limits<typename Kind::Offset>::max();
    to.reachDisk();
    // from here on it belongs to the file
    to.write(link, static_cast<typename Kind::Offset>(first));
    to.reachDisk();
}

} // namespace

// On the background thread.
bool appendPages(const QString& target, const QString& source, QString* error)
{
    Places to(target);
    Places from(source);
    if (to.open(QIODevice::ReadWrite | QIODevice::ExistingOnly) && from.open(QIODevice::ReadOnly)) {
        const auto order = to.read<quint16>(0);
        const auto mark = to.read<quint16>(2);
        const bool fits =
            order == 0x4949 && from.read<quint16>(0) == order && from.read<quint16>(2) == mark;
        if (fits && mark == classicMark) {
            append<Classic>(to, from);
        } else if (fits && mark == bigMark) {
            append<Big>(to, from);
        } else {
            to.ok = false;
        }
    }
    if (!to.ok || !from.ok) {
        *error = QCoreApplication::translate("OverviewBuilder", "%1 cannot be written").arg(target);
        return false;
    }
    return true;
}

} // namespace Corvane::Map
