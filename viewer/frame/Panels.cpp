#include <viewer/frame/Panels.h>

#include <viewer/frame/TreeFollower.h>
#include <viewer/maps/MapWindow.h>

#include <corvane/core/PluginManager.h>
#include <corvane/gui/CellValues.h>
#include <corvane/gui/Geolink.h>
#include <corvane/gui/HistogramDisplay.h>
#include <corvane/gui/MapTreeView.h>
#include <corvane/gui/PropertyBrowser.h>
#include <corvane/map/Layer.h>
#include <corvane/map/MapView.h>

#include <QAction>
#include <QDockWidget>
#include <QMainWindow>
#include <QMdiArea>
#include <QTimer>
#include <QToolBar>

namespace Corvane::Viewer {

using Gui::CellValues;
using Gui::Geolink;
using Gui::HistogramDisplay;
using Gui::PropertyBrowser;
using Map::MapTreeView;

Panels::Panels(QMainWindow* mainWindow, QMdiArea* mapArea)
    : QObject(mainWindow),
      window(mainWindow),
      area(mapArea)
{
    tree = new MapTreeView(nullptr);
    auto* const properties = new PropertyBrowser(nullptr);
    auto* const histogram = new HistogramDisplay(nullptr);
    auto* const values = new CellValues(nullptr);
    auto* const geolink = new Geolink(nullptr);
    addPanel("layersDock", tr("Layers"), tree, Qt::LeftDockWidgetArea)->show();
    addPanel("propertiesDock", tr("Properties"), properties, Qt::LeftDockWidgetArea);
    QDockWidget* const histogramDock =
        addPanel("histogramDock", tr("Histogram"), histogram, Qt::RightDockWidgetArea);
    QDockWidget* const valuesDock =
        addPanel("cellValuesDock", tr("Cell Values"), values, Qt::RightDockWidgetArea);
    addPanel("geolinkDock", tr("Geolink"), geolink, Qt::RightDockWidgetArea);
    follower = new TreeFollower(tree, this);

    connect(area, &QMdiArea::subWindowActivated, tree, &MapTreeView::onSubWindowActivated);
    connect(area, &QMdiArea::subWindowActivated, properties,
            &PropertyBrowser::onSubWindowActivated);
    connect(area, &QMdiArea::subWindowActivated, values, &CellValues::onSubWindowActivated);
    connect(area, &QMdiArea::subWindowActivated, geolink,
            [geolink](QMdiSubWindow* active) { geolink->onSubWindowActivated(active); });
    connect(tree, &MapTreeView::layerActivated, properties, &PropertyBrowser::onLayerActivated);
    connect(tree, &MapTreeView::mapActivated, properties, &PropertyBrowser::mapActivated);
    connect(tree, &MapTreeView::layerActivated, values, &CellValues::onLayerActivated);
    connect(tree, &MapTreeView::layerActivated, this, &Panels::onLayerActivated);
    connect(valuesDock, &QDockWidget::visibilityChanged, values, [this, values](bool visible) {
        if (visible) { // it passes over windows while it is hidden
            values->onSubWindowActivated(area->currentSubWindow());
        }
    });
    geolink->setWorkSpace(area);
    feedWhileVisible(histogramDock,
                     [histogram](Map::Layer* layer) { histogram->onLayerActivated(layer); });
    addPluginPanels();
}

Panels::~Panels()
{
    qDeleteAll(pluginWidgets);
    delete tree;
}

QDockWidget* Panels::addPanel(const QString& name, const QString& title, QWidget* panel,
                              Qt::DockWidgetArea where)
{
    auto* const dock = new QDockWidget(title, window);
    dock->setObjectName(name);
    dock->setWidget(panel);
    window->addDockWidget(where, dock);
    dock->hide();
    docks << dock;
    return dock;
}

void Panels::addPluginPanels()
{
    for (QDockWidget* dock : PluginManager::getDockWidgets()) {
        window->addDockWidget(Qt::RightDockWidgetArea, dock);
        docks << dock;
        pluginWidgets << dock;
    }
    for (QToolBar* bar : PluginManager::getLayerPluginToolBars()) {
        window->addToolBar(bar);
        pluginWidgets << bar;
    }
}

/// For a panel that works long on a layer: it gets the layer when it is shown, and once for however
/// many announcements of the same moment.
void Panels::feedWhileVisible(QDockWidget* dock, const std::function<void(Map::Layer*)>& feed)
{
    auto* const timer = new QTimer(dock);
    timer->setSingleShot(true);
    timer->setInterval(0);
    connect(timer, &QTimer::timeout, dock, [this, dock, feed] {
        if (!dock->widget()->visibleRegion().isEmpty()) {
            feed(activeLayer);
        }
    });
    connect(tree, &MapTreeView::layerActivated, timer, QOverload<>::of(&QTimer::start));
    connect(dock, &QDockWidget::visibilityChanged, timer, QOverload<>::of(&QTimer::start));
}

/// The tree says nothing when its map goes with its layers: then no layer is active.
void Panels::onLayerActivated(Map::Layer* layer)
{
    if (activeLayer) {
        disconnect(activeLayer, &QObject::destroyed, this, nullptr);
    }
    activeLayer = layer;
    if (layer) {
        // later: the map may be on its way out with the layer, or the tree has another one already
        connect(
            layer, &QObject::destroyed, this,
            [this] {
                if (tree && !activeLayer) {
                    emit tree->layerActivated(nullptr);
                }
            },
            Qt::QueuedConnection);
    }
    // the tree is told of another window before this is
    const auto* const current = qobject_cast<MapWindow*>(area->currentSubWindow());
    Map::MapView* const view = current ? current->getView() : nullptr;
    if (view && (!layer || view->getLayers().contains(layer))) {
        view->setLayerSelection(layer);
    }
}

MapTreeView* Panels::getTree() const
{
    return tree;
}

QList<QAction*> Panels::getToggleActions() const
{
    QList<QAction*> actions;
    for (const QDockWidget* dock : docks) {
        actions << dock->toggleViewAction();
    }
    return actions;
}

void Panels::setMapWindow(MapWindow* newWindow)
{
    follower->setMapWindow(newWindow);
}

void Panels::refresh()
{
    follower->look();
}

} // namespace Corvane::Viewer
