#include <viewer/maps/LateLayers.h>

#include <corvane/map/ILayerSource.h>
#include <corvane/map/Layer.h>

#include <QMetaObject>

#include <algorithm>

namespace Corvane::Viewer {
namespace {

// A layer that opens off the GUI thread announces it with this signal.
const char* const openedSignature = "sourceOpened(bool)";

} // namespace

LateLayers::LateLayers(QObject* parent) : QObject(parent) {}

bool LateLayers::follow(Map::Layer* layer)
{
    const bool opensLater = layer->metaObject()->indexOfSignal(openedSignature) >= 0;
    const bool waitsAlready = isWaiting(layer);
    if (layer->isValid() || !opensLater || (!waitsAlready && !layer->getLastError().isEmpty())) {
        return false;
    }
    connect(layer, SIGNAL(sourceOpened(bool)), this, SLOT(onSourceOpened(bool)),
            Qt::UniqueConnection);
    if (!waitsAlready && !opening.contains(layer)) {
        opening.append(layer);
    }
    return true;
}

bool LateLayers::isWaiting(Map::Layer* layer)
{
    auto* const source = qobject_cast<Map::ILayerSource*>(layer);
    return source && !layer->isValid() &&
           source->getSourceReport().state == Map::SourceReport::State::Waiting;
}

bool LateLayers::areOpening() const
{
    return std::any_of(opening.begin(), opening.end(),
                       [](const QPointer<Map::Layer>& layer) { return !layer.isNull(); });
}

void LateLayers::onSourceOpened(bool ok)
{
    auto* const layer = static_cast<Map::Layer*>(sender());
    opening.removeAll(layer);
    if (!ok && isWaiting(layer)) {
        emit waits(layer);
        return;
    }
    disconnect(layer, nullptr, this, nullptr);
    emit ended(layer, ok);
}

} // namespace Corvane::Viewer
