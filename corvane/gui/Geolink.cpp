#include <corvane/gui/Geolink.h>

#include "ui_Geolink.h"

#include <corvane/map/MapCanvas.h>
#include <corvane/map/MapView.h>
#include <corvane/map/SpatialReference.h>
#include <corvane/map/ViewManager.h>

#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPoint>
#include <QRectF>
#include <QSignalBlocker>

namespace Corvane::Gui {

namespace {

using Map::IClient;
using Map::MapView;

/// Null where the window holds something else than a map.
MapView* mapViewIn(const QMdiSubWindow* window)
{
    return window ? qobject_cast<MapView*>(window->widget()) : nullptr;
}

/// Nothing is reprojected, so only maps of one code can show the same world.
bool shareReference(MapView& a, MapView& b)
{
    return a.getMapCanvas()->getSrs().epsg == b.getMapCanvas()->getSrs().epsg;
}

/// Whether target moves with source.
bool areLinked(MapView& source, MapView& target)
{
    return target.getGeolinkMode() == source.getGeolinkMode() &&
           target.getGeolinkMode() != IClient::GeolinkNone && shareReference(source, target);
}

/// Shows in target what the map of source would show at target's place on the desktop.
/// Both corners count the full width and height, so that adjoining windows adjoin in the map.
void followOnScreen(MapView& source, MapView& target)
{
    const QPoint topLeft = target.mapToGlobal(QPoint(0, 0));
    const QPoint bottomRight = target.mapToGlobal(QPoint(target.width(), target.height()));
    const auto worldAt = [&source](const QPoint& global) {
        const QPoint pixel = source.mapFromGlobal(global);
        double x = 0.0;
        double y = 0.0;
        source.getViewManager()->convertDeviceToWorld(pixel.x(), pixel.y(), &x, &y);
        return QPointF(x, y);
    };
    target.setBounds(QRectF(worldAt(topLeft), worldAt(bottomRight)));
}

void follow(MapView& source, MapView& target, IClient::GeolinkMode mode)
{
    if (mode == IClient::GeolinkWindow) {
        target.setBounds(source.getBounds());
    } else if (mode != IClient::GeolinkNone) {
        followOnScreen(source, target);
    }
}

} // namespace

Geolink::Geolink(QWidget* parent) : QWidget(parent), ui(new Ui::Geolink)
{
    ui->setupUi(this);
    // The slots ignore the state: on a change the radio that goes off calls its slot, too, before
    // the one that comes on, so a group that is left is aligned once more.
    connect(ui->geolinkNone, SIGNAL(toggled(bool)), this, SLOT(setGeolinkNone()));
    connect(ui->geolinkScreen, SIGNAL(toggled(bool)), this, SLOT(setGeolinkScreen()));
    connect(ui->geolinkWindow, SIGNAL(toggled(bool)), this, SLOT(setGeolinkWindow()));
    connect(ui->applyToAll, SIGNAL(clicked(bool)), this, SLOT(applyToAll()));
}

Geolink::~Geolink()
{
    delete ui;
}

void Geolink::setWorkSpace(QMdiArea* pWorkSpace)
{
    workSpace = pWorkSpace;
}

void Geolink::setGeolinkMode(Map::IClient::GeolinkMode mode)
{
    QMdiSubWindow* const active = workSpace ? workSpace->activeSubWindow() : nullptr;
    if (!active) {
        return;
    }
    MapView* const source = mapViewIn(active);
    if (source) {
        source->setGeolinkMode(mode);
    }
    onSubWindowActivated(active, false);
    if (!source) {
        return;
    }
    const QList<QMdiSubWindow*> windows = workSpace->subWindowList();
    for (const QMdiSubWindow* window : windows) {
        MapView* const target = mapViewIn(window);
        if (target && target != source && areLinked(*source, *target)) {
            follow(*source, *target, source->getGeolinkMode());
        }
    }
}

void Geolink::setGeolinkNone()
{
    setGeolinkMode(IClient::GeolinkNone);
}

void Geolink::setGeolinkWindow()
{
    setGeolinkMode(IClient::GeolinkWindow);
}

void Geolink::setGeolinkScreen()
{
    setGeolinkMode(IClient::GeolinkScreen);
}

void Geolink::onMapExtentsChanged(double tlx, double tly, double brx, double bry)
{
    if (!isVisible()) {
        return;
    }
    auto* const source = qobject_cast<MapView*>(sender());
    if (!source || source->getGeolinkMode() == IClient::GeolinkNone || !workSpace) {
        return;
    }
    const QList<QMdiSubWindow*> windows = workSpace->subWindowList();
    for (const QMdiSubWindow* window : windows) {
        MapView* const target = mapViewIn(window);
        if (!target || target == source || !areLinked(*source, *target)) {
            continue;
        }
        if (source->getGeolinkMode() == IClient::GeolinkWindow) {
            target->setBounds(QRectF(QPointF(tlx, tly), QPointF(brx, bry)));
        } else {
            followOnScreen(*source, *target);
        }
    }
}

void Geolink::onSubWindowActivated(QMdiSubWindow* window, bool bSendEvents)
{
    if (connectedView) {
        disconnect(connectedView, &MapView::mapExtentsChanged, this, &Geolink::onMapExtentsChanged);
        connectedView = nullptr;
    }
    MapView* const view = mapViewIn(window);
    setEnabled(view != nullptr);
    if (!view) {
        return;
    }
    if (view->getGeolinkMode() != IClient::GeolinkNone) {
        // Queued: the others follow once control is back in the event loop. They are not
        // connected themselves, so their moves do not come back.
        connect(view, &MapView::mapExtentsChanged, this, &Geolink::onMapExtentsChanged,
                Qt::QueuedConnection);
        connectedView = view;
    }
    if (bSendEvents) {
        showMode(view->getGeolinkMode());
    }
}

void Geolink::applyToAll()
{
    if (!workSpace) {
        return;
    }
    const IClient::GeolinkMode mode = checkedMode();
    QMdiSubWindow* const active = workSpace->activeSubWindow();
    if (!active) {
        return;
    }
    MapView* const source = mapViewIn(active);
    const QList<QMdiSubWindow*> windows = workSpace->subWindowList();
    for (const QMdiSubWindow* window : windows) {
        MapView* const target = mapViewIn(window);
        if (target) {
            target->setGeolinkMode(mode);
        }
        onSubWindowActivated(active, false);
        if (source && target && target != source && shareReference(*source, *target)) {
            follow(*source, *target, mode);
        }
    }
}

void Geolink::showMode(Map::IClient::GeolinkMode mode)
{
    const QSignalBlocker none(ui->geolinkNone);
    const QSignalBlocker window(ui->geolinkWindow);
    const QSignalBlocker screen(ui->geolinkScreen);
    if (mode == IClient::GeolinkWindow) {
        ui->geolinkWindow->setChecked(true);
    } else if (mode == IClient::GeolinkScreen) {
        ui->geolinkScreen->setChecked(true);
    } else {
        ui->geolinkNone->setChecked(true);
    }
}

Map::IClient::GeolinkMode Geolink::checkedMode() const
{
    if (ui->geolinkNone->isChecked()) {
        return IClient::GeolinkNone;
    }
    if (ui->geolinkScreen->isChecked()) {
        return IClient::GeolinkScreen;
    }
    return ui->geolinkWindow->isChecked() ? IClient::GeolinkWindow : IClient::GeolinkNone;
}

} // namespace Corvane::Gui
