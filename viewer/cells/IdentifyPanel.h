#pragma once

#include <QHash>
#include <QUuid>
#include <QVector>
#include <QWidget>

class QLabel;
class QToolButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace Corvane::Map {
class Layer;
struct CellReading;
} // namespace Corvane::Map

namespace Corvane::Viewer {

class LatestCells;
class ProbePoint;

/// What every raster of the map has where the probe is: its column and row and the value of each of
/// its bands at full resolution. Looks only while it is shown. GUI thread only.
class IdentifyPanel : public QWidget
{
    Q_OBJECT
public:
    IdentifyPanel(ProbePoint* probe, QWidget* parent);

    /// Everything as text, a line for each band: layer, column, row, band, value.
    QString toText() const;

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// A layer in the tree.
    struct Entry
    {
        QTreeWidgetItem* item = nullptr; // of the tree
        LatestCells* cells = nullptr;    // null where the layer tells nothing
    };

    void createRows();
    void createTree();
    void look();
    void showPlace();
    void dropMissing(const QVector<Map::Layer*>& layers);
    Entry& entryOf(Map::Layer* layer, int position);
    void show(const QUuid& uid, const Map::CellReading& reading);
    void showState(const QUuid& uid, const QString& text);
    void copy() const;

    ProbePoint* probe; // not owned
    QLabel* position = nullptr;
    QLabel* hint = nullptr;
    QToolButton* fixed = nullptr;
    QTreeWidget* tree = nullptr;
    QHash<QUuid, Entry> entries; // by the layer's uid
};

} // namespace Corvane::Viewer
