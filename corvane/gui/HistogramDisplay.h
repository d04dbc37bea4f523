#pragma once

#include <corvane/core/Export.h>
#include <corvane/map/HistogramT.h>

#include <QPointer>
#include <QVector>
#include <QWidget>

class QRect;

namespace Corvane::Map {
class IRasterLayerHistogram;
class Layer;
class RasterLayer;
} // namespace Corvane::Map

namespace Ui {
class HistogramDisplay;
}

namespace Corvane::Gui {

/// Shows the value histograms of the active raster layer, a curve per band, with the statistics of
/// one band. The layer counts; a fetch blocks until it has. GUI thread only.
class CORVANE_EXPORT HistogramDisplay : public QWidget
{
    Q_OBJECT
public:
    using Histogram = Map::HistogramT<unsigned long long>; ///< the record of one band

    /// parent is ignored: the panel has none until the caller places it.
    explicit HistogramDisplay(QWidget* parent = nullptr);
    ~HistogramDisplay() override; ///< stores "show all bands"

    /// Reads value and count under the pointer off presses and drags on the plot.
    bool eventFilter(QObject* object, QEvent* event) override;

public slots:
    /// Fetches the layer's histograms; a layer without any, or null, disables the panel.
    void onLayerActivated(Map::Layer* layer);
    /// Shows the statistics of the band at index.
    void on_bandComboBox_activated(int index);
    /// Fetches from the whole image or from the view.
    void on_sourceComboBox_activated(int index);
    /// Fetches exact counts of the view.
    void on_refreshButton_clicked(bool checked);
    /// Repaints; the next fetch does what its button or source says.
    void on_approxCheckBox_stateChanged(int state);
    /// Paints the curves of all bands or of one.
    void on_allBandsCheckBox_stateChanged(int state);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Map::IRasterLayerHistogram* histogramSource() const;
    void fetch(bool viewport, bool approximate);
    void clearFields();
    void listBands();
    void showStatistics(int band);
    void showBinAt(int x);
    QRect plotRectangle() const;

    Ui::HistogramDisplay* ui; // owned
    QPointer<Map::RasterLayer> currentLayer;
    QVector<Histogram> histograms;
};

} // namespace Corvane::Gui
