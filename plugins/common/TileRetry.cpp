#include <plugins/common/TileRetry.h>

#include <plugins/common/SourceHealth.h>
#include <plugins/common/TileAttempts.h>

namespace Corvane::Map {

namespace {

constexpr int interval = 250; // milliseconds between looks at what was put off

} // namespace

TileRetry::TileRetry(TiledView* tiledView, const std::function<void()>& due) : view(tiledView)
{
    timer.setInterval(interval);
    QObject::connect(&timer, &QTimer::timeout, &timer, due);
}

void TileRetry::follow(TileAttempts* newAttempts, const SourceHealth* newHealth)
{
    attempts = newAttempts;
    health = newHealth;
}

void TileRetry::stop()
{
    timer.stop();
    attempts = nullptr;
    health = nullptr;
}

void TileRetry::start()
{
    if (attempts && !timer.isActive()) {
        timer.start();
    }
}

bool TileRetry::look(bool isVisible)
{
    if (!attempts || !attempts->isWaiting()) {
        timer.stop();
        return false;
    }
    if (!isVisible || health->isPaused()) {
        return false;
    }
    if (attempts->takeDue()) {
        view->askAgain();
    }
    return true;
}

TiledView::Waiting TileRetry::lookWhileWaiting()
{
    if (!attempts) {
        return TiledView::Waiting::GoOn;
    }
    if (health->isPaused()) {
        return TiledView::Waiting::GiveUp;
    }
    return attempts->takeDue() ? TiledView::Waiting::AskAgain : TiledView::Waiting::GoOn;
}

} // namespace Corvane::Map
