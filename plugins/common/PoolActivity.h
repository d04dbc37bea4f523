#pragma once

namespace Corvane::Map {

/// Keeps work on the pool inside the life of the plugin and of the libraries that it calls: the
/// plugin's last act is to wait for what is under way. By then the statics of functions are gone, so
/// what pool threads use of them is never destroyed. Any thread.
class PoolActivity
{
public:
    PoolActivity();
    ~PoolActivity();
    PoolActivity(const PoolActivity&) = delete;
    PoolActivity& operator=(const PoolActivity&) = delete;

    /// The program is ending: long work stops at the next chance.
    static bool isEnding();
    /// Makes it so and waits for what is under way, half a minute at most. Called when the plugin
    /// goes; something that goes earlier and that pool threads want calls it before.
    static void end();
};

} // namespace Corvane::Map
