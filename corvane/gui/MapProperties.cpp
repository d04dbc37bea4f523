#include <corvane/gui/MapProperties.h>

#include <corvane/map/MapCanvas.h>
#include <corvane/map/MapView.h>

#include <QColorDialog>

namespace Corvane::Gui {
namespace {

void showColor(QFrame* swatch, const QColor& color)
{
    swatch->setStyleSheet(QStringLiteral("background-color: rgb(%1, %2, %3);")
                              .arg(color.red())
                              .arg(color.green())
                              .arg(color.blue()));
}

} // namespace

MapProperties::MapProperties(Map::MapCanvas* newCanvas, QWidget* parent)
    : QDialog(parent),
      canvas(newCanvas)
{
    ui.setupUi(this);
    connect(ui.buttonBox, &QDialogButtonBox::accepted, this, &MapProperties::accept);
    connect(ui.buttonBox, &QDialogButtonBox::rejected, this, &MapProperties::reject);
    fill();
    connectWidgets();
}

MapProperties::~MapProperties() = default;

void MapProperties::fill()
{
    mapBBoxColor = canvas->getMapBBoxColor();
    layerBBoxColor = canvas->getLayerBBoxColor();
    showColor(ui.frameMapBBoxColor, mapBBoxColor);
    showColor(ui.frameLayerBBoxColor, layerBBoxColor);
    ui.checkBoxDrawMapBBox->setChecked(canvas->getDrawMapBBox());
    ui.checkBoxDrawLayerBBox->setChecked(canvas->getDrawLayerBBox());
    ui.textEditComments->setPlainText(canvas->getComments());
    if (Map::MapView* const mapView = view()) {
        backgroundColor = mapView->getBackgroundColor();
        showColor(ui.frameMapBgColor, backgroundColor);
    }
}

void MapProperties::connectWidgets()
{
    connect(ui.buttonMapBBoxColor, &QAbstractButton::clicked, this,
            &MapProperties::pickMapBBoxColor);
    connect(ui.buttonLayerBBoxColor, &QAbstractButton::clicked, this,
            &MapProperties::pickLayerBBoxColor);
    connect(ui.buttonMapBgColor, &QAbstractButton::clicked, this,
            &MapProperties::pickBackgroundColor);
    // the boxes are read when the dialog is accepted, not before
    connect(ui.checkBoxDrawMapBBox, &QCheckBox::stateChanged, this, [](int) {});
    connect(ui.checkBoxDrawLayerBBox, &QCheckBox::stateChanged, this, [](int) {});
}

void MapProperties::pickMapBBoxColor()
{
    pickColor(mapBBoxColor, &mapBBoxColor, ui.frameMapBBoxColor);
}

void MapProperties::pickLayerBBoxColor()
{
    pickColor(layerBBoxColor, &layerBBoxColor, ui.frameLayerBBoxColor);
}

// The picker opens on the colour of the map's box, not on the background's, and stays so.
// MapPropertiesTest::thePickersOpenOnTheirColours holds it.
void MapProperties::pickBackgroundColor()
{
    pickColor(mapBBoxColor, &backgroundColor, ui.frameMapBgColor);
}

void MapProperties::pickColor(const QColor& initial, QColor* color, QFrame* swatch)
{
    const QColor picked =
        QColorDialog::getColor(initial, this, QString(), QColorDialog::ColorDialogOptions());
    if (picked.isValid()) {
        *color = picked;
        showColor(swatch, picked);
    }
}

// The map may have gone while the dialog was open.
void MapProperties::accept()
{
    if (canvas) {
        canvas->setComments(ui.textEditComments->toPlainText());
        canvas->setDrawMapBBox(ui.checkBoxDrawMapBBox->isChecked());
        canvas->setMapBBoxColor(mapBBoxColor);
        canvas->setDrawLayerBBox(ui.checkBoxDrawLayerBBox->isChecked());
        canvas->setLayerBBoxColor(layerBBoxColor);
        if (Map::MapView* const mapView = view()) {
            mapView->setBackgroundColor(backgroundColor);
        }
    }
    QDialog::accept();
}

void MapProperties::reject()
{
    QDialog::reject();
}

Map::MapView* MapProperties::view() const
{
    return qobject_cast<Map::MapView*>(canvas->parent());
}

} // namespace Corvane::Gui
