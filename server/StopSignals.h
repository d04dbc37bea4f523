#pragma once

#include <functional>
#include <thread>

namespace Corvane::Server {

/// Waits for SIGINT and SIGTERM on a thread of its own. Made before any other thread, which
/// thereby leave the signals alone. The second signal ends the program at once, and so does a stop that
/// takes longer than five seconds.
class StopSignals
{
public:
    StopSignals();
    ~StopSignals();
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;

    /// Calls stop, once, on the thread. Called once.
    void onSignal(std::function<void()> stop);
    /// Waits for no signal any more; a call that is under way has ended when this returns.
    void finish();

private:
    std::thread waiter;
};

} // namespace Corvane::Server
