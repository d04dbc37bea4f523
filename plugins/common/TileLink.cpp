#include <plugins/common/TileLink.h>

#include <QMetaObject>

namespace Corvane::Map {

TileLink::TileLink(QObject* tiledLayer) : layer(tiledLayer) {}

TileLink::~TileLink() = default;

// On a pool thread.
void TileLink::callForView()
{
    if (!viewCalled.exchange(true)) {
        QMetaObject::invokeMethod(layer, "setViewAgain", Qt::QueuedConnection);
    }
}

// On a pool thread.
void TileLink::callForRepaint()
{
    if (!repaintCalled.exchange(true)) {
        QMetaObject::invokeMethod(layer, "showArrived", Qt::QueuedConnection);
    }
}

// On a pool thread.
void TileLink::callForRetry()
{
    QMetaObject::invokeMethod(layer, "startRetrying", Qt::QueuedConnection);
}

void TileLink::close()
{
    exchange.cancel();
    lifeline.close();
}

} // namespace Corvane::Map
