#include <viewer/output/MapPrinting.h>

#include <viewer/frame/BriefEventLoop.h>

#include <corvane/core/Integer.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapCanvas.h>
#include <corvane/map/MapView.h>

#include <QElapsedTimer>
#include <QPageLayout>
#include <QPrinter>
#include <QProgressDialog>

#include <algorithm>
#include <cmath>

namespace Corvane::Viewer {
namespace {

constexpr std::chrono::seconds defaultPatience(60);
constexpr int completePercent = 100;
// Seconds that a layer may let a print wait which is not to wait; none at all would mean for ever.
constexpr double noWait = 0.001;
// A page of more pixels is loaded coarser first, for the sake of memory: that finds dead sources.
constexpr double mostLoadedPixels = 64.0 * 1024 * 1024;

/// What printing sets, and how long a layer may let it wait.
const char* const printSettings[] = {"Progressive", "AdaptiveRoam", "PixmapSmoothing", "WaitLimit"};

QSize pageSize(const QPrinter& printer)
{
    return printer.pageLayout().paintRectPixels(printer.resolution()).size();
}

QSize loadedSize(const QSize& page)
{
    const double excess = page.width() * (page.height() / mostLoadedPixels);
    const double scale = excess > 1.0 ? 1.0 / std::sqrt(excess) : 1.0;
    return QSize(Util::roundToInt(page.width() * scale), Util::roundToInt(page.height() * scale));
}

void setView(Map::MapView& view, const QSize& size, const QRectF& world)
{
    view.getMapCanvas()->setView(size.width(), size.height(), world.left(), world.top(),
                                 world.right(), world.bottom());
}

bool isOpening(Map::Layer& layer)
{
    return !layer.isValid() && layer.getLastError().isEmpty();
}

bool isComplete(Map::Layer& layer)
{
    return !layer.isVisible() || (layer.isValid() && layer.getPercentComplete() >= completePercent);
}

} // namespace

MapPrinting::MapPrinting(Map::MapView& printedView)
    : view(&printedView),
      patience(defaultPatience),
      updatesWereEnabled(printedView.updatesEnabled())
{
    view->setUpdatesEnabled(false);
    for (Map::Layer* layer : view->getLayers()) {
        if (layer) {
            Settings kept;
            kept.layer = layer;
            for (const char* name : printSettings) {
                kept.values.append(layer->property(name));
            }
            settings.append(kept);
        }
    }
    setLayers("Progressive", true);
}

// A dynamic property that the print brought goes with an invalid value.
MapPrinting::~MapPrinting()
{
    for (const Settings& kept : qAsConst(settings)) {
        for (int i = 0; kept.layer && i < kept.values.size(); ++i) {
            if (kept.layer->property(printSettings[i]) != kept.values[i]) {
                kept.layer->setProperty(printSettings[i], kept.values[i]);
            }
        }
    }
    if (view) {
        setView(*view, view->size(), view->getBounds());
        view->setUpdatesEnabled(updatesWereEnabled);
    }
}

/// On layers that have the property.
void MapPrinting::setLayers(const char* property, const QVariant& value)
{
    for (const Settings& kept : qAsConst(settings)) {
        if (kept.layer && kept.layer->property(property).isValid()) {
            kept.layer->setProperty(property, value);
        }
    }
}

MapPrinting::Loading MapPrinting::load(const QPrinter& printer, QProgressDialog& progress)
{
    const QSize page = pageSize(printer);
    setView(*view, loadedSize(page), grownTo(page, view->getBounds()));
    QElapsedTimer sinceNews;
    int shown = -1;
    while (view) {
        bool complete = false;
        const int percent = loadedPercent(&complete);
        if (complete) {
            return Loading::Complete;
        }
        if (percent != shown) {
            shown = percent;
            sinceNews.start();
            progress.setValue(percent);
        }
        if (progress.wasCanceled()) {
            return Loading::Cancelled;
        }
        if (sinceNews.hasExpired(patience.count())) {
            hurry();
            return Loading::Incomplete;
        }
        runEventLoopBriefly();
    }
    return Loading::Cancelled;
}

/// The mean over the layers that are shown or will be.
int MapPrinting::loadedPercent(bool* complete) const
{
    int sum = 0;
    int count = 0;
    *complete = true;
    for (Map::Layer* layer : view->getLayers()) {
        if (layer && layer->isVisible() && (layer->isValid() || isOpening(*layer))) {
            *complete = *complete && isComplete(*layer);
            sum += layer->isValid() ? layer->getPercentComplete() : 0;
            ++count;
        }
    }
    return count == 0 ? completePercent : sum / count;
}

/// The canvas prints whole world units, which is as fine as paper unless a unit is larger than a
/// pixel of it, as a degree is.
void MapPrinting::print(QPrinter& printer, QProgressDialog* progress)
{
    if (!view) {
        return;
    }
    const QSize page = pageSize(printer);
    const QRectF world = grownTo(page, view->getBounds());
    Map::MapCanvas* canvas = view->getMapCanvas();
    if (std::abs(world.width()) >= page.width()) {
        setView(*view, page, world);
        canvas->print(printer, progress);
    } else {
        canvas->printExtents(printer, progress, world);
    }
}

void MapPrinting::hurry()
{
    setLayers("WaitLimit", noWait);
}

QStringList MapPrinting::missingLayers() const
{
    QStringList titles;
    for (const Settings& kept : settings) {
        if (kept.layer && !isComplete(*kept.layer) &&
            (kept.layer->isValid() || isOpening(*kept.layer))) {
            titles.append(kept.layer->getDescription());
        }
    }
    return titles;
}

void MapPrinting::setPatience(std::chrono::milliseconds time)
{
    patience = time;
}

bool MapPrinting::isLandscape(Map::MapView& view)
{
    return std::abs(view.getBounds().width()) > std::abs(view.getBounds().height());
}

QRectF MapPrinting::grownTo(const QSize& page, const QRectF& world)
{
    if (page.isEmpty()) {
        return world;
    }
    const double scale =
        std::max(std::abs(world.width()) / page.width(), std::abs(world.height()) / page.height());
    const double halfWidth = std::copysign(page.width() * scale / 2, world.width());
    const double halfHeight = std::copysign(page.height() * scale / 2, world.height());
    const QPointF middle = world.center();
    return QRectF(QPointF(middle.x() - halfWidth, middle.y() - halfHeight),
                  QPointF(middle.x() + halfWidth, middle.y() + halfHeight));
}

} // namespace Corvane::Viewer
