#include <viewer/maps/LoadProgress.h>

#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>

#include <QEvent>

namespace Corvane::Viewer {
namespace {

// What is loaded within this time shows no bar at all.
constexpr int askingMilliseconds = 100;

} // namespace

LoadProgress::LoadProgress(QObject* parent) : QObject(parent)
{
    timer.setInterval(askingMilliseconds);
    connect(&timer, &QTimer::timeout, this, &LoadProgress::ask);
}

void LoadProgress::setView(Map::MapView* newView)
{
    if (view == newView) {
        return;
    }
    if (view) {
        view->removeEventFilter(this);
        disconnect(view, nullptr, this, nullptr);
    }
    view = newView;
    if (view) {
        view->installEventFilter(this);
        connect(view, &Map::MapView::mapExtentsChanged, this, &LoadProgress::follow);
    }
    ask();
}

int LoadProgress::percentOf(Map::MapView& view)
{
    int sum = 0;
    int count = 0;
    for (Map::Layer* layer : view.getLayers()) {
        if (!layer->isVisible() || !layer->isValid()) {
            continue;
        }
        sum += layer->getPercentComplete();
        ++count;
    }
    return count == 0 ? 100 : sum / count;
}

bool LoadProgress::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Paint) {
        follow();
    }
    return QObject::eventFilter(watched, event);
}

void LoadProgress::follow()
{
    if (!timer.isActive()) {
        timer.start();
    }
}

void LoadProgress::ask()
{
    const int percent = view ? percentOf(*view) : 100;
    if (percent >= 100) {
        timer.stop();
    } else {
        follow();
    }
    emit changed(percent);
}

} // namespace Corvane::Viewer
