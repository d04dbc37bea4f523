#include <viewer/ViewerStatusBar.h>

#include <viewer/LoadProgress.h>
#include <viewer/MapUnits.h>
#include <viewer/MapWindow.h>
#include <viewer/PointerTracker.h>

#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>

#include <QLabel>
#include <QPointF>
#include <QProgressBar>

#include <cmath>

namespace Corvane::Viewer {
namespace {

constexpr int barWidth = 120;
constexpr int barHeight = 12;
constexpr int labelMargin = 6;

} // namespace

ViewerStatusBar::ViewerStatusBar(QWidget* parent)
    : QStatusBar(parent),
      coordinates(addLabel("coordinates", QStringLiteral("X: 0000000.000  Y: 0000000.000"))),
      scale(addLabel("scale", QStringLiteral("1 px = 0.000123°   zoom 10,000 %"))),
      progress(new LoadProgress(this))
{
    addWidget(coordinates);
    addPermanentWidget(scale);
    addProgressBar();
    connect(progress, &LoadProgress::changed, this, &ViewerStatusBar::showProgress);
}

QLabel* ViewerStatusBar::addLabel(const QString& name, const QString& widestText)
{
    const auto label = new QLabel(this);
    label->setObjectName(name);
    label->setMinimumWidth(label->fontMetrics().horizontalAdvance(widestText) + 2 * labelMargin);
    label->setContentsMargins(labelMargin, 0, labelMargin, 0);
    label->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    return label;
}

void ViewerStatusBar::addProgressBar()
{
    bar = new QProgressBar(this);
    bar->setObjectName("progress");
    bar->setFixedSize(barWidth, barHeight);
    bar->setTextVisible(false);
    bar->setToolTip(tr("How much of the map is loaded"));
    QSizePolicy policy = bar->sizePolicy();
    policy.setRetainSizeWhenHidden(true); // the labels must not jump
    bar->setSizePolicy(policy);
    addPermanentWidget(bar);
    bar->hide();
}

void ViewerStatusBar::setMapWindow(MapWindow* newWindow)
{
    if (window && window->getView()) {
        disconnect(window->getView(), nullptr, this, nullptr);
        disconnect(window->getTracker(), nullptr, this, nullptr);
    }
    window = newWindow && newWindow->getView() ? newWindow : nullptr;
    coordinates->clear();
    progress->setView(window ? window->getView() : nullptr);
    if (window) {
        connect(window->getView(), &Map::MapView::mapExtentsChanged, this,
                &ViewerStatusBar::showScale);
        connect(window->getView(), &Map::MapView::layerAdded, this, &ViewerStatusBar::showScale);
        connect(window->getTracker(), &PointerTracker::moved, this,
                &ViewerStatusBar::showCoordinates);
        connect(window->getTracker(), &PointerTracker::left, this,
                [this] { coordinates->clear(); });
    }
    showScale();
}

void ViewerStatusBar::showCoordinates(const QPointF& worldPoint)
{
    Map::MapView* view = window ? window->getView() : nullptr;
    if (!view) {
        return;
    }
    const double unitsPerPixel = std::abs(view->getBounds().width()) / view->width();
    coordinates->setText(
        coordinateText(unitsOf(*view), worldPoint.x(), worldPoint.y(), unitsPerPixel));
}

void ViewerStatusBar::showScale()
{
    Map::MapView* view = window ? window->getView() : nullptr;
    scale->setText(view ? scaleText(*view) : QString());
}

void ViewerStatusBar::showProgress(int percent)
{
    bar->setValue(percent);
    bar->setVisible(percent < 100);
}

} // namespace Corvane::Viewer
