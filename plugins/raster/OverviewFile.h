#pragma once

#include <QString>

#include <memory>

class QFile;

namespace Corvane::Map {

/// A file of overviews that lies elsewhere than beside its image; empty for none.
struct OverviewFile
{
    /// One that stays readable, by this name, whatever becomes of the file's own name; empty where it
    /// cannot be opened. Any thread.
    static OverviewFile hold(const QString& file);

    QString name;
    std::shared_ptr<QFile>
        held; ///< keeps what the name leads to; null for a file that nobody moves

    bool isEmpty() const { return name.isEmpty(); }
};

} // namespace Corvane::Map
