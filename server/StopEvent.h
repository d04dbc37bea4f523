#pragma once

#include <cstdint>
#include <sys/eventfd.h>
#include <unistd.h>

namespace Corvane::Server {

/// Tells threads that wait for clients that the server stops. Any thread.
class StopEvent
{
public:
    StopEvent() : event(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}
    ~StopEvent() { ::close(event); }
    StopEvent(const StopEvent&) = delete;
    StopEvent& operator=(const StopEvent&) = delete;

    /// For good.
    void raise()
    {
        const std::uint64_t one = 1;
        static_cast<void>(!::write(event, &one, sizeof(one)));
    }
    /// Readable from then on: to be waited for beside others. Stays owned here.
    int handle() const { return event; }

private:
    int event;
};

} // namespace Corvane::Server
