#include <pluginchecker/DamagedFiles.h>

#include <QFile>
#include <QFileInfo>

#include <algorithm>

namespace Corvane::PluginChecker {

namespace {

constexpr qint64 longest = 64 << 20; // bytes of a copy
constexpr int mostFlips = 64;
constexpr int headLength = 512; // where the numbers stand on which the rest depends

/// The same numbers each time, so that what is found once is found again.
class Numbers
{
public:
    explicit Numbers(int seed) : state(static_cast<quint64>(seed) * 2654435761u) {}
    int below(int limit)
    {
        state = state * 6364136223846793005u + 1442695040888963407u;
        return static_cast<int>((state >> 33) % static_cast<quint64>(limit));
    }

private:
    quint64 state;
};

} // namespace

DamagedFiles::DamagedFiles(const QString& path, const QString& folderName)
    : folder(folderName),
      name(QFileInfo(path).fileName())
{
    QFile file(path);
    if (file.open(QIODevice::ReadOnly)) {
        whole = file.read(longest);
    }
    const QFileInfo info(path);
    const QFileInfoList beside = info.absoluteDir().entryInfoList(
        {info.completeBaseName() + QStringLiteral(".*")}, QDir::Files);
    for (const QFileInfo& other : beside) {
        if (other != info && other.size() <= longest) {
            QFile::copy(other.filePath(), folder.filePath(other.fileName()));
        }
    }
}

QString DamagedFiles::missing() const
{
    return folder.filePath(QStringLiteral("missing/") + name);
}

QString DamagedFiles::emptyFolder() const
{
    const QString path = folder.filePath(QStringLiteral("folder/") + name);
    folder.mkpath(path);
    return path;
}

QString DamagedFiles::cutTo(qint64 length)
{
    return write(whole.left(static_cast<int>(length)));
}

QString DamagedFiles::noise()
{
    Numbers numbers(1);
    QByteArray bytes(std::min(whole.size(), 1 << 16), '\0');
    std::generate(bytes.begin(), bytes.end(),
                  [&numbers] { return static_cast<char>(numbers.below(256)); });
    return write(bytes);
}

QString DamagedFiles::flipped(int seed)
{
    Numbers numbers(seed);
    QByteArray bytes = whole;
    const int flips = bytes.isEmpty() ? 0 : 1 + numbers.below(mostFlips);
    for (int i = 0; i < flips; ++i) {
        // every other one in the head
        const int end = i % 2 == 0 ? std::min(headLength, bytes.size()) : bytes.size();
        const int at = numbers.below(end);
        bytes[at] = static_cast<char>(bytes[at] ^ (1 << numbers.below(8)));
    }
    return write(bytes);
}

std::vector<qint64> DamagedFiles::lengthsToTry() const
{
    const qint64 size = whole.size();
    std::vector<qint64> lengths = {1,        8,        size / 64,    size / 16,
                                   size / 4, size / 2, size * 7 / 8, size - 1};
    std::sort(lengths.begin(), lengths.end());
    lengths.erase(std::unique(lengths.begin(), lengths.end()), lengths.end());
    lengths.erase(std::remove_if(lengths.begin(), lengths.end(),
                                 [size](qint64 length) { return length < 1 || length >= size; }),
                  lengths.end());
    return lengths;
}

// A layer may keep what it knows of a file by its name, so each copy has another.
QString DamagedFiles::write(const QByteArray& bytes)
{
    const QString place = folder.filePath(QString::number(++copies));
    folder.mkpath(place);
    const QFileInfoList beside = folder.entryInfoList(QDir::Files);
    for (const QFileInfo& other : beside) {
        QFile::link(other.filePath(), QDir(place).filePath(other.fileName()));
    }
    const QString path = QDir(place).filePath(name);
    QFile file(path);
    if (file.open(QIODevice::WriteOnly)) {
        file.write(bytes);
    }
    return path;
}

} // namespace Corvane::PluginChecker
