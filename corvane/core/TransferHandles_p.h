#pragma once

#include <curl/curl.h>

#include <condition_variable>
#include <mutex>
#include <set>

namespace Corvane {

/// One transfer handle for each thread that fetches, with the connections that it has kept. At the
/// end of the process pool threads may outlive the TLS library, so the handles end before it, with
/// close. Any thread.
class TransferHandles
{
public:
    /// Never destroyed: threads may end after everything else has.
    static TransferHandles& instance();

    /// The calling thread's handle, until giveBack; null after close, or where curl makes none.
    CURL* take();
    void giveBack();
    /// Hands out no handle any more, waits for those in use, without a time limit, and frees all.
    void close();

private:
    struct Place;

    TransferHandles() = default;
    bool enter();
    void remove(Place& place);

    std::mutex mutex; // guards all below
    std::condition_variable returned;
    std::set<Place*> places; // of the threads that have a handle
    int inUse = 0;
    bool closed = false;
};

} // namespace Corvane
