#pragma once

#include <corvane/core/ILayerPropertiesWidget.h>

#include <QPointer>
#include <QWidget>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QFormLayout;
class QGroupBox;
class QSpinBox;

namespace Corvane::Gui {
class ColorButton;
}

namespace Corvane::Map {

class OgrVectorLayer;

/// The page "Vector" of the layer properties: which layer of the source is shown, its style and
/// labels, and what is known of it. Nothing reaches the layer before apply. GUI thread only.
class VectorPropertiesPage : public QWidget, public ILayerPropertiesWidget
{
    Q_OBJECT
    Q_INTERFACES(Corvane::ILayerPropertiesWidget)
public:
    explicit VectorPropertiesPage(QWidget* parent = nullptr);

    void setLayer(Map::Layer* layer) override;
    void apply() override;

private:
    QGroupBox* createStyle();
    QGroupBox* createLabels();
    QGroupBox* createFacts();
    void addFact(QFormLayout* form, const QString& label, const char* name);
    void setFact(const char* name, const QString& text);
    void fillStyle();
    void fillLabels();
    void fillFacts();
    void applyStyle();

    QPointer<OgrVectorLayer> layer; // not owned
    QComboBox* layerName = nullptr;
    QComboBox* lineStyle = nullptr;
    Gui::ColorButton* lineColor = nullptr;
    QSpinBox* lineWidth = nullptr; // documents keep whole pixels
    QComboBox* fillPattern = nullptr;
    Gui::ColorButton* fillColor = nullptr;
    QComboBox* pointSymbol = nullptr;
    QDoubleSpinBox* pointSize = nullptr;
    QDoubleSpinBox* transparency = nullptr; // percent
    QCheckBox* antialiasing = nullptr;
    QComboBox* labelField = nullptr;
    QDoubleSpinBox* labelSize = nullptr;
    Gui::ColorButton* labelColor = nullptr;
};

} // namespace Corvane::Map
