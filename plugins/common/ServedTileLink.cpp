#include <plugins/common/ServedTileLink.h>

#include <plugins/common/PoolActivity.h>
#include <plugins/common/SourceHealth.h>
#include <plugins/common/WebClock.h>

#include <corvane/map/GeoImage.h>

#include <utility>

namespace Corvane::Map {

ServedTileLink::ServedTileLink(QObject* tiledLayer) : TileLink(tiledLayer) {}

ServedTileLink::~ServedTileLink() = default;

bool ServedTileLink::isKnownEmpty(const TileId& tile) const
{
    return attempts.isEmpty(tile);
}

void ServedTileLink::judge(const TileId&, TileAnswer&) {}

// On a pool thread.
std::unique_ptr<GeoImage> ServedTileLink::load(const TileId& tile)
{
    const TileOrder order = orderFor(tile);
    const bool paused = health().isPaused();
    const auto isUnwanted = [this, &tile] {
        return exchange.isCancelled() || PoolActivity::isEnding() || !exchange.isOwed(tile);
    };
    const qint64 begin = WebClock::now();
    TileAnswer answer = paused ? findTile(order.url) : fetchTile(order, isUnwanted);
    judge(tile, answer);
    if (paused && answer.kind == TileAnswer::Kind::Failed) {
        if (!answer.picture.isNull()) {
            attempts.markStale(tile, 0);
            return placed(tile, std::move(answer.picture));
        }
        attempts.heldBack();
        return putOff(tile);
    }
    switch (answer.kind) {
    case TileAnswer::Kind::Picture:
        attempts.succeeded(tile);
        if (answer.fromServer) { // what lay on disk says nothing of the server
            health().succeeded(WebClock::now() - begin);
        }
        return placed(tile, std::move(answer.picture));
    case TileAnswer::Kind::Empty:
        attempts.markEmpty(tile);
        health().succeeded(WebClock::now() - begin);
        return emptyTile(tile);
    case TileAnswer::Kind::Failed:
        health().failed(tile, answer.failure, answer.retryAt);
        if (!answer.picture.isNull()) {
            attempts.markStale(tile, answer.retryAt);
            return placed(tile, std::move(answer.picture));
        }
        attempts.failed(tile, answer.retryAt);
        return putOff(tile);
    case TileAnswer::Kind::Dropped:
        break;
    }
    return nullptr;
}

// It is left alone before it is given up: a view that asks in between does not get it at once.
std::unique_ptr<GeoImage> ServedTileLink::putOff(const TileId& tile)
{
    exchange.giveUp(tile);
    return nullptr;
}

std::unique_ptr<GeoImage> ServedTileLink::emptyTile(const TileId& tile) const
{
    QImage pixel(1, 1, QImage::Format_ARGB32_Premultiplied);
    pixel.fill(Qt::transparent);
    return placed(tile, std::move(pixel));
}

} // namespace Corvane::Map
