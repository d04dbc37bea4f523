#pragma once

#include <QDialog>
#include <QPointer>

class QComboBox;
class QLabel;
class QPushButton;

namespace Corvane::Map {
class MapView;
}

namespace Corvane::Viewer {

/// Takes a coordinate, says what it understands while the user writes, and moves the map there. GUI
/// thread only.
class GoToDialog : public QDialog
{
    Q_OBJECT
public:
    /// Closes when the view goes.
    GoToDialog(Map::MapView* mapView, QWidget* parent);

    void accept() override;

private:
    void build();
    void explain();
    void keepInHistory(const QString& coordinate);

    QPointer<Map::MapView> view;
    QComboBox* coordinate;
    QLabel* understood;
    QPushButton* goButton;
};

} // namespace Corvane::Viewer
