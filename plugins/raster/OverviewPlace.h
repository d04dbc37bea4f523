#pragma once

#include <QString>
#include <QTemporaryDir>

#include <memory>

namespace Corvane::Map {

struct OverviewOrder;

/// Where overviews are to lie, and a folder beside that to make them in, which goes with the object.
class OverviewPlace
{
public:
    /// Beside the file, or where nothing can be written there in OverviewStore. What a program that
    /// died left behind goes. Null with the reason in error where they can lie nowhere. On the
    /// background thread.
    static std::unique_ptr<OverviewPlace> find(const OverviewOrder& order, QString* error);

    QString workFile(const QString& name) const { return work->filePath(name); }
    /// The file of overviews takes its place, on the disk and under its name at once: after a power
    /// cut it is there whole or not at all. False with the reason in error.
    bool put(const QString& made, const OverviewOrder& order, QString* error) const;

    QString target; ///< the file that is to hold them

private:
    bool isInStore() const;

    std::unique_ptr<QTemporaryDir> work;
};

} // namespace Corvane::Map
