#pragma once

#include <QString>
#include <QtGlobal>

#include <vector>

namespace Corvane::Map {

/// Something that holds tiles and can part with those that are out of view.
class ITileHolder
{
public:
    virtual qint64 heldBytes() const = 0;
    /// Gives back tiles of the levels that the view does not show, about wanted bytes of them.
    /// Returns the bytes freed.
    virtual qint64 giveBackOtherLevels(qint64 wanted) = 0;
    /// The same with tiles of the level in view, the farthest first; never one that is in view.
    virtual qint64 giveBackOutOfView(qint64 wanted) = 0;

protected:
    ~ITileHolder() = default;
};

/// The pixel memory of all layers of the plugin together, kept below a limit by giving back what
/// is out of view, from the layer that was looked at longest ago on. On the layers' thread.
class TileBudget
{
public:
    static TileBudget& instance();

    TileBudget() = default;
    TileBudget(const TileBudget&) = delete;
    TileBudget& operator=(const TileBudget&) = delete;

    /// What the settings give a plugin, in bytes: "Plugins/NAME/MemoryBudgetMB", else a quarter of the
    /// machine's memory.
    static qint64 limitFor(const QString& pluginName);
    /// In bytes; 0 or less stands for no limit.
    void setLimit(qint64 bytes);
    qint64 getLimit() const { return limit; }
    qint64 heldBytes() const;
    /// Holders are not owned; the one added, or viewed, last gives back last.
    void add(ITileHolder* holder);
    void remove(ITileHolder* holder);
    void viewed(ITileHolder* holder);
    /// Gives back until the limit holds, and a little more, lest every new tile starts a round.
    void enforce();

private:
    std::vector<ITileHolder*> holders; // looked at longest ago first
    qint64 limit = 0;
};

} // namespace Corvane::Map
