#pragma once

#include <corvane/core/Export.h>
#include <corvane/tiles/TileHash.h>

#include <QReadWriteLock>
#include <QString>

namespace Corvane::Map {

class ITileRequest;

/// Every queued or running tile request of the process by tile key, so that a tile is never
/// fetched twice at once. The one instance is made when the library loads, which also sets the
/// global thread pool to at most 8 threads; when the library unloads it cancels all requests and
/// waits for the pool. Any thread.
class CORVANE_EXPORT TileRequestRegistry
{
public:
    /// The one registry, made when the library loads. Any thread.
    static TileRequestRegistry& instance();

    /// Registers and starts the request, unless one of the same key is queued or running: then the
    /// new one is neither started nor deleted. Null is passed over.
    void queue(ITileRequest* request);
    /// Cancels every request and forgets it. A request stays alive until its cancel has returned.
    void cancelAll();
    /// The view's tile range, inclusive: nothing is cancelled by a move of the view.
    void cancelOutside(unsigned int level, unsigned int left, unsigned int top, unsigned int right,
                       unsigned int bottom);
    /// The request has ended: its key goes, unless another request holds it by now. Waits while
    /// cancelAll is calling the request.
    void remove(const QString& key, ITileRequest* request);
    /// From here on this thread sees what the others wrote to a request before they queued it.
    void synchronize() const;

private:
    TileRequestRegistry();
    ~TileRequestRegistry();
    TileRequestRegistry(const TileRequestRegistry&) = delete;
    TileRequestRegistry& operator=(const TileRequestRegistry&) = delete;

    static TileRequestRegistry theInstance;

    TileHash<ITileRequest> requests; // not owned
    QReadWriteLock lock;
};

} // namespace Corvane::Map
