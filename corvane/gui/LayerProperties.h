#pragma once

#include "ui_LayerProperties.h"

#include <corvane/core/Export.h>

#include <QDialog>
#include <QPointer>

namespace Corvane {

namespace Map {
class Layer;
class RasterLayer;
} // namespace Map

namespace Gui {

/// Shows what is known of one layer, and the pages that its plugin adds. The comments alone are
/// written back by the dialog itself. GUI thread only.
class CORVANE_EXPORT LayerProperties : public QDialog
{
    Q_OBJECT
public:
    /// Shows no layer before setLayer. The parent owns it; it may be null.
    explicit LayerProperties(QWidget* parent = nullptr);
    ~LayerProperties() override;

public slots:
    /// Fills the dialog; the layer is not owned. Null disables the dialog and leaves it as it is.
    void setLayer(Map::Layer* pLayer);
    /// Writes the comments and lets the plugins' pages write theirs. Needs a layer.
    void accept() override;
    /// Nothing is written.
    void reject() override;

private:
    void fillRasterPage(Map::RasterLayer* raster);
    void addPluginPages(Map::Layer* pLayer);

    Ui::LayerProperties ui;
    QWidget* rasterPage; // of the tab widget
    QWidget* vectorPage; // of the tab widget
    QPointer<Map::Layer> layer;
};

} // namespace Gui
} // namespace Corvane
