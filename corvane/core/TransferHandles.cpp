#include <corvane/core/TransferHandles_p.h>

#include <vector>

namespace Corvane {

/// A thread's own; its handle is freed when the thread ends, unless close has done so.
struct TransferHandles::Place
{
    ~Place() { instance().remove(*this); }

    CURL* handle = nullptr;
};

TransferHandles& TransferHandles::instance()
{
    static TransferHandles& theInstance = *new TransferHandles;
    return theInstance;
}

CURL* TransferHandles::take()
{
    thread_local Place place;
    if (!enter()) {
        return nullptr;
    }
    if (!place.handle) {
        place.handle = curl_easy_init();
    }
    if (!place.handle) {
        giveBack();
        return nullptr;
    }
    const std::lock_guard<std::mutex> guard(mutex);
    places.insert(&place);
    return place.handle;
}

bool TransferHandles::enter()
{
    const std::lock_guard<std::mutex> guard(mutex);
    if (closed) {
        return false;
    }
    ++inUse;
    return true;
}

void TransferHandles::giveBack()
{
    const std::lock_guard<std::mutex> guard(mutex);
    --inUse;
    returned.notify_all();
}

void TransferHandles::close()
{
    std::vector<CURL*> last;
    {
        std::unique_lock<std::mutex> guard(mutex);
        closed = true;
        returned.wait(guard, [this] { return inUse == 0; });
        for (const Place* const place : places) {
            last.push_back(place->handle);
        }
        places.clear(); // a place that is not listed leaves its handle alone
    }
    for (CURL* const handle : last) {
        curl_easy_cleanup(handle);
    }
}

// On the thread that ends. What it frees counts as in use, so close waits for it.
void TransferHandles::remove(Place& place)
{
    {
        const std::lock_guard<std::mutex> guard(mutex);
        if (places.erase(&place) == 0) {
            return;
        }
        ++inUse;
    }
    curl_easy_cleanup(place.handle);
    giveBack();
}

} // namespace Corvane
