#include <corvane/tiles/TileRequestRegistry.h>

#include <corvane/tiles/ITileRequest.h>
#include <corvane/tiles/Rendezvous_p.h>
#include <corvane/tiles/TilesLog_p.h>

#include <QThreadPool>

namespace Corvane::Map {

namespace {

constexpr int mostThreads = 8;
constexpr int expectedRequests = 100;
constexpr int noTimeLimit = -1;
constexpr int priority = 0; // one for all: first come, first served

} // namespace

TileRequestRegistry TileRequestRegistry::theInstance;

TileRequestRegistry& TileRequestRegistry::instance()
{
    return theInstance;
}

TileRequestRegistry::TileRequestRegistry()
{
    QThreadPool::globalInstance()->setMaxThreadCount(mostThreads);
    requests.reserve(expectedRequests);
    tilesLog(); // made before this object is complete, so that it outlives the last request
}

TileRequestRegistry::~TileRequestRegistry()
{
    cancelAll();
    if (QThreadPool* const pool = QThreadPool::globalInstance()) {
        pool->waitForDone(noTimeLimit);
    }
}

// A request of a key that is queued or running stays allocated and is never run: layers may hold
// on to what they made. TileRequestRegistryTest::aTwinIsNeitherRunNorDeleted holds it.
void TileRequestRegistry::queue(ITileRequest* request)
{
    if (!request) {
        return;
    }
    rendezvousForWriting(lock);
    if (requests.insertIfAbsent(request->getKey(), request)) {
        QThreadPool::globalInstance()->start(request, priority);
    }
}

void TileRequestRegistry::cancelAll()
{
    rendezvousForWriting(lock);
    requests.takeEach([](ITileRequest* request) { request->cancel(); });
}

void TileRequestRegistry::cancelOutside(unsigned int, unsigned int, unsigned int, unsigned int,
                                        unsigned int)
{
}

void TileRequestRegistry::remove(const QString& key, ITileRequest* request)
{
    rendezvousForWriting(lock);
    requests.remove(key, request);
}

void TileRequestRegistry::synchronize() const
{
    requests.synchronize();
}

} // namespace Corvane::Map
