#pragma once

#include <corvane/map/CellReading.h>

#include <QPointer>
#include <QWidget>

#include <memory>

class QCheckBox;
class QComboBox;
class QLabel;
class QTableWidget;
class QTableWidgetItem;

namespace Corvane::Map {
class Layer;
class RasterLayer;
} // namespace Corvane::Map

namespace Corvane::Viewer {

class LatestCells;
class ProbePoint;

/// The values of one band in a square of cells around where the probe is, as a table that can be
/// copied into a spreadsheet. Of the map's selected layer where that is a raster in view there, else of
/// the topmost one. Looks only while it is shown. GUI thread only.
class CellGridPanel : public QWidget
{
    Q_OBJECT
public:
    CellGridPanel(ProbePoint* probe, QWidget* parent);
    /// Keeps the size and the kind of copy.
    ~CellGridPanel() override;

    /// The selected cells, or all of them, row by row, with tabs between; with the numbers of columns
    /// and rows where the user wants them.
    QString toText(bool selectionOnly) const;

public slots:
    /// Shows what is there by now, of the layer that is selected by now.
    void look();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void createControls();
    void createTable();
    void layOut();
    void makeCells();
    int edge() const;
    Map::RasterLayer* layerToShow() const;
    void setLayer(Map::RasterLayer* newLayer);
    void fillBands();
    void show(const Map::CellReading& reading);
    void fitColumns();
    void showState(const QString& text);
    void copy(bool selectionOnly) const;

    ProbePoint* probe; // not owned
    QPointer<Map::Layer> layer;
    std::unique_ptr<LatestCells> cells; // null without a layer
    QLabel* layerName = nullptr;
    QLabel* state = nullptr;
    QComboBox* band = nullptr;
    QComboBox* size = nullptr;
    QCheckBox* headings = nullptr;
    QTableWidget* table = nullptr;
};

} // namespace Corvane::Viewer
