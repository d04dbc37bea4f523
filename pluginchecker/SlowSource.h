#pragma once

#include <QString>

#include <memory>

namespace Corvane::PluginChecker {

/// A source that gives no answer until it ends: a FIFO in place of a file, a server that says
/// nothing in place of the one that a URL names.
class SlowSource
{
public:
    virtual ~SlowSource() = default;
    /// In place of source; folder is for its files. Null where the source is neither.
    static std::unique_ptr<SlowSource> make(const QString& source, const QString& folder);

    virtual QString name() const = 0;
    /// Lets go whoever waits, and returns when the pool has nothing to do. Called once.
    virtual void end() = 0;
};

} // namespace Corvane::PluginChecker
