#include <corvane/map/MapView.h>

#include <corvane/core/Application.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapCanvas.h>
#include <corvane/map/MapCursors_p.h>
#include <corvane/map/MapView_p.h>
#include <corvane/map/ViewManager.h>

#include <QCursor>
#include <QDateTime>
#include <QMenu>
#include <QSettings>
#include <QThread>

namespace Corvane::Map {

namespace {

constexpr int animationMilliseconds = 200;
constexpr QSize preferredSize(400, 400);
constexpr QSize smallestSize(100, 100);

} // namespace

MapView::MapView(QWidget* parent, Qt::WindowFlags flags)
    : QWidget(parent, flags),
      extentAnimation(this, "Bounds")
{
    mapCanvas = new MapCanvas(this);
    mapCanvas->setClient(this);

    setAutoFillBackground(false);
    setBackgroundRole(QPalette::NoRole);
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::WheelFocus);

    mapCursors();
    mapViewArt().logo = QImage(QStringLiteral(":/resources/corvanegeospatial.png"));
    mapViewArt().crosshair = QImage(QStringLiteral(":/resources/zoombox.png"));

    // calls onExtentChange, which needs the canvas
    viewManager = new ViewManager(this);
    setPointerMode(Roam);
    readSettings();

    connect(&extentAnimation, &QPropertyAnimation::finished, this, &MapView::onExtentAnimFinish);
    extentAnimation.setDuration(animationMilliseconds);
    extentAnimation.setEasingCurve(QEasingCurve::InQuad);
}

MapView::~MapView()
{
    delete viewManager;
    delete contextMenu;
    delete mapCanvas;
}

void MapView::readSettings()
{
    backgroundColor = QColor(255, 255, 255, 255);
    Application* application = Application::instance();
    if (!application) {
        return;
    }
    const QSettings* settings = application->getSettings();
    backgroundColor =
        settings->value(QStringLiteral("Gui/MapView/BackgroundColor"), backgroundColor)
            .value<QColor>();
    useAnimation =
        settings->value(QStringLiteral("Gui/MapView/UseAnimation"), useAnimation).toBool();
    drawCrosshair =
        settings->value(QStringLiteral("Gui/MapView/DrawZoomCrosshair"), drawCrosshair).toBool();
}

QSize MapView::sizeHint() const
{
    return preferredSize;
}

QSize MapView::minimumSizeHint() const
{
    return smallestSize;
}

void MapView::beginClientUpdate(bool zoom)
{
    mapCanvas->beginUpdate(zoom);
}

void MapView::endClientUpdate()
{
    mapCanvas->endUpdate();
}

void MapView::onExtentChange(double newTlx, double newTly, double newBrx, double newBry, bool flag)
{
    Q_UNUSED(flag)
    tlx = newTlx;
    tly = newTly;
    brx = newBrx;
    bry = newBry;
    // the whole widget, while the manager's device is one pixel less on each axis
    mapCanvas->setView(width(), height(), tlx, tly, brx, bry);
    bounds = QRectF(tlx, tly, brx - tlx, bry - tly);
    QWidget::update();
    emit mapExtentsChanged(tlx, tly, brx, bry);
}

IClient::GeolinkMode MapView::getGeolinkMode()
{
    return geolinkMode;
}

void MapView::setGeolinkMode(GeolinkMode mode)
{
    geolinkMode = mode;
}

// Runs on any thread.
void MapView::onRendererUpdate(double left, double top, double right, double bottom)
{
    update(left, top, right, bottom);
}

void MapView::onRendererError(QString message)
{
    Application::logMessage(message, Error, QDateTime::currentDateTime());
}

// Runs on any thread: off the widget's own it reads the thread's identity and posts a call.
void MapView::update(double left, double top, double right, double bottom)
{
    Q_UNUSED(left)
    Q_UNUSED(top)
    Q_UNUSED(right)
    Q_UNUSED(bottom)
    if (QThread::currentThread() == thread()) {
        QWidget::update();
    } else {
        QMetaObject::invokeMethod(this, "update", Qt::QueuedConnection);
    }
}

ViewManager* MapView::getViewManager()
{
    return viewManager;
}

MapCanvas* MapView::getMapCanvas()
{
    return mapCanvas;
}

void MapView::setMapCanvas(MapCanvas* canvas)
{
    mapCanvas = canvas;
}

void MapView::setPointerMode(PointerMode mode)
{
    viewManager->setPointerMode(mode);
    switch (mode) {
    case Roam:
        setCursor(Qt::OpenHandCursor);
        break;
    case Zoom:
    case ZoomBox:
        setCursor(Qt::CrossCursor);
        break;
    case Point:
        setCursor(Qt::ArrowCursor);
        break;
    }
}

QColor MapView::getBackgroundColor()
{
    return backgroundColor;
}

void MapView::setBackgroundColor(QColor& color)
{
    backgroundColor = color;
}

QString MapView::getDocumentName()
{
    return documentName;
}

void MapView::setDocumentName(QString name)
{
    documentName = name;
}

Layer* MapView::getLayerSelection()
{
    return selectedLayer;
}

void MapView::setLayerSelection(Map::Layer* pLayer)
{
    selectedLayer = pLayer;
    QWidget::update();
}

bool MapView::getShowLayerSelection()
{
    return showLayerSelection;
}

void MapView::setShowLayerSelection(bool show)
{
    showLayerSelection = show;
}

bool MapView::getHighQualityRendering()
{
    return highQualityRendering;
}

void MapView::setHighQualityRendering(bool highQuality)
{
    highQualityRendering = highQuality;
}

bool MapView::getDrawCrosshair()
{
    return drawCrosshair;
}

void MapView::setDrawCrosshair(bool draw)
{
    drawCrosshair = draw;
}

QRectF MapView::getBounds()
{
    return bounds;
}

void MapView::setBounds(QRectF rect)
{
    setBounds(rect.x(), rect.y(), rect.x() + rect.width(), rect.y() + rect.height());
}

// The last signal carries the values as they were given, not as they were fitted: linked views
// live with that. MapViewTest::setBoundsTellsTheFittedAndThenTheGivenRectangle holds it.
void MapView::setBounds(double left, double top, double right, double bottom)
{
    viewManager->setWorldExtents(left, top, right, bottom, true);
    emit mapExtentsChanged(left, top, right, bottom);
}

void MapView::setRotation(double val)
{
    mapCanvas->setRotation(val);
    QWidget::update();
}

void MapView::animateBounds(const QRectF& from, const QRectF& to)
{
    extentAnimation.stop();
    extentAnimation.setStartValue(from);
    extentAnimation.setEndValue(to);
    extentAnimation.start(QAbstractAnimation::KeepWhenStopped);
}

void MapView::onExtentAnimFinish()
{
    endClientUpdate();
    QWidget::update();
    emit mapExtentsChanged(bounds.left(), bounds.top(), bounds.right(), bounds.bottom());
}

} // namespace Corvane::Map
