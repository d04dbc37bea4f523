#include <corvane/gui/CellValues.h>

#include "ui_CellValues.h"

#include <corvane/map/MapView.h>
#include <corvane/map/RasterLayer.h>

#include <QDebug>
#include <QMdiSubWindow>

namespace Corvane::Gui {

CellValues::CellValues(QWidget* parent) : QWidget(parent), ui(new Ui::CellValues)
{
    ui->setupUi(this);
}

CellValues::~CellValues()
{
    delete ui;
}

void CellValues::onSubWindowActivated(QMdiSubWindow* window)
{
    if (isVisible()) {
        setEnabled(window && qobject_cast<Map::MapView*>(window->widget()));
    }
}

void CellValues::onLayerActivated(Map::Layer* layer)
{
    currentLayer = layer;
    if (auto* const raster = qobject_cast<Map::RasterLayer*>(layer)) {
        qDebug().noquote() << raster->getDataSource();
    }
}

// Hosts connect it by name, so it stays although no field takes anything from it.
void CellValues::onPointerPositionChanged(QPoint&, QPointF&) {}

} // namespace Corvane::Gui
