#pragma once

#include <QStringList>

namespace Corvane::PluginChecker {

/// What this process holds that layers may have left.
struct Leftovers
{
    int threads = 0;
    int files = 0;
    int widgets = 0; ///< without a parent

    static Leftovers count();
    /// The classes of the objects whose timers fire again and again. Takes a moment.
    static QStringList runningTimers();
};

} // namespace Corvane::PluginChecker
