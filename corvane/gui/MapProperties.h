#pragma once

#include "ui_MapProperties.h"

#include <corvane/core/Export.h>

#include <QColor>
#include <QDialog>
#include <QPointer>

namespace Corvane {

namespace Map {
class MapCanvas;
class MapView;
} // namespace Map

namespace Gui {

/// Edits how one map is presented: bounding boxes, colours and comments. Nothing reaches the map
/// before the dialog is accepted. GUI thread only.
class CORVANE_EXPORT MapProperties : public QDialog
{
    Q_OBJECT
public:
    /// The canvas is not owned. The background colour is that of its parent, which is the map view;
    /// without a parent there is none to edit.
    MapProperties(Map::MapCanvas* canvas, QWidget* parent);
    ~MapProperties() override;

public slots:
    /// Writes everything, changed or not.
    void accept() override;
    /// Closes the dialog.
    void reject() override;

private:
    void fill();
    void connectWidgets();
    void pickMapBBoxColor();
    void pickLayerBBoxColor();
    void pickBackgroundColor();
    void pickColor(const QColor& initial, QColor* color, QFrame* swatch);
    Map::MapView* view() const;

    Ui::MapProperties ui;
    QPointer<Map::MapCanvas> canvas;
    QColor backgroundColor; // invalid until filled, like the others
    QColor mapBBoxColor;
    QColor layerBBoxColor;
};

} // namespace Gui
} // namespace Corvane
