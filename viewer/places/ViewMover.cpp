#include <viewer/places/ViewMover.h>

#include <corvane/core/Application.h>
#include <corvane/map/MapView.h>

#include <QEvent>
#include <QSettings>

#include <cmath>

namespace Corvane::Viewer {
namespace {

constexpr int milliseconds = 200; // as the view's own

bool isAnimated()
{
    return Application::instance()->getSettings()->value("Gui/MapView/UseAnimation", true).toBool();
}

} // namespace

void ViewMover::move(Map::MapView& view, const QRectF& target)
{
    if (!isAnimated()) {
        view.beginClientUpdate(true);
        view.setBounds(target);
        view.endClientUpdate();
        return;
    }
    auto* mover = view.findChild<ViewMover*>(QString(), Qt::FindDirectChildrenOnly);
    if (!mover) {
        mover = new ViewMover(&view);
    }
    mover->start(target);
}

void ViewMover::setUnitsPerPixel(Map::MapView& view, double unitsPerPixel)
{
    const QRectF bounds = view.getBounds();
    const double factor = unitsPerPixel * view.width() / std::abs(bounds.width());
    QRectF target(0.0, 0.0, bounds.width() * factor, bounds.height() * factor);
    target.moveCenter(bounds.center());
    move(view, target);
}

ViewMover::ViewMover(Map::MapView* movedView)
    : QObject(movedView),
      view(movedView),
      animation(movedView, "Bounds")
{
    animation.setDuration(milliseconds);
    animation.setEasingCurve(QEasingCurve::OutQuad);
    connect(&animation, &QAbstractAnimation::stateChanged, this,
            [this](QAbstractAnimation::State state) {
                if (state == QAbstractAnimation::Stopped) {
                    view->onExtentAnimFinish();
                }
            });
    view->installEventFilter(this);
}

// It goes with its view, which is no map view any more by then.
ViewMover::~ViewMover()
{
    disconnect(&animation, nullptr, this, nullptr);
}

void ViewMover::start(const QRectF& target)
{
    animation.stop();
    animation.setStartValue(view->getBounds());
    animation.setEndValue(target);
    view->beginClientUpdate(true);
    animation.start();
}

bool ViewMover::eventFilter(QObject* watched, QEvent* event)
{
    const QEvent::Type type = event->type();
    const bool isUser = type == QEvent::MouseButtonPress || type == QEvent::MouseButtonDblClick ||
                        type == QEvent::Wheel || type == QEvent::KeyPress;
    // a view that is being destroyed sends events, and is no map view any more
    if (isUser && qobject_cast<Map::MapView*>(watched)) {
        animation.stop();
    }
    return QObject::eventFilter(watched, event);
}

} // namespace Corvane::Viewer
