#pragma once

#include <server/StopEvent.h>

#include <httplib.h>

#include <atomic>

namespace Corvane::Server {

/// The library's server with connections of our own, which are bounded in bytes and in time and end at
/// once when the server stops.
class Connections final : public httplib::Server
{
public:
    /// So many are served at once.
    explicit Connections(int count);

    /// Ends what waits for clients. Any thread.
    void endWaiting() { stopEvent.raise(); }

private:
    bool process_and_close_socket(socket_t socket) override;

    StopEvent stopEvent;
    std::atomic<int> waiting{0}; // connections without a thread
};

} // namespace Corvane::Server
