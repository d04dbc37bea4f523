#include <corvane/map/CellRequest.h>

#include <QCoreApplication>

#include <utility>

namespace Corvane::Map {

std::shared_ptr<CellRequest> CellRequest::make(const Window& window, const Done& done)
{
    return std::shared_ptr<CellRequest>(new CellRequest(window, done));
}

void CellRequest::abandon()
{
    cancel();
    done = nullptr;
}

// On any thread. The application waits for the pool before it goes.
void CellRequest::finish(CellReading answer)
{
    {
        const std::lock_guard<std::mutex> guard(mutex);
        if (std::exchange(hasAnswer, true)) {
            return;
        }
        reading = std::move(answer);
    }
    if (QCoreApplication* const application = QCoreApplication::instance()) {
        QMetaObject::invokeMethod(
            application, [self = shared_from_this()] { self->deliver(); }, Qt::QueuedConnection);
    }
}

void CellRequest::deliver()
{
    CellReading answer;
    {
        const std::lock_guard<std::mutex> guard(mutex);
        answer = std::move(reading);
    }
    if (const Done tell = std::exchange(done, nullptr)) {
        tell(answer);
    }
}

} // namespace Corvane::Map
