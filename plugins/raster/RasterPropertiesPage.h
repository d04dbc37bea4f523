#pragma once

#include <corvane/core/ILayerPropertiesWidget.h>

#include <QPointer>
#include <QWidget>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QFormLayout;
class QGroupBox;

namespace Corvane::Map {

class GdalRasterLayer;

/// The page "Raster" of the layer properties: which bands are shown and how, and what is known of
/// the source. Nothing reaches the layer before apply. GUI thread only.
class RasterPropertiesPage : public QWidget, public ILayerPropertiesWidget
{
    Q_OBJECT
    Q_INTERFACES(Corvane::ILayerPropertiesWidget)
public:
    explicit RasterPropertiesPage(QWidget* parent = nullptr);

    void setLayer(Map::Layer* layer) override;
    void apply() override;

private:
    QGroupBox* createLook();
    QGroupBox* createFacts();
    QComboBox* addBandChoice(QFormLayout* form, const QString& label, const char* name);
    void addFact(const QString& label, const char* name);
    void fillBands();
    void fillFacts();
    void setFact(const char* name, const QString& text);
    void showBandsOfMode();

    QPointer<GdalRasterLayer> layer; // not owned
    QComboBox* mode = nullptr;       // grey or colour
    QComboBox* grey = nullptr;
    QComboBox* red = nullptr;
    QComboBox* green = nullptr;
    QComboBox* blue = nullptr;
    QDoubleSpinBox* transparency = nullptr; // percent
    QCheckBox* smoothing = nullptr;
    QCheckBox* adaptiveRoam = nullptr;
    QFormLayout* factsForm = nullptr;
};

} // namespace Corvane::Map
