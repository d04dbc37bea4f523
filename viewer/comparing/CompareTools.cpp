#include <viewer/comparing/CompareTools.h>

#include <viewer/comparing/ComparedLayer.h>
#include <viewer/comparing/FlickerBar.h>
#include <viewer/comparing/SwipeDivider.h>
#include <viewer/frame/Commands.h>
#include <viewer/frame/Panels.h>
#include <viewer/frame/Workspace.h>
#include <viewer/maps/MapWindow.h>

#include <corvane/core/Application.h>
#include <corvane/core/Integer.h>
#include <corvane/gui/MapTreeView.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>

#include <QAction>
#include <QSettings>

namespace Corvane::Viewer {
namespace {

const char* const levelKey = "Viewer/Swipe/Level";
const char* const rateKey = "Viewer/Flicker/Rate";
constexpr double usualRate = 1.0; // changes for each second
constexpr double millisecondsPerSecond = 1000.0;

QSettings& settings()
{
    return *Application::instance()->getSettings();
}

/// The keyboard goes back to the map with what stood over it.
void removeFrom(Map::MapView* view, QWidget* control)
{
    const bool hadFocus = control && control->isAncestorOf(control->window()->focusWidget());
    if (control) {
        control->hide();
        control->deleteLater(); // it may be what has called
    }
    if (view && hadFocus) {
        view->setFocus();
    }
}

} // namespace

CompareTools::CompareTools(Workspace* window)
    : QObject(window),
      target(new ComparedLayer(this)),
      swipe(addSwitch(window, "actionSwipe", [this](bool on) { setSwiping(on); })),
      flicker(addSwitch(window, "actionFlicker", [this](bool on) { setFlickering(on); })),
      flip(addCommand(window, "actionFlick", [this] { flick(); }))
{
    connect(&flickering, &QTimer::timeout, this, [this] { showLayer(!isShown); });
    connect(target, &ComparedLayer::changed, this, &CompareTools::followLayer);
    connect(target, &ComparedLayer::ended, this, &CompareTools::stop);
    connect(window, &Workspace::activeMapChanged, this, [this](MapWindow* map) {
        target->setMapWindow(map);
        for (QAction* command : {swipe, flicker, flip}) {
            command->setEnabled(map && map->getView());
        }
    });
    connect(window, &Workspace::mapWindowAdded, this, [this](MapWindow* map) {
        map->getView()->addActions({swipe, flicker, flip}); // for one that fills the screen
    });
    // later: the map hears of the selection after this
    connect(window->getPanels()->getTree(), &Map::MapTreeView::layerActivated, target,
            &ComparedLayer::look, Qt::QueuedConnection);
}

CompareTools::~CompareTools() = default;

void CompareTools::setSwiping(bool on)
{
    stop();
    if (on && target->start()) {
        const bool level = settings().value(levelKey, false).toBool();
        divider = new SwipeDivider(target->getView(), level ? Qt::Horizontal : Qt::Vertical);
        connect(divider, &SwipeDivider::moved, this,
                [this] { target->setClip(divider->getFront()); });
        connect(divider, &SwipeDivider::turned, this, [](Qt::Orientation orientation) {
            settings().setValue(levelKey, orientation == Qt::Horizontal);
        });
        connect(divider, &SwipeDivider::closed, this, &CompareTools::stop);
        target->setClip(divider->getFront());
        divider->show();
        divider->setFocus(Qt::ShortcutFocusReason);
    }
    showState();
}

void CompareTools::setFlickering(bool on)
{
    stop();
    if (on && target->start()) {
        bar = new FlickerBar(target->getView(), settings().value(rateKey, usualRate).toDouble());
        const auto keepPace = [this] {
            flickering.setInterval(Util::roundToInt(millisecondsPerSecond / bar->getRate()));
        };
        connect(bar, &FlickerBar::rateChanged, this, [keepPace](double rate) {
            settings().setValue(rateKey, rate);
            keepPace();
        });
        connect(bar, &FlickerBar::pauseChanged, this, [this](bool paused) {
            if (paused) {
                flickering.stop();
            } else {
                flickering.start();
            }
        });
        connect(bar, &FlickerBar::flipped, this, &CompareTools::flick);
        connect(bar, &FlickerBar::closed, this, &CompareTools::stop);
        keepPace();
        followLayer();
        bar->show();
        flickering.start();
    }
    showState();
}

/// By hand: from now on nothing happens by itself.
void CompareTools::flick()
{
    if (!bar) {
        setFlickering(true);
    }
    if (bar) {
        bar->setPaused(true);
        showLayer(!isShown);
    }
}

void CompareTools::showLayer(bool shown)
{
    isShown = shown;
    if (shown) {
        target->showWhole();
    } else {
        target->setClip(QRect());
    }
    if (bar) {
        bar->setShown(shown);
    }
}

void CompareTools::followLayer()
{
    if (bar && target->getLayer()) {
        bar->setLayerName(target->getLayer()->getDescription());
    }
}

void CompareTools::stop()
{
    flickering.stop();
    if (divider) {
        divider->disconnect(this); // it is there until later
    }
    if (bar) {
        bar->disconnect(this);
    }
    removeFrom(target->getView(), divider);
    removeFrom(target->getView(), bar);
    divider = nullptr;
    bar = nullptr;
    isShown = true;
    target->stop();
    showState();
}

void CompareTools::showState()
{
    swipe->setChecked(divider);
    flicker->setChecked(bar);
}

} // namespace Corvane::Viewer
