#pragma once

#include <QByteArray>
#include <QDir>
#include <QString>

#include <vector>

namespace Corvane::PluginChecker {

/// Damaged copies of a file, each with the unharmed files that belong to it (the same name
/// with other suffixes) beside them.
class DamagedFiles
{
public:
    static constexpr int seeds = 24;

    DamagedFiles(const QString& file, const QString& folder);

    /// Each returns the path of what it made.
    QString missing() const;
    QString emptyFolder() const;
    QString cutTo(qint64 length);
    QString noise();
    /// A few bits of each part of the file are turned; another seed turns others.
    QString flipped(int seed);

    /// Lengths from almost nothing to all but a byte.
    std::vector<qint64> lengthsToTry() const;

private:
    QString write(const QByteArray& bytes);

    QDir folder;
    QString name;
    QByteArray whole; // of a file that is longer, the beginning
    int copies = 0;
};

} // namespace Corvane::PluginChecker
