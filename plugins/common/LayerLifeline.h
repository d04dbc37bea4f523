#pragma once

#include <condition_variable>
#include <mutex>

namespace Corvane::Map {

/// What keeps a layer deletable while pool threads may call it: they enter before they touch the
/// layer and leave after it, and the layer closes the line in its destructor. Shared between both
/// sides. Any thread.
class LayerLifeline
{
public:
    /// Whether the layer is there; then it stays until leave.
    bool enter();
    void leave();
    /// Lets nobody in any more and waits for those inside. On the layer's thread.
    void close();

private:
    std::mutex mutex; // guards inside and closed
    std::condition_variable left;
    int inside = 0;
    bool closed = false;
};

} // namespace Corvane::Map
