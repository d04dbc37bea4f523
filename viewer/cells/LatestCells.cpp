#include <viewer/cells/LatestCells.h>

#include <corvane/map/IRasterLayerCells.h>
#include <corvane/map/Layer.h>

#include <utility>

namespace Corvane::Viewer {
namespace {

constexpr int shortWait = 250; // milliseconds

} // namespace

LatestCells::LatestCells(Map::Layer* askedLayer, QObject* parent)
    : QObject(parent),
      layer(askedLayer)
{
    patience.setSingleShot(true);
    patience.setInterval(shortWait);
    connect(&patience, &QTimer::timeout, this, [this] {
        if (current && next) {
            current->cancel();
        }
        emit waiting();
    });
}

LatestCells::~LatestCells()
{
    stop();
}

bool LatestCells::canAsk(Map::Layer* layer)
{
    return qobject_cast<Map::IRasterLayerCells*>(layer) != nullptr;
}

/// A quick answer that is under way comes first, though it is to an older question: while the pointer
/// moves there is always something to see.
void LatestCells::ask(const Map::CellRequest::Window& window)
{
    if (!current) {
        start(window);
        return;
    }
    next = window;
    if (!patience.isActive()) {
        current->cancel();
    }
}

void LatestCells::stop()
{
    patience.stop();
    next.reset();
    if (current) {
        current->abandon();
        current.reset();
    }
}

void LatestCells::start(const Map::CellRequest::Window& window)
{
    auto* const cells = qobject_cast<Map::IRasterLayerCells*>(layer.data());
    if (!cells) {
        return;
    }
    current = Map::CellRequest::make(window,
                                     [this](const Map::CellReading& reading) { onDone(reading); });
    patience.start();
    cells->readCells(current);
}

void LatestCells::onDone(const Map::CellReading& reading)
{
    current.reset();
    patience.stop();
    if (const auto wanted = std::exchange(next, std::nullopt)) {
        start(*wanted);
    }
    if (reading.state != Map::CellReading::State::Dropped) {
        emit answered(reading);
    }
}

} // namespace Corvane::Viewer
