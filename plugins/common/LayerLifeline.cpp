#include <plugins/common/LayerLifeline.h>

namespace Corvane::Map {

bool LayerLifeline::enter()
{
    const std::lock_guard<std::mutex> guard(mutex);
    if (closed) {
        return false;
    }
    ++inside;
    return true;
}

void LayerLifeline::leave()
{
    // notified under the mutex: the line may go as soon as the one who waits has it
    const std::lock_guard<std::mutex> guard(mutex);
    --inside;
    left.notify_all();
}

void LayerLifeline::close()
{
    std::unique_lock<std::mutex> guard(mutex);
    closed = true;
    left.wait(guard, [this] { return inside == 0; });
}

} // namespace Corvane::Map
